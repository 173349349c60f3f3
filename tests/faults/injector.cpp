// A library for LD_PRELOAD that makes one system call of a program fail, or raises a signal before it.
//
// FAULT_PLAN is "<class> <n> <kind>": the n-th call of the class, counted from the start of `main`, gets what
// the kind says. Kinds are the number of an error, `-<signal>`, and the words of `Kind`. FAULT_REPORT names a
// file of the size of `Report`, shared with whoever started the program. Child programs run without any of
// this.

#include "faults/injector.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

using faults::CallClass;
using faults::Report;

Report* report = nullptr;
CallClass plannedClass = CallClass::none;
int plannedCall = 0;
faults::Kind kind = faults::Kind::error;
int number = 0; // of the error or the signal
pid_t owner = 0;
bool active = false;
int fullDescriptor = -1; // the next write to it finds no room

/// True when this very call is the one. Counts it.
bool isPlanned(CallClass called, const char* name) noexcept {
    if (!active || (called != CallClass::start && ::getpid() != owner)) {
        return false;
    }
    int& count = report->counts[static_cast<int>(called)];
    count += 1;
    int& anyCount = report->counts[static_cast<int>(CallClass::any)];
    anyCount += called == CallClass::memory ? 0 : 1;
    const bool isAny = plannedClass == CallClass::any && called != CallClass::memory;
    const int reached = isAny ? anyCount : count;
    if ((plannedClass != called && !isAny) || reached < plannedCall ||
        (reached > plannedCall && kind != faults::Kind::forGood)) {
        return false;
    }
    report->reached = 1;
    for (std::size_t i = 0; i + 1 < sizeof report->call && reached == plannedCall; ++i) {
        report->call[i] = name[i];
        if (name[i] == '\0') {
            break;
        }
    }
    if (kind == faults::Kind::signal) {
        ::kill(owner, number);
        return false;
    }
    return true;
}

/// True when the call is to fail with the planned error, which is then in `errno`.
bool fails(CallClass called, const char* name) noexcept {
    if (!isPlanned(called, name)) {
        return false;
    }
    if (kind == faults::Kind::shortened || kind == faults::Kind::full) {
        return false; // of the calls that move bytes only
    }
    errno = number;
    return true;
}

/// How many of `size` bytes a call may move; -1, with `errno`, when it is to fail.
ssize_t allowance(CallClass called, const char* name, std::size_t size, int fd) noexcept {
    if (active && fd == fullDescriptor && called == CallClass::write) {
        fullDescriptor = -1;
        errno = ENOSPC;
        return -1;
    }
    if (!isPlanned(called, name)) {
        return static_cast<ssize_t>(size);
    }
    if (kind == faults::Kind::shortened || kind == faults::Kind::full) {
        fullDescriptor = kind == faults::Kind::full ? fd : -1;
        return static_cast<ssize_t>(size > 1 ? size / 2 : size);
    }
    errno = number;
    return -1;
}

template <class Function>
Function* real(Function* /*wrapper*/, const char* name) noexcept {
    const bool wasActive = active;
    active = false; // what the look-up itself needs is no call of the program
    void* const found = ::dlsym(RTLD_NEXT, name);
    active = wasActive;
    return reinterpret_cast<Function*>(found);
}

void readPlan() noexcept {
    const char* const plan = std::getenv("FAULT_PLAN");
    const char* const path = std::getenv("FAULT_REPORT");
    char className[16] = {};
    char kindName[16] = {};
    if (plan == nullptr || path == nullptr ||
        std::sscanf(plan, "%15s %d %15s", className, &plannedCall, kindName) != 3) {
        return;
    }
    const int fd = ::open(path, O_RDWR | O_CLOEXEC);
    void* const shared = ::mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ::close(fd);
    if (shared == MAP_FAILED) {
        return;
    }
    for (int i = 0; i < faults::classCount; ++i) {
        plannedClass =
            std::strcmp(className, faults::classNames[i]) == 0 ? static_cast<CallClass>(i) : plannedClass;
    }
    const int value = std::atoi(kindName);
    number = value < 0 ? -value : value;
    kind = std::strcmp(kindName, "short") == 0     ? faults::Kind::shortened
           : std::strcmp(kindName, "full") == 0    ? faults::Kind::full
           : std::strchr(kindName, '+') != nullptr ? faults::Kind::forGood
           : value < 0                             ? faults::Kind::signal
                                                   : faults::Kind::error;
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("FAULT_PLAN");
    ::unsetenv("FAULT_REPORT");
    report = static_cast<Report*>(shared);
    *report = Report{};
    owner = ::getpid();
    active = true;
}

int (*programMain)(int, char**, char**) = nullptr;

int startMain(int argc, char** argv, char** environment) {
    readPlan();
    return programMain(argc, argv, environment);
}

} // namespace

// NOLINTBEGIN: names, parameters and exception marks are those of the C library.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnonnull-compare"

extern "C" {

int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv,
                      int (*init)(int, char**, char**), void (*fini)(), void (*linkerFini)(),
                      void* stackEnd) {
    programMain = main;
    return real(__libc_start_main, "__libc_start_main")(startMain, argc, argv, init, fini, linkerFini,
                                                        stackEnd);
}

// What is looked up is kept: a look-up may allocate, and a signal handler may be the caller.
#define REAL(name) static auto* const original = real(name, #name)

/// Wraps a call that answers -1 and `errno`.
#define FAILING(callClass, result, name, parameters, arguments)                                              \
    result name parameters {                                                                                 \
        REAL(name);                                                                                          \
        return fails(CallClass::callClass, #name) ? static_cast<result>(-1) : original arguments;            \
    }

/// Wraps a call that answers a null pointer and `errno`.
#define FAILING_NULL(callClass, result, name, parameters, arguments)                                         \
    result name parameters {                                                                                 \
        REAL(name);                                                                                          \
        return fails(CallClass::callClass, #name) ? nullptr : original arguments;                            \
    }

#define OPENING(name)                                                                                        \
    int name(const char* path, int flags, ...) {                                                             \
        va_list more;                                                                                        \
        va_start(more, flags);                                                                               \
        const auto mode = va_arg(more, mode_t);                                                              \
        va_end(more);                                                                                        \
        REAL(name);                                                                                          \
        return fails(CallClass::open, #name) ? -1 : original(path, flags, mode);                             \
    }
#define OPENING_AT(name)                                                                                     \
    int name(int dir, const char* path, int flags, ...) {                                                    \
        va_list more;                                                                                        \
        va_start(more, flags);                                                                               \
        const auto mode = va_arg(more, mode_t);                                                              \
        va_end(more);                                                                                        \
        REAL(name);                                                                                          \
        return fails(CallClass::open, #name) ? -1 : original(dir, path, flags, mode);                        \
    }

OPENING(open)
OPENING(open64)
OPENING_AT(openat)
OPENING_AT(openat64)
FAILING(open, int, creat, (const char* path, mode_t mode), (path, mode))
FAILING_NULL(open, FILE*, fopen, (const char* path, const char* mode), (path, mode))
FAILING_NULL(open, FILE*, fopen64, (const char* path, const char* mode), (path, mode))
FAILING_NULL(open, DIR*, opendir, (const char* path), (path))
FAILING_NULL(open, DIR*, fdopendir, (int fd), (fd))

FAILING_NULL(read, dirent*, readdir, (DIR * dir), (dir))
FAILING(read, ssize_t, readlink, (const char* path, char* buffer, size_t size), (path, buffer, size))
FAILING_NULL(read, char*, realpath, (const char* path, char* resolved), (path, resolved))
FAILING_NULL(read, char*, getcwd, (char* buffer, size_t size), (buffer, size))

FAILING(stat, int, stat, (const char* path, struct stat* info), (path, info))
FAILING(stat, int, lstat, (const char* path, struct stat* info), (path, info))
FAILING(stat, int, fstat, (int fd, struct stat* info), (fd, info))
FAILING(stat, int, fstatat, (int dir, const char* path, struct stat* info, int flags),
        (dir, path, info, flags))
FAILING(stat, int, access, (const char* path, int mode), (path, mode))

FAILING(room, int, fallocate, (int fd, int mode, off_t start, off_t size), (fd, mode, start, size))
FAILING(room, int, ftruncate, (int fd, off_t size), (fd, size))
FAILING(room, off_t, lseek, (int fd, off_t offset, int whence), (fd, offset, whence))
FAILING(room, int, fsync, (int fd), (fd))
FAILING(room, int, fdatasync, (int fd), (fd))

FAILING(name, int, rename, (const char* from, const char* to), (from, to))
FAILING(name, int, renameat, (int fromDir, const char* from, int toDir, const char* to),
        (fromDir, from, toDir, to))
FAILING(name, int, renameat2, (int fromDir, const char* from, int toDir, const char* to, unsigned flags),
        (fromDir, from, toDir, to, flags))
FAILING(name, int, link, (const char* from, const char* to), (from, to))
FAILING(name, int, linkat, (int fromDir, const char* from, int toDir, const char* to, int flags),
        (fromDir, from, toDir, to, flags))
FAILING(name, int, symlink, (const char* target, const char* path), (target, path))
FAILING(remove, int, unlink, (const char* path), (path))
FAILING(remove, int, unlinkat, (int dir, const char* path, int flags), (dir, path, flags))
FAILING(remove, int, rmdir, (const char* path), (path))
FAILING(remove, int, remove, (const char* path), (path))
FAILING(mkdir, int, mkdir, (const char* path, mode_t mode), (path, mode))
FAILING(mkdir, int, mkdirat, (int dir, const char* path, mode_t mode), (dir, path, mode))

FAILING(mode, int, chmod, (const char* path, mode_t mode), (path, mode))
FAILING(mode, int, fchmod, (int fd, mode_t mode), (fd, mode))
FAILING(mode, int, fchown, (int fd, uid_t user, gid_t group), (fd, user, group))

FAILING(fork, pid_t, fork, (), ())
FAILING(fork, int, pipe, (int ends[2]), (ends))
FAILING(fork, int, pipe2, (int ends[2], int flags), (ends, flags))
FAILING(start, int, chdir, (const char* path), (path))
FAILING(start, int, execv, (const char* path, char* const arguments[]), (path, arguments))
FAILING(start, int, execvp, (const char* path, char* const arguments[]), (path, arguments))
FAILING(wait, pid_t, waitpid, (pid_t child, int* status, int options), (child, status, options))
FAILING(wait, int, waitid, (idtype_t type, id_t child, siginfo_t* info, int options),
        (type, child, info, options))

FAILING(terminal, int, tcgetattr, (int fd, struct termios* modes), (fd, modes))
FAILING(terminal, int, tcsetattr, (int fd, int when, const struct termios* modes), (fd, when, modes))
FAILING(terminal, int, ppoll, (pollfd * fds, nfds_t count, const timespec* timeout, const sigset_t* mask),
        (fds, count, timeout, mask))

int posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                 const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
    REAL(posix_spawnp);
    return fails(CallClass::fork, "posix_spawnp")
               ? errno
               : original(child, file, actions, attributes, arguments, environment);
}

int close(int fd) {
    REAL(close);
    const bool failing = fails(CallClass::close, "close");
    const int error = errno;
    const int result = original(fd); // closed in any case, as the system does it
    if (failing) {
        errno = error;
    }
    return failing ? -1 : result;
}

ssize_t read(int fd, void* buffer, size_t size) {
    REAL(read);
    const auto called = fd == STDIN_FILENO ? CallClass::terminal : CallClass::read;
    const ssize_t most = allowance(called, "read", size, fd);
    return most < 0 ? -1 : original(fd, buffer, static_cast<size_t>(most));
}

ssize_t write(int fd, const void* bytes, size_t size) {
    REAL(write);
    const ssize_t most = allowance(CallClass::write, "write", size, fd);
    return most < 0 ? -1 : original(fd, bytes, static_cast<size_t>(most));
}

ssize_t pwrite(int fd, const void* bytes, size_t size, off_t place) {
    REAL(pwrite);
    const ssize_t most = allowance(CallClass::write, "pwrite", size, fd);
    return most < 0 ? -1 : original(fd, bytes, static_cast<size_t>(most), place);
}

ssize_t copy_file_range(int from, off_t* fromPlace, int to, off_t* toPlace, size_t size, unsigned flags) {
    REAL(copy_file_range);
    // Half of a portion is more than any file here has: a short copy moves a few bytes.
    const ssize_t most = allowance(CallClass::write, "copy_file_range", size, to);
    const auto portion = most >= 0 && static_cast<size_t>(most) < size ? size_t{3} : size;
    return most < 0 ? -1 : original(from, fromPlace, to, toPlace, portion, flags);
}

FAILING(write, ssize_t, writev, (int fd, const iovec* pieces, int count), (fd, pieces, count))
FAILING(write, ssize_t, sendfile, (int to, int from, off_t* place, size_t size), (to, from, place, size))

size_t fwrite(const void* bytes, size_t size, size_t count, FILE* stream) {
    REAL(fwrite);
    return stream == stdout && fails(CallClass::output, "fwrite") ? 0 : original(bytes, size, count, stream);
}

int fflush(FILE* stream) {
    REAL(fflush);
    return stream == stdout && fails(CallClass::output, "fflush") ? EOF : original(stream);
}

// The C library's own names for its allocator: a look-up would need memory.
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) {
    return fails(CallClass::memory, "malloc") ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return fails(CallClass::memory, "calloc") ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    return fails(CallClass::memory, "realloc") ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return fails(CallClass::memory, "aligned_alloc") ? nullptr : __libc_memalign(alignment, size);
}

} // extern "C"

#pragma GCC diagnostic pop
// NOLINTEND
