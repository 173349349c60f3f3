#pragma once

#include <string>
#include <vector>

namespace morquill::taskdsl {

/// One axis of a `matrix:` section.
struct MatrixAxis {
    std::string key;
    std::vector<std::string> values;
    std::vector<std::string> names; ///< variant names, none or one per value
    std::string map;                ///< key of the axis that this one follows; empty for an independent axis

    friend bool operator==(const MatrixAxis&, const MatrixAxis&) = default;
};

} // namespace morquill::taskdsl
