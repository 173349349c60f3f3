#pragma once

#include "taskdsl/base/substitute.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
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

/// The values that a combination has chosen, by axis key in byte order. There is one for every combination,
/// so it is a list whose keys and values all combinations share.
class AxisValues {
  public:
    using Entry = std::pair<SharedText, SharedText>; ///< axis key and value

    AxisValues() = default;
    AxisValues(const ValueMap& values) // NOLINT(google-explicit-constructor): reads like such a map
        : entries_(values.begin(), values.end()) {}
    /// The keys must differ.
    explicit AxisValues(std::vector<Entry> entries) : entries_(std::move(entries)) {
        std::sort(entries_.begin(), entries_.end(),
                  [](const Entry& a, const Entry& b) { return a.first.view() < b.first.view(); });
    }

    [[nodiscard]] auto begin() const noexcept { return entries_.begin(); }
    [[nodiscard]] auto end() const noexcept { return entries_.end(); }
    [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }

    friend bool operator==(const AxisValues&, const AxisValues&) = default;

  private:
    std::vector<Entry> entries_;
};

} // namespace morquill::taskdsl
