#pragma once

#include "taskdsl/task_parser.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// A parsed text and the warnings that it gave.
struct ParsedText {
    TaskDocument document;
    std::vector<std::string> warnings;
};

inline ParsedText parse(std::string_view text, bool legacyMultiSource = false,
                        const std::string& path = "t.mq", const ValueMap& defines = {}) {
    ParsedText result;
    TaskParser parser(legacyMultiSource,
                      [&result](const std::string& warning) { result.warnings.push_back(warning); });
    result.document = parser.parseText(text, path, defines);
    return result;
}

/// The message of the fault that ends the parse; "no fault" when there is none.
inline std::string faultOf(std::string_view text, bool legacyMultiSource = false) {
    try {
        (void)parse(text, legacyMultiSource);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no fault";
}

/// The first task of a text that is expected to give no warning.
inline TaskInfo firstTask(std::string_view text) {
    const ParsedText parsed = parse(text);
    if (!parsed.warnings.empty() || parsed.document.templateTasks.empty()) {
        throw std::logic_error("expected a task and no warning");
    }
    return parsed.document.templateTasks.front();
}

} // namespace morquill::taskdsl
