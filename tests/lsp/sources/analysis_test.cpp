#include "lsp/sources/analysis.h"

#include "fixtures/temporary_directory.h"
#include "lsp/base/uri.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

TEST(Analysis, AFileIsWhatItsNameSays) {
    EXPECT_EQ(fileKind("/a/b.mq"), FileKind::tasks);
    EXPECT_EQ(fileKind("b.projmq"), FileKind::tasks);
    EXPECT_EQ(fileKind(""), FileKind::tasks);
    EXPECT_EQ(fileKind("b.mqlib"), FileKind::library);
    EXPECT_EQ(fileKind("b.mqfrag"), FileKind::fragment);
    EXPECT_EQ(fileKind("extra.yaml"), FileKind::values);
    EXPECT_EQ(fileKind("b.yml"), FileKind::values);
    EXPECT_EQ(fileKind("L.MQLIB"), FileKind::library);
    EXPECT_EQ(fileKind("B.MqFrag"), FileKind::fragment);
    EXPECT_EQ(fileKind("B.YAML"), FileKind::values);
    EXPECT_EQ(fileKind("notes.txt"), FileKind::tasks);
}

struct AnalysisTest : testing::Test {
    const OpenText& open(const std::string& name, const std::string& text) {
        return store.open(uriOfPath(directory.path(name)), 1, text);
    }

    TemporaryDirectory directory;
    TextStore store;
    Analyses analyses{store};
};

TEST_F(AnalysisTest, KeepsReportWarningsAndDocument) {
    const auto& text = open("a.mq", "&INCLUDE gone.mq\n$a\n  %keywords hf\n");
    const auto& analysis = analyses.of(text);
    EXPECT_TRUE(analysis.report.issues.empty());
    EXPECT_EQ(analysis.warnings, (std::vector<std::string>{"Warning: Included task file not found: " +
                                                           directory.path("gone.mq")}));
    ASSERT_TRUE(analysis.document);
    EXPECT_EQ(analysis.document->templateTasks.size(), 1U);
}

TEST_F(AnalysisTest, ALibraryInCapitalsIsALibrary) {
    const auto& text = open("L.MQLIB", "&FRAGMENT task_body body\n%keywords b3lyp\n");
    const auto& analysis = analyses.of(text);
    EXPECT_TRUE(analysis.report.issues.empty());
    EXPECT_TRUE(analysis.report.parsed);
    EXPECT_FALSE(analysis.document);
}

TEST_F(AnalysisTest, IsMadeOncePerState) {
    const auto& text = open("a.mq", "&INCLUDE b.mq\n$a\n");
    directory.write("b.mq", "$b\n");
    (void)analyses.of(text);
    (void)analyses.of(text);
    EXPECT_EQ(analyses.count(), 1U);
    open("c.mq", "$c\n");
    (void)analyses.of(text);
    EXPECT_EQ(analyses.count(), 1U); // another file has no part in it
    open("b.mq", "$b\n$b2\n");
    EXPECT_EQ(analyses.of(text).document->templateTasks.size(), 3U);
    EXPECT_EQ(analyses.count(), 2U);
    store.countDiskChange(directory.path("extra.mq"));
    (void)analyses.of(text);
    EXPECT_EQ(analyses.count(), 3U);
}

TEST_F(AnalysisTest, KnowsWhichFilesItReads) {
    const auto& text = open("a.mq", "&INCLUDE b.mq\n$a\n");
    directory.write("b.mq", "$b\n");
    (void)analyses.of(text);
    EXPECT_TRUE(analyses.dependsOn(text, directory.path("b.mq")));
    EXPECT_TRUE(analyses.dependsOn(text, directory.path("extra.yaml")));
    EXPECT_FALSE(analyses.dependsOn(text, directory.path("c.mq")));
    const auto& broken = open("d.mq", "@plot\n");
    (void)analyses.of(broken);
    EXPECT_TRUE(analyses.dependsOn(broken, directory.path("c.mq")));
}

TEST_F(AnalysisTest, UnsavedTextsOfLibrariesAndExtraFilesCount) {
    open("l.mqlib", "&FRAGMENT task_body opt\n  %keywords hf\n");
    open("extra.yaml", "define:\n  m: hf\n");
    open("extra.mq", "$pre\n  %keywords hf\n");
    const auto& text = open("a.mq", "&INCLUDE \"l.mqlib\" as l\n$a_[m]\n  %source pre\n  &INCLUDE l.opt\n");
    const auto& analysis = analyses.of(text);
    EXPECT_TRUE(analysis.report.issues.empty());
    ASSERT_TRUE(analysis.document);
    EXPECT_EQ(analysis.document->templateTasks.get()[1].name, "a_hf");
}

TEST_F(AnalysisTest, ChecksTheBodiesOfALibrary) {
    const auto faultOf = [&](const std::string& name, const std::string& content) {
        const auto& analysis = analyses.of(open(name, content));
        return analysis.report.issues.empty() ? std::string() : analysis.report.issues[0].message;
    };
    EXPECT_EQ(
        faultOf("a.mqlib", "&FRAGMENT document d\n$a\n&INCLUDE b\n&FRAGMENT task_body b\n  %keywords x\n"),
        "");
    EXPECT_EQ(faultOf("b.mqlib", "&FRAGMENT task_body b(x)\n  &INCLUDE [x].y\n"), "");
    EXPECT_EQ(faultOf("c.mqlib", "&FRAGMENT task_body b\n  &INCLUDE c\n"),
              directory.path("c.mqlib") + ":2: current library has no fragment named 'c'");
    EXPECT_EQ(faultOf("d.mqlib", "$a\n"), directory.path("d.mqlib") + ":1: expected &FRAGMENT declaration");
    EXPECT_EQ(faultOf("e.mqfrag", "&FRAGMENT process\n  rm x\n"), "");
    EXPECT_EQ(faultOf("f.mqfrag", "&FRAGMENT nonsense\n"), "unknown fragment kind 'nonsense'");
    EXPECT_EQ(faultOf("g.yaml", "a: 1\n"), "");
}

TEST_F(AnalysisTest, HoldsNoVariants) {
    const auto& text = open("a.mq", "matrix:\n  a: 1, 2\n  b: 1, 2\n$t\n  %keywords [a]\n");
    EXPECT_EQ(analyses.of(text).document->tasks.size(), 0U);
    EXPECT_EQ(analyses.of(text).document->templateTasks.size(), 1U);
}

} // namespace
