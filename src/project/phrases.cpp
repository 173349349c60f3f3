#include "project/phrases.h"

#include "console/messages.h"

namespace morquill::project {

void printExecution(std::string_view command, bool dryRun) {
    console::printMessage(console::stepKind(dryRun), (dryRun ? "" : "execute ") + std::string(command));
}

std::string inParentheses(const std::string& reason) {
    return reason.empty() ? "" : " (" + reason + ")";
}

} // namespace morquill::project
