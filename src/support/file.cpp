#include "support/file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill {

namespace fs = std::filesystem;

namespace {

/// Closes a descriptor on every way out; `close` tells whether closing went well.
class Descriptor {
  public:
    explicit Descriptor(int fd) noexcept : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    [[nodiscard]] int get() const noexcept { return fd_; }
    [[nodiscard]] bool close() noexcept {
        const int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }

  private:
    int fd_;
};

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const auto put = ::write(fd, text.data(), text.size());
        if (put > 0) {
            text.remove_prefix(static_cast<std::size_t>(put));
        } else if (put == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<std::string> readTextFile(const std::string& path) {
    // O_NONBLOCK: opening a FIFO must not wait for a writer; it has no effect on regular files.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (path.find('\0') != std::string::npos || file.get() < 0 || ::fstat(file.get(), &info) != 0 ||
        !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    std::string content;
    // One byte more than the size, so that the end of file is seen without a second growth.
    content.resize(static_cast<std::size_t>(info.st_size) + 1);
    std::size_t used = 0;
    for (;;) {
        if (used == content.size()) {
            content.resize(content.size() * 2);
        }
        const auto got = ::read(file.get(), content.data() + used, content.size() - used);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
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

bool writeTextFile(const std::string& path, std::string_view text) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    return file.get() >= 0 && writeAll(file.get(), text) && file.close();
}

bool overwriteTextFile(const std::string& path, std::string_view text) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    return file.get() >= 0 && writeAll(file.get(), text) &&
           ::ftruncate(file.get(), static_cast<off_t>(text.size())) == 0 && file.close();
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
