#pragma once

#include "lsp/index/index_builder.h"

#include <string_view>

/// The directives of a task: what their values and the lines of their blocks name.
namespace morquill::lsp {

struct DirectiveScanRow {
    std::string_view keyword;
    void (*value)(IndexBuilder&, std::string_view text); ///< of a value that is not empty
    void (*line)(IndexBuilder&, std::string_view text);  ///< of a cleaned line of the block
    bool takesHeredoc = false;
};

/// The row of a directive; one that adds the `[key]`s alone for an unknown one.
[[nodiscard]] const DirectiveScanRow& directiveScan(std::string_view keyword) noexcept;

} // namespace morquill::lsp
