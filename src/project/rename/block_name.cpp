#include "project/rename/block_name.h"

#include "support/text.h"

#include <algorithm>
#include <climits>
#include <string_view>

namespace morquill::project {

namespace {

/// Bytes that no name may hold, and how they are called.
struct ForbiddenBytes {
    std::string_view bytes;
    const char* what;
};
constexpr ForbiddenBytes forbiddenBytes[] = {
    {"/", "'/'"},
    {"#", "'#'"},
    {"\"'", "a quote"},
    {",", "','"},
};

} // namespace

std::optional<std::string> blockNameFault(const std::string& name) {
    if (name.empty()) {
        return "a block name cannot be empty";
    }
    if (std::any_of(name.begin(), name.end(), isControl)) {
        // without the name, which would not fit on one line
        return "a block name cannot hold a line break or another control character";
    }
    const std::string shown = ": $" + name;
    for (const auto& row : forbiddenBytes) {
        if (name.find_first_of(row.bytes) != std::string::npos) {
            return "a block name cannot hold " + std::string(row.what) + shown;
        }
    }
    if (name.front() == ' ' || name.back() == ' ') {
        return "a block name cannot begin or end with a blank" + shown;
    }
    if (name == "." || name == "..") {
        return "a block name cannot be '.' or '..'";
    }
    if (name.size() > NAME_MAX) {
        return "a block name cannot be longer than " + std::to_string(NAME_MAX) + " bytes" + shown;
    }
    return std::nullopt;
}

} // namespace morquill::project
