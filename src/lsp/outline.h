#pragma once

#include "lsp/session.h"

/// The shape of a text: its symbols, what folds, what grows when a selection grows, where its links lead.
namespace morquill::lsp {

/// `textDocument/documentSymbol`
[[nodiscard]] Json documentSymbols(Session& session, const Json& params);
/// `textDocument/foldingRange`
[[nodiscard]] Json foldingRanges(Session& session, const Json& params);
/// `textDocument/selectionRange`
[[nodiscard]] Json selectionRanges(Session& session, const Json& params);
/// `textDocument/documentLink`
[[nodiscard]] Json documentLinks(Session& session, const Json& params);

} // namespace morquill::lsp
