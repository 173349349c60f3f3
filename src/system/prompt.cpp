#include "system/prompt.h"

#include "console/console.h"
#include "console/messages.h"
#include "support/descriptor.h"
#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <unistd.h>

namespace morquill::system {

std::optional<std::string> readInputLine() {
    console::flushOut();
    std::string line;
    // A file may be read ahead, as its position can be set back;
    // from a pipe or a terminal, only the line itself may be taken.
    const bool seekable = ::lseek(STDIN_FILENO, 0, SEEK_CUR) >= 0;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = readSome(STDIN_FILENO, buffer.data(), seekable ? buffer.size() : 1);
        const std::size_t count = got > 0 ? static_cast<std::size_t>(got) : 0;
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

std::vector<std::size_t> promptIndexSelection(std::string_view title, std::size_t count) {
    if (!title.empty()) {
        console::printLine(title);
    }
    console::writeOut("Input index (e.g. 1 2 3 or 1,2,3): ");
    std::vector<std::size_t> indices;
    const std::string answer = replaceAll(readInputLine().value_or(""), ",", " ");
    for (const std::string_view piece : splitBlank(answer)) {
        if (const auto index = readMenuIndex(piece, count, MenuSign::plus)) {
            indices.push_back(*index);
        }
    }
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    return indices;
}

} // namespace morquill::system
