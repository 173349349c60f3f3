#include "system/prompt.h"

#include "console/console.h"
#include "console/messages.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>

#include <unistd.h>

namespace morquill::system {

namespace {

/// `read` on standard input that goes on after a signal; 0 at the end of input and after an error.
std::size_t readInput(char* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(STDIN_FILENO, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

} // namespace

std::optional<std::string> readInputLine() {
    console::flushOut();
    std::string line;
    // A file may be read ahead, as the place can be set back; of a pipe or a terminal only what belongs to
    // the line may be taken.
    const bool seekable = ::lseek(STDIN_FILENO, 0, SEEK_CUR) >= 0;
    std::array<char, 4096> buffer{};
    for (;;) {
        const std::size_t count = readInput(buffer.data(), seekable ? buffer.size() : 1);
        if (count == 0) {
            return line.empty() ? std::nullopt : std::optional(std::move(line));
        }
        if (const void* end = std::memchr(buffer.data(), '\n', count); end != nullptr) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(end) - buffer.data());
            line.append(buffer.data(), length);
            if (count > length + 1) {
                ::lseek(STDIN_FILENO, -static_cast<off_t>(count - length - 1), SEEK_CUR);
            }
            return line;
        }
        line.append(buffer.data(), count);
    }
}

bool askYesNo() {
    const std::optional<std::string> line = readInputLine();
    if (!line) {
        return false;
    }
    const std::string answer = toLower(trim(*line));
    return answer == "y" || answer == "yes";
}

std::optional<int> readIndex(std::string_view piece) noexcept {
    if (piece.starts_with('+')) {
        piece.remove_prefix(1);
    }
    int value = 0;
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
    if (error != std::errc{} || end != piece.data() + piece.size()) {
        return std::nullopt;
    }
    return value;
}

std::vector<std::size_t> promptIndexSelection(std::string_view title, std::size_t count) {
    if (!title.empty()) {
        console::printLine(title);
    }
    console::writeOut("Input index (e.g. 1 2 3 or 1,2,3): ");
    std::vector<std::size_t> indices;
    const std::string answer = replaceAll(readInputLine().value_or(""), ",", " ");
    for (const std::string_view piece : splitBlank(answer)) {
        const std::optional<int> number = readIndex(piece);
        if (number && *number >= 1 && static_cast<std::size_t>(*number) <= count) {
            indices.push_back(static_cast<std::size_t>(*number) - 1);
        }
    }
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    return indices;
}

} // namespace morquill::system
