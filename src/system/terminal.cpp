#include "system/terminal.h"

#include "console/console.h"
#include "support/descriptor.h"

#include <cerrno>
#include <ctime>

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace morquill::system {

namespace {

// What the signal handlers restore. Written before `keyMode` is set, so no handler sees it half written.
struct termios savedAttributes;
volatile std::sig_atomic_t keyDescriptor = -1;
volatile std::sig_atomic_t keyMode = 0;

/// Set when the program continues after a stop, during which others may have used the screen.
volatile std::sig_atomic_t continued = 0;

/// The signal mask while input is awaited; null outside a session, where the caller's mask stays.
const sigset_t* waitMask = nullptr;
sigset_t sessionWaitMask;
sigset_t sessionMask;

/// False when the terminal belongs to another job: touching it would stop the program, even inside a handler.
/// A terminal that is not the program's controlling one has no jobs.
bool isOurs(int descriptor) noexcept {
    const pid_t foreground = ::tcgetpgrp(descriptor);
    return foreground < 0 || foreground == ::getpgrp();
}

void leaveKeyMode() noexcept {
    if (keyMode != 0 && isOurs(keyDescriptor)) {
        (void)::tcsetattr(keyDescriptor, TCSANOW, &savedAttributes);
        keyMode = 0;
    }
}

void restoreTerminal() noexcept {
    leaveKeyMode();
    if (isOurs(STDOUT_FILENO)) {
        (void)writeAll(STDOUT_FILENO, showCursor);
    }
}

/// Ends the program by the signal. The default action is restored before this runs (SA_RESETHAND), and the
/// signal raised here is delivered when the handler returns.
extern "C" void restoreAndEnd(int signal) {
    restoreTerminal();
    (void)::raise(signal);
}

/// Stops the program and returns when it continues.
extern "C" void restoreAndStop(int signal) {
    const int error = errno;
    restoreTerminal();
    struct sigaction own {};
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    (void)::sigaction(signal, &standard, &own);
    (void)::raise(signal);
    (void)::sigaction(signal, &own, nullptr);
    continued = 1;
    errno = error;
}

extern "C" void noteContinued(int /*signal*/) {
    continued = 1;
}

/// Switches the terminal to keys one by one and without echo, for the time of one key. Does nothing when the
/// input is not a terminal or the terminal belongs to another job; `enter` is tried again after every stop.
class KeyMode {
  public:
    explicit KeyMode(int descriptor) noexcept : descriptor_(descriptor) { enter(); }
    KeyMode(const KeyMode&) = delete;
    KeyMode& operator=(const KeyMode&) = delete;
    ~KeyMode() {
        leaveKeyMode();
        keyMode = 0;
    }

    void enter() const noexcept {
        if (!isOurs(descriptor_)) {
            return;
        }
        // Still in key mode after a stop that no handler saw: the saved attributes are the right ones.
        if (keyMode == 0 && ::tcgetattr(descriptor_, &savedAttributes) != 0) {
            return;
        }
        struct termios attributes = savedAttributes;
        attributes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        keyDescriptor = descriptor_;
        keyMode = 1;
        (void)::tcsetattr(descriptor_, TCSANOW, &attributes);
    }

  private:
    int descriptor_;
};

/// Reads a byte while signals may arrive; -1 with EINTR when one did. Not `readSome`, which would hide the
/// signal: the program may have been stopped meanwhile.
ssize_t awaitByte(int descriptor, char& byte) noexcept {
    if (isOurs(descriptor)) {
        struct pollfd input {
            descriptor, POLLIN, 0
        };
        return ::ppoll(&input, 1, nullptr, waitMask) < 0 ? -1 : ::read(descriptor, &byte, 1);
    }
    // Another job's terminal: the system stops whoever reads from it until the job is in the foreground.
    if (waitMask != nullptr) {
        (void)::sigprocmask(SIG_SETMASK, waitMask, nullptr);
    }
    const auto got = ::read(descriptor, &byte, 1);
    if (waitMask != nullptr) {
        const int error = errno;
        (void)::sigprocmask(SIG_SETMASK, &sessionMask, nullptr);
        errno = error;
    }
    return got;
}

/// The next byte; nothing at the end of input. After a stop,
/// `resume` is called once the program has the terminal back.
template <class Resume>
std::optional<char> readByte(int descriptor, const Resume& resume) {
    char byte = 0;
    for (;;) {
        if (continued != 0 && isOurs(descriptor)) {
            continued = 0;
            resume();
        }
        const auto got = awaitByte(descriptor, byte);
        if (got == 1) {
            return byte;
        }
        if (got == 0 || errno != EINTR) {
            return std::nullopt;
        }
    }
}

/// True for a signal that ends a program by default and can be caught. The others are the two that cannot be
/// caught, those that the C library reserves, and those that stop, continue or do nothing.
bool endsProgram(int signal) noexcept {
    switch (signal) {
    case SIGKILL:
    case SIGSTOP:
    case SIGTSTP:
    case SIGTTIN:
    case SIGTTOU:
    case SIGCONT:
    case SIGCHLD:
    case SIGURG:
    case SIGWINCH:
        return false;
    default:
        return true;
    }
}

} // namespace

std::int32_t readKey(int descriptor, const Redraw& redraw) {
    const KeyMode mode(descriptor);
    const auto next = [&] {
        return readByte(descriptor, [&] {
            mode.enter();
            if (redraw) {
                redraw();
            }
        });
    };
    const auto first = next();
    if (!first) {
        return key::endOfInput;
    }
    if (*first != key::escape) {
        return static_cast<unsigned char>(*first);
    }
    if (next() != '[') {
        return key::escape;
    }
    const auto last = next();
    return last && *last >= 'A' && *last <= 'D' ? key::up + (*last - 'A') : key::escape;
}

std::optional<std::string> readLine(int descriptor, const Redraw& redraw) {
    std::string line;
    for (bool any = false;; any = true) {
        const auto byte = readByte(descriptor, [&] {
            if (redraw) {
                redraw();
            }
        });
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

void awaitTerminal(int descriptor) {
    sigset_t goOn;
    sigemptyset(&goOn);
    sigaddset(&goOn, SIGCONT);
    while (!isOurs(descriptor)) {
        (void)::raise(SIGTTIN);
        const timespec atOnce{};
        if (::sigtimedwait(&goOn, nullptr, &atOnce) < 0) {
            return; // not stopped: there is no shell that could continue the program
        }
    }
}

TerminalSession::TerminalSession() : handlerStack_(static_cast<std::size_t>(SIGSTKSZ)) {
    // Signals that stop or continue the program are blocked until input is awaited: a half drawn screen is no
    // place to stop, and the wait has to notice that the program was continued.
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGTSTP);
    sigaddset(&held, SIGCONT);
    (void)::sigprocmask(SIG_BLOCK, &held, &sessionWaitMask);
    sessionMask = sessionWaitMask;
    sigaddset(&sessionMask, SIGTSTP);
    sigaddset(&sessionMask, SIGCONT);
    waitMask = &sessionWaitMask;

    // The handlers have a stack of their own: one of the signals reports that the program's is exhausted.
    stack_t stack{};
    stack.ss_sp = handlerStack_.data();
    stack.ss_size = handlerStack_.size();
    (void)::sigaltstack(&stack, &previousStack_);
    for (int signal = 1; signal < NSIG; ++signal) {
        if (endsProgram(signal)) {
            handle(signal, restoreAndEnd, static_cast<int>(SA_RESETHAND) | SA_ONSTACK);
        }
    }
    // The stop signal is raised inside its own handler and has to take effect there.
    handle(SIGTSTP, restoreAndStop, SA_NODEFER);
    handle(SIGCONT, noteContinued, 0);
}

void TerminalSession::handle(int signal, void (*handler)(int), int flags) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) {
        return;
    }
    previous_.push_back({signal, action});
    action.sa_handler = handler;
    action.sa_flags = flags;
    if (handler == restoreAndEnd) {
        sigfillset(&action.sa_mask); // the first signal ends the program
    }
    (void)::sigaction(signal, &action, nullptr);
}

TerminalSession::~TerminalSession() {
    for (const auto& [signal, action] : previous_) {
        (void)::sigaction(signal, &action, nullptr);
    }
    (void)::sigaltstack(&previousStack_, nullptr);
    (void)::sigprocmask(SIG_SETMASK, &sessionWaitMask, nullptr);
    waitMask = nullptr;
}

} // namespace morquill::system
