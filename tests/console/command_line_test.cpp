#include "console/command_line.h"

#include "fixtures/console_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
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

constexpr OptionRow<Options> rows[] = {
    {"--flag", noValue, note},
    {"--one", oneValue, note, "--one expects a value", ErrorTag::none},
    {"--rest", restOfLine, note},
    {"--first", noValue, note, {}, ErrorTag::plain, needNothingBefore},
};

/// What was seen, or the refusal.
std::vector<std::string> read(const std::vector<const char*>& words) {
    Options options;
    try {
        readWords(Words(words.data(), words.size()), rows, options, [&options](Words left) {
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

} // namespace
} // namespace morquill::console
