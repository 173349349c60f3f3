#pragma once

#include <string>

namespace morquill::lsp {

/// docs/words.md: every row of the help table, in the order of the table.
[[nodiscard]] std::string renderHelpPage();

} // namespace morquill::lsp
