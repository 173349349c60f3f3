#include "taskdsl/base/substitute.h"

#include "support/cursor.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <utility>

namespace morquill::taskdsl {

std::string_view bracketKeyAt(std::string_view text, std::size_t open) noexcept {
    if (open >= text.size() || text[open] != '[') {
        return {};
    }
    const auto key = Cursor(text, open + 1).takeWhile(isKeyChar);
    const auto close = open + 1 + key.size();
    return close < text.size() && text[close] == ']' ? key : std::string_view{};
}

Bracket nextBracket(std::string_view text, std::size_t begin) noexcept {
    for (auto open = text.find('[', begin); open != std::string_view::npos; open = text.find('[', open + 1)) {
        if (const auto key = bracketKeyAt(text, open); !key.empty()) {
            return {open, open + key.size() + 2, key};
        }
    }
    return {};
}

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
