#include "system/signal_guard.h"

#include "console/console.h"

#include <array>
#include <atomic>
#include <cerrno>

#include <unistd.h>

namespace morquill::system {

namespace {

constexpr std::array<int, 3> endSignals{SIGHUP, SIGINT, SIGTERM};

// All that a signal handler can reach: the first signal noted and the child to pass it on to, 0 for none.
std::atomic<int> notedSignal{0};
std::atomic<pid_t> watchedChild{0};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<pid_t>::is_always_lock_free);

extern "C" void noteSignal(int number, siginfo_t* info, void* /*context*/) {
    const int oldErrno = errno;
    int none = 0;
    notedSignal.compare_exchange_strong(none, number);
    // Sent by a process to this one alone; what the terminal sends goes to all its processes.
    const bool sentByProcess = info->si_code <= 0;
    const pid_t child = watchedChild.load();
    if (sentByProcess && child > 0) {
        ::kill(child, number);
    }
    errno = oldErrno;
}

sigset_t endSignalSet() noexcept {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : endSignals) {
        sigaddset(&set, number);
    }
    return set;
}

} // namespace

SignalGuard::SignalGuard() noexcept {
    notedSignal = 0;
    struct sigaction action {};
    action.sa_sigaction = noteSignal;
    action.sa_mask = endSignalSet();
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    for (std::size_t i = 0; i < endSignals.size(); ++i) {
        ::sigaction(endSignals[i], nullptr, &old_[i]);
        if (old_[i].sa_handler != SIG_IGN) {
            ::sigaction(endSignals[i], &action, nullptr);
        }
    }
}

SignalGuard::~SignalGuard() {
    for (std::size_t i = 0; i < endSignals.size(); ++i) {
        ::sigaction(endSignals[i], &old_[i], nullptr);
    }
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
    if (const int number = notedSignal; number != 0) { // before the child was there to hear of it
        ::kill(child, number);
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
