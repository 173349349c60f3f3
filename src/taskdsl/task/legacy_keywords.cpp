#include "taskdsl/task/legacy_keywords.h"

#include "support/text.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/scan.h"

#include <optional>

namespace morquill::taskdsl {

namespace {

bool isKeyChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.' || c == ':' || c == '-';
}

std::size_t skipSpace(std::string_view text, std::size_t at) noexcept {
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return at;
}

/// Reads `\s*=\s*("[^"]*"|'[^']*'|[^\s]+)` from `at`: the value's text with its quotes, and `at` behind it.
std::optional<std::string_view> readAssignedValue(std::string_view text, std::size_t& at) noexcept {
    const std::size_t equals = skipSpace(text, at);
    if (equals == text.size() || text[equals] != '=') {
        return std::nullopt;
    }
    const std::size_t begin = skipSpace(text, equals + 1);
    if (begin == text.size()) {
        return std::nullopt;
    }
    std::size_t end = begin;
    if (text[begin] == '"' || text[begin] == '\'') {
        if (const auto close = text.find(text[begin], begin + 1); close != std::string_view::npos) {
            end = close + 1;
        }
    }
    if (end == begin) {
        while (end < text.size() && !isSpace(text[end])) {
            ++end;
        }
    }
    at = end;
    return text.substr(begin, end - begin);
}

} // namespace

std::string legacyTemplateName(std::string_view keywords) {
    constexpr std::string_view key = "job";
    // Pattern: (^|[\s\r\n\t])job\s*=\s*(value), in any letter case.
    for (std::size_t i = 0; i + key.size() <= keywords.size(); ++i) {
        if ((i == 0 || isSpace(keywords[i - 1])) && equalsNoCase(keywords.substr(i, key.size()), key)) {
            std::size_t at = i + key.size();
            if (const auto value = readAssignedValue(keywords, at)) {
                return std::string(taskdsl::unquote(*value));
            }
        }
    }
    return {};
}

bool isLegacyPairList(std::string_view keywords, bool withJob, bool withOthers) {
    std::size_t i = skipSpace(keywords, 0);
    while (i < keywords.size()) {
        const std::size_t begin = i;
        while (i < keywords.size() && isKeyChar(keywords[i])) {
            ++i;
        }
        const auto key = keywords.substr(begin, i - begin);
        if (key.empty() || !readAssignedValue(keywords, i)) {
            return false;
        }
        bool& allowed = equalsNoCase(key, "job") ? withJob : withOthers;
        if (!allowed || (i < keywords.size() && !isSpace(keywords[i]))) {
            return false;
        }
        if (&allowed == &withJob) {
            withJob = false;
        }
        i = skipSpace(keywords, i);
    }
    return true;
}

std::string legacyParamValues(std::string_view keywords) {
    std::string result;
    std::size_t i = 0;
    // Pattern: ([A-Za-z0-9_.:-]+)\s*=\s*(value). A run of key characters without a value behind it has no
    // match that begins inside it, so every run is looked at once.
    while (i < keywords.size()) {
        if (!isKeyChar(keywords[i])) {
            ++i;
            continue;
        }
        const std::size_t begin = i;
        while (i < keywords.size() && isKeyChar(keywords[i])) {
            ++i;
        }
        const auto key = keywords.substr(begin, i - begin);
        const auto value = readAssignedValue(keywords, i);
        if (!value || equalsNoCase(key, "job")) {
            continue;
        }
        if (!result.empty()) {
            result += ' ';
        }
        result += key;
        result += '=';
        appendCanonicalScalar(result, taskdsl::unquote(*value));
    }
    return result;
}

} // namespace morquill::taskdsl
