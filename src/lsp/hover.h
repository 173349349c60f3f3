#pragma once

#include "lsp/session.h"

#include <string>

/// What a name or a word means, in a few lines.
namespace morquill::lsp {

/// `textDocument/hover`
[[nodiscard]] Json hover(Session& session, const Json& params);

/// A property of the catalog: its canonical name, shape, unit and aliases; empty for an unknown one.
[[nodiscard]] std::string propertyHelp(std::string_view name);

/// How many variants the matrix makes of every task; 1 without one, 0 for a matrix with a fault.
[[nodiscard]] std::size_t variantCount(const taskdsl::TaskDocument& document);

} // namespace morquill::lsp
