#include "app/command_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::app {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

TEST(CommandTable, HoldsTheEightCommandsInOrder) {
    std::vector<std::string_view> names;
    for (const auto& entry : commandTable()) {
        names.push_back(entry.name);
        EXPECT_EQ(entry.displayName, entry.name);
        EXPECT_NE(entry.help, nullptr) << entry.name;
        EXPECT_NE(entry.run, nullptr) << entry.name;
    }
    EXPECT_THAT(names,
                ElementsAre("template", "project", "rename", "fmt", "migrate", "expand", "explain", "lint"));
    EXPECT_EQ(commandTable().data(), commandTable().data());
}

TEST(FindCommand, MatchesNamesAndUniquePrefixesInAnyCase) {
    struct Row {
        std::string token;
        std::string found; // empty: none
        std::vector<std::string> matches;
    };
    const Row rows[] = {
        {"template", "template", {"template"}},
        {"fmt", "fmt", {"fmt"}},
        {"p", "project", {"project"}},
        {"PROJ", "project", {"project"}},
        {"Lint", "lint", {"lint"}},
        {"exp", "", {"expand", "explain"}},
        {"e", "", {"expand", "explain"}},
        {"E", "", {"expand", "explain"}},
        {"expl", "explain", {"explain"}},
        {"r", "rename", {"rename"}},
        {"", "", {}},
        {"x", "", {}},
        {"fmts", "", {}},
        {"fmt ", "", {}},
        {"-h", "", {}},
        {std::string("fmt\0", 4), "", {}},
    };
    for (const auto& row : rows) {
        std::vector<std::string> matches{"stale"};
        const CommandEntry* found = findCommand(commandTable(), row.token, matches);
        EXPECT_EQ(found == nullptr ? "" : found->name, row.found) << row.token;
        EXPECT_THAT(matches, ElementsAreArray(row.matches)) << row.token;
    }
}

TEST(FindCommand, TheFirstExactNameWinsOverLongerOnes) {
    const CommandEntry table[] = {{"format", "format", nullptr, nullptr},
                                  {"for", "first", nullptr, nullptr},
                                  {"for", "second", nullptr, nullptr},
                                  {"FORGE", "forge", nullptr, nullptr}};
    std::vector<std::string> matches;
    const CommandEntry* found = findCommand(table, "FOR", matches);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->displayName, "first");
    EXPECT_THAT(matches, ElementsAre("for"));
    EXPECT_EQ(findCommand(table, "fo", matches), nullptr);
    EXPECT_THAT(matches, ElementsAre("format", "for", "for", "FORGE"));
    found = findCommand(table, "forg", matches);
    ASSERT_NE(found, nullptr);
    EXPECT_THAT(matches, ElementsAre("FORGE"));
    EXPECT_EQ(findCommand({}, "fo", matches), nullptr);
}

TEST(RunFileCommand, LooksForHelpAtOnePositionOnly) {
    static std::string seen;
    const HelpOperation help = [](std::string_view program) { seen = "help " + std::string(program); };
    const RunOperation run = [](int argc, char** argv) {
        seen = "run " + std::string(argv[argc - 1]);
        return 5;
    };
    struct Row {
        std::vector<std::string> arguments;
        HelpOperation help;
        RunOperation run;
        int status;
        std::string seen;
    };
    const Row rows[] = {
        {{"bin/mqkit", "fmt", "-h"}, help, run, 0, "help bin/mqkit"},
        {{"mqkit", "fmt", "help", "x"}, help, run, 0, "help mqkit"},
        {{"mqkit", "fmt", "--help"}, help, nullptr, 0, "help mqkit"},
        {{"mqkit", "fmt", "--HELP"}, help, run, 5, "run --HELP"},
        {{"mqkit", "fmt", "x.mq", "-h"}, help, run, 5, "run -h"},
        {{"mqkit", "-h"}, help, run, 5, "run -h"},
        {{"mqkit", "fmt", "-h"}, nullptr, run, 5, "run -h"},
        {{"mqkit", "fmt", "-h"}, nullptr, nullptr, 1, ""},
        {{"mqkit", "fmt"}, help, nullptr, 1, ""},
    };
    for (auto row : rows) {
        std::vector<char*> argv;
        for (auto& argument : row.arguments) {
            argv.push_back(argument.data());
        }
        seen.clear();
        EXPECT_EQ(runFileCommand(static_cast<int>(argv.size()), argv.data(), 2, row.help, row.run),
                  row.status);
        EXPECT_EQ(seen, row.seen);
    }
}

} // namespace
} // namespace morquill::app
