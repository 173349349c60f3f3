#pragma once

#include "lsp/index/index_builder.h"

#include <cstdint>
#include <string_view>

/// The directives of a task: what their values and the lines of their blocks name.
namespace morquill::lsp {

/// Whether the value of a directive may open a heredoc.
enum class Heredoc : std::uint8_t { refused, taken };

struct DirectiveScanRow {
    std::string_view keyword;
    void (*value)(IndexBuilder&, std::string_view text); ///< of a value that is not empty
    void (*line)(IndexBuilder&, std::string_view text);  ///< of a cleaned line of the block
    Heredoc heredoc = Heredoc::refused;
};

/// The row of a directive; one that adds the `[key]`s alone for an unknown one.
[[nodiscard]] const DirectiveScanRow& directiveScan(std::string_view keyword) noexcept;

} // namespace morquill::lsp
