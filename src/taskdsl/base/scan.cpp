#include "taskdsl/base/scan.h"

#include "support/text.h"
#include "taskdsl/base/quote_rules.h"

#include <algorithm>

namespace morquill::taskdsl {

namespace {

/// The rule of the quotes that take part on a line: those of a kind with an even number, at least two.
const QuoteRule& commentRule(std::string_view line) noexcept {
    std::size_t doubles = 0;
    std::size_t singles = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\\') {
            ++i;
        } else if (line[i] == '"') {
            ++doubles;
        } else if (line[i] == '\'') {
            ++singles;
        }
    }
    const auto isPaired = [](std::size_t count) { return count >= 2 && count % 2 == 0; };
    return quote_rules::taskComment[(isPaired(doubles) ? 2U : 0U) + (isPaired(singles) ? 1U : 0U)];
}

bool isQuotedBy(std::string_view text, char quote) noexcept {
    return text.size() >= 2 && text.front() == quote && text.back() == quote;
}

} // namespace

std::string_view stripComment(std::string_view line) noexcept {
    if (line.find('#') == std::string_view::npos) {
        return line;
    }
    QuoteWalk walk(commentRule(line));
    for (std::size_t at = 0; at < line.size(); at = walk.step(line, at)) {
        if (line[at] == '#' && walk.inOpen() && (at == 0 || isSpace(line[at - 1]))) {
            return line.substr(0, at);
        }
    }
    return line;
}

std::string_view cleanLine(std::string_view line) noexcept {
    return trim(stripComment(line));
}

std::string_view unquote(std::string_view text) noexcept {
    text = trim(text);
    if (isQuotedBy(text, '"') || isQuotedBy(text, '\'')) {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

bool isIndented(std::string_view line) noexcept {
    return line.starts_with(' ') || line.starts_with('\t');
}

std::string_view directiveName(std::string_view text) noexcept {
    return !text.empty() && text.front() == '%' ? text.substr(1) : std::string_view{};
}

std::string_view taskHeaderName(std::string_view text) noexcept {
    if (text.empty() || text.front() != '$') {
        return {};
    }
    const auto name = trim(text.substr(1));
    return isQuotedBy(name, '"') ? name.substr(1, name.size() - 2) : name;
}

bool beginsBlock(std::string_view text, std::string_view keyword) noexcept {
    return text.starts_with(keyword) && (text.size() == keyword.size() || text[keyword.size()] == ' ');
}

bool matchWord(std::string_view text, std::string_view word) noexcept {
    return text.starts_with(word) && (text.size() == word.size() || isSpace(text[word.size()]));
}

std::optional<std::string_view> textAfterWord(std::string_view text, std::string_view word) noexcept {
    const auto rest = text.substr(std::min(word.size(), text.size()));
    if (!equalsNoCase(text.substr(0, word.size()), word) || (!rest.empty() && !isSpace(rest.front()))) {
        return std::nullopt;
    }
    return trim(rest);
}

std::optional<std::string_view> takeAssignedValue(Cursor& cursor) noexcept {
    Cursor ahead = cursor;
    if (!ahead.skipSpace().take('=') || ahead.skipSpace().atEnd()) {
        return std::nullopt;
    }
    const auto rest = ahead.rest();
    const bool quoted = rest.front() == '"' || rest.front() == '\'';
    const auto close = quoted ? rest.find(rest.front(), 1) : std::string_view::npos;
    const auto value =
        close == std::string_view::npos ? ahead.takeWord() : ahead.takeTo(ahead.place() + close + 1);
    cursor = ahead;
    return value;
}

bool isIdentifier(std::string_view text) noexcept {
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isNameChar);
}

bool isDottedIdentifier(std::string_view text) noexcept {
    return allDottedParts(text, isIdentifier);
}

} // namespace morquill::taskdsl
