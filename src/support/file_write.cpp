#include "support/descriptor.h"
#include "support/fault.h"
#include "support/file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace morquill {

namespace {

/// Blocks, while it lives, every signal that can be blocked, so that none ends or stops the program while a
/// file is half old and half new. Signals raised by a fault of the program itself are not blocked.
///
/// Unlike the `SignalGuard` of the workflows, which covers whole steps: children run in those, which must not
/// inherit blocked signals and have to receive the one that ends the program, and the user may stop the
/// program. Blocking holds the stop key as well and needs no handler, but suits the time of one write only.
class SignalHold {
  public:
    SignalHold() noexcept {
        sigset_t held;
        sigfillset(&held);
        for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS}) {
            sigdelset(&held, number);
        }
        ::sigprocmask(SIG_BLOCK, &held, &old_);
    }
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;
    ~SignalHold() {
        const int error = errno;
        ::sigprocmask(SIG_SETMASK, &old_, nullptr);
        errno = error;
    }

  private:
    sigset_t old_{};
};

/// Some file systems report a failed write only when a descriptor is closed. Closing a copy of the descriptor
/// reveals it, too, and leaves the file open for repair.
bool reachedTheServer(int fd) noexcept {
    const int copy = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    return copy < 0 || ::close(copy) == 0;
}

/// Asks the file system to reserve the room that the text needs; true also when it cannot reserve. The size
/// of the file stays, so the file is unchanged when there is no room.
bool reserveRoom(int fd, const struct stat& info, std::size_t size) noexcept {
    constexpr blkcnt_t blockUnit = 512; // of st_blocks, whatever the block size of the file system
    const auto needed = static_cast<off_t>(size);
    if (needed <= info.st_blocks * blockUnit || ::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, needed) == 0) {
        return true;
    }
    return !isFaultOfTheDisk(errno);
}

/// The first bytes of a file that was just opened, fewer when it is
/// shorter; nothing when they cannot be read or memory runs out.
std::optional<std::string> readStart(int fd, std::size_t size) {
    std::string start;
    try {
        start.resize(size);
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return std::nullopt;
    }
    const ssize_t got = readFull(fd, start.data(), size);
    if (got < 0) {
        return std::nullopt;
    }
    start.resize(static_cast<std::size_t>(got));
    return start;
}

/// Overwrites a file from its first byte on and cuts off the rest of a longer one. The cut is the last step:
/// after it the old bytes cannot be put back.
bool replaceContent(int fd, std::string_view text) noexcept {
    return ::lseek(fd, 0, SEEK_SET) == 0 && writeAll(fd, text) && reachedTheServer(fd) &&
           ::ftruncate(fd, static_cast<off_t>(text.size())) == 0;
}

/// Whether the old bytes of a file can be remembered.
enum class OldBytes : std::uint8_t { readable, unreadable };

/// Overwrites a file; one whose old bytes are readable keeps them when the write fails. The bytes past the
/// text are cut off last, so only those that the text covers have to be remembered.
bool overwriteFile(int fd, OldBytes access, std::string_view text) {
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        return false;
    }
    const auto covered = std::min(text.size(), static_cast<std::size_t>(info.st_size));
    const bool readable = access == OldBytes::readable;
    const auto old = readable ? readStart(fd, covered) : std::nullopt;
    if (readable && !old) {
        return false;
    }
    if (reserveRoom(fd, info, text.size()) && replaceContent(fd, text)) {
        return true;
    }
    const int error = errno;
    if (old) {
        (void)(::lseek(fd, 0, SEEK_SET) == 0 && writeAll(fd, *old));
        // Also returns the room that was reserved past the end.
        (void)(::ftruncate(fd, info.st_size) == 0);
    }
    errno = error;
    return false;
}

bool overwriteExisting(const std::string& path, std::string_view text) {
    Descriptor file = openFile(path, O_RDWR | O_NOCTTY);
    auto access = OldBytes::readable;
    if (!file.isOpen() && errno == EACCES) {
        file = openFile(path, O_WRONLY | O_NOCTTY);
        access = OldBytes::unreadable;
    }
    return file.isOpen() && overwriteFile(file.get(), access, text) && file.close();
}

/// Creates a file and removes it again when it cannot be written in full.
bool createFile(const std::string& path, std::string_view text) {
    // A link whose target does not exist yet: the target is created.
    Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_NOCTTY, 0666);
    if (!file.isOpen()) {
        return false;
    }
    if (writeAll(file.get(), text) && file.close()) {
        return true;
    }
    const int error = errno;
    std::error_code ignored;
    const auto made = std::filesystem::canonical(path, ignored);
    (void)::unlink(made.empty() ? path.c_str() : made.c_str());
    errno = error;
    return false;
}

/// Writes to a pipe, a terminal or another device: there are no old bytes, and the write may have to wait.
bool writeToDevice(const std::string& path, std::string_view text) {
    Descriptor file = openFile(path, O_WRONLY | O_NOCTTY);
    return file.isOpen() && writeAll(file.get(), text) && file.close();
}

} // namespace

bool writeTextFile(const std::string& path, std::string_view text) {
    if (path.find('\0') != std::string::npos) {
        errno = EINVAL;
        return false;
    }
    struct stat info {};
    const bool exists = ::stat(path.c_str(), &info) == 0;
    if (exists && !S_ISREG(info.st_mode)) {
        return writeToDevice(path, text);
    }
    if (!exists && errno != ENOENT) {
        return false;
    }
    const SignalHold hold;
    return exists ? overwriteExisting(path, text) : createFile(path, text);
}

} // namespace morquill
