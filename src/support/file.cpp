#include "support/file.h"

#include "support/descriptor.h"

#include <filesystem>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill {

namespace fs = std::filesystem;

namespace {

/// True for a size that exceeds the machine's memory: a file with holes can claim any size. Checked before
/// memory is requested, because the system may grant it and find out only on use that there is too little.
bool exceedsMemory(off_t size) noexcept {
    const auto pages = ::sysconf(_SC_PHYS_PAGES);
    const auto pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 && size / pageSize >= pages;
}

/// What a path leads to; `none` for what this user may not look at. A path that the system fails to look up
/// must not pass for a free one: that throws `std::system_error`.
fs::file_type kindAt(const std::string& path) {
    std::error_code error;
    const auto type = fs::status(path, error).type();
    const bool isAnswer = !error || type == fs::file_type::not_found ||
                          error == std::errc::permission_denied ||
                          error == std::errc::too_many_symbolic_link_levels ||
                          error == std::errc::filename_too_long || error == std::errc::invalid_argument;
    if (!isAnswer) {
        throw std::system_error(error, "could not look up " + path);
    }
    return type;
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
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool isDirectory(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool lookUpRegularFile(const std::string& path) {
    return kindAt(path) == fs::file_type::regular;
}

bool lookUpDirectory(const std::string& path) {
    return kindAt(path) == fs::file_type::directory;
}

} // namespace morquill
