#pragma once

#include <sys/types.h>

/// Processes and what they have started.
namespace morquill::system {

/// Sends a signal to a process and to all that it has started, directly or not, in one pass from the top
/// down, so that a shell is gone before it can start its next command. Left out are processes in another
/// session, which were detached on purpose, and what the system does not list as a child: processes whose
/// parent has ended, those started from a further thread, and all of them where `/proc` is not mounted; the
/// process itself is always reached. Safe in a signal handler; `errno` may change.
void signalProcessTree(pid_t process, int number) noexcept;

} // namespace morquill::system
