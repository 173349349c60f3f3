#include "system/process_tree.h"

#include "support/descriptor.h"
#include "support/text.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace morquill::system {

namespace {

// This runs in signal handlers: no allocation, no lock, no stream.

/// More than any one command is expected to start; the rest of a larger tree is left out.
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

/// Reads the numbers of the children, each followed by a blank, and lists the children in the session.
class ChildrenReader {
  public:
    ChildrenReader(pid_t session, ProcessList& list) noexcept : session_(session), list_(list) {}

    /// Takes the next portion of the text; a number may continue in the one after it.
    void take(std::string_view portion) noexcept {
        for (const char c : portion) {
            if (isDigit(c)) {
                child_ = child_ * 10 + (c - '0');
            } else {
                finishNumber();
            }
        }
    }

  private:
    void finishNumber() noexcept {
        if (child_ > 0 && ::getsid(child_) == session_) {
            list_.add(child_);
        }
        child_ = 0;
    }

    pid_t session_;
    ProcessList& list_;
    pid_t child_ = 0;
};

/// Adds the children of a process that belong to the session.
void addChildren(pid_t process, pid_t session, ProcessList& list) noexcept {
    const ChildrenPath path(process);
    const Descriptor file(::open(path.text.data(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        return;
    }
    ChildrenReader reader(session, list);
    std::array<char, 4096> buffer;
    ssize_t size = 0;
    while ((size = readSome(file.get(), buffer.data(), buffer.size())) > 0) {
        reader.take({buffer.data(), static_cast<std::size_t>(size)});
    }
}

} // namespace

void signalProcessTree(pid_t process, int number) noexcept {
    ProcessList list;
    list.add(process);
    const pid_t session = ::getsid(process);
    // The whole tree is collected before any process ends: children of an ended one are no longer listed.
    for (std::size_t i = 0; i < list.size; ++i) {
        addChildren(list.processes[i], session, list);
    }
    for (std::size_t i = 0; i < list.size; ++i) {
        (void)::kill(list.processes[i], number);
    }
}

} // namespace morquill::system
