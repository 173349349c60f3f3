#include "system/held_bytes.h"

#include "support/fault.h"
#include "support/paths.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace morquill::system {

namespace {

/// Moves a descriptor above the soft limit when the hard limit allows it: thousands of them must not use up
/// the numbers that the rest of the program needs. Without a number to spare, the result is closed.
Descriptor moveOutOfTheWay(Descriptor low) {
    constexpr rlim_t spared = 64;
    rlimit ordinary{};
    if (::getrlimit(RLIMIT_NOFILE, &ordinary) != 0) {
        return low;
    }
    const rlimit wide{ordinary.rlim_max, ordinary.rlim_max};
    (void)::setrlimit(RLIMIT_NOFILE, &wide);
    Descriptor high(::fcntl(low.get(), F_DUPFD_CLOEXEC, static_cast<int>(ordinary.rlim_cur)));
    (void)::setrlimit(RLIMIT_NOFILE, &ordinary);
    if (high.isOpen()) {
        return high;
    }
    return static_cast<rlim_t>(low.get()) + spared < ordinary.rlim_cur ? std::move(low) : Descriptor();
}

} // namespace

bool HeldBytes::linkTo(const std::string& path) const noexcept {
    if (!file_.isOpen()) {
        return false;
    }
    // Older kernels refuse the first form to ordinary users; the second needs /proc.
    if (::linkat(file_.get(), "", AT_FDCWD, path.c_str(), AT_EMPTY_PATH) == 0) {
        return true;
    }
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "/proc/self/fd/%d", file_.get());
    return ::linkat(AT_FDCWD, name.data(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

std::string HeldBytes::directory() const {
    std::error_code error;
    const auto link = "/proc/self/fd/" + std::to_string(file_.get());
    // "<directory>/#<inode> (deleted)"
    const auto path = file_.isOpen() ? std::filesystem::read_symlink(link, error).string() : std::string();
    return path.empty() ? std::string() : parentPath(path);
}

std::optional<HeldBytes> holdBytes(const std::string& path, std::string_view bytes) {
    struct stat info {};
    Descriptor file = openFile(parentPath(path), O_TMPFILE | O_RDWR, 0600);
    if (!file.isOpen() || !writeAll(file.get(), bytes)) {
        return isFaultOfTheDisk(errno) ? std::nullopt : std::optional<HeldBytes>(HeldBytes());
    }
    if (::stat(path.c_str(), &info) == 0) {
        // The owner first: changing it may clear permission bits.
        (void)!::fchown(file.get(), info.st_uid, info.st_gid);
        (void)::fchmod(file.get(), info.st_mode & 07777);
    }
    return HeldBytes(moveOutOfTheWay(std::move(file)));
}

} // namespace morquill::system
