#pragma once

#include <sys/types.h>

/// Processes and their descendants.
namespace morquill::system {

/// Sends a signal to a process and all its descendants, in one pass from the top down, so that a shell is
/// gone before it can start its next command. Safe in a signal handler; `errno` may change.
///
/// Processes in another session are left out, as they were detached on purpose, and so are those that the
/// system does not list as children: processes whose parent has ended, those started from another thread, and
/// all of them where `/proc` is not mounted. The process itself is always reached.
void signalProcessTree(pid_t process, int number) noexcept;

} // namespace morquill::system
