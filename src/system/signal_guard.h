#pragma once

#include <csignal>
#include <sys/types.h>

/// Defers the signals that ask a program to end until the disk is in order.
namespace morquill::system {

/// While it lives, every signal that asks the program to end (SIGTERM, SIGINT, a batch system's SIGUSR1 or
/// SIGXCPU, a real-time signal, ...) is only noted, unless it was ignored or handled before. The
/// destructor restores the old handling and then ends the program with the first noted signal.
///
/// Construct it before whatever has to be undone, so that it is destroyed last. Of nested guards, the
/// outermost does the work. A single write needs none: `writeTextFile` blocks signals by itself.
class SignalGuard {
  public:
    SignalGuard() noexcept;
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;
    ~SignalGuard();

    /// The first noted signal, 0 for none.
    [[nodiscard]] int noted() const noexcept;

  private:
    bool outermost_;
};

/// Passes noted signals on to a child and its descendants, from its start to
/// its end: the program waits for them, so they must receive the signal, too.
/// A key pressed at the terminal reaches them by itself and is not sent twice.
///
/// Constructed before `fork` and under a `SignalGuard`, it blocks the guard's signals, so that none arrives
/// between the start of the child and `watch`.
class ChildSignals {
  public:
    ChildSignals() noexcept;
    ChildSignals(const ChildSignals&) = delete;
    ChildSignals& operator=(const ChildSignals&) = delete;
    ~ChildSignals();

    /// Names the started child and unblocks the signals.
    void watch(pid_t child) noexcept;
    /// Forgets the child, which has ended and is about to be reaped: its number may be reused soon.
    void release() noexcept;

  private:
    sigset_t oldMask_{};
};

} // namespace morquill::system
