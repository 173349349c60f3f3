#include "taskdsl/base/shell_words.h"

#include "support/text.h"
#include "taskdsl/base/quote_rules.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

bool isBareWord(std::string_view text) noexcept {
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) {
        return isSpace(c) || c == '"' || c == '#' || c == '\'' || c == '\\';
    });
}

} // namespace

std::vector<std::string> splitShellWords(std::string_view text) {
    std::vector<std::string> words;
    std::optional<std::string> word; // the one that is being read
    QuoteWalk walk(quote_rules::shellWords);
    for (std::size_t at = 0; at < text.size();) {
        const bool quoted = walk.inQuotes();
        const std::size_t next = walk.step(text, at);
        const bool isMark = walk.inQuotes() != quoted;
        const bool divides = !quoted && next == at + 1 && isSpace(text[at]);
        if (divides && word) {
            words.push_back(std::move(*word));
            word.reset();
        } else if (!divides) {
            if (!word) {
                word.emplace();
            }
            word->append(isMark ? 0 : 1, text[next - 1]); // a protected byte comes without its backslash
        }
        at = next;
    }
    if (word) {
        words.push_back(std::move(*word));
    }
    return words;
}

std::string quoteShellWord(std::string_view text) {
    return isBareWord(text) ? std::string(text) : quoteForcedShellWord(text);
}

std::string quoteForcedShellWord(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + '"';
}

} // namespace morquill::taskdsl
