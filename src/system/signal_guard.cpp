#include "system/signal_guard.h"

#include "console/console.h"
#include "system/process_tree.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

#include <unistd.h>

namespace morquill::system {

namespace {

// All signals that end a program from outside and can be caught. SIGABRT is among them, as `abort` itself
// ends the program whatever the handler does.
constexpr std::array namedEndSignals{SIGHUP,  SIGINT,    SIGQUIT, SIGTERM, SIGALRM, SIGUSR1,   SIGUSR2,
                                     SIGXCPU, SIGVTALRM, SIGPROF, SIGPOLL, SIGPWR,  SIGSTKFLT, SIGABRT};

/// Calls `act` for each of them and for the real-time signals, whose numbers only the C library knows.
template <class Act>
void forEachEndSignal(Act act) noexcept {
    for (const int number : namedEndSignals) {
        act(number);
    }
    for (int number = SIGRTMIN; number <= SIGRTMAX; ++number) {
        act(number);
    }
}

// Set by the outermost guard: how each signal was handled before.
bool guarded = false;
std::array<struct sigaction, NSIG> oldActions{}; // by signal

// The data of the signal handler: the first noted signal and the child to pass it on to, 0 for none.
std::atomic<int> notedSignal{0};
std::atomic<pid_t> watchedChild{0};
static_assert(std::atomic<int>::is_always_lock_free);
static_assert(std::atomic<pid_t>::is_always_lock_free);

/// Keys and the hang-up of a terminal go to all its processes, any other signal to this one alone.
bool reachesChildrenAnyway(int number, int origin) noexcept {
    return origin == SI_KERNEL && (number == SIGINT || number == SIGQUIT || number == SIGHUP);
}

extern "C" void noteSignal(int number, siginfo_t* info, void* /*context*/) {
    const int oldErrno = errno;
    int none = 0;
    notedSignal.compare_exchange_strong(none, number);
    const pid_t child = watchedChild.load();
    if (child > 0 && !reachesChildrenAnyway(number, info->si_code)) {
        signalProcessTree(child, number);
    }
    errno = oldErrno;
}

sigset_t endSignalSet() noexcept {
    sigset_t set;
    sigemptyset(&set);
    forEachEndSignal([&](int number) { sigaddset(&set, number); });
    return set;
}

/// Sets an action for a signal that would end the program and saves the old one.
void replaceDefault(int number, const struct sigaction& action, struct sigaction& old) noexcept {
    ::sigaction(number, nullptr, &old);
    if ((old.sa_flags & SA_SIGINFO) == 0 && old.sa_handler == SIG_DFL) {
        ::sigaction(number, &action, nullptr);
    }
}

} // namespace

SignalGuard::SignalGuard() noexcept : outermost_(!std::exchange(guarded, true)) {
    if (!outermost_) {
        return;
    }
    notedSignal = 0;
    struct sigaction note {};
    note.sa_sigaction = noteSignal;
    note.sa_mask = endSignalSet();
    note.sa_flags = SA_SIGINFO | SA_RESTART;
    forEachEndSignal(
        [&](int number) { replaceDefault(number, note, oldActions[static_cast<std::size_t>(number)]); });
}

SignalGuard::~SignalGuard() {
    if (!outermost_) {
        return;
    }
    forEachEndSignal(
        [](int number) { ::sigaction(number, &oldActions[static_cast<std::size_t>(number)], nullptr); });
    guarded = false;
    if (const int number = noted(); number != 0) {
        console::flushOut();
        ::raise(number);
    }
}

int SignalGuard::noted() const noexcept {
    return notedSignal;
}

ChildSignals::ChildSignals() noexcept {
    const sigset_t held = endSignalSet();
    ::sigprocmask(SIG_BLOCK, &held, &oldMask_);
}

void ChildSignals::watch(pid_t child) noexcept {
    if (const int number = notedSignal; number != 0) { // before there was a child to receive it
        signalProcessTree(child, number);              // which may have started others by now
    }
    watchedChild = child;
    ::sigprocmask(SIG_SETMASK, &oldMask_, nullptr);
}

void ChildSignals::release() noexcept {
    watchedChild = 0;
}

ChildSignals::~ChildSignals() {
    watchedChild = 0;
    ::sigprocmask(SIG_SETMASK, &oldMask_, nullptr);
}

} // namespace morquill::system
