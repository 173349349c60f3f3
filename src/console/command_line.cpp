#include "console/command_line.h"

namespace morquill::console {

Words wordsFrom(int argc, const char* const* argv, int first) noexcept {
    return argc > first ? Words(argv + first, argv + argc) : Words();
}

UsageError plainRefusal(const std::string& message) {
    return UsageError(ErrorTag::plain, message);
}

UsageError colouredRefusal(const std::string& message) {
    return UsageError(ErrorTag::coloured, message);
}

UsageError bareRefusal(const std::string& message) {
    return UsageError(ErrorTag::none, message);
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
    return colouredRefusal("unknown argument: " + std::string(word));
}

std::size_t takeOnePath(std::optional<std::string>& path, Words words, ErrorTag tag,
                        std::string_view refusal) {
    const std::string_view word = words.front();
    if (path) {
        throw UsageError(tag, std::string(refusal).append(word));
    }
    path = word;
    return 1;
}

std::size_t takeOnlyPath(std::optional<std::string>& path, Words words, std::string_view command) {
    const std::string_view word = words.front();
    if (word.starts_with('-')) {
        throw bareRefusal("unknown " + std::string(command) + " option: " + std::string(word));
    }
    return takeOnePath(path, words, ErrorTag::none, "unexpected extra argument: ");
}

std::string ambiguousPrefix(std::string_view what, std::string_view word,
                            const std::vector<std::string>& names) {
    return "ambiguous " + std::string(what) + " prefix: " + std::string(word) +
           " (matches: " + join(names, ", ") + ")";
}

} // namespace morquill::console
