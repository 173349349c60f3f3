#include "support/descriptor.h"

#include <cerrno>

namespace morquill {

bool writeAll(int fd, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t put = ::write(fd, text.data(), text.size());
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            errno = put == 0 ? EIO : errno;
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

} // namespace morquill
