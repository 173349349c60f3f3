#include "lint/source_scan.h"

#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::lint {
namespace {

/// Every finding as `<span without path> <message>`, one per line.
std::string scan(std::string_view text) {
    std::string found;
    for (const auto& issue : scanRawLines(splitLines(text), "t.mq")) {
        EXPECT_EQ(issue.span.path.str(), "t.mq");
        auto span = issue.span;
        span.path = {};
        found += formatSpan(span) + " " + issue.message + "\n";
    }
    return found;
}

struct Row {
    std::string_view text;
    std::string_view result;
};

TEST(LintScan, FollowsBlocksFromLineToLine) {
    const std::vector<Row> rows{
        {"%control\ngpus 1\nTotGPU 1\n\n# totgpu\n  gputype a # gpumem\n%mod\ntotgpu 1\n",
         "3:1-3:7 %control TotGPU is legacy; use gpus\n6:3-6:10 %control gputype is legacy; use gpu_type\n"},
        {"%Control\tgpumem 4\ngpumem 4\n", "1:10-1:16 %control gpumem is legacy; use gpu_mem\n"},
        {"%controls\ntotgpu 1\n", ""},
        {"totgpu 1\nmwfn\n", ""},
        {"%control\n$a\ntotgpu 1\n", ""},
        {"%control\n@plot x\ntotgpu 1\n", ""},
        {"%control\n&INCLUDE <lib.gpu>\n totgpu 1\n", "3:2-3:8 %control totgpu is legacy; use gpus\n"},
        {"%process\n%control\nmwfn a\ntotgpu 1\n", "4:1-4:7 %control totgpu is legacy; use gpus\n"},
        {"%control\n%process\ntotgpu 1\nmwfn x\n",
         "4:1-4:5 process command alias 'mwfn' is legacy; use 'multiwfn'\n"},
        {"%process scripts a\nscripts b\n",
         "1:10-1:17 process command alias 'scripts' is legacy; use 'run'\n"},
        {"%process\nscripts a\nmkdirp b\n  MWFN c\nrun scripts\n",
         "2:1-2:8 process command alias 'scripts' is legacy; use 'run'\n"
         "3:1-3:7 process command alias 'mkdirp' is legacy; use 'mkdir'\n"
         "4:3-4:7 process command alias 'MWFN' is legacy; use 'multiwfn'\n"},
        {"%PreProcess # first\nmkdirp x\n",
         "2:1-2:7 process command alias 'mkdirp' is legacy; use 'mkdir'\n"},
        {"%process\n%preprocess mkdirp y\nmkdirp x\n", ""},
        {"%preprocessing\nmkdirp x\n", ""},
        {"%control\r\ntotgpu 1\r\n#include\r\n",
         "2:1-2:7 %control totgpu is legacy; use gpus\n3:1-3:9 #INCLUDE is legacy; use &INCLUDE\n"},
        {"%control\ntotgpu#x\n", "2:1-2:7 %control totgpu is legacy; use gpus\n"},
        {"%control\ntotgpu\\#x\n\"#\" totgpu\n'#\ntotgpu' gputype\n", ""},
        {"", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(scan(row.text), row.result) << row.text;
    }
}

TEST(LintScan, FindsIncludesOfTheOldForm) {
    const std::string message = " #INCLUDE is legacy; use &INCLUDE\n";
    EXPECT_EQ(scan("#INCLUDE x.mq\n \t#Include\n#includes"),
              "1:1-1:9" + message + "2:3-2:11" + message + "3:1-3:9" + message);
    EXPECT_EQ(scan("# include x\n#includ\n##include\ntext #INCLUDE x\n&INCLUDE x"), "");
    // It is not a statement: the block continues after it.
    EXPECT_EQ(scan("%control\n#INCLUDE x\ntotgpu 1\n"),
              "2:1-2:9" + message + "3:1-3:7 %control totgpu is legacy; use gpus\n");
}

TEST(LintScan, KnowsEveryFragmentKindAlias) {
    const std::vector<Row> aliases{{"doc", "document"},    {"taskbody", "task_body"}, {"task", "task_body"},
                                   {"command", "process"}, {"commands", "process"},   {"cmd", "process"},
                                   {"body", "text"},       {"extrainput", "text"}};
    for (const auto& [word, canonical] : aliases) {
        const std::string end = std::to_string(11 + word.size());
        EXPECT_EQ(scan("@fragment " + std::string(word)), "1:11-1:" + end + " fragment kind alias '" +
                                                              std::string(word) + "' is legacy; use '" +
                                                              std::string(canonical) + "'\n");
        EXPECT_EQ(scan("@fragment " + std::string(canonical)), "");
    }
}

TEST(LintScan, TakesTheLastWordOfAFragmentHeader) {
    const std::string taskBody = "' is legacy; use 'task_body'\n";
    EXPECT_EQ(scan(" @FRAGMENT a TaskBody:x"), "1:14-1:22 fragment kind alias 'TaskBody" + taskBody);
    EXPECT_EQ(scan("@fragment task # cmd"), "1:11-1:15 fragment kind alias 'task" + taskBody);
    EXPECT_EQ(scan("@fragment mytask task"), "1:13-1:17 fragment kind alias 'task" + taskBody);
    EXPECT_EQ(scan("@fragment t\"as\"k"), "1:1-1:5 fragment kind alias 'task" + taskBody);
    EXPECT_EQ(scan("@fragment\n@fragments task\n@fragment task x\n@fragment 'a task'\n@fragmenttask\n"), "");
}

TEST(LintScan, ReadsTheVersionAsItIsWritten) {
    const std::vector<Row> rows{
        {"dsl_version: 3", "3"},
        {"# dsl_version: 3\n dsl_version :  1 # x \n", "1 # x"},
        {"$a\ndsl_version: 1\n", ""},
        {"dsl_version\n", ""},
        {"dsl_version:\ndsl_version: 1\n", ""},
        {"a: b\nDSL_VERSION: 1\ndsl_version: 2: 3\n", "2: 3"},
        {"dsl_version: \"2\"", "\"2\""},
        {"\r\ndsl_version: 2\r\n", "2"},
        {"", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(rawDslVersion(splitLines(row.text)), row.result) << row.text;
    }
}

} // namespace
} // namespace morquill::lint
