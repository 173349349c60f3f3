#include "console/command_line.h"

#include "console/console.h"

namespace morquill::console {

Words wordsFrom(int argc, const char* const* argv, int first) noexcept {
    return argc > first ? Words(argv + first, argv + argc) : Words();
}

void reportError(ErrorTag tag, std::string_view message) {
    std::string line;
    switch (tag) {
    case ErrorTag::none:
        break;
    case ErrorTag::plain:
        line = "[mqkit][ERROR] ";
        break;
    case ErrorTag::coloured:
        line = errorTag() + " ";
        break;
    }
    line += message;
    line += '\n';
    writeErr(line);
}

int reportUsageError(const UsageError& error) {
    if (!error.message().empty()) {
        reportError(error.tag(), error.message());
    }
    return 1;
}

std::optional<std::size_t> noValue(Words /*behind*/) noexcept {
    return 0;
}

std::optional<std::size_t> oneValue(Words behind) noexcept {
    return behind.empty() ? std::nullopt : std::optional<std::size_t>(1);
}

std::optional<std::size_t> restOfLine(Words behind) noexcept {
    return behind.size();
}

UsageError unknownArgument(std::string_view word) {
    return UsageError(ErrorTag::coloured, "unknown argument: " + std::string(word));
}

} // namespace morquill::console
