#include "system/process_tree.h"

#include "fixtures/scratch_tree.h"

#include <chrono>
#include <csignal>
#include <thread>

#include <sys/wait.h>

namespace morquill::system {
namespace {

class ProcessTree : public ScratchTree {
  protected:
    /// Starts a shell with this script; its process number.
    static pid_t start(const char* script) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl("/bin/sh", "sh", "-c", script, nullptr);
            ::_exit(127);
        }
        return child;
    }
    /// The process number in a file, waited for up to ten seconds.
    pid_t pidIn(const std::string& name) const {
        for (int i = 0; i < 1000; ++i) {
            if (const auto text = readTextFile(at(name)).value_or(""); text.ends_with('\n')) {
                return static_cast<pid_t>(std::stol(text));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ADD_FAILURE() << name;
        return -1;
    }
    /// True when the process has ended within ten seconds, reaped or not.
    static bool ends(pid_t process) {
        for (int i = 0; i < 1000; ++i) {
            const auto state = readTextFile("/proc/" + std::to_string(process) + "/stat").value_or(") Z");
            if (state.find(") Z") != std::string::npos) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    static int statusOf(pid_t child) {
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return status;
    }
};

TEST_F(ProcessTree, HearsASignalDownToItsLeaves) {
    const pid_t top = start("sh -c 'sleep 60 & echo $! >leaf; wait; touch later'; touch later");
    const pid_t leaf = pidIn("leaf");
    signalProcessTree(top, SIGTERM);
    const int status = statusOf(top);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_TRUE(ends(leaf));
    EXPECT_FALSE(isRegularFile(at("later")));
}

TEST_F(ProcessTree, ReachesOtherGroupsButNoOtherSession) {
    const pid_t top = start("timeout 60 sh -c 'echo $$ >group; exec sleep 60' & "
                            "setsid sh -c 'echo $$ >session; exec sleep 60' & wait");
    const pid_t group = pidIn("group");
    const pid_t session = pidIn("session");
    signalProcessTree(top, SIGTERM);
    EXPECT_TRUE(WIFSIGNALED(statusOf(top)));
    EXPECT_TRUE(ends(group));
    EXPECT_EQ(::kill(session, SIGKILL), 0); // it runs still
}

TEST_F(ProcessTree, OfOneProcessIsThatProcess) {
    const pid_t top = start("echo $$ >pid; exec sleep 60");
    EXPECT_EQ(pidIn("pid"), top);
    signalProcessTree(top, SIGUSR1);
    EXPECT_EQ(WTERMSIG(statusOf(top)), SIGUSR1);
}

} // namespace
} // namespace morquill::system
