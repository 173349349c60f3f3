#include "taskdsl/generate/runtime_values.h"

#include "support/text.h"

namespace morquill::taskdsl {

namespace {

std::size_t skipSpace(std::string_view text, std::size_t i) noexcept {
    while (i < text.size() && isSpace(text[i])) {
        ++i;
    }
    return i;
}

/// The text of a value that begins at `i`: a quoted text with its quotes, or everything up to white space.
std::string_view valueAt(std::string_view text, std::size_t i) noexcept {
    if (i < text.size() && (text[i] == '"' || text[i] == '\'')) {
        if (const auto close = text.find(text[i], i + 1); close != std::string_view::npos) {
            return text.substr(i, close + 1 - i);
        }
    }
    std::size_t end = i;
    while (end < text.size() && !isSpace(text[end])) {
        ++end;
    }
    return text.substr(i, end - i);
}

} // namespace

ValueMap runtimePlaceholders(std::string_view rootName, std::string_view taskName,
                             std::string_view originName, std::string_view sourceName) {
    ValueMap values;
    values.emplace("rootname", rootName);
    values.emplace("taskname", taskName);
    values.emplace("inputname", std::string(rootName) + "_" + std::string(taskName));
    values.emplace("sourcename", sourceName);
    if (!originName.empty()) {
        values.emplace("originname", originName);
    }
    return values;
}

void applyRuntimePlaceholders(TaskInfo& task, const ValueMap& values) {
    for (auto* text :
         {&task.keywords, &task.args, &task.extraKeywords, &task.paramValues, &task.runner, &task.body}) {
        substituteInto(*text, values);
    }
}

std::string findKeywordValue(std::string_view text, std::string_view key) {
    // (^|[\s\r\n\t])<key>\s*=\s*("[^"]*"|'[^']*'|[^\s]+)
    for (auto at = text.find(key); at != std::string_view::npos; at = text.find(key, at + 1)) {
        if (at > 0 && !isSpace(text[at - 1])) {
            continue;
        }
        const auto equals = skipSpace(text, at + key.size());
        if (equals >= text.size() || text[equals] != '=') {
            continue;
        }
        const auto value = valueAt(text, skipSpace(text, equals + 1));
        if (value.empty()) {
            continue;
        }
        const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                            value.back() == value.front();
        return std::string(quoted ? value.substr(1, value.size() - 2) : value);
    }
    return {};
}

} // namespace morquill::taskdsl
