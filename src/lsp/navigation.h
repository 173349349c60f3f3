#pragma once

#include "lsp/session.h"
#include "lsp/sources/resolve.h"

/// From a name to where it is given, and to where it is used.
namespace morquill::lsp {

/// `textDocument/definition`: of a path, the begin of the file.
[[nodiscard]] Json gotoDefinition(Session& session, const Json& params);
/// `textDocument/references`
[[nodiscard]] Json findReferences(Session& session, const Json& params);
/// `textDocument/documentHighlight`
[[nodiscard]] Json documentHighlight(Session& session, const Json& params);

/// The place of the protocol for a place of the index.
[[nodiscard]] Json locationJson(const Session& session, const Place& place);

} // namespace morquill::lsp
