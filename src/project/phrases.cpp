#include "project/phrases.h"

namespace morquill::project {

void printExecution(std::string_view command, console::RunMode mode) {
    console::printMessage(console::stepKind(mode),
                          (mode == console::RunMode::dryRun ? "" : "execute ") + std::string(command));
}

std::string missingBlock(const std::string& label) {
    return label + " : block directory is missing";
}

std::string noCases(const std::string& root) {
    return "no case subdirectories were found in project: " + root;
}

std::string inParentheses(const std::string& reason) {
    return reason.empty() ? "" : " (" + reason + ")";
}

} // namespace morquill::project
