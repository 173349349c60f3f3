#include "system/filter.h"

#include "support/descriptor.h"
#include "support/fault.h"

#include <cerrno>
#include <optional>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace morquill::system {

namespace {

/// A file in memory without a name on the disk.
Descriptor memoryFile(const char* label) {
    return Descriptor(::memfd_create(label, MFD_CLOEXEC));
}

/// The whole file from its first byte on; nothing, with `errno`, when it cannot be read.
std::optional<std::string> readBack(int file) {
    if (::lseek(file, 0, SEEK_SET) < 0) {
        return std::nullopt;
    }
    return readToEnd(file);
}

FilterResult failure(const std::string& what) {
    return {{.error = what + ": " + systemErrorText(errno)}, {}};
}

} // namespace

FilterResult runFilter(const std::vector<std::string>& argv, std::string_view input) {
    const Descriptor given = memoryFile("input");
    const Descriptor taken = memoryFile("output");
    if (!given.isOpen() || !taken.isOpen() || !writeAll(given.get(), input) ||
        ::lseek(given.get(), 0, SEEK_SET) < 0) {
        return failure("failed to hold the input of a child process");
    }
    FilterResult result{spawnProgram(argv, "", {given.get(), taken.get()}), {}};
    if (result.process.launched) {
        auto output = readBack(taken.get());
        if (!output) {
            return failure("failed to read the output of a child process");
        }
        result.output = std::move(*output);
    }
    return result;
}

} // namespace morquill::system
