#pragma once

#include "lsp/session.h"

/// What is shown beside the text: the number of variants, and who uses a task.
namespace morquill::lsp {

/// `textDocument/inlayHint`: behind a task's name, how many variants the matrix makes of it.
[[nodiscard]] Json inlayHints(Session& session, const Json& params);
/// `textDocument/codeLens`: over a task, by which tasks it is used.
[[nodiscard]] Json codeLenses(Session& session, const Json& params);

} // namespace morquill::lsp
