#include "taskdsl/task/legacy_keywords.h"

#include "support/cursor.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

namespace {

/// `[A-Za-z0-9_.:-]`
bool isLegacyKeyChar(char c) noexcept {
    return isKeyChar(c) || c == ':';
}

} // namespace

std::string legacyTemplateName(std::string_view keywords) {
    constexpr std::string_view key = "job";
    // Pattern: (^|[\s\r\n\t])job\s*=\s*(value), in any letter case.
    for (std::size_t i = 0; i + key.size() <= keywords.size(); ++i) {
        if ((i == 0 || isSpace(keywords[i - 1])) && equalsNoCase(keywords.substr(i, key.size()), key)) {
            Cursor after(keywords, i + key.size());
            if (const auto value = takeAssignedValue(after)) {
                return std::string(unquote(*value));
            }
        }
    }
    return {};
}

bool isLegacyPairList(const TaskInfo& task) {
    bool takesJob = task.templateName.empty();
    const bool takesOthers = task.paramValues.empty();
    Cursor cursor(task.keywords);
    while (!cursor.skipSpace().atEnd()) {
        const auto key = cursor.takeWhile(isLegacyKeyChar);
        if (key.empty() || !takeAssignedValue(cursor)) {
            return false;
        }
        const bool isJob = equalsNoCase(key, "job");
        const bool isTaken = isJob ? takesJob : takesOthers;
        if (!isTaken || !(cursor.atEnd() || isSpace(cursor.rest().front()))) {
            return false;
        }
        takesJob = takesJob && !isJob;
    }
    return true;
}

std::string legacyParamValues(std::string_view keywords) {
    std::string result;
    Cursor cursor(keywords);
    // Pattern: ([A-Za-z0-9_.:-]+)\s*=\s*(value). A run of key characters without a value after it has no
    // match that begins inside it, so every run is looked at once.
    for (;;) {
        (void)cursor.takeWhile([](char c) { return !isLegacyKeyChar(c); });
        if (cursor.atEnd()) {
            return result;
        }
        const auto key = cursor.takeWhile(isLegacyKeyChar);
        const auto value = takeAssignedValue(cursor);
        if (!value || equalsNoCase(key, "job")) {
            continue;
        }
        if (!result.empty()) {
            result += ' ';
        }
        result += key;
        result += '=';
        appendCanonicalScalar(result, unquote(*value));
    }
}

} // namespace morquill::taskdsl
