#include "taskdsl/substitute.h"

#include "support/text.h"

namespace morquill::taskdsl {

namespace {

bool isKeyChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.' || c == '-';
}

} // namespace

std::string substituteBrackets(std::string_view text, const ValueMap& values) {
    std::string result;
    std::size_t copied = 0;
    std::size_t open = text.find('[');
    while (open != std::string_view::npos) {
        std::size_t close = open + 1;
        while (close < text.size() && isKeyChar(text[close])) {
            ++close;
        }
        if (close < text.size() && close > open + 1 && text[close] == ']') {
            if (const auto found = values.find(text.substr(open + 1, close - open - 1)); found != values.end()) {
                result += text.substr(copied, open - copied);
                result += found->second;
                copied = close + 1;
            }
        }
        // No key character is a bracket, so the next candidate stands at `close` at the earliest.
        open = text.find('[', close);
    }
    result += text.substr(copied);
    return result;
}

} // namespace morquill::taskdsl
