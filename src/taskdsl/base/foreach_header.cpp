#include "taskdsl/base/foreach_header.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

namespace {

std::string_view skipSpace(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view dropSpaceBehind(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool isNameChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.' || c == '-';
}

} // namespace

// ^@foreach(\?)?\s+([A-Za-z_][A-Za-z0-9_.-]*)\s+in\s+(.+?)\s*$, else the same without " in <source>"
std::optional<ForeachHeader> parseForeachHeader(std::string_view text) noexcept {
    constexpr std::string_view keyword = "@foreach";
    if (!text.starts_with(keyword)) {
        return std::nullopt;
    }
    ForeachHeader header;
    text.remove_prefix(keyword.size());
    if (text.starts_with('?')) {
        header.isOptional = true;
        text.remove_prefix(1);
    }
    const auto rest = skipSpace(text);
    if (rest.size() == text.size() || rest.empty() || !(isLetter(rest.front()) || rest.front() == '_')) {
        return std::nullopt;
    }
    std::size_t end = 1;
    while (end < rest.size() && isNameChar(rest[end])) {
        ++end;
    }
    header.name = rest.substr(0, end);
    const auto behind = dropSpaceBehind(rest.substr(end));
    if (behind.empty()) {
        return header;
    }
    const auto word = skipSpace(behind);
    if (word.size() == behind.size() || !matchWord(word, "in")) {
        return std::nullopt;
    }
    const auto source = skipSpace(word.substr(2));
    if (source.empty()) {
        return std::nullopt;
    }
    header.source = source;
    return header;
}

} // namespace morquill::taskdsl
