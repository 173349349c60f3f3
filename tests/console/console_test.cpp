#include "console/console.h"

#include "fixtures/console_fixtures.h"

#include <csignal>

#include <sys/resource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::console {
namespace {

using testing::ScopedEnv;
using testing::throughPipe;
using testing::throughTerminal;

/// Colour is allowed by the environment, and no decision was made.
class Color : public ::testing::Test {
  protected:
    Color() { forgetColorDecision(); }
    ~Color() override { forgetColorDecision(); }
    ScopedEnv noColor{"NO_COLOR", std::nullopt};
    ScopedEnv term{"TERM", "xterm-256color"};

    static bool decide(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "mqkit");
        return decideColor(static_cast<int>(arguments.size()), arguments.data());
    }
    static std::string headingOnTerminal() {
        return throughTerminal({STDOUT_FILENO}, [] { writeOut(cyanHeading("Usage:")); });
    }
};

TEST(Console, StandardOutputComesBeforeWhatIsWrittenToStandardErrorAfterIt) {
    const auto text = throughPipe({STDOUT_FILENO, STDERR_FILENO}, [] {
        writeOut("one ");
        writeErr("two ");
        writeOut("three ");
        flushOut();
        writeErr("four");
    });
    EXPECT_EQ(text, "one two three four");
}

TEST(Console, AnyBytesGoOutAsTheyAre) {
    const std::string bytes("a\0\xff\x1b\r\n", 6);
    EXPECT_EQ(throughPipe({STDOUT_FILENO}, [&] { writeOut(bytes); }), bytes);
    EXPECT_EQ(throughPipe({STDERR_FILENO}, [&] { writeErr(bytes); }), bytes);
}

TEST(ConsoleStreams, ClosedStreamsAreOpenedOnNothing) {
    EXPECT_EXIT(
        {
            ::close(STDIN_FILENO);
            ::close(STDOUT_FILENO);
            prepareStandardStreams();
            char byte = 0;
            const bool endOfInput = ::read(STDIN_FILENO, &byte, 1) == 0;
            const bool file = ::open("/dev/null", O_RDONLY) > STDERR_FILENO;
            std::_Exit(finishOutput(0) == 0 && endOfInput && file ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "^$");
}

TEST(ConsoleStreams, OutputToAClosedStreamIsLostOutput) {
    EXPECT_EXIT(
        {
            ::close(STDOUT_FILENO);
            prepareStandardStreams();
            const bool childrenCanWrite = ::write(STDOUT_FILENO, "x", 1) == 1;
            writeOut("");
            const int quiet = finishOutput(0);
            writeOut("lost");
            std::_Exit(childrenCanWrite && quiet == 0 ? finishOutput(0) : 2);
        },
        ::testing::ExitedWithCode(1),
        "^\\[mqkit\\]\\[ERROR\\] could not write to standard output: Bad file descriptor\n$");
}

TEST(ConsoleStreams, AFileThatMayNotGrowIsAFailedWrite) {
    EXPECT_EXIT(
        {
            std::signal(SIGXFSZ, SIG_DFL);
            prepareStandardStreams();
            rlimit small{};
            small.rlim_cur = small.rlim_max = 8192; // the message may lead to a file, too
            ::setrlimit(RLIMIT_FSIZE, &small);
            ::dup2(::fileno(std::tmpfile()), STDOUT_FILENO);
            writeOut(std::string(100'000, 'x'));
            std::_Exit(finishOutput(0));
        },
        ::testing::ExitedWithCode(1),
        "^\\[mqkit\\]\\[ERROR\\] could not write to standard output: File too large\n$");
}

TEST(ConsoleStreams, AReaderThatWentAwayIsAQuietFailure) {
    const auto writeToNobody = [](int status) {
        int ends[2];
        if (::pipe(ends) == 0 && ::close(ends[0]) == 0 && ::dup2(ends[1], STDOUT_FILENO) >= 0) {
            prepareStandardStreams();
            writeOut("lost");
            flushOut();
            writeOut("lost too");
            std::_Exit(finishOutput(status));
        }
    };
    EXPECT_EXIT(writeToNobody(7), ::testing::ExitedWithCode(7), "^$");
    EXPECT_EXIT(writeToNobody(0), ::testing::ExitedWithCode(1), "^$");
}

TEST(ConsoleStreams, LostOutputIsReportedAndTurnsSuccessIntoFailure) {
    const auto finishOnFullDisk = [](int status) {
        ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
        prepareStandardStreams();
        writeOut("lost");
        std::_Exit(finishOutput(status));
    };
    const char* message =
        "^\\[mqkit\\]\\[ERROR\\] could not write to standard output: No space left on device\n$";
    EXPECT_EXIT(finishOnFullDisk(0), ::testing::ExitedWithCode(1), message);
    EXPECT_EXIT(finishOnFullDisk(2), ::testing::ExitedWithCode(2), message);
}

TEST(ConsoleStreams, ChildProgramsStillDieOfABrokenPipe) {
    EXPECT_EXIT(
        {
            prepareStandardStreams();
            ::execl("/bin/sh", "sh", "-c", "kill -PIPE $$; exit 0", nullptr);
        },
        ::testing::KilledBySignal(SIGPIPE), "");
}

TEST(ConsoleStreams, AnIgnoredBrokenPipeStaysIgnored) {
    EXPECT_EXIT(
        {
            std::signal(SIGPIPE, SIG_IGN);
            prepareStandardStreams();
            std::_Exit(std::signal(SIGPIPE, SIG_DFL) == SIG_IGN ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(ConsoleColor, EachCodeHasItsSequence) {
    const std::pair<int, std::string_view> rows[] = {{1, "\x1b[31m"}, {2, "\x1b[33m"}, {3, "\x1b[32m"},
                                                     {4, "\x1b[37m"}, {5, "\x1b[34m"}, {6, "\x1b[36m"},
                                                     {7, "\x1b[35m"}, {0, ""},         {8, ""}};
    for (const auto& [code, sequence] : rows) {
        EXPECT_EQ(colorSequence(static_cast<ConsoleColor>(code)), sequence) << code;
    }
    EXPECT_EQ(static_cast<int>(ConsoleColor::red), 1);
    EXPECT_EQ(static_cast<int>(ConsoleColor::yellow), 2);
    EXPECT_EQ(static_cast<int>(ConsoleColor::green), 3);
    EXPECT_EQ(static_cast<int>(ConsoleColor::white), 4);
    EXPECT_EQ(static_cast<int>(ConsoleColor::blue), 5);
    EXPECT_EQ(static_cast<int>(ConsoleColor::cyan), 6);
    EXPECT_EQ(static_cast<int>(ConsoleColor::magenta), 7);
    EXPECT_EQ(resetSequence, "\x1b[0m");
    EXPECT_EQ(boldSequence, "\x1b[1m");
}

TEST_F(Color, WrappersColourATerminal) {
    const auto text = throughTerminal({STDOUT_FILENO, STDERR_FILENO}, [] {
        writeOut(cyanHeading("A") + "|" + yellowHeading("B") + "|" + greenText("C") + "|" + errorTag("tool") +
                 "|" + errorTag("") + "|" +
                 styled("D", ConsoleColor::magenta, Weight::normal, Stream::error));
    });
    EXPECT_EQ(text, "\x1b[1m\x1b[36mA\x1b[0m|\x1b[1m\x1b[33mB\x1b[0m|\x1b[32mC\x1b[0m|"
                    "\x1b[1m\x1b[31m[tool][ERROR]\x1b[0m|\x1b[1m\x1b[31m[mqkit][ERROR]\x1b[0m|"
                    "\x1b[35mD\x1b[0m");
}

TEST_F(Color, EachStreamIsAskedForItself) {
    const auto text = throughTerminal({STDERR_FILENO}, [] {
        writeErr(throughPipe({STDOUT_FILENO}, [] { writeOut(cyanHeading("A") + errorTag()); }));
    });
    EXPECT_EQ(text, "A\x1b[1m\x1b[31m[mqkit][ERROR]\x1b[0m");
}

TEST_F(Color, APipeIsNotColoured) {
    const auto text = throughPipe({STDOUT_FILENO, STDERR_FILENO}, [] {
        writeOut(cyanHeading("A") + yellowHeading("B") + greenText("C") + errorTag());
    });
    EXPECT_EQ(text, "ABC[mqkit][ERROR]");
}

TEST_F(Color, OnlyTheTerminalNamedDumbHasNone) {
    const std::pair<std::optional<std::string>, bool> rows[] = {
        {"dumb", false}, {"dumber", true}, {"Dumb", true}, {"", true}, {std::nullopt, true}};
    for (const auto& [name, colored] : rows) {
        const ScopedEnv env("TERM", name);
        EXPECT_EQ(headingOnTerminal() != "Usage:", colored) << name.value_or("unset");
    }
}

TEST_F(Color, NoColorCountsByItsPresence) {
    for (const char* value : {"", "0", "1"}) {
        const ScopedEnv env("NO_COLOR", value);
        EXPECT_EQ(headingOnTerminal(), "Usage:") << value;
        EXPECT_FALSE(decide({"fmt"})) << value;
        forgetColorDecision();
    }
}

TEST_F(Color, TheDecisionIsTakenOnceAndOutlivesTheEnvironment) {
    EXPECT_TRUE(decide({"fmt"}));
    {
        const ScopedEnv env("NO_COLOR", "1");
        EXPECT_NE(headingOnTerminal(), "Usage:");
    }
    EXPECT_FALSE(decide({"project", "exec", "--", "--no-color"}));
    EXPECT_EQ(headingOnTerminal(), "Usage:");
}

TEST(Arguments, HelpTokensAreThreeExactWords) {
    for (const char* token : {"-h", "help", "--help"}) {
        EXPECT_TRUE(isHelpToken(token)) << token;
    }
    for (const char* token : {"", "-H", "HELP", "--HELP", "-help", "h", "--h", "help "}) {
        EXPECT_FALSE(isHelpToken(token)) << token;
    }
}

TEST(Arguments, FlagsAreExactAndFollowTheProgramPath) {
    const char* arguments[] = {"--no-color", "x", "--", "--flag"};
    EXPECT_FALSE(isFlagPresent(4, arguments, "--no-color"));
    EXPECT_TRUE(isFlagPresent(4, arguments, "--flag"));
    EXPECT_FALSE(isFlagPresent(4, arguments, "--fla"));
    EXPECT_FALSE(isFlagPresent(4, arguments, "--FLAG"));
    EXPECT_FALSE(isFlagPresent(0, nullptr, "--flag"));
}

TEST(Arguments, TheBaseNameOfTheProgramIsItsLastComponent) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"mqkit", "mqkit"},       {"/usr/bin/mqkit", "mqkit"},
        {"./mqkit", "mqkit"},     {"C:\\bin\\mqkit", "mqkit"},
        {"/opt/kit/\\/", "kit"},  {"", "program"},
        {"/", "program"},         {"\\/\\", "program"},
        {"a/b\\my kit", "my kit"}};
    for (const auto& [path, name] : rows) {
        EXPECT_EQ(toolBaseName(path), name) << path;
    }
}

} // namespace
} // namespace morquill::console
