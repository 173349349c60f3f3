#pragma once

#include "lsp/session.h"

/// Renaming a name in every file of its documents.
namespace morquill::lsp {

/// `textDocument/rename`. Throws `ResponseError` for what has no name of its own, a name that is empty or
/// taken, and one that would not be read back in every place.
[[nodiscard]] Json renameSymbol(Session& session, const Json& params);
/// `textDocument/prepareRename`: the range and the name.
[[nodiscard]] Json prepareRename(Session& session, const Json& params);

} // namespace morquill::lsp
