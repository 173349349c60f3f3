#include "console/command_line.h"

#include "fixtures/console_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace morquill::console {
namespace {

using ::testing::ElementsAre;

struct Options {
    std::vector<std::string> seen;
};

void note(Options& options, Words values) {
    std::string text = "(";
    for (const char* value : values) {
        text += std::string(value) + ";";
    }
    options.seen.push_back(text + ")");
}

void needNothingBefore(const Options& options) {
    if (!options.seen.empty()) {
        throw UsageError(ErrorTag::plain, "--first comes first");
    }
}

constexpr OptionRow<Options> optionRows[] = {
    {"--flag", noValue, note},
    {"--one", oneValue, note, "--one expects a value", ErrorTag::none},
    {"--rest", restOfLine, note},
    {"--first", noValue, note, {}, ErrorTag::plain, needNothingBefore},
};

/// What was seen, or the refusal.
std::vector<std::string> read(const std::vector<const char*>& words) {
    Options options;
    try {
        readWords(Words(words.data(), words.size()), optionRows, options, [&options](Words left) {
            options.seen.emplace_back(left.front());
            return std::string_view(left.front()) == "pair" ? std::size_t{2} : std::size_t{1};
        });
    } catch (const UsageError& error) {
        return {"refused", error.message()};
    }
    return options.seen;
}

TEST(CommandLine, WordsOfTheTableTakeTheirValuesOthersArePositional) {
    EXPECT_THAT(read({}), ElementsAre());
    EXPECT_THAT(read({"a", "--flag", "--one", "--flag", "b"}), ElementsAre("a", "()", "(--flag;)", "b"));
    EXPECT_THAT(read({"--rest", "--one", "x"}), ElementsAre("(--one;x;)"));
    EXPECT_THAT(read({"--rest"}), ElementsAre("()"));
    EXPECT_THAT(read({"pair", "--one", "c"}), ElementsAre("pair", "c"));
    EXPECT_THAT(read({"--FLAG"}), ElementsAre("--FLAG"));
}

TEST(CommandLine, AMissingValueAndAnOptionOutOfPlaceAreRefused) {
    EXPECT_THAT(read({"--one"}), ElementsAre("refused", "--one expects a value"));
    EXPECT_THAT(read({"--first"}), ElementsAre("()"));
    EXPECT_THAT(read({"a", "--first"}), ElementsAre("refused", "--first comes first"));
}

TEST(CommandLine, WordsBeginWhereTheyAreAskedFor) {
    const char* argv[] = {"mqkit", "fmt", "a.mq"};
    EXPECT_THAT(wordsFrom(3, argv, 1), ElementsAre(::testing::StrEq("fmt"), ::testing::StrEq("a.mq")));
    EXPECT_TRUE(wordsFrom(3, argv, 3).empty());
    EXPECT_TRUE(wordsFrom(1, argv, 2).empty());
}

TEST(CommandLine, ARefusalIsOneLineAfterItsTag) {
    const auto told = [](const UsageError& error) {
        int status = -1;
        auto text = testing::throughPipe({STDERR_FILENO}, [&] { status = reportUsageError(error); });
        return text + std::to_string(status);
    };
    EXPECT_EQ(told(UsageError(ErrorTag::none, "no path")), "no path\n1");
    EXPECT_EQ(told(UsageError(ErrorTag::plain, "no path")), "[mqkit][ERROR] no path\n1");
    EXPECT_EQ(told(UsageError(ErrorTag::coloured, "no path")), "[mqkit][ERROR] no path\n1");
    EXPECT_EQ(told(unknownArgument("--x")), "[mqkit][ERROR] unknown argument: --x\n1");
    EXPECT_EQ(told(HelpRequest()), "1");
}

TEST(CommandLine, ARefusalHasTheTagItIsNamedFor) {
    EXPECT_EQ(plainRefusal("no").tag(), ErrorTag::plain);
    EXPECT_EQ(colouredRefusal("no").tag(), ErrorTag::coloured);
    EXPECT_EQ(bareRefusal("no").tag(), ErrorTag::none);
    EXPECT_EQ(plainRefusal("no").message() + colouredRefusal(" to").message() + bareRefusal(" all").message(),
              "no to all");
    Options options;
    EXPECT_THROW(askHelp(options, {}), HelpRequest);
}

void help(std::string_view programPath) {
    printErrorLine(std::string("help of ").append(programPath));
}

/// Standard error and the status of a line that is read and run by `run`.
template <class Run>
std::string outcome(const Run& run, HelpAfter helpAfter) {
    int status = -1;
    auto text =
        testing::throughPipe({STDERR_FILENO}, [&] { status = runCommandLine(run, help, "tool", helpAfter); });
    return text + std::to_string(status);
}

TEST(CommandLine, ALineIsRunOrRefusedWithOrWithoutTheHelp) {
    const auto fine = [] { return 7; };
    const auto asked = []() -> int { throw HelpRequest(); };
    const auto refused = []() -> int { throw plainRefusal("no path"); };
    const auto silent = []() -> int { throw UsageError(ErrorTag::plain); };
    EXPECT_EQ(outcome(fine, HelpAfter::anyRefusal), "7");
    EXPECT_EQ(outcome(asked, HelpAfter::anyRefusal), "help of tool\n0");
    EXPECT_EQ(outcome(asked, HelpAfter::emptyRefusal), "help of tool\n0");
    EXPECT_EQ(outcome(refused, HelpAfter::anyRefusal), "[mqkit][ERROR] no path\nhelp of tool\n1");
    EXPECT_EQ(outcome(refused, HelpAfter::emptyRefusal), "[mqkit][ERROR] no path\n1");
    EXPECT_EQ(outcome(silent, HelpAfter::anyRefusal), "help of tool\n1");
    EXPECT_EQ(outcome(silent, HelpAfter::emptyRefusal), "help of tool\n1");
}

TEST(CommandLine, AHelpWordTurnsARefusalIntoARequestForHelp) {
    const char* plain[] = {"a", "-H"};
    const char* asking[] = {"a", "--help"};
    const auto refused = []() -> int { throw plainRefusal("no path"); };
    EXPECT_EQ(readOrHelp(asking, [] { return 7; }), 7);
    EXPECT_EQ(outcome([&] { return readOrHelp(plain, refused); }, HelpAfter::emptyRefusal),
              "[mqkit][ERROR] no path\n1");
    EXPECT_EQ(outcome([&] { return readOrHelp(asking, refused); }, HelpAfter::emptyRefusal),
              "[mqkit][ERROR] no path\nhelp of tool\n0");
}

TEST(CommandLine, TheSecondPathOfALineIsRefused) {
    const char* words[] = {"", "-h"};
    std::optional<std::string> path;
    EXPECT_EQ(takeOnePath(path, words, ErrorTag::plain, "extra: "), 1U);
    EXPECT_EQ(path, "");
    const char* others[] = {"b.mq"};
    try {
        takeOnePath(path, others, ErrorTag::coloured, "extra: ");
        ADD_FAILURE() << "a second path was taken";
    } catch (const UsageError& error) {
        EXPECT_EQ(error.message(), "extra: b.mq");
        EXPECT_EQ(error.tag(), ErrorTag::coloured);
    }
    EXPECT_EQ(path, "");
}

struct NamedRow {
    std::string_view name;
    int number;
};
constexpr NamedRow names[] = {{"list", 1}, {"lister", 2}, {"merge", 3}};

TEST(FindByPrefix, FindsANameOrTheOnlyPrefixInAnyCase) {
    struct Row {
        std::string word;
        int number; // 0: none
        std::vector<std::string> names;
    };
    const Row lookups[] = {
        {"list", 1, {"list"}},
        {"LIST", 1, {"list"}},
        {"liste", 2, {"lister"}},
        {"m", 3, {"merge"}},
        {"merged", 0, {}},
        {"lis", 0, {"list", "lister"}},
        {"", 0, {"list", "lister", "merge"}},
    };
    for (const Row& row : lookups) {
        const auto match = findByPrefix(names, row.word);
        EXPECT_EQ(match.row == nullptr ? 0 : match.row->number, row.number) << row.word;
        EXPECT_EQ(match.names, row.names) << row.word;
    }
    EXPECT_EQ(ambiguousPrefix("command", "Lis", {"list", "lister"}),
              "ambiguous command prefix: Lis (matches: list, lister)");
}

} // namespace
} // namespace morquill::console
