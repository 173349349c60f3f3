#include "frontend/console.h"

#include <cstdlib>

#include <unistd.h>

namespace morquill::frontend {

namespace {

// The decision and whether it was taken; written once, by the session guard of `main`.
bool colorDecided = false;
bool colorAllowed = true;

} // namespace

std::string_view colorSequence(ConsoleColor color) noexcept {
    switch (color) {
    case ConsoleColor::red:
        return "\033[31m";
    case ConsoleColor::yellow:
        return "\033[33m";
    case ConsoleColor::green:
        return "\033[32m";
    case ConsoleColor::white:
        return "\033[37m";
    case ConsoleColor::blue:
        return "\033[34m";
    case ConsoleColor::cyan:
        return "\033[36m";
    case ConsoleColor::magenta:
        return "\033[35m";
    }
    return {};
}

bool decideColor(int argc, const char* const* argv) {
    colorAllowed = std::getenv("NO_COLOR") == nullptr && !isFlagPresent(argc, argv, "--no-color");
    colorDecided = true;
    return colorAllowed;
}

void forgetColorDecision() noexcept {
    colorDecided = false;
    colorAllowed = true;
}

bool colorEnabled(bool toError) {
    if (colorDecided ? !colorAllowed : std::getenv("NO_COLOR") != nullptr) {
        return false;
    }
    const char* term = std::getenv("TERM");
    if (term != nullptr && std::string_view(term) == "dumb") {
        return false;
    }
    return ::isatty(toError ? STDERR_FILENO : STDOUT_FILENO) == 1;
}

std::string styled(std::string_view text, ConsoleColor color, bool bold, bool toError) {
    if (!colorEnabled(toError)) {
        return std::string(text);
    }
    std::string result;
    if (bold) {
        result += boldSequence;
    }
    result += colorSequence(color);
    result += text;
    result += resetSequence;
    return result;
}

std::string cyanHeading(std::string_view text) {
    return styled(text, ConsoleColor::cyan, true, false);
}

std::string greenText(std::string_view text) {
    return styled(text, ConsoleColor::green, false, false);
}

std::string yellowHeading(std::string_view text) {
    return styled(text, ConsoleColor::yellow, true, false);
}

std::string errorTag(std::string_view toolName) {
    const std::string name(toolName.empty() ? "mqkit" : toolName);
    return styled("[" + name + "][ERROR]", ConsoleColor::red, true, true);
}

bool isHelpToken(std::string_view token) noexcept {
    return token == "-h" || token == "help" || token == "--help";
}

bool isFlagPresent(int argc, const char* const* argv, std::string_view flag) noexcept {
    for (int i = 1; i < argc; ++i) {
        if (flag == argv[i]) {
            return true;
        }
    }
    return false;
}

std::string toolBaseName(std::string_view path) {
    while (!path.empty() && (path.back() == '/' || path.back() == '\\')) {
        path.remove_suffix(1);
    }
    if (const auto slash = path.find_last_of("/\\"); slash != std::string_view::npos) {
        path.remove_prefix(slash + 1);
    }
    return path.empty() ? "program" : std::string(path);
}

} // namespace morquill::frontend
