#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace morquill::frontend::testing {

/// Sets (or, with nothing, unsets) an environment variable for the time of a scope.
class ScopedEnv {
  public:
    ScopedEnv(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) {
            old_ = old;
        }
        set(value);
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;
    ~ScopedEnv() { set(old_); }

  private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> old_;
};

/// Runs `action` with the given descriptors leading to `target`.
inline void redirected(const std::vector<int>& descriptors, int target, const std::function<void()>& action) {
    std::fflush(stdout);
    std::vector<int> saved;
    for (const int fd : descriptors) {
        saved.push_back(::dup(fd));
        ::dup2(target, fd);
    }
    action();
    std::fflush(stdout);
    for (std::size_t i = 0; i < saved.size(); ++i) {
        ::dup2(saved[i], descriptors[i]);
        ::close(saved[i]);
    }
}

/// Everything that can be read without waiting.
inline std::string readAvailable(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    std::string text;
    char buffer[4096];
    for (;;) {
        const auto got = ::read(fd, buffer, sizeof buffer);
        if (got <= 0) {
            ::close(fd);
            return text;
        }
        text.append(buffer, static_cast<std::size_t>(got));
    }
}

/// What `action` writes to the descriptors when they lead to one pipe.
inline std::string throughPipe(const std::vector<int>& descriptors, const std::function<void()>& action) {
    int ends[2];
    if (::pipe(ends) != 0) {
        return "no pipe";
    }
    redirected(descriptors, ends[1], action);
    ::close(ends[1]);
    return readAvailable(ends[0]);
}

/// What `action` writes to the descriptors when they lead to a terminal.
inline std::string throughTerminal(const std::vector<int>& descriptors, const std::function<void()>& action) {
    int master = -1;
    int slave = -1;
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) {
        return "no terminal";
    }
    termios settings{};
    ::tcgetattr(slave, &settings);
    ::cfmakeraw(&settings); // no carriage returns before line feeds
    ::tcsetattr(slave, TCSANOW, &settings);
    redirected(descriptors, slave, action);
    // Read while the other end is still open: a hang-up would drop what was not read yet.
    std::string text = readAvailable(master);
    ::close(slave);
    return text;
}

} // namespace morquill::frontend::testing
