#include "console/command_line.h"

namespace morquill::console {

Words wordsFrom(int argc, const char* const* argv, int first) noexcept {
    return argc > first ? Words(argv + first, argv + argc) : Words();
}

int reportUsageError(const UsageError& error) {
    if (!error.message().empty()) {
        reportError(error.tag(), error.message());
    }
    return 1;
}

std::optional<std::size_t> noValue(Words /*following*/) noexcept {
    return 0;
}

std::optional<std::size_t> oneValue(Words following) noexcept {
    return following.empty() ? std::nullopt : std::optional<std::size_t>(1);
}

std::optional<std::size_t> restOfLine(Words following) noexcept {
    return following.size();
}

UsageError unknownArgument(std::string_view word) {
    return UsageError(ErrorTag::coloured, "unknown argument: " + std::string(word));
}

} // namespace morquill::console
