#pragma once

#include <csignal>
#include <sys/types.h>

/// Putting off the signals that ask a program to end, for as long as the disk must be left in order first.
namespace morquill::system {

/// While it lives, every signal that asks the program to end (SIGTERM, SIGINT, a batch system's SIGUSR1 or
/// SIGXCPU, a real-time signal, ...) is noted instead; one that was ignored or handled before stays so. A
/// file that grows past its limit is a write that fails with `EFBIG`, not the end. The destructor gives the
/// process back to the system's ways and then ends it with the first noted signal. Build it before whatever
/// has to be undone, so that it goes last. Of several, one within the other, the outermost does the work.
class SignalGuard {
  public:
    SignalGuard() noexcept;
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;
    ~SignalGuard();

    /// The first signal that was noted, 0 for none.
    [[nodiscard]] int noted() const noexcept;

  private:
    bool outermost_;
};

/// Names the child that a noted signal is passed on to, from its start to its end, with all that it has
/// started: the program waits for them, so they must hear of the signal, too. A key pressed at the terminal
/// reaches them by itself and is not doubled.
///
/// Built before `fork` and under a `SignalGuard`, it holds the guard's signals back, so that none falls
/// between the start of the child and `watch`.
class ChildSignals {
  public:
    ChildSignals() noexcept;
    ChildSignals(const ChildSignals&) = delete;
    ChildSignals& operator=(const ChildSignals&) = delete;
    ~ChildSignals();

    /// The child is there: lets the signals come.
    void watch(pid_t child) noexcept;
    /// The child has ended and is about to be reaped; its number may soon be another's.
    void release() noexcept;

  private:
    sigset_t oldMask_{};
};

} // namespace morquill::system
