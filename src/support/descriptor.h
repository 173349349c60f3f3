#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <sys/types.h>
#include <unistd.h>

/// Open files by their number. Whatever fails leaves its reason in `errno`; no call ends early because a
/// signal came.
namespace morquill {

/// Owns a file descriptor and closes it on every way out; -1 stands for none.
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
    /// Closes now; false, with `errno`, when the system only then reports that a write was lost.
    [[nodiscard]] bool close() noexcept { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

/// Opens a file with the flags of `open` and `O_CLOEXEC`; `mode` holds the permission bits of a new one. Not
/// open when the system refuses; a path with a NUL byte names no file (`EINVAL`).
[[nodiscard]] Descriptor openFile(const std::string& path, int flags, mode_t mode = 0) noexcept;

/// Writes every byte; false when the system does not take them all. Fit for signal handlers.
[[nodiscard]] bool writeAll(int fd, std::string_view text) noexcept;

/// Reads once, at most `size` bytes: how many came, 0 at the end, -1 after an error.
[[nodiscard]] ssize_t readSome(int fd, char* buffer, std::size_t size) noexcept;

/// Reads until `size` bytes are there or the input ends: how many came, -1 after an error.
[[nodiscard]] ssize_t readFull(int fd, char* buffer, std::size_t size) noexcept;

/// All that is left to read; nothing after an error. `expectedSize`, in bytes, is a guess that saves growing.
[[nodiscard]] std::optional<std::string> readToEnd(int fd, std::size_t expectedSize = 0);

/// Copies all that is left of one file to another, by the file system where it can; false after an error, or
/// with `ECANCELED` once `isStopped`, which is asked between portions, returns true.
[[nodiscard]] bool copyToEnd(int from, int to, const std::function<bool()>& isStopped = {});

} // namespace morquill
