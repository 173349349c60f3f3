#pragma once

#include "lsp/session.h"

/// What may stand at a place.
namespace morquill::lsp {

/// `textDocument/completion`
[[nodiscard]] Json complete(Session& session, const Json& params);
/// `textDocument/signatureHelp`: the function whose arguments are being written.
[[nodiscard]] Json signatureHelp(Session& session, const Json& params);

} // namespace morquill::lsp
