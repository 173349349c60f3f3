#include "lsp/issue_places.h"

namespace {

using namespace morquill::lsp;
using morquill::SharedText;
using morquill::lint::LintIssue;
using morquill::lint::LintSeverity;

struct IssuePlacesTest : testing::Test {
    /// What an issue with that message, and no span of its own, is shown on.
    std::string shown(const std::string& content, const std::string& message) {
        const auto& text = store.open("file:///d/a.mq", 1, content);
        const auto place = IssuePlaces(text).of({LintSeverity::error, "/d/a.mq", {}, "parse-error", message});
        return content.substr(place.range.begin, place.range.size()) + (place.file.empty() ? "" : " -> ") +
               place.file + " | " + place.message;
    }
    std::string warned(const std::string& content, const std::string& warning) {
        const auto& text = store.open("file:///d/a.mq", 1, content);
        const auto range = IssuePlaces(text).ofWarning(warning);
        return content.substr(range.begin, range.size());
    }

    TextStore store;
};

TEST_F(IssuePlacesTest, AMessageMayNameItsLine) {
    EXPECT_EQ(shown("one\n  two  \nthree\n", "/d/a.mq:2: wrong"), "two | wrong");
    EXPECT_EQ(shown("one\n", "<memory>:1: wrong"), "one | wrong");
    EXPECT_EQ(shown("one\n", "/d/a.mq:99: wrong"), " | wrong");
}

TEST_F(IssuePlacesTest, AMessageMayNameItsTask) {
    EXPECT_EQ(shown("\n$a\n  $b # c\n", "task 'b' is wrong"), "$b # c | task 'b' is wrong");
}

TEST_F(IssuePlacesTest, AMessageMayNameAnotherFile) {
    EXPECT_EQ(shown("$a\n&INCLUDE x.mq\n&INCLUDE \"b.mq\" # c\n", "/d/b.mq:7: wrong"),
              "&INCLUDE \"b.mq\" # c -> /d/b.mq | wrong");
    EXPECT_EQ(shown("$a\n&INCLUDE x.mq\n", "/d/b.mq:7: wrong"), "&INCLUDE x.mq -> /d/b.mq | wrong");
}

TEST_F(IssuePlacesTest, WhatAFragmentBringsIsAtFaultThere) {
    const std::string content = "$a\n&INCLUDE \"b.mqfrag\"\n";
    const auto& text = store.open("file:///d/a.mq", 1, content);
    const auto place = IssuePlaces(text).of({LintSeverity::warning,
                                             "/d/a.mq",
                                             {SharedText("/d/b.mqfrag"), 2, 1, 2, 5},
                                             "legacy-xtb-keywords",
                                             "old"});
    EXPECT_EQ(place.file, "/d/b.mqfrag");
    EXPECT_EQ(content.substr(place.range.begin, place.range.size()), "&INCLUDE \"b.mqfrag\"");
}

TEST_F(IssuePlacesTest, AMessageWithoutAPlaceIsAtTheFirstLine) {
    EXPECT_EQ(shown("  one\ntwo\n", "wrong: no"), "one | wrong: no");
    EXPECT_EQ(shown("", "wrong"), " | wrong");
}

TEST_F(IssuePlacesTest, WarningsAreAtTheirTaskOrInclude) {
    EXPECT_EQ(warned("$a\n$b\n", "task 'b' is doubtful"), "$b");
    EXPECT_EQ(warned("$a\n&INCLUDE b.mq\n", "Warning: Included task file not found: /d/b.mq"),
              "&INCLUDE b.mq");
    EXPECT_EQ(warned("$a\n$b\n", "doubtful"), "$a");
    EXPECT_EQ(warningMessage("Warning: x"), "x");
    EXPECT_EQ(warningMessage("x"), "x");
}

TEST_F(IssuePlacesTest, TheNameThatIsMeantIsMarked) {
    const Workspace workspace;
    SourceFiles sources(store, workspace);
    const std::string content = "$a\n  %source b b\n  %control\n    guess c\n  %nonsense nonsense\n";
    const auto& file = sources.of(store.open("file:///d/a.mq", 1, content));
    const auto narrowed = [&](std::string_view code, const std::string& message, std::string_view at) {
        const auto begin = content.find(at);
        const auto range =
            narrowedRange({LintSeverity::error, "", {}, code, message}, {begin, begin + at.size()}, file);
        return std::to_string(range.begin - begin) + "+" + std::to_string(range.size());
    };
    EXPECT_EQ(narrowed("missing-source-task", "source task does not exist: b b", "%source b b"), "8+3");
    EXPECT_EQ(narrowed("missing-guess-task", "guess source task does not exist: c", "%control"), "19+1");
    EXPECT_EQ(narrowed("missing-guess-task", "guess source task does not exist: d", "%control"), "0+8");
    EXPECT_EQ(
        narrowed("parse-error", "task 'a' contains unknown directive '%nonsense'", "%nonsense nonsense"),
        "1+8");
    EXPECT_EQ(narrowed("missing-keywords", "keywords are not set", "$a"), "0+2");
}

} // namespace
