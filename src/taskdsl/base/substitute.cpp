#include "taskdsl/base/substitute.h"

#include "support/cursor.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

/// A `[key]` in a text: the key, and the places of its brackets.
struct Bracket {
    std::size_t open = std::string_view::npos;
    std::size_t after = 0;
    std::string_view key;
};

/// The next `[key]` from `begin` on. No key character is a bracket, so a failed try goes on after its key.
Bracket nextBracket(std::string_view text, std::size_t begin) noexcept {
    for (std::size_t open = text.find('[', begin); open != std::string_view::npos;) {
        const auto key = Cursor(text, open + 1).takeWhile(isKeyChar);
        const auto close = open + 1 + key.size();
        if (!key.empty() && close < text.size() && text[close] == ']') {
            return {open, close + 1, key};
        }
        open = text.find('[', close);
    }
    return {};
}

} // namespace

std::string substituteBrackets(std::string_view text, const ValueMap& values) {
    std::string result;
    std::size_t copied = 0;
    for (Bracket bracket = nextBracket(text, 0); bracket.open != std::string_view::npos;
         bracket = nextBracket(text, bracket.after)) {
        if (const auto found = values.find(bracket.key); found != values.end()) {
            result += text.substr(copied, bracket.open - copied);
            result += found->second;
            copied = bracket.after;
            if (result.size() > text.size() + limits::substitutedText) {
                throw DiagnosticError("substitution of '[" + found->first + "]' makes a text longer than " +
                                      std::to_string(limits::substitutedText >> 20) + " MiB");
            }
        }
    }
    result += text.substr(copied);
    return result;
}

bool substituteInto(std::string& text, const ValueMap& values) {
    if (text.find('[') == std::string::npos) {
        return false;
    }
    auto replaced = substituteBrackets(text, values);
    const bool changed = replaced != text;
    text = std::move(replaced);
    return changed;
}

bool substituteInto(SharedText& text, const ValueMap& values) {
    if (text.view().find('[') == std::string_view::npos) {
        return false;
    }
    const auto replaced = substituteBrackets(text, values);
    const bool changed = text != replaced;
    if (changed) {
        text = replaced;
    }
    return changed;
}

bool holdsBracketKey(std::string_view text) noexcept {
    return nextBracket(text, 0).open != std::string_view::npos;
}

std::vector<std::string> bracketKeys(std::string_view text) {
    std::vector<std::string> keys;
    for (Bracket bracket = nextBracket(text, 0); bracket.open != std::string_view::npos;
         bracket = nextBracket(text, bracket.after)) {
        keys.emplace_back(bracket.key);
    }
    return keys;
}

} // namespace morquill::taskdsl
