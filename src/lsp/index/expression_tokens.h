#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// The statements of plots and derives as tokens that know their place.
namespace morquill::lsp {

struct Token {
    enum class Kind : std::uint8_t { name, number, string, snapshot, sign };
    Kind kind = Kind::sign;
    std::string_view text;
    std::size_t depth = 0; ///< of the parentheses around it; a parenthesis has the depth outside

    [[nodiscard]] bool isSign(std::string_view sign) const noexcept {
        return kind == Kind::sign && text == sign;
    }
};

/// One logical statement: what its physical lines hold, comments left out.
struct StatementTokens {
    std::string_view line;     ///< the first line
    std::string_view word;     ///< the first word, without the colon after it
    std::string_view rest;     ///< of the first line, after the first word
    std::vector<Token> tokens; ///< after the first word
};

/// Adds the tokens of a text. Any bytes may come: what is no token of the grammar is a sign.
void addTokens(std::string_view text, std::size_t& depth, std::vector<Token>& tokens);

/// Groups lines to statements as the parser does: one goes on inside parentheses and after a line that ends
/// in an operator or a comma.
[[nodiscard]] std::vector<StatementTokens> readStatements(const std::vector<std::string_view>& lines);

/// The text between the quotes of a string.
[[nodiscard]] std::string_view insideQuotes(std::string_view string) noexcept;
/// The inside of `{{ ... }}`, trimmed.
[[nodiscard]] std::string_view insideSnapshot(std::string_view snapshot) noexcept;

} // namespace morquill::lsp
