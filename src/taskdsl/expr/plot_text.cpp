#include "taskdsl/expr/plot_text.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>

namespace morquill::taskdsl::plot {

namespace {

constexpr int printedDigits = 15;

constexpr bool isWordChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_';
}

bool startsPair(std::string_view text, std::size_t at, char brace) noexcept {
    return text[at] == brace && at + 1 < text.size() && text[at + 1] == brace;
}

/// End of the word that begins at `at`, by the rule of `splitPlotWords`.
std::size_t endOfWord(std::string_view text, std::size_t at) noexcept {
    char quote = '\0';
    std::size_t depth = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != '\0') {
            if (c == '\\' && quote == '"') {
                ++at;
            } else if (c == quote) {
                quote = '\0';
            }
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')' && depth > 0) {
            --depth;
        } else if (isSpace(c) && depth == 0) {
            break;
        }
    }
    return std::min(at, text.size());
}

std::size_t skipSpace(std::string_view text, std::size_t at) noexcept {
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return at;
}

char decodeEscape(char c) noexcept {
    switch (c) {
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return c;
    }
}

} // namespace

std::size_t PlotNesting::advance(std::string_view text, std::size_t at) noexcept {
    const char c = text[at];
    if (c == '\\' && quote != '\'') {
        return std::min(at + 2, text.size());
    }
    if (quote != '\0') {
        if (c == quote) {
            quote = '\0';
        }
        return at + 1;
    }
    if (c == '"' || c == '\'') {
        quote = c;
    } else if (startsPair(text, at, '{')) {
        ++snapshot;
        return at + 2;
    } else if (startsPair(text, at, '}')) {
        snapshot -= snapshot > 0 ? 1 : 0;
        return at + 2;
    } else if (snapshot == 0 && c == '(') {
        ++paren;
    } else if (snapshot == 0 && c == ')' && paren > 0) {
        --paren;
    }
    return at + 1;
}

std::string_view stripPlotComment(std::string_view line) noexcept {
    if (line.find('#') == std::string_view::npos) {
        return trim(line);
    }
    PlotNesting nesting;
    for (std::size_t i = 0; i < line.size(); i = nesting.advance(line, i)) {
        if (line[i] == '#' && nesting.outsideQuotes() && nesting.snapshot == 0) {
            return trim(line.substr(0, i));
        }
    }
    return trim(line);
}

std::vector<std::string_view> splitPlotWords(std::string_view text) {
    std::vector<std::string_view> words;
    for (std::size_t at = skipSpace(text, 0); at < text.size();) {
        const std::size_t end = endOfWord(text, at);
        words.push_back(text.substr(at, end - at));
        at = skipSpace(text, end);
    }
    return words;
}

FirstWord splitFirstWord(std::string_view text) noexcept {
    const std::size_t begin = skipSpace(text, 0);
    const std::size_t end = endOfWord(text, begin);
    return {text.substr(begin, end - begin), trim(text.substr(end))};
}

KeywordOptions splitKeywordOptions(std::string_view text, std::initializer_list<std::string_view> keywords) {
    KeywordOptions result;
    std::size_t valueBegin = 0; // of the head, then of the option found last
    const auto closeValue = [&](std::size_t end) {
        const auto value = trim(text.substr(valueBegin, end - valueBegin));
        (result.options.empty() ? result.head : result.options.back().value) = value;
    };
    PlotNesting nesting;
    for (std::size_t i = 0; i < text.size();) {
        if (nesting.atLevelZero() && isWordChar(text[i]) && (i == 0 || isSpace(text[i - 1]))) {
            std::size_t end = i + 1;
            while (end < text.size() && isWordChar(text[end])) {
                ++end;
            }
            const auto word = text.substr(i, end - i);
            const auto found = std::find_if(keywords.begin(), keywords.end(), [&](std::string_view keyword) {
                return equalsNoCase(keyword, word);
            });
            if (found != keywords.end()) {
                closeValue(i);
                result.options.push_back({*found, {}});
                valueBegin = end;
            }
            i = end;
        } else {
            i = nesting.advance(text, i);
        }
    }
    closeValue(text.size());
    return result;
}

std::size_t findAtLevelZero(std::string_view text, char wanted) noexcept {
    PlotNesting nesting;
    for (std::size_t i = 0; i < text.size(); i = nesting.advance(text, i)) {
        if (text[i] == wanted && nesting.atLevelZero()) {
            return i;
        }
    }
    return std::string_view::npos;
}

std::string unquotePlotText(std::string_view text) {
    text = trim(text);
    if (text.size() < 2 || text.front() != text.back() || (text.front() != '"' && text.front() != '\'')) {
        return std::string(text);
    }
    const auto inner = text.substr(1, text.size() - 2);
    if (text.front() == '\'' || inner.find('\\') == std::string_view::npos) {
        return std::string(inner);
    }
    std::string result;
    result.reserve(inner.size());
    for (std::size_t i = 0; i < inner.size(); ++i) {
        const bool escaped = inner[i] == '\\' && i + 1 < inner.size();
        result += escaped ? decodeEscape(inner[++i]) : inner[i];
    }
    return result;
}

std::string quotePlotText(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    result += '"';
    for (const char c : text) {
        switch (c) {
        case '\\':
        case '"':
            result += '\\';
            result += c;
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\t':
            result += "\\t";
            break;
        default:
            result += c;
        }
    }
    result += '"';
    return result;
}

bool stripTrailingColon(std::string_view& text) noexcept {
    text = trim(text);
    if (text.empty() || text.back() != ':') {
        return false;
    }
    text.remove_suffix(1);
    text = trim(text);
    return true;
}

bool isPlotIdentifier(std::string_view text) noexcept {
    return !text.empty() && !isDigit(text.front()) && std::all_of(text.begin(), text.end(), isWordChar);
}

std::optional<double> parsePlotNumber(std::string_view text) {
    return readDouble(text);
}

std::string plotNumberText(double value) {
    constexpr double roundsToInfinity = 1.797693134862315e308; // 15 digits of anything above are too much
    const bool edge = std::isfinite(value) && std::abs(value) >= roundsToInfinity;
    return formatSignificant(value, edge ? exactDigits : printedDigits);
}

bool plotNumberReadsBack(double value) {
    constexpr double allIntegers = 1e15;
    if (!std::isfinite(value) || (std::abs(value) < allIntegers && value == std::trunc(value))) {
        return true;
    }
    return readDouble(plotNumberText(value)) == value;
}

std::string plotNumberLoss(double value) {
    return "the number " + formatSignificant(value, exactDigits) + " prints with 15 digits";
}

} // namespace morquill::taskdsl::plot
