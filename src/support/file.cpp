#include "support/file.h"

#include "support/descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill {

namespace {

/// True for a size that exceeds the machine's memory: a file with holes can claim any size. Checked before
/// memory is requested, because the system may grant it and find out only on use that there is too little.
bool exceedsMemory(off_t size) noexcept {
    const auto pages = ::sysconf(_SC_PHYS_PAGES);
    const auto pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 && size / pageSize >= pages;
}

/// The mode of what a path leads to; nothing where there is none, or where this user may not look. A path
/// that the system fails to look up must not pass for a free one: that throws `std::system_error`.
std::optional<mode_t> modeAt(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) {
        return info.st_mode;
    }
    constexpr std::array answers{ENOENT, ENOTDIR, EACCES, ELOOP, ENAMETOOLONG, EINVAL};
    const int error = errno;
    if (std::find(answers.begin(), answers.end(), error) == answers.end()) {
        throw std::system_error(error, std::system_category(), "could not look up " + path);
    }
    return std::nullopt;
}

/// Bytes below which nobody asks how much memory there is.
constexpr off_t largeFile = off_t{1} << 26;

} // namespace

std::optional<std::string> readTextFile(const std::string& path) try {
    // O_NONBLOCK: opening a FIFO must not wait for a writer; it has no effect on regular files.
    const Descriptor file = openFile(path, O_RDONLY | O_NONBLOCK);
    struct stat info {};
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode) ||
        (info.st_size > largeFile && exceedsMemory(info.st_size))) {
        return std::nullopt;
    }
    return readToEnd(file.get(), static_cast<std::size_t>(info.st_size));
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

std::optional<std::string> readInputFile(const std::string& path) try {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0 || S_ISREG(info.st_mode)) {
        return readTextFile(path);
    }
    if (!S_ISFIFO(info.st_mode) && !S_ISCHR(info.st_mode)) {
        return std::nullopt;
    }
    // A FIFO has to wait for its writer, or it would seem empty. A device is opened without waiting, as it
    // may not be a terminal. O_NOCTTY: reading a terminal must not make it our controlling one.
    const bool isFifo = S_ISFIFO(info.st_mode);
    const Descriptor file = openFile(path, isFifo ? O_RDONLY : O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0) {
        return std::nullopt;
    }
    if (!isFifo && (::isatty(file.get()) != 1 || ::fcntl(file.get(), F_SETFL, O_RDONLY) != 0)) {
        return std::nullopt;
    }
    return readToEnd(file.get());
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

bool isRegularFile(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool lookUpRegularFile(const std::string& path) {
    const auto mode = modeAt(path);
    return mode && S_ISREG(*mode);
}

bool lookUpDirectory(const std::string& path) {
    const auto mode = modeAt(path);
    return mode && S_ISDIR(*mode);
}

} // namespace morquill
