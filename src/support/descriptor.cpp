#include "support/descriptor.h"

#include "support/fault.h"
#include "support/large_memory.h"

#include <cerrno>
#include <memory>
#include <new>

#include <fcntl.h>

namespace morquill {

namespace {

/// Called between the portions of a copy; true stops it.
using StopTest = std::function<bool()>;

bool stops(const StopTest& isStopped) {
    if (!isStopped || !isStopped()) {
        return false;
    }
    errno = ECANCELED;
    return true;
}

bool copyThroughMemory(int from, int to, const StopTest& isStopped) {
    constexpr std::size_t bufferSize = 1 << 18;
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[bufferSize]);
    if (!buffer) {
        errno = ENOMEM;
        return false;
    }
    while (!stops(isStopped)) {
        const ssize_t got = readSome(from, buffer.get(), bufferSize);
        if (got <= 0) {
            return got == 0;
        }
        if (!writeAll(to, {buffer.get(), static_cast<std::size_t>(got)})) {
            return false;
        }
    }
    return false;
}

} // namespace

Descriptor openFile(const std::string& path, int flags, mode_t mode) noexcept {
    if (path.find('\0') != std::string::npos) {
        errno = EINVAL;
        return Descriptor();
    }
    for (;;) {
        Descriptor file(::open(path.c_str(), flags | O_CLOEXEC, mode));
        if (file.isOpen() || errno != EINTR) {
            return file;
        }
    }
}

bool writeAll(int fd, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t put = ::write(fd, text.data(), text.size());
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            errno = put == 0 ? EIO : errno;
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

ssize_t readSome(int fd, char* buffer, std::size_t size) noexcept {
    for (;;) {
        const ssize_t got = ::read(fd, buffer, size);
        if (got >= 0 || errno != EINTR) {
            return got;
        }
    }
}

ssize_t readFull(int fd, char* buffer, std::size_t size) noexcept {
    std::size_t used = 0;
    while (used < size) {
        const ssize_t got = readSome(fd, buffer + used, size - used);
        if (got < 0) {
            return -1;
        }
        if (got == 0) {
            break;
        }
        used += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(used);
}

std::optional<std::string> readToEnd(int fd, std::size_t expectedSize) {
    constexpr std::size_t smallest = 4096;
    std::string content;
    // One byte more than the size, so that the end of the file is seen without a second allocation.
    const std::size_t size = expectedSize > 0 ? expectedSize + 1 : smallest;
    reserveLarge(content, size);
    content.resize(size);
    for (std::size_t used = 0;;) {
        const ssize_t got = readSome(fd, content.data() + used, content.size() - used);
        if (got < 0) {
            return std::nullopt;
        }
        used += static_cast<std::size_t>(got);
        // A file that ends where it was said to end is not asked again.
        if (got == 0 || (used == expectedSize && used < content.size())) {
            content.resize(used);
            return content;
        }
        if (used == content.size()) {
            content.resize(content.size() * 2);
        }
    }
}

bool copyToEnd(int from, int to, const std::function<bool()>& isStopped) {
    constexpr std::size_t portion = 1U << 26;
    while (!stops(isStopped)) {
        const ssize_t moved = ::copy_file_range(from, nullptr, to, nullptr, portion, 0);
        if (moved == 0) {
            // The end, or a file whose size the system does not report.
            return copyThroughMemory(from, to, isStopped);
        }
        if (moved < 0 && errno != EINTR) {
            return !isFaultOfTheDisk(errno) && copyThroughMemory(from, to, isStopped);
        }
    }
    return false;
}

} // namespace morquill
