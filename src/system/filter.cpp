#include "system/filter.h"

#include "support/descriptor.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace morquill::system {

namespace {

/// A file in memory without a name on the disk.
Descriptor memoryFile(const char* label) {
    return Descriptor(::memfd_create(label, MFD_CLOEXEC));
}

/// The whole file from its first byte on; false, with `errno`, when it cannot be read.
bool readBack(int file, std::string& text) {
    std::array<char, 65536> buffer{};
    if (::lseek(file, 0, SEEK_SET) < 0) {
        return false;
    }
    for (;;) {
        const ssize_t count = ::read(file, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return count == 0;
        }
    }
}

FilterResult failure(const std::string& what) {
    return {{.error = what + ": " + std::strerror(errno)}, {}};
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
    if (result.process.launched && !readBack(taken.get(), result.output)) {
        return failure("failed to read the output of a child process");
    }
    return result;
}

} // namespace morquill::system
