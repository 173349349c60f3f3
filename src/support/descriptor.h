#pragma once

#include <string_view>
#include <utility>

#include <unistd.h>

/// Open files by their number.
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

/// Writes every byte; false, with `errno`, when the system does not take them all.
[[nodiscard]] bool writeAll(int fd, std::string_view text) noexcept;

} // namespace morquill
