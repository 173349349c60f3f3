#include "system/process.h"
#include "system/signal_guard.h"

#include "fixtures/scratch_tree.h"

#include <csignal>
#include <cstdlib>
#include <functional>

#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>

namespace morquill::system {
namespace {

const int endSignals[] = {SIGHUP,    SIGINT,  SIGQUIT,  SIGTERM,      SIGALRM, SIGUSR1,
                          SIGUSR2,   SIGXCPU, SIGPOLL,  SIGVTALRM,    SIGPROF, SIGPWR,
                          SIGSTKFLT, SIGABRT, SIGRTMIN, SIGRTMIN + 7, SIGRTMAX};

/// Runs `action` in a child of the test; the child's wait status.
int statusOfChild(const std::function<void()>& action) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        // A test run in the background starts with some of them ignored, and ignored they would stay.
        for (const int number : endSignals) {
            std::signal(number, SIG_DFL);
        }
        action();
        ::_exit(42);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

class Signals : public ScratchTree {
  protected:
    /// The process number that a child left in a file, 0 for none.
    [[nodiscard]] pid_t pidIn(const std::string& name) const {
        return static_cast<pid_t>(std::atol(readTextFile(at(name)).value_or("").c_str()));
    }
    /// True when a process that is no child of the test ends within ten seconds, waited for or not.
    static bool endsSoon(pid_t process) {
        for (int i = 0; i < 1000 && process > 1; ++i) {
            const auto state = readTextFile("/proc/" + std::to_string(process) + "/stat").value_or(") Z");
            if (state.find(") Z") != std::string::npos) {
                return true;
            }
            ::usleep(10'000);
        }
        return false;
    }
    /// Also true, so that no test passes by it, for a number that is none; a running process is ended.
    static bool isRunning(pid_t process) { return process <= 1 || ::kill(process, SIGKILL) == 0; }
};

TEST_F(Signals, AreNotedUntilTheGuardGoesAndEndTheProcessThen) {
    for (const int number : endSignals) {
        const int status = statusOfChild([&] {
            const SignalGuard guard;
            ::raise(number);
            ::raise(SIGTERM); // the first one counts
            write("alive", std::to_string(guard.noted()));
        });
        EXPECT_EQ(readTextFile(at("alive")), std::to_string(number));
        ASSERT_TRUE(WIFSIGNALED(status)) << number;
        EXPECT_EQ(WTERMSIG(status), number);
    }
}

TEST_F(Signals, AreNotedOnceByGuardsWithinEachOther) {
    const int status = statusOfChild([&] {
        const SignalGuard outer;
        {
            const SignalGuard inner;
            ::raise(SIGUSR1);
        }
        const SignalGuard later;
        write("alive", std::to_string(outer.noted()) + " " + std::to_string(later.noted()));
    });
    EXPECT_EQ(readTextFile(at("alive")), std::to_string(SIGUSR1) + " " + std::to_string(SIGUSR1));
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGUSR1);
}

TEST_F(Signals, ThatNeverCameChangeNothing) {
    const int status = statusOfChild([] {
        { const SignalGuard guard; }
        std::signal(SIGHUP, SIG_IGN);
        {
            const SignalGuard guard;
            ::raise(SIGHUP); // ignored before, ignored still
        }
        std::signal(SIGUSR1, [](int) {});
        {
            const SignalGuard guard;
            ::raise(SIGUSR1); // so does one that the program deals with
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

TEST_F(Signals, ReachWhatTheShellWaitsFor) {
    const int status = statusOfChild([&] {
        (void)spawnShell(
            "sh -c 'echo $$ >pid; exec sleep 30' & sleep 0.2; kill -TERM $PPID; wait; touch later", "");
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_TRUE(endsSoon(pidIn("pid")));
    EXPECT_FALSE(isRegularFile(at("later")));
}

TEST_F(Signals, DoNotKeepAnAbortFromEndingTheProgram) {
    const int status = statusOfChild([] {
        const SignalGuard guard;
        std::abort();
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGABRT);
}

TEST_F(Signals, EndTheProgramOnlyAfterTheChildThatItWaitsFor) {
    for (const int number : {SIGTERM, SIGUSR2}) {
        const int status = statusOfChild([&] {
            (void)spawnShell("echo $$ >pid; kill -" + std::to_string(number) + " $PPID; exec sleep 30", "");
        });
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_FALSE(isRunning(pidIn("pid")));
    }
}

TEST_F(Signals, OfTheSystemToThisProgramAloneReachTheChild) {
    const int status = statusOfChild([] {
        const itimerval soon{{0, 0}, {0, 200'000}};
        ::setitimer(ITIMER_REAL, &soon, nullptr); // as an alarm that was set before the program began
        (void)spawnShell("echo $$ >pid; exec sleep 30", "");
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGALRM);
    EXPECT_FALSE(isRunning(pidIn("pid")));
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
