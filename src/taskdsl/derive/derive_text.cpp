#include "taskdsl/derive/derive_text.h"

#include "support/text.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/expr/statement_reader.h"

#include <algorithm>

namespace morquill::taskdsl::derive {

namespace {

bool isBorder(char c) noexcept {
    return isSpace(c) || std::string_view("()[]{}\"',=").find(c) != std::string_view::npos;
}

Halves splitAround(std::string_view text, std::size_t at, std::size_t length) noexcept {
    return {trim(text.substr(0, at)), trim(text.substr(at + length))};
}

} // namespace

std::size_t skipOpaque(std::string_view text, std::size_t at) noexcept {
    QuoteWalk walk(quote_rules::deriveText);
    std::size_t after = walk.step(text, at);
    if (walk.inOpen()) {
        return at;
    }
    while (after < text.size() && !walk.inOpen()) {
        after = walk.step(text, after);
    }
    return after;
}

std::size_t skipParentheses(std::string_view text, std::size_t at) noexcept {
    QuoteWalk walk(quote_rules::deriveText);
    do {
        at = walk.step(text, at);
    } while (at < text.size() && !walk.atTop());
    return walk.atTop() ? at : std::string_view::npos;
}

std::optional<Halves> splitAtEquals(std::string_view text) noexcept {
    const auto at =
        findAtTop(text, quote_rules::deriveText, [text](std::size_t place) { return text[place] == '='; });
    return at == std::string_view::npos ? std::nullopt : std::optional(splitAround(text, at, 1));
}

std::optional<Halves> splitAtWord(std::string_view text, std::string_view word, std::size_t from,
                                  Brackets brackets) noexcept {
    const auto& rule =
        brackets == Brackets::shielding ? quote_rules::deriveCondition : quote_rules::deriveText;
    const auto at = findAtTop(text, rule, [=](std::size_t place) {
        const auto end = place + word.size();
        return place >= from && lowerChar(text[place]) == word.front() &&
               (place == 0 || isBorder(text[place - 1])) &&
               equalsNoCase(text.substr(place, word.size()), word) &&
               (end >= text.size() || isBorder(text[end]));
    });
    return at == std::string_view::npos ? std::nullopt : std::optional(splitAround(text, at, word.size()));
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
    auto entries = splitAtTop(text, quote_rules::deriveText, ',');
    std::transform(entries.begin(), entries.end(), entries.begin(), trim);
    return entries;
}

std::optional<std::string_view> insideParentheses(std::string_view text) noexcept {
    text = trim(text);
    if (text.empty() || text.front() != '(' || skipParentheses(text, 0) != text.size()) {
        return std::nullopt;
    }
    return trim(text.substr(1, text.size() - 2));
}

std::string readLabelledText(std::string_view text, std::string_view label, const SourceSpan& span) {
    std::string value = plot::unquotePlotText(text);
    if (value.empty()) {
        plot::plotError(span, std::string(label) + " cannot be empty");
    }
    return value;
}

std::string requireIdentifier(std::string_view text, std::string_view message, const SourceSpan& span) {
    if (!plot::isPlotIdentifier(text)) {
        plot::plotError(span, std::string(message));
    }
    return std::string(text);
}

} // namespace morquill::taskdsl::derive
