#include "taskdsl/derive/derive_text.h"

#include "support/text.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/expr/statement_reader.h"

namespace morquill::taskdsl::derive {

namespace {

bool isBorder(char c) noexcept {
    return isSpace(c) || std::string_view("()[]{}\"',=").find(c) != std::string_view::npos;
}

/// Walks the bytes at top level. Opening and closing parentheses are not among them.
class TopLevelWalk {
  public:
    TopLevelWalk(std::string_view text, Brackets brackets) noexcept
        : text_(text), shielding_(brackets == Brackets::shielding) {}

    /// The next byte at top level; npos at the end.
    std::size_t next() noexcept {
        while (at_ < text_.size()) {
            const auto behind = skipOpaque(text_, at_);
            if (behind != at_) {
                at_ = behind;
                continue;
            }
            const char c = text_[at_++];
            if (c == '(' || (shielding_ && c == '[')) {
                ++depth_;
            } else if (c == ')' || (shielding_ && c == ']')) {
                depth_ -= depth_ > 0 ? 1 : 0;
            } else if (depth_ == 0) {
                return at_ - 1;
            }
        }
        return std::string_view::npos;
    }

  private:
    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
    bool shielding_;
};

Halves splitAround(std::string_view text, std::size_t at, std::size_t length) noexcept {
    return {trim(text.substr(0, at)), trim(text.substr(at + length))};
}

} // namespace

std::size_t skipOpaque(std::string_view text, std::size_t at) noexcept {
    const char c = text[at];
    if (c == '"' || c == '\'') {
        for (std::size_t i = at + 1; i < text.size(); ++i) {
            if (text[i] == '\\') {
                ++i;
            } else if (text[i] == c) {
                return i + 1;
            }
        }
        return text.size();
    }
    if (c == '{' && text.substr(at).starts_with("{{")) {
        const auto close = text.find("}}", at + 2);
        return close == std::string_view::npos ? text.size() : close + 2;
    }
    return at;
}

std::optional<Halves> splitAtEquals(std::string_view text) noexcept {
    TopLevelWalk walk(text, Brackets::ordinary);
    for (auto at = walk.next(); at != std::string_view::npos; at = walk.next()) {
        if (text[at] == '=') {
            return splitAround(text, at, 1);
        }
    }
    return std::nullopt;
}

std::optional<Halves> splitAtWord(std::string_view text, std::string_view word, std::size_t from,
                                  Brackets brackets) noexcept {
    TopLevelWalk walk(text, brackets);
    for (auto at = walk.next(); at != std::string_view::npos; at = walk.next()) {
        const auto end = at + word.size();
        if (at >= from && lowerChar(text[at]) == word.front() && (at == 0 || isBorder(text[at - 1])) &&
            equalsNoCase(text.substr(at, word.size()), word) && (end >= text.size() || isBorder(text[end]))) {
            return splitAround(text, at, word.size());
        }
    }
    return std::nullopt;
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
    std::vector<std::string_view> entries;
    std::size_t begin = 0;
    TopLevelWalk walk(text, Brackets::ordinary);
    for (auto at = walk.next(); at != std::string_view::npos; at = walk.next()) {
        if (text[at] == ',') {
            entries.push_back(trim(text.substr(begin, at - begin)));
            begin = at + 1;
        }
    }
    entries.push_back(trim(text.substr(begin)));
    return entries;
}

std::optional<std::string_view> insideParentheses(std::string_view text) noexcept {
    text = trim(text);
    if (text.size() < 2 || text.front() != '(' || text.back() != ')') {
        return std::nullopt;
    }
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto behind = skipOpaque(text, i);
        if (behind != i) {
            i = behind;
            continue;
        }
        depth += text[i] == '(' ? 1 : 0;
        depth -= text[i] == ')' ? 1 : 0;
        ++i;
        if (depth == 0) { // the first parenthesis is closed here
            return i == text.size() ? std::optional(trim(text.substr(1, text.size() - 2))) : std::nullopt;
        }
    }
    return std::nullopt;
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
