#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <sys/types.h>
#include <unistd.h>

/// Open files by their descriptor. Whatever fails leaves
/// the reason in `errno`; no call is cut short by a signal.
namespace morquill {

/// Owns a file descriptor and closes it when destroyed; -1 means none.
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor() { (void)close(); }

    [[nodiscard]] bool isOpen() const noexcept { return fd_ >= 0; }
    [[nodiscard]] int get() const noexcept { return fd_; }
    /// Closes now; false, with `errno`, when the system reports only here that a write was lost.
    [[nodiscard]] bool close() noexcept { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

/// Opens a file with the flags of `open` and `O_CLOEXEC`; `mode` holds the permission bits of a new one. The
/// result is not open when the system refuses; a path with a NUL byte names no file (`EINVAL`).
[[nodiscard]] Descriptor openFile(const std::string& path, int flags, mode_t mode = 0) noexcept;

/// Writes every byte; false when the system does not take them all. Safe in signal handlers.
[[nodiscard]] bool writeAll(int fd, std::string_view text) noexcept;

/// Reads once, at most `size` bytes; returns how many were read, 0 at the end, -1 after an error.
[[nodiscard]] ssize_t readSome(int fd, char* buffer, std::size_t size) noexcept;

/// Reads until it has `size` bytes or the input ends; returns how many were read, -1 after an error.
[[nodiscard]] ssize_t readFull(int fd, char* buffer, std::size_t size) noexcept;

/// Returns all that is left to read, nothing after an error.
/// `expectedSize`, in bytes, is a guess that saves reallocations.
[[nodiscard]] std::optional<std::string> readToEnd(int fd, std::size_t expectedSize = 0);

/// Copies the rest of one file to another, inside the file system where it can do that; false after an error,
/// or with `ECANCELED` once `isStopped`, which is called between portions, returns true.
[[nodiscard]] bool copyToEnd(int from, int to, const std::function<bool()>& isStopped = {});

} // namespace morquill
