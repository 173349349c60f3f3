#include "taskdsl/generate/removed_include.h"

#include "taskdsl/base/scan.h"

#include <filesystem>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view hashIncludeKeyword = "#INCLUDE";

} // namespace

void warnHashInclude(std::string_view trimmed, std::string_view path, const WarningSink& warn) {
    const std::string target(unquote(stripComment(trimmed.substr(hashIncludeKeyword.size()))));
    const std::string file = std::filesystem::path(path).filename().string();
    std::string message = "context '" + (file.empty() ? "<memory>" : file) +
                          "' uses the removed '#INCLUDE' syntax; replace it with '&INCLUDE'";
    if (!target.empty()) {
        message += " (original path: " + target + ")";
    }
    // The message ends in an ideographic full stop (U+3002).
    warn(message + "\xE3\x80\x82");
}

} // namespace morquill::taskdsl
