#include "system/new_file.h"

#include "support/descriptor.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace morquill::system {

namespace {

std::error_code systemError(int number) {
    return {number, std::system_category()};
}

/// Makes the file and has it filled by `fill`, which answers false with `errno`.
template <class Fill>
std::error_code makeFile(const std::string& path, Fill fill) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        return systemError(errno);
    }
    // Some file systems report a full disk or a used up quota only at the close.
    if (fill(file.get()) && file.close()) {
        return {};
    }
    const auto error = systemError(errno);
    ::unlink(path.c_str());
    return error;
}

bool copyBytes(int from, int to) {
    std::array<char, 1 << 16> buffer{};
    for (;;) {
        const ssize_t got = ::read(from, buffer.data(), buffer.size());
        if (got == 0) {
            return true;
        }
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0 || !writeAll(to, {buffer.data(), static_cast<std::size_t>(got)})) {
            return false;
        }
    }
}

} // namespace

std::error_code copyToNewFile(const std::string& source, const std::string& target) {
    // O_NONBLOCK: opening a FIFO must not wait for a writer.
    const Descriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!from.isOpen() || ::fstat(from.get(), &info) != 0) {
        return systemError(errno);
    }
    if (!S_ISREG(info.st_mode)) {
        return systemError(EINVAL);
    }
    return makeFile(target, [&](int to) {
        (void)::fchmod(to, info.st_mode & 07777); // not every file system has permissions
        return copyBytes(from.get(), to);
    });
}

std::error_code writeNewFile(const std::string& path, std::string_view text) {
    return makeFile(path, [&](int to) { return writeAll(to, text); });
}

} // namespace morquill::system
