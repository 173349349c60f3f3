#include "system/terminal.h"

#include "console/console.h"

#include <cerrno>

#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace morquill::system {

namespace {

// What the signal handlers put back. Written before `keyMode` is set, so a handler never sees half of it.
struct termios savedAttributes;
struct termios keyAttributes;
volatile std::sig_atomic_t keyDescriptor = -1;
volatile std::sig_atomic_t keyMode = 0;

void writeToTerminal(std::string_view text) noexcept {
    while (::write(STDOUT_FILENO, text.data(), text.size()) < 0 && errno == EINTR) {
    }
}

void restoreTerminal() noexcept {
    if (keyMode != 0) {
        (void)::tcsetattr(keyDescriptor, TCSANOW, &savedAttributes);
    }
    writeToTerminal(showCursor);
}

/// Ends the program by the signal. The default action is back when this runs (SA_RESETHAND), and the signal
/// that is raised here waits until the handler returns.
extern "C" void restoreAndEnd(int signal) {
    restoreTerminal();
    (void)::raise(signal);
}

/// Stops the program and, when it goes on, takes the terminal back.
extern "C" void restoreAndStop(int signal) {
    const int error = errno;
    restoreTerminal();
    struct sigaction own {};
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    (void)::sigaction(signal, &standard, &own);
    (void)::raise(signal);
    (void)::sigaction(signal, &own, nullptr);
    if (keyMode != 0) {
        (void)::tcsetattr(keyDescriptor, TCSANOW, &keyAttributes);
        writeToTerminal(hideCursor);
    }
    errno = error;
}

/// Keys one by one and without echo, for the time of one key. Does nothing to input that is no terminal.
class KeyMode {
  public:
    explicit KeyMode(int descriptor) noexcept {
        if (::tcgetattr(descriptor, &savedAttributes) == 0) {
            keyAttributes = savedAttributes;
            keyAttributes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
            keyDescriptor = descriptor;
            keyMode = 1;
            (void)::tcsetattr(descriptor, TCSANOW, &keyAttributes);
        }
    }
    KeyMode(const KeyMode&) = delete;
    KeyMode& operator=(const KeyMode&) = delete;
    ~KeyMode() {
        if (keyMode != 0) {
            (void)::tcsetattr(keyDescriptor, TCSANOW, &savedAttributes);
            keyMode = 0;
        }
    }
};

std::optional<char> readByte(int descriptor) {
    char byte = 0;
    for (;;) {
        const auto got = ::read(descriptor, &byte, 1);
        if (got == 1) {
            return byte;
        }
        if (got == 0 || errno != EINTR) {
            return std::nullopt;
        }
    }
}

} // namespace

std::int32_t readKey(int descriptor) {
    const KeyMode mode(descriptor);
    const auto first = readByte(descriptor);
    if (!first) {
        return key::endOfInput;
    }
    if (*first != key::escape) {
        return static_cast<unsigned char>(*first);
    }
    if (readByte(descriptor) != '[') {
        return key::escape;
    }
    const auto last = readByte(descriptor);
    return last && *last >= 'A' && *last <= 'D' ? key::up + (*last - 'A') : key::escape;
}

std::optional<std::string> readLine(int descriptor) {
    std::string line;
    for (bool any = false;; any = true) {
        const auto byte = readByte(descriptor);
        if (!byte) {
            return any ? std::optional(std::move(line)) : std::nullopt;
        }
        if (*byte == '\n') {
            return line;
        }
        line += *byte;
    }
}

void clearScreen() {
    console::flushOut();
    const char* const arguments[] = {"clear", nullptr};
    pid_t child = 0;
    if (::posix_spawnp(&child, arguments[0], nullptr, nullptr, const_cast<char* const*>(arguments),
                       environ) == 0) {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

TerminalSession::TerminalSession() {
    for (std::size_t i = 0; i < std::size(signals); ++i) {
        struct sigaction action {};
        action.sa_handler = signals[i] == SIGTSTP ? restoreAndStop : restoreAndEnd;
        // The stop signal is raised inside its own handler and has to act there.
        action.sa_flags = signals[i] == SIGTSTP ? SA_RESTART | SA_NODEFER : static_cast<int>(SA_RESETHAND);
        (void)::sigaction(signals[i], nullptr, &previous[i]);
        if (previous[i].sa_handler != SIG_IGN) {
            (void)::sigaction(signals[i], &action, nullptr);
        }
    }
}

TerminalSession::~TerminalSession() {
    for (std::size_t i = 0; i < std::size(signals); ++i) {
        (void)::sigaction(signals[i], &previous[i], nullptr);
    }
}

} // namespace morquill::system
