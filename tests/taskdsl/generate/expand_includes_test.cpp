#include "taskdsl/generate/expand_includes.h"
#include "taskdsl/generate/fragment_library.h"

#include "fixtures/parse_text.h"
#include "fixtures/temporary_directory.h"
#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace morquill::taskdsl {
namespace {

using ::testing::HasSubstr;

/// A directory with a task file's neighbours, and the pass over that file.
struct ExpandIncludes : testing::Test {
    TemporaryDirectory dir;
    WarningSink warnings = [](const std::string& text) { ADD_FAILURE() << text; };

    /// The expanded lines of a task file; every file-scope import stands in its text.
    std::vector<SourceLine> lines(std::string_view text) const {
        ParseContext run({.warnings = warnings});
        DocumentContext context(run);
        const SharedText path = dir.path("t.mq");
        return expandIncludes(linesOf(text, path), {path, nullptr, FragmentKind::document}, context);
    }
    std::string expand(std::string_view text) const { return textOf(lines(text)); }
    std::string fault(std::string_view text) const {
        return messageOf([&] { (void)lines(text); });
    }
    /// The place of a line of the task file in a message.
    std::string at(int line, const char* file = "t.mq") const {
        return dir.path(file) + ":" + std::to_string(line) + ": ";
    }
};

constexpr const char* libraryText = "&FRAGMENT process clean(what=tmp)\n"
                                    "  rm [what] [other]\n"
                                    "&FRAGMENT control big(cores)\n"
                                    "  totcore [cores]\n"
                                    "&FRAGMENT task_body opt(method, basis=SVP)\n"
                                    "  %keywords [method]/[basis]\n"
                                    "  %process\n"
                                    "    &INCLUDE clean(what=[basis])\n"
                                    "&FRAGMENT document pair(name)\n"
                                    "$[name]_a\n"
                                    "$[name]_b\n"
                                    "&INCLUDE this.opt(method=HF)\n"
                                    "&FRAGMENT text note(n=1)\n"
                                    "# note [n]\n"
                                    "%no directive\n"
                                    "$x\n"
                                    "@end\n";

TEST_F(ExpandIncludes, AFileWithoutIncludesIsTakenAsItIs) {
    const char* text =
        "# c\n$a\n%process\n a\n%body << E\n&INCLUDE x.mqlib\n E\n@plot p\n%x\n&INCLUDE y\n@end\n%\n";
    EXPECT_EQ(expand(text), text);
}

TEST_F(ExpandIncludes, HeredocLinesAreText) {
    const auto result =
        lines("$a\n%body << E\n&INCLUDE x\n$b\nE\n%keywords <<\n%c\nEOF\n%extrainputs << X\n\nX\n");
    std::string marks;
    for (const auto& line : result) {
        marks += line.verbatim ? 'v' : '-';
    }
    EXPECT_EQ(marks, "--vv--v--v-");
    EXPECT_EQ(fault("$a\n%body << E\nx\n"), at(2) + "heredoc is missing terminator 'E'");
    EXPECT_EQ(fault("$a\n%body <<\nx\n"), at(2) + "heredoc is missing terminator 'EOF'");
    EXPECT_EQ(expand("$a\n%args << E\n%x\n"), "$a\n%args << E\n%x\n"); // no heredoc directive
}

TEST_F(ExpandIncludes, ImportsAddNoLinesAndReferencesTheirBodies) {
    (void)dir.write("l.mqlib", libraryText);
    const auto result =
        lines("&INCLUDE l.mqlib as lib\n$a\n%process\n  &INCLUDE lib.clean(what=scratch)\n  ls\n");
    EXPECT_EQ(textOf(result), "$a\n%process\n  rm scratch [other]\n  ls\n");
    EXPECT_EQ(result[2].originPath.str(), dir.path("l.mqlib"));
    EXPECT_EQ(result[2].lineNumber, 2U);
    EXPECT_EQ(result[3].lineNumber, 5U);
}

TEST_F(ExpandIncludes, ATaskBodyFragmentEndsWithABoundary) {
    (void)dir.write("l.mqlib", libraryText);
    const auto result = lines(
        "&INCLUDE l.mqlib as lib\n$a\n&INCLUDE lib.opt(\n  method = B3LYP, # best\n  basis='TZP')\n text\n");
    EXPECT_EQ(textOf(result), "$a\n  %keywords B3LYP/TZP\n  %process\n  rm TZP [other]\n\n text\n");
    ASSERT_EQ(result.size(), 6U);
    EXPECT_TRUE(result[4].directiveBoundary);
    EXPECT_EQ(result[4].lineNumber, 3U);
    EXPECT_EQ(result[4].originPath.str(), dir.path("t.mq"));
    EXPECT_EQ(result[5].lineNumber, 6U);
}

TEST_F(ExpandIncludes, ADocumentFragmentStandsAtFileScopeAndEndsTheTask) {
    (void)dir.write("l.mqlib", libraryText);
    EXPECT_EQ(expand("&INCLUDE l.mqlib as lib\n&INCLUDE lib.pair(name=p)\n"),
              "$p_a\n$p_b\n  %keywords HF/SVP\n  %process\n  rm SVP [other]\n\n");
    EXPECT_EQ(fault("&INCLUDE l.mqlib as lib\n$a\n&INCLUDE lib.pair(name=p)\n%process\n"),
              at(4) + "task directive appears outside a task block");
    EXPECT_EQ(fault("&INCLUDE l.mqlib as lib\n$a\n  &INCLUDE lib.pair(name=p)\n"),
              at(3) + "cannot include document fragment 'pair' in task_body context");
}

TEST_F(ExpandIncludes, TextFragmentsAreVerbatim) {
    (void)dir.write("l.mqlib", libraryText);
    (void)dir.write("raw.txt", "%raw\n&INCLUDE lib.note(n=2)\n@end\n");
    const auto result =
        lines("&INCLUDE l.mqlib as lib\n$a\n%body\n  &INCLUDE lib.note\n &INCLUDE raw.txt\n x\n%process\n");
    EXPECT_EQ(textOf(result),
              "$a\n%body\n# note 1\n%no directive\n$x\n@end\n%raw\n# note 2\n%no directive\n$x\n@end\n"
              "@end\n x\n%process\n");
    std::string marks;
    for (const auto& line : result) {
        marks += line.verbatim ? 'v' : '-';
    }
    EXPECT_EQ(marks, "--vvvvvvvvvv--");
}

TEST_F(ExpandIncludes, EachDirectiveOpensItsScope) {
    (void)dir.write("k.txt", "");
    const std::vector<std::pair<const char*, const char*>> rows{
        {"%process", "process"},
        {"%preprocess", "preprocess"},
        {"%control", "control"},
        {"%when", "when"},
        {"%meta", "meta"},
        {"%param", "param"},
        {"%param x", "param"},
        {"%args", "args"},
        {"%batch 4", "batch"},
        {"%mod", "mod"},
        {"%mod charge 1", "task_body"},
        {"%body", "text"},
        {"%body x", "task_body"},
        {"%extrainput", "text"},
        {"%keywords", "text"},
        {"%keywords x", "task_body"},
        {"%source", "task_body"},
        {"%program orca", "task_body"},
        {"", "task_body"},
        {"%body << E\nE", "text"},
    };
    // A document fragment fits none of them, so the message names the scope.
    (void)dir.write("l.mqlib", libraryText);
    for (const auto& [directive, scope] : rows) {
        EXPECT_THAT(
            fault(std::string("&INCLUDE l.mqlib as lib\n$a\n") + directive +
                  "\n &INCLUDE lib.pair(name=p)\n"),
            HasSubstr(std::string("cannot include document fragment 'pair' in ") + scope + " context"));
    }
}

TEST_F(ExpandIncludes, CommandFragmentsFitBothCommandBlocks) {
    (void)dir.write("l.mqlib", libraryText);
    (void)dir.write("p.mqfrag", "&FRAGMENT preprocess\n cp\n");
    EXPECT_EQ(
        expand(
            "&INCLUDE l.mqlib as lib\n$a\n%preprocess\n &INCLUDE lib.clean\n%process\n&INCLUDE p.mqfrag\n"),
        "$a\n%preprocess\n  rm tmp [other]\n%process\n cp\n");
    EXPECT_EQ(fault("&INCLUDE l.mqlib as lib\n$a\n%process\n &INCLUDE lib.big(cores=1)\n"),
              at(4) + "cannot include control fragment 'big' in process context");
}

TEST_F(ExpandIncludes, TaskAndYamlFilesAtTheMarginStayAndEndTheTask) {
    EXPECT_EQ(expand("&INCLUDE a.mq\n$a\n%process\n&INCLUDE b.projmq\n&INCLUDE c.yaml\n&INCLUDE other\n$b\n"),
              "&INCLUDE a.mq\n$a\n%process\n&INCLUDE b.projmq\n&INCLUDE c.yaml\n&INCLUDE other\n$b\n");
    EXPECT_EQ(fault("$a\n&INCLUDE b.mq\n%process\n"), at(3) + "task directive appears outside a task block");
    (void)dir.write("b.mq", "$x\n");
    EXPECT_EQ(expand("$a\n%body\n &INCLUDE b.mq\n"), "$a\n%body\n$x\n");
    EXPECT_EQ(fault("$a\n &INCLUDE b.mq\n"), at(1, "b.mq") + "invalid task block in task_body fragment");
}

TEST_F(ExpandIncludes, ABlockEndsTheTask) {
    EXPECT_EQ(fault("$a\n@plot x\n%y\n@end\n%process\n"),
              at(5) + "task directive appears outside a task block");
    EXPECT_EQ(fault("$a\n@derive x\n@end\n  &INCLUDE x.mqfrag\n"),
              "indented &INCLUDE outside a task has no context");
    EXPECT_EQ(expand("$a\n@derive x\n@end\n&INCLUDE x.mq\n"), "$a\n@derive x\n@end\n&INCLUDE x.mq\n");
}

TEST_F(ExpandIncludes, TellsWhatDoesNotFitItsPlace) {
    (void)dir.write("l.mqlib", libraryText);
    (void)dir.write("m.mqlib", "");
    (void)dir.write("task.mqfrag", "%process\n$b\n");
    (void)dir.write(
        "deep.mqlib",
        "&FRAGMENT process a\n%control\n&FRAGMENT process b\n$x\n&FRAGMENT document c\n%control x\n"
        "&FRAGMENT process d\n&INCLUDE none\n&FRAGMENT process e\n&INCLUDE q.r\n"
        "&FRAGMENT document f\n&INCLUDE m.mqlib as m\n");
    const std::string import = "&INCLUDE l.mqlib as lib\n&INCLUDE deep.mqlib as deep\n";
    const std::vector<std::pair<std::string, std::string>> rows{
        {"%control\n", at(1) + "task directive appears outside a task block"},
        {"  &INCLUDE x\n", "indented &INCLUDE outside a task has no context"},
        {"\t&INCLUDE x\n", "indented &INCLUDE outside a task has no context"},
        {"&INCLUDE l.mqlib\n", "a .mqlib must be imported with 'as <namespace>'"},
        {"$a\n&INCLUDE l.mqlib as x\n", at(2) + "library imports are only allowed at file scope"},
        {"$a\n  &INCLUDE l.mqlib as x\n", at(2) + "library imports are only allowed at file scope"},
        {"$a\n&INCLUDE l.mqlib\n", at(2) + "a .mqlib must be imported at file scope with 'as <namespace>'"},
        {import + "&INCLUDE m.mqlib as lib\n",
         at(3) + "namespace 'lib' is already bound to '" + dir.path("l.mqlib") + "'"},
        {"&INCLUDE none.mqlib as x\n", "fragment library not found: " + dir.path("none.mqlib")},
        {"$a\n &INCLUDE x.y\n", at(2) + "unknown fragment library namespace 'x'"},
        {import + "$a\n&INCLUDE lib.x\n", at(4) + "library namespace 'lib' has no fragment named 'x'"},
        {"$a\n&INCLUDE clean(what=x)\n",
         at(2) + "fragment references outside a library must use namespace.name syntax"},
        {"$a\n&INCLUDE x.y(a=1,\n b=2\n", at(2) + "unterminated &INCLUDE argument list"},
        {"$a\n&INCLUDE x.y(a=1))\n", at(2) + "unmatched ')' in &INCLUDE"},
        {"$a\n&INCLUDE\n", "empty &INCLUDE target"},
        {"$a\n&INCLUDE none\n", "included fragment file not found: " + dir.path("none")},
        {"$a\n&INCLUDE \"\"\n", "empty fragment include path"},
        {"$a\n&INCLUDE task.mqfrag\n", at(2, "task.mqfrag") + "invalid task block in task_body fragment"},
        {"$a\n%process\n &INCLUDE task.mqfrag\n",
         at(1, "task.mqfrag") + "task directive '%process' is not valid inside a process fragment"},
        {import + "$a\n%process\n &INCLUDE deep.a\n",
         at(2, "deep.mqlib") + "task directive '%control' is not valid inside a process fragment"},
        {import + "$a\n%process\n &INCLUDE deep.b\n",
         at(4, "deep.mqlib") + "task blocks are not valid inside a process fragment"},
        {import + "&INCLUDE deep.c\n", at(6, "deep.mqlib") + "task directive appears outside a task block"},
        {import + "$a\n%process\n &INCLUDE deep.d\n",
         at(8, "deep.mqlib") + "current library has no fragment named 'none'"},
        {import + "$a\n%process\n &INCLUDE deep.e\n",
         at(10, "deep.mqlib") + "unknown fragment library namespace 'q'"},
        {import + "&INCLUDE deep.f\n",
         at(12, "deep.mqlib") + "library imports are only allowed at file scope"},
        {import + "$a\n &INCLUDE lib.opt\n", at(4) + "missing required argument 'method' for fragment 'opt'"},
        {import + "$a\n &INCLUDE lib.opt(methods=1)\n",
         at(4) + "unknown argument 'methods' for fragment 'opt'"},
        {import + "$a\n &INCLUDE \n", "empty &INCLUDE target"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(fault(text), message) << text;
    }
}

TEST_F(ExpandIncludes, StandaloneFragmentsAreReadFromWhereTheLineStands) {
    (void)dir.write("sub/outer.mqfrag", "&FRAGMENT task\n%control\n  &INCLUDE inner.mqfrag\n");
    (void)dir.write("sub/inner.mqfrag", "  totcore 4\n");
    (void)dir.write("doc.mqfrag", "&FRAGMENT document\n&INCLUDE sub.mqlib as s\n$z\n&INCLUDE s.c\n");
    (void)dir.write("sub.mqlib", "&FRAGMENT task c\n%program orca\n");
    EXPECT_EQ(expand("$a\n&INCLUDE sub/outer.mqfrag\n"), "$a\n%control\n  totcore 4\n\n");
    EXPECT_EQ(expand("&INCLUDE doc.mqfrag\n"), "$z\n%program orca\n\n");
    EXPECT_EQ(fault("&INCLUDE sub/outer.mqfrag\n"),
              at(1) + "cannot include task_body fragment 'outer.mqfrag' in document context");
}

TEST_F(ExpandIncludes, CyclesTellTheWholeChain) {
    const auto path = dir.write("l.mqlib", "&INCLUDE m.mqlib as m\n&FRAGMENT process a\n&INCLUDE m.b\n");
    const auto other =
        dir.write("m.mqlib", "&FRAGMENT process b\n &INCLUDE self.c\n&FRAGMENT process c\n &INCLUDE b\n");
    EXPECT_EQ(fault("&INCLUDE l.mqlib as l\n$a\n%process\n &INCLUDE l.a\n"),
              "fragment include cycle detected: " + path + "::a -> " + other + "::b -> " + other + "::c -> " +
                  other + "::b");
    const auto file = dir.write("f.mqfrag", "&INCLUDE d/g.mqfrag\n");
    std::filesystem::create_directory_symlink(".", dir.path("d"));
    std::filesystem::create_symlink("f.mqfrag", dir.path("g.mqfrag"));
    EXPECT_EQ(fault("$a\n&INCLUDE f.mqfrag\n"), "fragment include cycle detected: " + file +
                                                    "::f.mqfrag -> " + dir.path("d/g.mqfrag") + "::g.mqfrag");
}

TEST_F(ExpandIncludes, ALinkWithTheSameNameIsTheSameFile) {
    const auto file = dir.write("f.mqfrag", "&INCLUDE d/f.mqfrag\n");
    std::filesystem::create_directory_symlink(".", dir.path("d"));
    EXPECT_EQ(fault("$a\n&INCLUDE f.mqfrag\n"), "fragment include cycle detected: " + file +
                                                    "::f.mqfrag -> " + dir.path("d/f.mqfrag") + "::f.mqfrag");
}

TEST_F(ExpandIncludes, DoublingAndDeepFragmentsEnd) {
    std::string text = "&FRAGMENT process f0\nx\n";
    std::string deep = "&FRAGMENT process g0\nx\n";
    for (int i = 1; i < 300; ++i) {
        const auto before = std::to_string(i - 1);
        if (i < 60) {
            text += "&FRAGMENT process f" + std::to_string(i) + "\n&INCLUDE f" + before + "\n&INCLUDE f" +
                    before + "\n";
        }
        deep += "&FRAGMENT process g" + std::to_string(i) + "\n&INCLUDE g" + before + "\n";
    }
    (void)dir.write("l.mqlib", text + deep);
    EXPECT_EQ(fault("&INCLUDE l.mqlib as l\n$a\n%process\n &INCLUDE l.f59\n"),
              "expansion of @foreach blocks and fragments exceeds 2000000 lines or 256 MiB of text");
    EXPECT_EQ(fault("&INCLUDE l.mqlib as l\n$a\n%process\n &INCLUDE l.g299\n"),
              "fragment include is nested more than 200 deep: " + dir.path("l.mqlib") + "::g99");
}

TEST(Heredocs, AMissingTerminatorIsToldBeforeTasksAreRead) {
    EXPECT_EQ(faultOf("$a\n%keywords << END\nx\n"), "t.mq:2: heredoc is missing terminator 'END'");
    EXPECT_EQ(faultOf("$a\n%body <<\nx\n$b\n"), "t.mq:2: heredoc is missing terminator 'EOF'");
}

} // namespace
} // namespace morquill::taskdsl
