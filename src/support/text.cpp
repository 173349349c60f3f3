#include "support/text.h"

#include <algorithm>

namespace morquill {

namespace {

/// Calls `take` with each field; there is one more than separators.
template <class Take>
void forEachField(std::string_view text, char separator, const Take& take) {
    for (std::size_t begin = 0;;) {
        const auto end = text.find(separator, begin);
        take(text.substr(begin, end - begin));
        if (end == std::string_view::npos) {
            return;
        }
        begin = end + 1;
    }
}

} // namespace

std::string toLower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowerChar);
    return result;
}

bool equalsNoCase(std::string_view left, std::string_view right) noexcept {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char a, char b) { return lowerChar(a) == lowerChar(b); });
}

bool containsNoCase(std::string_view text, std::string_view lowered) noexcept {
    return std::search(text.begin(), text.end(), lowered.begin(), lowered.end(),
                       [](char a, char b) { return lowerChar(a) == b; }) != text.end();
}

std::vector<std::string> splitOn(std::string_view text, char separator) {
    std::vector<std::string> fields;
    forEachField(text, separator, [&fields](std::string_view field) { fields.emplace_back(field); });
    return fields;
}

std::vector<std::string_view> splitBlank(std::string_view text) {
    std::vector<std::string_view> fields;
    std::size_t i = 0;
    while (i < text.size()) {
        if (isSpace(text[i])) {
            ++i;
            continue;
        }
        const std::size_t begin = i;
        while (i < text.size() && !isSpace(text[i])) {
            ++i;
        }
        fields.push_back(text.substr(begin, i - begin));
    }
    return fields;
}

std::vector<std::string> splitTrimmed(std::string_view text, char separator) {
    std::vector<std::string> fields;
    forEachField(text, separator, [&fields](std::string_view field) {
        if (const auto trimmed = trim(field); !trimmed.empty()) {
            fields.emplace_back(trimmed);
        }
    });
    return fields;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
    std::string result;
    for (const auto& part : parts) {
        if (&part != &parts.front()) {
            result += separator;
        }
        result += part;
    }
    return result;
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) {
        return std::string(text);
    }
    std::string result;
    std::size_t begin = 0;
    for (;;) {
        const auto hit = text.find(from, begin);
        result += text.substr(begin, hit - begin);
        if (hit == std::string_view::npos) {
            return result;
        }
        result += to;
        begin = hit + from.size();
    }
}

std::string singleQuoted(std::string_view text) {
    std::string result = "'";
    result.append(text).append("'");
    return result;
}

std::string oneLine(std::string_view text) {
    return replaceAll(replaceAll(text, "\n", "\\n"), "\r", "\\r");
}

std::string shellQuote(std::string_view text) {
    return "'" + replaceAll(text, "'", R"('\'')") + "'";
}

std::size_t countLines(std::string_view text) noexcept {
    std::size_t count = 0; // line by line: `find` looks at many bytes at a time
    forEachLine(text, [&count](std::string_view /*line*/) { ++count; });
    return count;
}

std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    lines.reserve(countLines(text));
    forEachLine(text, [&lines](std::string_view line) { lines.push_back(line); });
    return lines;
}

} // namespace morquill
