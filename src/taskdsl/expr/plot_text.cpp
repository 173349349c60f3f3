#include "taskdsl/expr/plot_text.h"

#include "support/byte_set.h"
#include "support/cursor.h"
#include "support/number.h"
#include "support/text.h"
#include "taskdsl/base/escape.h"
#include "taskdsl/base/quote_rules.h"

#include <algorithm>
#include <cmath>

namespace morquill::taskdsl::plot {

namespace {

constexpr ByteSet wordBytes(isWordChar);

/// 15 significant digits; 17 where 15 round up to infinity.
int printedDigits(double value) noexcept {
    constexpr double roundsToInfinity = 1.797693134862315e308;
    return std::isfinite(value) && std::abs(value) >= roundsToInfinity ? exactDigits : 15;
}

/// End of the word that begins at `at`, by the rule of `splitPlotWords`.
std::size_t endOfWord(std::string_view text, std::size_t at) noexcept {
    QuoteWalk walk(quote_rules::plotWords);
    while (at < text.size() && !(isSpace(text[at]) && walk.atTop())) {
        at = walk.step(text, at);
    }
    return at;
}

} // namespace

std::string_view stripPlotComment(std::string_view line) noexcept {
    if (line.find('#') == std::string_view::npos) {
        return trim(line);
    }
    QuoteWalk walk(quote_rules::plotText);
    for (std::size_t i = 0; i < line.size(); i = walk.step(line, i)) {
        if (line[i] == '#' && walk.inOpen()) {
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
    QuoteWalk walk(quote_rules::plotText);
    for (std::size_t i = 0; i < text.size();) {
        if (!wordBytes.contains(text[i])) {
            i = walk.step(text, i);
            continue;
        }
        // Words, most of the text, mean nothing to the walk.
        const auto word = Cursor(text, i).takeWhile([](char c) { return wordBytes.contains(c); });
        const std::size_t end = i + word.size();
        if ((i == 0 || isSpace(text[i - 1])) && walk.atTop()) {
            const auto found = std::find_if(keywords.begin(), keywords.end(), [&](std::string_view keyword) {
                return equalsNoCase(keyword, word);
            });
            if (found != keywords.end()) {
                closeValue(i);
                result.options.push_back({*found, {}});
                valueBegin = end;
            }
        }
        i = end;
    }
    closeValue(text.size());
    return result;
}

bool isPlotOptionWord(std::string_view word) noexcept {
    constexpr std::string_view optionWords[] = {"label", "unit",  "log",  "scale",       "axis",
                                                "style", "value", "task", "multiplicity"};
    return std::any_of(std::begin(optionWords), std::end(optionWords),
                       [word](std::string_view option) { return equalsNoCase(option, word); });
}

bool endsInOperator(std::string_view text) noexcept {
    return std::string_view("*+,-/").find(text.back()) != std::string_view::npos;
}

std::size_t findAtLevelZero(std::string_view text, char wanted) noexcept {
    return findAtTop(text, quote_rules::plotText, [&](std::size_t at) { return text[at] == wanted; });
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
        i += escaped ? 1 : 0;
        result += escaped ? escapedByte(inner[i]).value_or(inner[i]) : inner[i];
    }
    return result;
}

std::string quotePlotText(std::string_view text) {
    std::string result;
    appendQuoted(result, text);
    return result;
}

std::optional<std::string_view> stripTrailingColon(std::string_view text) noexcept {
    text = trim(text);
    if (text.empty() || text.back() != ':') {
        return std::nullopt;
    }
    return trim(text.substr(0, text.size() - 1));
}

bool isPlotIdentifier(std::string_view text) noexcept {
    return !text.empty() && isWordStart(text.front()) && std::all_of(text.begin(), text.end(), isWordChar);
}

std::optional<double> parsePlotNumber(std::string_view text) {
    return readDouble(text);
}

PrintedNumber printPlotNumber(double value) {
    return printSignificant(value, printedDigits(value));
}

std::string plotNumberText(double value) {
    return printPlotNumber(value).text;
}

std::string plotNumberLoss(double value) {
    return "the number " + formatSignificant(value, exactDigits) + " prints with 15 digits";
}

} // namespace morquill::taskdsl::plot
