#include "system/process.h"

#include "console/console.h"
#include "support/descriptor.h"
#include "support/fault.h"
#include "support/text.h"
#include "system/signal_guard.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <new>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace morquill::system {

namespace {

constexpr int launchFailedStatus = 127; // no caller sees it: the text in the pipe takes precedence

/// What the child runs: a program, its arguments, and the message for a failed start.
struct Launch {
    int (*execute)(const char*, char* const*); ///< with or without a search along PATH
    const char* path;
    std::vector<char*> arguments; ///< ends in a null pointer
    std::string failure;          ///< precedes the system's text
    ChildStreams streams = {};
};

// A child must not start deaf because its parent blocks a signal for a while. A hang-up that was ignored when
// this program started (`nohup`) was meant for its children as well and stays ignored.
void resetSignals() {
    struct sigaction current {};
    for (int number = 1; number < NSIG; ++number) {
        if (number == SIGHUP && ::sigaction(number, nullptr, &current) == 0 &&
            current.sa_handler == SIG_IGN) {
            continue;
        }
        // Fails for the two that cannot be changed and for those of the C library.
        std::signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void failInChild(int pipeEnd, const std::string& text) {
    (void)writeAll(pipeEnd, text);
    ::close(pipeEnd);
    ::_exit(launchFailedStatus);
}

void takeStream(int file, int stream, int pipeEnd) {
    if (file >= 0 && ::dup2(file, stream) < 0) {
        failInChild(pipeEnd, std::string("failed to redirect a standard stream: ") + systemErrorText(errno));
    }
}

[[noreturn]] void becomeChild(const Launch& launch, const std::string& workingDir, int pipeEnd) {
    resetSignals();
    takeStream(launch.streams.input, STDIN_FILENO, pipeEnd);
    takeStream(launch.streams.output, STDOUT_FILENO, pipeEnd);
    if (!workingDir.empty() && ::chdir(workingDir.c_str()) != 0) {
        failInChild(pipeEnd,
                    "failed to change working directory to '" + workingDir + "': " + systemErrorText(errno));
    }
    launch.execute(launch.path, launch.arguments.data());
    failInChild(pipeEnd, launch.failure + systemErrorText(errno));
}

/// How a launched child ended, from the status that the wait returned.
ProcessResult endOf(int status) {
    ProcessResult result;
    result.launched = true;
    if (WIFEXITED(status)) {
        result.exited = true;
        result.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.terminatedBySignal = true;
        result.signalNumber = WTERMSIG(status);
        result.error = "process terminated by signal " + std::to_string(result.signalNumber);
    } else {
        result.error = "process ended abnormally";
    }
    return result;
}

/// What a child wrote that could not become its program; empty for one that could, and without memory for the
/// text: whatever happens, the child has to be waited for.
std::string readFailure(int pipeEnd) noexcept {
    try {
        return readToEnd(pipeEnd).value_or("");
    } catch (const std::bad_alloc&) {
        return {};
    }
}

ProcessResult spawn(const Launch& launch, const std::string& workingDir) {
    ProcessResult result;
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        result.error = std::string("failed to create process error pipe: ") + systemErrorText(errno);
        return result;
    }
    const Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    const int flags = ::fcntl(writeEnd.get(), F_GETFD);
    if (flags < 0 || ::fcntl(writeEnd.get(), F_SETFD, flags | FD_CLOEXEC) < 0) {
        result.error = std::string("failed to configure process error pipe: ") + systemErrorText(errno);
        return result;
    }
    console::flushOut();
    const SignalGuard ending; // a signal ends this program only after the child has ended
    ChildSignals signals;
    const pid_t child = ::fork();
    if (child < 0) {
        result.error = std::string("failed to fork child process: ") + systemErrorText(errno);
        return result;
    }
    if (child == 0) {
        ::close(readEnd.get());
        becomeChild(launch, workingDir, writeEnd.get());
    }
    signals.watch(child);
    (void)writeEnd.close();
    result.launched = true;
    // The pipe is read before the wait: a failure text longer than the pipe's buffer must not block the
    // child. The text ends at the latest when the child's program starts, which closes the other end.
    const std::string launchFailure = readFailure(readEnd.get());
    // Wait without reaping first, so that a late signal cannot reach another process under a reused number.
    siginfo_t ended{};
    while (::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
    signals.release();
    int status = 0;
    pid_t waited = 0;
    do {
        waited = ::waitpid(child, &status, 0);
    } while (waited < 0 && errno == EINTR);
    if (waited < 0) {
        result.error = std::string("failed to wait for child process: ") + systemErrorText(errno);
    } else {
        result = endOf(status);
    }
    if (!launchFailure.empty()) {
        result = ProcessResult{};
        result.error = launchFailure;
    }
    return result;
}

std::optional<std::string> failureOf(const std::string& label, const ProcessResult& result) {
    return succeeded(result) ? std::nullopt : std::optional(describeProcessFailure(label, result));
}

} // namespace

ProcessResult spawnProgram(const std::vector<std::string>& argv, const std::string& workingDir,
                           ChildStreams streams) {
    if (argv.empty() || argv.front().empty()) {
        return {.error = "program name is empty"};
    }
    Launch launch{::execvp, argv.front().c_str(), {}, "failed to execute '" + argv.front() + "': ", streams};
    launch.arguments.reserve(argv.size() + 1);
    for (const std::string& argument : argv) {
        launch.arguments.push_back(const_cast<char*>(argument.c_str())); // exec does not modify them
    }
    launch.arguments.push_back(nullptr);
    return spawn(launch, workingDir);
}

ProcessResult spawnShell(const std::string& command, const std::string& workingDir) {
    if (command.empty()) {
        return {.error = "command is empty"};
    }
    static constexpr const char* shell = "/bin/sh";
    const Launch launch{
        ::execv,
        shell,
        {const_cast<char*>(shell), const_cast<char*>("-c"), const_cast<char*>(command.c_str()), nullptr},
        "failed to execute shell command via /bin/sh: "};
    return spawn(launch, workingDir);
}

bool succeeded(const ProcessResult& result) noexcept {
    return result.launched && result.exited && result.exitCode == 0;
}

std::string describeProcessFailure(const std::string& label, const ProcessResult& result) {
    if (!result.launched) {
        return result.error.empty() ? label + " could not be launched" : result.error;
    }
    if (result.exited) {
        return label + " exited with code " + std::to_string(result.exitCode);
    }
    return result.error.empty() ? label + " ended abnormally" : result.error;
}

std::optional<std::string> runProgram(const std::string& workingDir, const std::string& program,
                                      const std::vector<std::string>& arguments) {
    std::vector<std::string> argv{program};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return failureOf("program '" + program + "'", spawnProgram(argv, workingDir));
}

std::optional<std::string> runShellCommand(const std::string& workingDir, const std::string& command) {
    return failureOf("shell command", spawnShell(std::string(trim(command)), workingDir));
}

} // namespace morquill::system
