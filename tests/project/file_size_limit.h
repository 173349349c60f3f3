#pragma once

#include <csignal>

#include <sys/resource.h>

namespace morquill::project {

/// For as long as it lives, no file grows past `bytes`: writes beyond fail as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit small{bytes, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
    }

  private:
    rlimit old{};
    void (*oldHandler)(int);
};

} // namespace morquill::project
