// The checks of a whole file, stage by stage. The forms that each rule finds are in rules_test.cpp.

#include "lint/file_check.h"

#include "fixtures/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::lint {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const taskdsl::WarningSink silent = [](const std::string&) {};

std::vector<std::string> codesOf(const LintFileReport& report) {
    std::vector<std::string> codes;
    for (const auto& issue : report.issues) {
        codes.emplace_back(issue.code);
    }
    return codes;
}

/// The codes for the text of a task `$a` that is sound but for the given lines, beside a sound `$b`.
std::vector<std::string> codesFor(const std::string& lines) {
    const auto report = lintText("$a\n%keywords k\n" + lines + "$b\n%keywords k\n", "t.mq", silent);
    EXPECT_TRUE(report.parsed);
    return codesOf(report);
}

TEST(LintText, ASoundTextHasNoIssue) {
    const auto report = lintText("$a\n%keywords k\n", "dir/t.mq", silent);
    EXPECT_EQ(report.path, "dir/t.mq");
    EXPECT_TRUE(report.parsed);
    EXPECT_THAT(report.issues, IsEmpty());
}

TEST(LintAndKeep, KeepsTheDocumentAndReadsThroughTheOverlay) {
    const taskdsl::FileOverlay overlay = [](const std::string& path) {
        return path.ends_with("/other.mq") ? std::optional<std::string>("$b\n%keywords k\n") : std::nullopt;
    };
    const auto linted = lintAndKeep("$a\n%keywords k\n&INCLUDE other.mq\n", "/nowhere/t.mq", silent, overlay);
    EXPECT_TRUE(linted.report.parsed);
    EXPECT_THAT(linted.report.issues, IsEmpty());
    ASSERT_TRUE(linted.document);
    EXPECT_EQ(linted.document->tasks.size(), 2U);
    EXPECT_FALSE(lintAndKeep("%nonsense\n", "t.mq", silent, {}).document);
}

TEST(AddParseFault, IsTheIssueOfAParserThatStopped) {
    LintFileReport report{"t.mq", {}, false};
    addParseFault(taskdsl::DiagnosticError({"t.mq", 2, 3, 2, 5}, "wrong"), report);
    ASSERT_EQ(report.issues.size(), 1U);
    EXPECT_EQ(report.issues[0].code, "parse-error");
    EXPECT_EQ(report.issues[0].message, "wrong");
    EXPECT_EQ(report.issues[0].span.line, 2);
}

TEST(LintText, TheLinesAreCheckedEvenWhenTheTextDoesNotParse) {
    const auto report = lintText("$a\n%keywords k\n#INCLUDE old.mq\n%nonsense\n", "t.mq", silent);
    EXPECT_FALSE(report.parsed);
    EXPECT_THAT(codesOf(report), ElementsAre("legacy-hash-include", "parse-error"));
    EXPECT_EQ(report.issues[0].severity, LintSeverity::warning);
    EXPECT_EQ(report.issues[0].span.line, 3);
    EXPECT_EQ(report.issues[1].severity, LintSeverity::error);
    EXPECT_EQ(report.issues[1].span.line, 4);
}

TEST(LintText, OnlyAFileOfVersionOneIsReadWithTheToleranceOfItsTime) {
    const std::string text = "$a\n%keywords k\n%source b,c\n$b\n%keywords k\n$c\n%keywords k\n";
    EXPECT_TRUE(lintText("dsl_version: 1\n" + text, "t.mq", silent).parsed);
    EXPECT_FALSE(lintText("dsl_version: 2\n" + text, "t.mq", silent).parsed);
    EXPECT_FALSE(lintText(text, "t.mq", silent).parsed);
}

TEST(LintText, ConditionsAreComparedWithTheTasksOfTheFile) {
    EXPECT_THAT(codesFor("%when completed b\n"), IsEmpty());
    EXPECT_THAT(codesFor("%when completed [ab]\n"), IsEmpty());
    EXPECT_THAT(codesFor("%when completed z\n"), ElementsAre("missing-completed-target"));
    EXPECT_THAT(codesFor("%when completed z*\n"), ElementsAre("missing-completed-target"));
    EXPECT_THAT(codesFor("%when {{ b.energy }} < 1\n"), IsEmpty());
    EXPECT_THAT(codesFor("%when {{ z.energy }} < 1\n"), ElementsAre("missing-placeholder-task"));
    EXPECT_THAT(codesFor("%when completed allothers\n"), IsEmpty());
}

TEST(LintText, TasksAreComparedWithOneAnother) {
    EXPECT_THAT(codesFor("%source z\n"), ElementsAre("missing-source-task"));
    EXPECT_THAT(codesFor("%when completed allothers\n$c\n%keywords k\n%when completed allothers\n"),
                ::testing::Contains("allothers-deadlock"));
    EXPECT_THAT(codesFor("$b\n%keywords k\n"), ElementsAre("duplicate-task"));
}

TEST(LintText, WarningsOfTheParserGoToTheSink) {
    std::vector<std::string> warnings;
    (void)lintText("$a\n%program xtb\n%keywords --gfn 2\n", "t.mq",
                   [&warnings](const std::string& text) { warnings.push_back(text); });
    EXPECT_THAT(warnings, ElementsAre("task 'a' uses deprecated '%keywords' syntax for '%program xtb'; move "
                                      "command-line arguments to '%args'."));
}

TEST(LintFile, WhatCannotBeReadIsAnIssue) {
    const TemporaryDirectory dir;
    for (const auto& path : {dir.path("missing.mq"), dir.root()}) {
        const auto report = lintFile(path, silent);
        EXPECT_EQ(report.path, path);
        EXPECT_FALSE(report.parsed);
        ASSERT_THAT(codesOf(report), ElementsAre("parse-error"));
        EXPECT_EQ(report.issues[0].message, "could not open file: " + path);
        EXPECT_EQ(report.issues[0].file, path);
        EXPECT_FALSE(isValidSpan(report.issues[0].span));
    }
}

TEST(LintFile, AFaultInAnIncludedFileNamesThatFile) {
    const TemporaryDirectory dir;
    const auto inner = dir.write("inner.mq", "$b\n%nonsense\n");
    const auto outer = dir.write("outer.mq", "$a\n%keywords k\n&INCLUDE inner.mq\n");
    const auto report = lintFile(outer, silent);
    EXPECT_EQ(report.path, outer);
    ASSERT_THAT(codesOf(report), ElementsAre("parse-error"));
    EXPECT_EQ(report.issues[0].file, inner);
    EXPECT_EQ(report.issues[0].span.line, 2);
}

TEST(LintFile, AFaultThatNamesItsLineInTheMessageHasItsPlaceAsWell) {
    const TemporaryDirectory dir;
    const auto library = dir.write("l.mqlib", "\n  nonsense\n");
    const auto path = dir.write("t.mq", "&INCLUDE l.mqlib as l\n$a\n%keywords k\n");
    const auto report = lintFile(path, silent);
    ASSERT_THAT(codesOf(report), ElementsAre("parse-error"));
    const LintIssue& issue = report.issues[0];
    EXPECT_EQ(issue.file, path);
    EXPECT_EQ(issue.message, library + ":2: expected &FRAGMENT declaration");
    EXPECT_EQ(formatSpan(issue.span), library + ":2:3-2:11");
    EXPECT_TRUE(issue.messageNamesPlace);
}

TEST(LintText, TheMessageOfAFaultIsTakenFromTheFault) {
    // A text that looks like another fault stays what it is: quoted input.
    const auto report = lintText("$a\n%u.mq:1:2:error:x\n", "t.mq", silent);
    ASSERT_THAT(codesOf(report), ElementsAre("parse-error"));
    EXPECT_EQ(report.issues[0].file, "t.mq");
    EXPECT_EQ(formatSpan(report.issues[0].span), "t.mq:2:1-2:18");
    EXPECT_EQ(report.issues[0].message, "task 'a' contains unknown directive '%u.mq:1:2:error:x'");
    EXPECT_FALSE(report.issues[0].messageNamesPlace);
}

TEST(LintFile, AnyBytesAreReportedOn) {
    const TemporaryDirectory dir;
    std::string bytes;
    for (int i = 0; i < 4096; ++i) {
        bytes += static_cast<char>(i * 31 % 256);
    }
    const auto report = lintFile(dir.write("t.mq", bytes), silent);
    EXPECT_EQ(report.path, dir.path("t.mq"));
}

TEST(LintFile, ExtraFilesAreAskedOfTheCaller) {
    const TemporaryDirectory dir;
    const auto file = dir.write("a.mq", "$a\n%keywords k\n");
    (void)dir.write("extra.mq", "$b\n%nosuch\n");
    EXPECT_THAT(codesOf(lintFile(file, silent)), ElementsAre("parse-error"));
    std::vector<std::string> asked;
    const auto report = lintFile(file, silent, [&asked](const std::string& path) {
        asked.push_back(path);
        return false;
    });
    EXPECT_THAT(report.issues, IsEmpty());
    EXPECT_THAT(asked, ElementsAre(dir.path("extra.yaml"), dir.path("extra.mq")));
}

} // namespace
} // namespace morquill::lint
