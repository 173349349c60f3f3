#include "project/phrases.h"

namespace morquill::project {

std::string_view executePrefix(bool dryRun) noexcept {
    return dryRun ? "[mqkit][DRY-RUN] " : "[mqkit] execute ";
}

std::string inParentheses(const std::string& reason) {
    return reason.empty() ? "" : " (" + reason + ")";
}

} // namespace morquill::project
