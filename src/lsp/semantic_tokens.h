#pragma once

#include "lsp/session.h"

#include <string_view>
#include <vector>

/// Semantic tokens: what each name is, for those who colour it.
namespace morquill::lsp {

/// The legend, as the option of the capability. Its order is that of the token types.
inline constexpr std::string_view semanticTokensOptions =
    R"({"full":{"delta":true},"range":true,"legend":{"tokenModifiers":["definition"],"tokenTypes":["class","variable","enum","parameter","property","namespace","function","struct","keyword","enumMember","string","number","comment","macro"]}})";

/// `textDocument/semanticTokens/full`
[[nodiscard]] Json semanticTokensFull(Session& session, const Json& params);
/// `textDocument/semanticTokens/full/delta`: the difference to the answer that the request names, or all
/// tokens.
[[nodiscard]] Json semanticTokensDelta(Session& session, const Json& params);
/// `textDocument/semanticTokens/range`
[[nodiscard]] Json semanticTokensRange(Session& session, const Json& params);

} // namespace morquill::lsp
