#include "support/file.h"

#include "support/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill {

namespace fs = std::filesystem;

namespace {

/// True for a size that no text can have because the machine's memory does not hold it: files with holes can
/// claim any size. Asked before the memory is, as that may be granted and missed only when it is used.
bool exceedsMemory(off_t size) noexcept {
    const auto pages = ::sysconf(_SC_PHYS_PAGES);
    const auto pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 && size / pageSize >= pages;
}

/// A descriptor, or -1; a path with a NUL byte names no file.
int openForReading(const std::string& path, int flags) {
    if (path.find('\0') != std::string::npos) {
        return -1;
    }
    for (;;) {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | flags);
        if (fd >= 0 || errno != EINTR) {
            return fd;
        }
    }
}

/// What is left to read; `expectedSize`, in bytes, is a guess that saves growing.
std::optional<std::string> readToEnd(int fd, off_t expectedSize) {
    constexpr std::size_t smallest = 4096;
    std::string content;
    // One byte more than the size, so that the end of file is seen without a second growth.
    content.resize(std::max(static_cast<std::size_t>(expectedSize) + 1, expectedSize > 0 ? 0 : smallest));
    std::size_t used = 0;
    for (;;) {
        if (used == content.size()) {
            content.resize(content.size() * 2);
        }
        const auto got = ::read(fd, content.data() + used, content.size() - used);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        used += static_cast<std::size_t>(got);
    }
    content.resize(used);
    return content;
}

} // namespace

std::optional<std::string> readTextFile(const std::string& path) try {
    // O_NONBLOCK: opening a FIFO must not wait for a writer; it has no effect on regular files.
    const Descriptor file(openForReading(path, O_NONBLOCK));
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode) ||
        exceedsMemory(info.st_size)) {
        return std::nullopt;
    }
    return readToEnd(file.get(), info.st_size);
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
    // A FIFO has to wait for its writer, or it would seem empty. A device is not waited for before it is
    // known to be a terminal; O_NOCTTY: reading one does not make it ours.
    const bool isFifo = S_ISFIFO(info.st_mode);
    const Descriptor file(openForReading(path, isFifo ? 0 : O_NONBLOCK | O_NOCTTY));
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0) {
        return std::nullopt;
    }
    if (!isFifo && (::isatty(file.get()) != 1 || ::fcntl(file.get(), F_SETFL, O_RDONLY) != 0)) {
        return std::nullopt;
    }
    return readToEnd(file.get(), 0);
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

bool isRegularFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool isDirectory(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

std::vector<std::string> listDirectoryEntries(const std::string& path) {
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator entry(path, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string normalisedPath(const std::string& path) {
    std::error_code error;
    // Absolute first: the weakly canonical form of a relative path that does not exist stays relative, and
    // would differ from another spelling of the same place.
    const auto absolute = fs::absolute(path, error);
    const auto canonical = error ? absolute : fs::weakly_canonical(absolute, error);
    return error ? fs::path(path).lexically_normal().string() : canonical.string();
}

} // namespace morquill
