#include "system/terminal.h"

#include "templates/selector/selector_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace morquill::system {
namespace {

/// The reading end of a pipe that contains a text, followed by the end of input.
class Input {
  public:
    explicit Input(std::string_view text) {
        EXPECT_EQ(::pipe(ends), 0);
        EXPECT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        ::close(ends[1]);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;
    ~Input() { ::close(ends[0]); }
    [[nodiscard]] int descriptor() const { return ends[0]; }

  private:
    int ends[2]{};
};

std::vector<std::int32_t> keysOf(std::string_view text) {
    const Input input(text);
    std::vector<std::int32_t> keys;
    do {
        keys.push_back(readKey(input.descriptor()));
    } while (keys.back() != key::endOfInput);
    keys.pop_back();
    return keys;
}

using ::testing::ElementsAre;

TEST(ReadKey, ReturnsBytesAndArrows) {
    EXPECT_THAT(keysOf("a\n\r \xff"), ElementsAre('a', 10, 13, ' ', 255));
    EXPECT_THAT(keysOf("\033[A\033[B\033[C\033[D"), ElementsAre(key::up, key::down, key::right, key::left));
}

TEST(ReadKey, ALoneEscTakesOneMoreKey) {
    EXPECT_THAT(keysOf("\033xy"), ElementsAre(key::escape, 'y'));
    EXPECT_THAT(keysOf("\033"), ElementsAre(key::escape));
}

TEST(ReadKey, OtherSequencesAreEsc) {
    EXPECT_THAT(keysOf("\033[H"), ElementsAre(key::escape));
    EXPECT_THAT(keysOf("\033[3~"), ElementsAre(key::escape, '~'));
    EXPECT_THAT(keysOf("\033["), ElementsAre(key::escape));
    EXPECT_THAT(keysOf("\033\033[A"), ElementsAre(key::escape, '[', 'A'));
}

TEST(ReadLine, KeepsEverythingButTheLineFeed) {
    const Input input(" a\r\n\nlast");
    EXPECT_EQ(readLine(input.descriptor()), " a\r");
    EXPECT_EQ(readLine(input.descriptor()), "");
    EXPECT_EQ(readLine(input.descriptor()), "last");
    EXPECT_EQ(readLine(input.descriptor()), std::nullopt);
}

/// A terminal of its own; the test plays the user.
class Terminal : public ::testing::Test {
  protected:
    void SetUp() override {
        user = ::posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_GE(user, 0);
        ASSERT_EQ(::grantpt(user), 0);
        ASSERT_EQ(::unlockpt(user), 0);
        program = ::open(::ptsname(user), O_RDWR | O_NOCTTY);
        ASSERT_GE(program, 0);
    }
    void TearDown() override {
        ::close(program);
        ::close(user);
    }
    void type(std::string_view text) const {
        ASSERT_EQ(::write(user, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    [[nodiscard]] bool isCooked() const {
        struct termios attributes {};
        EXPECT_EQ(::tcgetattr(program, &attributes), 0);
        return (attributes.c_lflag & (ICANON | ECHO)) == (ICANON | ECHO);
    }
    /// Waits until the program reads keys one by one.
    void waitForKeyMode() const {
        for (int i = 0; i < 10'000 && isCooked(); ++i) {
            ::usleep(1000);
        }
    }

    int user = -1;
    int program = -1;
};

TEST_F(Terminal, TheEndOfALineDialogueIsNotRemembered) {
    type("\x04");
    EXPECT_EQ(readLine(program), std::nullopt);
    type("word\n");
    EXPECT_EQ(readLine(program), "word");
    EXPECT_TRUE(isCooked());
}

TEST_F(Terminal, ASignalPutsTheAttributesBackAndShowsTheCursor) {
    for (const int signal : {SIGINT,  SIGTERM, SIGHUP,    SIGQUIT, SIGABRT,  SIGALRM, SIGBUS,    SIGFPE,
                             SIGILL,  SIGIO,   SIGPROF,   SIGPWR,  SIGSEGV,  SIGSYS,  SIGSTKFLT, SIGTRAP,
                             SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU, SIGRTMIN, SIGRTMAX}) {
        int output[2]{};
        ASSERT_EQ(::pipe(output), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::dup2(output[1], STDOUT_FILENO);
            std::signal(signal, SIG_DFL); // sanitizers have handlers of their own
            const rlimit noCore{};
            ::setrlimit(RLIMIT_CORE, &noCore);
            const TerminalSession session;
            (void)readKey(program);
            ::_exit(0);
        }
        ::close(output[1]);
        waitForKeyMode();
        ASSERT_EQ(::kill(child, signal), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_TRUE(isCooked()) << signal;
        char text[16]{};
        ASSERT_EQ(::read(output[0], text, sizeof text), 6) << signal;
        EXPECT_STREQ(text, "\033[?25h") << signal;
        ::close(output[0]);
    }
}

TEST_F(Terminal, AStopRestoresTheTerminalUntilTheProgramContinues) {
    const pid_t child = ::fork();
    if (child == 0) {
        // A group of its own: the kernel does not stop a process whose group is orphaned, as the test's own
        // group is when nobody's shell started it.
        ::setpgid(0, 0);
        ::close(STDOUT_FILENO);
        const TerminalSession session;
        ::_exit(readKey(program) == 'x' ? 0 : 1);
    }
    waitForKeyMode();
    ASSERT_EQ(::kill(child, SIGTSTP), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, WUNTRACED), child);
    EXPECT_TRUE(WIFSTOPPED(status));
    EXPECT_TRUE(isCooked());
    ASSERT_EQ(::kill(child, SIGCONT), 0);
    waitForKeyMode();
    type("x");
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_TRUE(isCooked());
}

TEST_F(Terminal, AfterAStopTheScreenIsDrawnAgainOnceAndTheKeyThatWasAwaitedComes) {
    int output[2]{};
    ASSERT_EQ(::pipe(output), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        ::dup2(output[1], STDOUT_FILENO);
        const TerminalSession session;
        int drawn = 0;
        const auto pressed = readKey(program, [&] { drawn += ::write(output[1], "drawn", 5) == 5 ? 1 : 0; });
        ::_exit(pressed == 'x' && drawn == 1 ? 0 : 1);
    }
    waitForKeyMode();
    for (const int signal : {SIGSTOP, SIGCONT}) {
        ASSERT_EQ(::kill(child, signal), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, WUNTRACED | WCONTINUED), child);
    }
    char text[8]{};
    EXPECT_EQ(::read(output[0], text, 5), 5);
    EXPECT_STREQ(text, "drawn");
    EXPECT_FALSE(isCooked());
    type("x");
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_TRUE(isCooked());
    ::close(output[0]);
    ::close(output[1]);
}

TEST(TerminalSession, LeavesIgnoredSignalsIgnoredAndPutsHandlersBack) {
    struct sigaction before {};
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    ASSERT_EQ(::sigaction(SIGHUP, &ignored, &before), 0);
    struct sigaction seen {};
    {
        const TerminalSession session;
        ::sigaction(SIGHUP, nullptr, &seen);
        EXPECT_EQ(seen.sa_handler, SIG_IGN);
        ::sigaction(SIGTERM, nullptr, &seen);
        EXPECT_NE(seen.sa_handler, SIG_DFL);
    }
    ::sigaction(SIGTERM, nullptr, &seen);
    EXPECT_EQ(seen.sa_handler, SIG_DFL);
    ::sigaction(SIGHUP, &before, nullptr);
}

} // namespace
} // namespace morquill::system
