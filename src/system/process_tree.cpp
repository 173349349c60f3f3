#include "system/process_tree.h"

#include "support/descriptor.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace morquill::system {

namespace {

// Nothing here may allocate, lock or use a stream: it runs in signal handlers.

/// Enough for any tree that one command has started.
constexpr std::size_t mostProcesses = 2048;

struct ProcessList {
    std::array<pid_t, mostProcesses> processes;
    std::size_t size = 0;

    void add(pid_t process) noexcept {
        if (size < processes.size()) {
            processes[size++] = process;
        }
    }
};

/// "/proc/<process>/task/<process>/children"
struct ChildrenPath {
    std::array<char, 64> text{};
    std::size_t size = 0;

    explicit ChildrenPath(pid_t process) noexcept {
        append("/proc/");
        append(process);
        append("/task/");
        append(process);
        append("/children");
    }
    void append(std::string_view piece) noexcept {
        for (const char c : piece) {
            text[size++] = c;
        }
    }
    void append(pid_t process) noexcept {
        std::array<char, 16> digits{};
        std::size_t first = digits.size();
        do {
            digits[--first] = static_cast<char>('0' + process % 10);
            process /= 10;
        } while (process > 0);
        append(std::string_view(digits.data() + first, digits.size() - first));
    }
};

/// Adds the children of a process that are in this session: numbers with a blank behind each.
void addChildren(pid_t process, pid_t session, ProcessList& list) noexcept {
    const ChildrenPath path(process);
    const Descriptor file(::open(path.text.data(), O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> buffer;
    pid_t child = 0;
    ssize_t got = 0;
    while (file.isOpen() && (got = ::read(file.get(), buffer.data(), buffer.size())) > 0) {
        for (const char c : std::string_view(buffer.data(), static_cast<std::size_t>(got))) {
            if (c >= '0' && c <= '9') {
                child = child * 10 + (c - '0');
            } else {
                if (child > 0 && ::getsid(child) == session) {
                    list.add(child);
                }
                child = 0;
            }
        }
    }
}

} // namespace

void signalProcessTree(pid_t process, int number) noexcept {
    ProcessList list;
    list.add(process);
    const pid_t session = ::getsid(process);
    // The whole tree is known before the first of it ends: children of an ended process are not listed.
    for (std::size_t i = 0; i < list.size; ++i) {
        addChildren(list.processes[i], session, list);
    }
    for (std::size_t i = 0; i < list.size; ++i) {
        (void)::kill(list.processes[i], number);
    }
}

} // namespace morquill::system
