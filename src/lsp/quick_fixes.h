#pragma once

#include "lsp/session.h"

#include <string>
#include <string_view>
#include <vector>

/// Edits that mend what a diagnostic is about.
namespace morquill::lsp {

/// `textDocument/codeAction`: quick fixes of the issues in the range, and `source.fixAll` for all older forms
/// of the text.
[[nodiscard]] Json codeActions(Session& session, const Json& params);

/// The word of the list that is most like another one: fewest letters to change, at most a third of them;
/// empty when there is none. Of two that are alike the first.
[[nodiscard]] std::string_view nearestWord(std::string_view word, const std::vector<std::string_view>& words);

} // namespace morquill::lsp
