#include "system/new_file.h"

#include "support/descriptor.h"
#include "support/fault.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace morquill::system {

namespace {

/// Creates the file and calls `fill` to write it; on failure, that returns false with `errno`.
template <class Fill>
std::error_code makeFile(const std::string& path, Fill fill) {
    Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (!file.isOpen()) {
        return lastSystemError();
    }
    // Some file systems report a full disk or an exhausted quota only on close.
    if (fill(file.get()) && file.close()) {
        return {};
    }
    const auto error = lastSystemError();
    ::unlink(path.c_str());
    return error;
}

} // namespace

std::error_code copyToNewFile(const std::string& source, const std::string& target) {
    // O_NONBLOCK: opening a FIFO must not wait for a writer.
    const Descriptor from = openFile(source, O_RDONLY | O_NONBLOCK);
    struct stat info {};
    if (!from.isOpen() || ::fstat(from.get(), &info) != 0) {
        return lastSystemError();
    }
    if (!S_ISREG(info.st_mode)) {
        return {EINVAL, std::system_category()};
    }
    return makeFile(target, [&](int to) {
        (void)::fchmod(to, info.st_mode & 07777); // not every file system has permissions
        return copyToEnd(from.get(), to);
    });
}

std::error_code writeNewFile(const std::string& path, std::string_view text) {
    return makeFile(path, [&](int to) { return writeAll(to, text); });
}

} // namespace morquill::system
