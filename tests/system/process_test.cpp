#include "system/process.h"

#include "fixtures/no_descriptor_left.h"
#include "fixtures/temporary_directory.h"
#include "support/file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
int forkError = 0; // what the system answers with in the tests that need it
int waitError = 0;
} // namespace

// These replace those of the C library, to simulate a system that cannot start another process.
extern "C" pid_t fork() noexcept {
    errno = forkError;
    return forkError != 0 ? -1 : ::_Fork();
}
extern "C" pid_t waitpid(pid_t child, int* status, int options) {
    if (waitError != 0) {
        ::wait4(child, status, options, nullptr); // no child is left over
        errno = waitError;
        return -1;
    }
    return ::wait4(child, status, options, nullptr);
}

namespace morquill::system {
namespace {

namespace fs = std::filesystem;

class Process : public ::testing::Test {
  protected:
    [[nodiscard]] std::string at(const std::string& name) const { return directory.path(name); }

    TemporaryDirectory directory;
    fs::path dir = directory.root();
};

TEST_F(Process, AnExitWithZeroIsSuccess) {
    EXPECT_EQ(runProgram("", "true", {}), std::nullopt);
    EXPECT_EQ(runShellCommand("", " exit 0\n"), std::nullopt);
    const ProcessResult result = spawnProgram({"true"}, "");
    EXPECT_TRUE(result.launched && result.exited && !result.terminatedBySignal);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.error, "");
}

TEST_F(Process, TheChildRunsInItsDirectoryWithUnchangedArguments) {
    const std::string script = at("show");
    ASSERT_TRUE(writeTextFile(script, "#!/bin/sh\npwd -P >out\nfor a do printf '<%s>' \"$a\" >>out; done\n"));
    fs::permissions(script, fs::perms::owner_all);
    EXPECT_EQ(runProgram(dir.string(), script, {"a b", "", "$(x)", "'q'", "-n", "\xff\n"}), std::nullopt);
    EXPECT_EQ(readTextFile(at("out")), fs::canonical(dir).string() + "\n<a b><><$(x)><'q'><-n><\xff\n>");
}

TEST_F(Process, FailuresAreReportedInOneLine) {
    const std::string gone = at("gone");
    ASSERT_TRUE(writeTextFile(at("data"), "no program"));
    const struct {
        std::string command;
        std::string text;
    } shellRows[] = {
        {"exit 3", "shell command exited with code 3"},
        {"exit 127", "shell command exited with code 127"},
        {"no-such-program-of-mqkit 2>/dev/null", "shell command exited with code 127"},
        {"kill -TERM $$", "process terminated by signal 15"},
        {"kill -KILL $$", "process terminated by signal 9"},
        {" \t\n", "command is empty"},
        {"", "command is empty"},
    };
    for (const auto& row : shellRows) {
        EXPECT_EQ(runShellCommand("", row.command), row.text) << row.command;
    }
    const struct {
        std::string dir;
        std::string program;
        std::string text;
    } programRows[] = {
        {"", "", "program name is empty"},
        {"", "false", "program 'false' exited with code 1"},
        {"", "no-such-program-of-mqkit",
         "failed to execute 'no-such-program-of-mqkit': No such file or directory"},
        {"", at("data"), "failed to execute '" + at("data") + "': Permission denied"},
        {gone, "true", "failed to change working directory to '" + gone + "': No such file or directory"},
        {at("data"), "true", "failed to change working directory to '" + at("data") + "': Not a directory"},
    };
    for (const auto& row : programRows) {
        EXPECT_EQ(runProgram(row.dir, row.program, {}), row.text);
    }
    EXPECT_EQ(runShellCommand(gone, "true"),
              "failed to change working directory to '" + gone + "': No such file or directory");
}

TEST_F(Process, TheRecordDistinguishesAFailedStartFromAnExit) {
    const ProcessResult missing = spawnProgram({"no-such-program-of-mqkit"}, "");
    EXPECT_FALSE(missing.launched || missing.exited || missing.terminatedBySignal);
    EXPECT_EQ(spawnProgram({}, "").error, "program name is empty");
    const ProcessResult killed = spawnShell("kill -9 $$", "");
    EXPECT_TRUE(killed.launched && killed.terminatedBySignal && !killed.exited);
    EXPECT_EQ(killed.signalNumber, 9);
    const ProcessResult left = spawnShell("exit 200", "");
    EXPECT_TRUE(left.launched && left.exited);
    EXPECT_EQ(left.exitCode, 200);
}

TEST_F(Process, AnArgumentListThatIsTooLongNamesTheProgram) {
    EXPECT_EQ(runProgram("", "true", std::vector<std::string>(1, std::string(1 << 20, 'x'))),
              "failed to execute 'true': Argument list too long");
    EXPECT_EQ(runShellCommand("", ": " + std::string(1 << 20, 'x')),
              "failed to execute shell command via /bin/sh: Argument list too long");
}

TEST_F(Process, AFailureTextLongerThanAPipeDoesNotHang) {
    const std::string name(200'000, 'p');
    EXPECT_EQ(runProgram("", name, {}), "failed to execute '" + name + "': File name too long");
}

TEST_F(Process, NoDescriptorLeftForThePipe) {
    const auto failure = [] {
        const NoDescriptorLeft limit;
        return runProgram("", "true", {});
    }();
    EXPECT_EQ(failure, "failed to create process error pipe: Too many open files");
}

TEST_F(Process, NoRoomForAProcess) {
    forkError = EAGAIN;
    const auto failure = runShellCommand("", "true");
    forkError = 0;
    EXPECT_EQ(failure, "failed to fork child process: Resource temporarily unavailable");
}

TEST_F(Process, AChildThatCannotBeWaitedFor) {
    waitError = ECHILD;
    const ProcessResult result = spawnShell("true", "");
    waitError = 0;
    EXPECT_TRUE(result.launched);
    EXPECT_FALSE(result.exited || result.terminatedBySignal);
    EXPECT_EQ(result.error, "failed to wait for child process: No child processes");
    EXPECT_EQ(describeProcessFailure("shell command", result), result.error);
}

TEST_F(Process, DescribesEveryWayToFail) {
    ProcessResult result;
    EXPECT_EQ(describeProcessFailure("shell command", result), "shell command could not be launched");
    result.error = "failed to fork child process: x";
    EXPECT_EQ(describeProcessFailure("shell command", result), "failed to fork child process: x");
    result.launched = true;
    EXPECT_EQ(describeProcessFailure("shell command", result), "failed to fork child process: x");
    result.error = "";
    EXPECT_EQ(describeProcessFailure("program 'a'", result), "program 'a' ended abnormally");
    result.exited = true;
    result.exitCode = 4;
    EXPECT_EQ(describeProcessFailure("program 'a'", result), "program 'a' exited with code 4");
}

TEST_F(Process, SignalsOfTheParentDoNotReachTheChild) {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGTERM);
    sigset_t before;
    ASSERT_EQ(::sigprocmask(SIG_BLOCK, &held, &before), 0);
    const auto oldInterrupt = std::signal(SIGINT, SIG_IGN);
    EXPECT_EQ(runShellCommand("", "kill -TERM $$; exit 5"), "process terminated by signal 15");
    EXPECT_EQ(runShellCommand("", "kill -INT $$; exit 5"), "process terminated by signal 2");
    std::signal(SIGINT, oldInterrupt);
    ASSERT_EQ(::sigprocmask(SIG_SETMASK, &before, nullptr), 0);
}

TEST_F(Process, AHangUpThatIsIgnoredStaysIgnored) {
    const auto before = std::signal(SIGHUP, SIG_IGN);
    EXPECT_EQ(runShellCommand("", "kill -HUP $$; exit 5"), "shell command exited with code 5");
    std::signal(SIGHUP, before);
}

TEST_F(Process, TheWaitGoesOnAcrossInterruptions) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGALRM, &action, &before), 0); // without SA_RESTART: system calls come back early
    ::ualarm(2000, 2000);
    const auto failure = runShellCommand("", "sleep 0.05");
    ::ualarm(0, 0);
    ASSERT_EQ(::sigaction(SIGALRM, &before, nullptr), 0);
    EXPECT_EQ(failure, std::nullopt);
}

TEST_F(Process, WhatWasPrintedBeforeComesBeforeTheChildsOutput) {
    const std::string out = at("out");
    const int saved = ::dup(STDOUT_FILENO);
    std::fflush(stdout);
    ASSERT_NE(std::freopen(out.c_str(), "w", stdout), nullptr);
    std::fputs("first\n", stdout);
    const auto failure = runShellCommand("", "echo second");
    std::fputs("third\n", stdout);
    std::fflush(stdout);
    ::dup2(saved, STDOUT_FILENO);
    ::close(saved);
    EXPECT_EQ(failure, std::nullopt);
    EXPECT_EQ(readTextFile(out), "first\nsecond\nthird\n");
}

} // namespace
} // namespace morquill::system
