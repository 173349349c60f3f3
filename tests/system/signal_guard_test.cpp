#include "system/process.h"
#include "system/signal_guard.h"

#include "fixtures/scratch_tree.h"

#include <csignal>
#include <functional>

#include <sys/wait.h>

namespace morquill::system {
namespace {

/// Runs `action` in a child of the test; the child's wait status.
int statusOfChild(const std::function<void()>& action) {
    const pid_t child = ::fork();
    if (child == 0) {
        // A test run in the background starts with some of them ignored, and ignored they would stay.
        for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
            std::signal(number, SIG_DFL);
        }
        action();
        ::_exit(42);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

class Signals : public ScratchTree {};

TEST_F(Signals, AreNotedUntilTheGuardGoesAndEndTheProcessThen) {
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        const int status = statusOfChild([&] {
            const SignalGuard guard;
            ::raise(number);
            ::raise(SIGTERM); // the first one counts
            write("alive", std::to_string(guard.noted()));
        });
        EXPECT_EQ(readTextFile(at("alive")), std::to_string(number));
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), number);
    }
}

TEST_F(Signals, ThatNeverCameChangeNothing) {
    const int status = statusOfChild([] {
        { const SignalGuard guard; }
        std::signal(SIGHUP, SIG_IGN);
        {
            const SignalGuard guard;
            ::raise(SIGHUP); // ignored before, ignored still
        }
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 42);
}

TEST_F(Signals, SentToThisProgramAloneReachTheChildItWaitsFor) {
    const int status = statusOfChild([&] {
        const SignalGuard guard;
        const auto result = spawnShell("kill -TERM $PPID; sleep 30", "");
        write("child", std::to_string(result.signalNumber) + " " + std::to_string(guard.noted()));
    });
    EXPECT_EQ(readTextFile(at("child")), "15 15");
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST_F(Signals, NotedBeforeTheChildStartsReachIt) {
    (void)statusOfChild([&] {
        const SignalGuard guard;
        ::raise(SIGINT);
        // Not through a shell: some hold SIGINT back until the command that they wait for has ended.
        const auto result = spawnProgram({"sleep", "30"}, "");
        write("child", std::to_string(result.signalNumber));
    });
    EXPECT_EQ(readTextFile(at("child")), "2");
}

} // namespace
} // namespace morquill::system
