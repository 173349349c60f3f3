#include "console/logger.h"

#include "fixtures/console_fixtures.h"
#include "support/file.h"
#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::console {
namespace {

using ::testing::MatchesRegex;
using testing::ScopedEnv;
using testing::throughPipe;
using testing::throughTerminal;

constexpr int out = STDOUT_FILENO;
constexpr int err = STDERR_FILENO;

/// A fresh logger, and a file name of its own that is gone afterwards.
class LoggerTest : public ::testing::Test {
  protected:
    LoggerTest() { logger.reset(); }
    ~LoggerTest() override {
        logger.reset();
        (void)std::remove(path.c_str());
    }

    /// The lines of the log file.
    [[nodiscard]] std::vector<std::string> fileLines() const {
        const auto text = readTextFile(path).value_or("missing");
        std::vector<std::string> lines;
        for (const auto line : splitLines(text)) {
            lines.emplace_back(line);
        }
        return lines;
    }
    /// Opens a session with a file and drops what it says on the console.
    void openFile(LogLevel fileLevel, LogLevel consoleLevel) {
        (void)throughPipe({out, err}, [&] { logger.openSession(path, fileLevel, consoleLevel, false); });
    }

    Logger& logger = Logger::instance();
    ScopedEnv noColor{"NO_COLOR", std::nullopt};
    ScopedEnv term{"TERM", "xterm"};
    std::string path = ::testing::TempDir() + "mqkit-log-" + std::to_string(::getpid()) + ".log";
};

const std::string stamp = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}";
const std::string rule(100, '=');

/// The line of a banner with START or END.
std::string bannerLine(const std::string& tool, const std::string& word) {
    return stamp + " \\[" + tool + "\\]\\[INFO\\] >>>>>>>>>>>>>>>>>>>> RUN " + word +
           " \\| session=" + stamp + " pid=" + std::to_string(::getpid()) +
           " seq=[0-9]+ <<<<<<<<<<<<<<<<<<<<";
}

TEST_F(LoggerTest, LevelsHaveNumbersNamesAndColours) {
    const std::tuple<int, std::string_view, ConsoleColor> rows[] = {
        {0, "DEBUG", ConsoleColor::cyan},    {1, "SKIP", ConsoleColor::white},
        {2, "INFO", ConsoleColor::white},    {3, "WARNING", ConsoleColor::yellow},
        {4, "ERROR", ConsoleColor::red},     {5, "UNKNOWN", ConsoleColor::white},
        {-1, "UNKNOWN", ConsoleColor::white}};
    for (const auto& [level, name, color] : rows) {
        EXPECT_EQ(logLevelName(static_cast<LogLevel>(level)), name);
        EXPECT_EQ(logLevelColor(static_cast<LogLevel>(level)), color);
    }
}

TEST_F(LoggerTest, EachOperationHasItsStreamPrefixAndLineEnd) {
    struct Row {
        void (*log)();
        std::string onOutput;
        std::string onError;
    };
    const Row rows[] = {
        {[] { logInfo("project created"); }, "project created\n", ""},
        {[] { logPrompt("project name: "); }, "[INFO] project name: ", ""},
        {[] { logSeparator(); }, "\n", ""},
        {[] { logWarning("odd"); }, "", "[WARNING] odd\n"},
        {[] { logError("bad"); }, "", "[ERROR] bad\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(throughPipe({out}, [&] { EXPECT_EQ(throughPipe({err}, row.log), row.onError); }),
                  row.onOutput);
    }
}

TEST_F(LoggerTest, OperationsKeepTheirOrderAcrossStreams) {
    EXPECT_EQ(throughPipe({out, err},
                          [] {
                              logInfo("1");
                              logWarning("2");
                              logSeparator();
                              logError("3");
                              logPrompt("4");
                          }),
              "1\n[WARNING] 2\n\n[ERROR] 3\n[INFO] 4");
}

TEST_F(LoggerTest, OnlyWarningsHeedTheConsoleThreshold) {
    for (const int threshold : {0, 1, 2, 3, 4}) {
        logger.openSession({}, LogLevel::Skip, static_cast<LogLevel>(threshold), false);
        EXPECT_EQ(throughPipe({out, err},
                              [] {
                                  logInfo("a");
                                  logPrompt("b");
                                  logWarning("c");
                                  logError("d");
                              }),
                  threshold <= 3 ? "a\n[INFO] b[WARNING] c\n[ERROR] d\n" : "a\n[INFO] b[ERROR] d\n")
            << threshold;
    }
}

TEST_F(LoggerTest, ATerminalGetsTheWholeLineInTheColourOfItsLevel) {
    EXPECT_EQ(throughTerminal({out, err},
                              [] {
                                  logInfo("a");
                                  logPrompt("b");
                                  logWarning("c");
                                  logError("d");
                                  logSeparator();
                              }),
              "\x1b[37ma\x1b[0m\n\x1b[37m[INFO] b\x1b[0m\x1b[33m[WARNING] c\x1b[0m\n"
              "\x1b[31m[ERROR] d\x1b[0m\n\n");
}

TEST_F(LoggerTest, ColourHangsOnTheSwitchNoColorAndTheTerminalButNotOnTerm) {
    const auto line = [] { return throughTerminal({out}, [] { logInfo("a"); }); };
    {
        const ScopedEnv dumb("TERM", "dumb");
        EXPECT_EQ(line(), "\x1b[37ma\x1b[0m\n");
    }
    {
        const ScopedEnv present("NO_COLOR", "");
        EXPECT_EQ(line(), "a\n");
    }
    logger.setConsoleColor(false);
    EXPECT_EQ(line(), "a\n");
    logger.reset();
    EXPECT_EQ(line(), "\x1b[37ma\x1b[0m\n");
}

TEST_F(LoggerTest, ConsoleLinesTakeEveryForm) {
    struct Row {
        int level;
        ConsoleStyle style;
        std::string onOutput;
        std::string onError;
    };
    const Row rows[] = {
        {0, {}, "\x1b[36m[DEBUG] x\x1b[0m\n", ""},
        {1, {}, "\x1b[37m[SKIP] x\x1b[0m\n", ""},
        {3, {}, "", "\x1b[33m[WARNING] x\x1b[0m\n"},
        {9, {}, "\x1b[37m[UNKNOWN] x\x1b[0m\n", ""},
        {2, {.color = 5}, "\x1b[34m[INFO] x\x1b[0m\n", ""},
        {2, {.forceError = true}, "", "\x1b[37m[INFO] x\x1b[0m\n"},
        {4, {.noPrefix = true, .newline = false}, "", "\x1b[31mx\x1b[0m"},
    };
    for (const auto& row : rows) {
        const auto write = [&] { logger.consoleWrite(static_cast<LogLevel>(row.level), "x", row.style); };
        EXPECT_EQ(throughTerminal(
                      {out}, [&] { EXPECT_EQ(throughTerminal({err}, write), row.onError) << row.level; }),
                  row.onOutput)
            << row.level;
    }
}

TEST_F(LoggerTest, AFileSessionIsBracketedByBanners) {
    logger.setToolName("kit");
    EXPECT_EQ(
        throughPipe({out, err}, [&] { logger.openSession(path, LogLevel::Skip, LogLevel::Error, true); }),
        "[kit][INFO] logging to " + path + "\n");
    (void)throughPipe({out, err}, [] {
        logInfo("first");
        logWarning("second");
        logError("third");
    });
    logger.reset();
    const auto lines = fileLines();
    ASSERT_EQ(lines.size(), 11U);
    EXPECT_EQ(lines[0], rule);
    EXPECT_THAT(lines[1], MatchesRegex(bannerLine("kit", "START")));
    EXPECT_EQ(lines[2], rule);
    EXPECT_THAT(lines[3], MatchesRegex(stamp + " \\[kit\\]\\[INFO\\] logging to .*"));
    EXPECT_TRUE(lines[3].ends_with("] logging to " + path));
    EXPECT_THAT(lines[4], MatchesRegex(stamp + " \\[kit\\]\\[INFO\\] first"));
    EXPECT_THAT(lines[5], MatchesRegex(stamp + " \\[kit\\]\\[WARNING\\] second"));
    EXPECT_THAT(lines[6], MatchesRegex(stamp + " \\[kit\\]\\[ERROR\\] third"));
    EXPECT_THAT(lines[7], MatchesRegex(stamp + " \\[kit\\]\\[INFO\\] logger closed"));
    EXPECT_EQ(lines[8], rule);
    EXPECT_THAT(lines[9], MatchesRegex(bannerLine("kit", "END")));
    EXPECT_EQ(lines[10], rule);
    const auto session = [](const std::string& line) { return line.substr(line.find("session=")); };
    EXPECT_EQ(session(lines[1]), session(lines[9]));
}

TEST_F(LoggerTest, ASecondSessionIsSetApartByAnEmptyLineAndHasAnotherId) {
    openFile(LogLevel::Info, LogLevel::Info);
    openFile(LogLevel::Info, LogLevel::Info); // closes the first
    logger.reset();
    const auto lines = fileLines();
    ASSERT_EQ(lines.size(), 17U); // 4 to open, 4 to close, twice, and the empty line
    EXPECT_THAT(lines[6], MatchesRegex(bannerLine("morquill", "END")));
    EXPECT_EQ(lines[7], rule);
    EXPECT_EQ(lines[8], "");
    EXPECT_EQ(lines[9], rule);
    EXPECT_THAT(lines[10], MatchesRegex(bannerLine("morquill", "START")));
    const auto id = [](const std::string& line) { return line.substr(line.find(" seq=")); };
    EXPECT_NE(id(lines[1]), id(lines[10]));
}

TEST_F(LoggerTest, TheFileHasAThresholdOfItsOwn) {
    openFile(LogLevel::Error, LogLevel::Debug);
    (void)throughPipe({out, err}, [] {
        logInfo("a");
        logPrompt("b");
        logWarning("c");
        logError("d");
    });
    const auto lines = fileLines(); // four of the banner, then what passed
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_THAT(lines[4], MatchesRegex(stamp + " \\[morquill\\]\\[ERROR\\] d"));
}

TEST_F(LoggerTest, AFileThatCannotBeOpenedIsAWarningAndNoMore) {
    const std::string missing = path + "/none.log";
    for (const int threshold : {0, 3, 4}) {
        EXPECT_EQ(throughPipe({out, err},
                              [&] {
                                  logger.openSession(missing, LogLevel::Info,
                                                     static_cast<LogLevel>(threshold), false);
                                  logInfo("goes on");
                              }),
                  (threshold < 4 ? "[WARNING] log file unavailable; continuing with console-only output: " +
                                       missing + "\n"
                                 : "") +
                      "goes on\n")
            << threshold;
    }
}

TEST_F(LoggerTest, ASessionGuardTakesTheColourDecisionAndPutsTheLoggerBack) {
    const char* arguments[] = {"mqkit", "fmt", "--no-color"};
    const auto line = [] { return throughTerminal({out}, [] { logInfo("a"); }); };
    {
        const LogSession session("mqkit", 3, arguments, LogLevel::Warning, LogLevel::Skip);
        EXPECT_EQ(line(), "a\n");
        EXPECT_EQ(throughTerminal({out}, [] { writeOut(greenText("a")); }), "a");
    }
    EXPECT_EQ(line(), "\x1b[37ma\x1b[0m\n");
    {
        const LogSession session("mqkit", 2, arguments, LogLevel::Warning, LogLevel::Skip);
        EXPECT_EQ(line(), "\x1b[37ma\x1b[0m\n");
        EXPECT_EQ(throughPipe({err}, [] { logWarning("w"); }), "[WARNING] w\n");
    }
    forgetColorDecision();
}

TEST_F(LoggerTest, ASessionGuardNamesTheTool) {
    const char* arguments[] = {"mqkit"};
    const LogSession session("mqkit", 1, arguments, LogLevel::Warning, LogLevel::Skip);
    openFile(LogLevel::Info, LogLevel::Info);
    EXPECT_THAT(fileLines().at(1), MatchesRegex(bannerLine("mqkit", "START")));
    forgetColorDecision();
}

} // namespace
} // namespace morquill::console
