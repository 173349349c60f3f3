#include "lsp/index/expression_tokens.h"

#include "support/text.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>

namespace morquill::lsp {

namespace {

/// The bytes of `[key]` at the front; 0 when there is none.
std::size_t keyLength(std::string_view text) noexcept {
    const auto key = taskdsl::bracketKeyAt(text, 0);
    return key.empty() ? 0 : key.size() + 2;
}

std::size_t nameLength(std::string_view text) noexcept {
    std::size_t end = 0;
    while (end < text.size()) {
        if (const auto key = keyLength(text.substr(end)); key > 0) {
            end += key;
        } else if (isWordChar(text[end]) || (end > 0 && (text[end] == '.' || text[end] == ':'))) {
            ++end;
        } else {
            break;
        }
    }
    while (end > 0 && text[end - 1] == ':') {
        --end;
    }
    return end;
}

std::size_t numberLength(std::string_view text) noexcept {
    std::size_t end = 0;
    while (end < text.size()) {
        const bool exponentSign =
            (text[end] == '+' || text[end] == '-') && end > 0 && lowerChar(text[end - 1]) == 'e';
        if (!isDottedWordChar(text[end]) && !exponentSign) {
            break;
        }
        ++end;
    }
    return end;
}

std::size_t stringLength(std::string_view text) noexcept {
    QuoteWalk walk(taskdsl::quote_rules::expressionString);
    std::size_t at = walk.step(text, 0);
    while (at < text.size() && walk.inQuotes()) {
        at = walk.step(text, at);
    }
    return at;
}

std::size_t signLength(std::string_view text) noexcept {
    constexpr std::string_view pairs[] = {"==", "!=", "<=", ">=", "->", "=>"};
    return std::any_of(std::begin(pairs), std::end(pairs),
                       [text](std::string_view pair) { return text.starts_with(pair); })
               ? 2
               : 1;
}

/// The token at the front of a text that is not empty and begins with no white space.
Token firstToken(std::string_view text) noexcept {
    using enum Token::Kind;
    const char c = text.front();
    if (text.starts_with("{{")) {
        const auto end = text.find("}}", 2);
        return {snapshot, text.substr(0, end == std::string_view::npos ? end : end + 2), 0};
    }
    if (c == '"' || c == '\'') {
        return {string, text.substr(0, stringLength(text)), 0};
    }
    if (isDigit(c) || (c == '.' && text.size() > 1 && isDigit(text[1]))) {
        return {number, text.substr(0, numberLength(text)), 0};
    }
    if (isWordStart(c) || keyLength(text) > 0) {
        return {name, text.substr(0, nameLength(text)), 0};
    }
    return {sign, text.substr(0, signLength(text)), 0};
}

} // namespace

void addTokens(std::string_view text, std::size_t& depth, std::vector<Token>& tokens) {
    for (std::size_t at = skipSpace(text); at < text.size(); at = skipSpace(text, at)) {
        Token token = firstToken(text.substr(at));
        if (token.isSign(")") && depth > 0) {
            --depth;
        }
        token.depth = depth;
        if (token.isSign("(")) {
            ++depth;
        }
        at += token.text.size();
        tokens.push_back(token);
    }
}

std::vector<StatementTokens> readStatements(const std::vector<std::string_view>& lines) {
    std::vector<StatementTokens> statements;
    std::size_t depth = 0;
    bool goesOn = false;
    for (const auto line : lines) {
        const auto text = taskdsl::plot::stripPlotComment(line);
        if (text.empty()) {
            continue;
        }
        if (!goesOn) {
            depth = 0;
            auto [word, rest] = taskdsl::plot::splitFirstWord(text);
            while (word.ends_with(':')) {
                word.remove_suffix(1);
            }
            statements.push_back({line, word, rest, {}});
            addTokens(rest, depth, statements.back().tokens);
        } else {
            addTokens(text, depth, statements.back().tokens);
        }
        goesOn = depth > 0 || taskdsl::plot::endsInOperator(text);
    }
    return statements;
}

std::string_view insideQuotes(std::string_view string) noexcept {
    if (string.empty()) {
        return string;
    }
    const bool closed = string.size() >= 2 && string.back() == string.front();
    return string.substr(1, string.size() - (closed ? 2 : 1));
}

std::string_view insideSnapshot(std::string_view snapshot) noexcept {
    snapshot.remove_prefix(std::min<std::size_t>(2, snapshot.size()));
    if (snapshot.ends_with("}}")) {
        snapshot.remove_suffix(2);
    }
    return trim(snapshot);
}

} // namespace morquill::lsp
