#include "views/read_back.h"

#include "fixtures/comparable_document.h"
#include "support/file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace morquill::views {
namespace {

using taskdsl::TaskDocument;
using taskdsl::TaskParser;
using testing::ElementsAre;
using testing::IsEmpty;

TaskDocument parse(const std::string& text) {
    return TaskParser({.legacyMultiSource = true}).parseText(text, "");
}

/// A document printed, and what the printer said of it.
struct Printed {
    std::string text;
    std::vector<std::string> warnings;
};

Printed print(const TaskDocument& document, CanonicalView view = CanonicalView::sourceView) {
    Printed printed;
    printed.text = renderCanonicalDocument(
        document, view, [&printed](const std::string& line) { printed.warnings.push_back(line); });
    return printed;
}

std::vector<std::string> warningsOf(const std::string& text, CanonicalView view = CanonicalView::sourceView) {
    return print(parse(text), view).warnings;
}

bool readsBack(const TaskDocument& document, const std::string& printed, CanonicalView view) {
    try {
        const auto read = TaskParser().parseText(printed, "");
        return comparable(read, view) == comparable(document, view);
    } catch (const taskdsl::DiagnosticError&) {
        return false;
    }
}

/// What is printed reads back as the same document exactly when nothing was said.
void expectLaw(const TaskDocument& document, const std::string& where) {
    for (const auto view : {CanonicalView::sourceView, CanonicalView::matrixExpandedView}) {
        const Printed printed = print(document, view);
        EXPECT_EQ(readsBack(document, printed.text, view), printed.warnings.empty())
            << where << "\n"
            << printed.text << "\n"
            << testing::PrintToString(printed.warnings);
    }
}

/// The texts between ```mq fences of a document.
std::vector<std::string> fencedTexts(const std::string& page) {
    std::vector<std::string> texts;
    std::optional<std::string> open;
    for (const auto line : splitLines(page)) {
        if (open && line == "```") {
            texts.push_back(*std::move(open));
            open.reset();
        } else if (open) {
            open->append(line).append("\n");
        } else if (line.starts_with("```mq")) {
            open.emplace();
        }
    }
    return texts;
}

TEST(ReadBack, EveryExampleIsTheSameDocumentAgain) {
    std::size_t seen = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("examples")) {
        const std::string path = entry.path().string();
        if (path.ends_with(".mq")) {
            expectLaw(TaskParser({.legacyMultiSource = true}).parseFile(path), path);
            ++seen;
        }
    }
    EXPECT_GE(seen, 30U);
}

TEST(ReadBack, EveryDocumentedTextIsTheSameDocumentAgain) {
    std::size_t seen = 0;
    for (const auto& entry : std::filesystem::directory_iterator("docs")) {
        if (!entry.is_regular_file()) {
            continue;
        }
        for (const auto& text : fencedTexts(readTextFile(entry.path().string()).value())) {
            std::optional<TaskDocument> document;
            try {
                document = parse(text);
            } catch (const taskdsl::DiagnosticError&) {
                continue; // a page also shows what is refused
            }
            expectLaw(*document, entry.path().string() + "\n" + text);
            ++seen;
        }
    }
    EXPECT_GE(seen, 40U);
}

TEST(ReadBack, EverySeedOfTheFuzzerHoldsTheLaw) {
    std::size_t seen = 0;
    for (const auto& entry : std::filesystem::directory_iterator("fuzz/corpus/parser")) {
        std::optional<TaskDocument> document;
        try {
            document = parse(readTextFile(entry.path().string()).value());
        } catch (const taskdsl::DiagnosticError&) {
            continue;
        }
        expectLaw(*document, entry.path().string());
        ++seen;
    }
    EXPECT_GE(seen, 7U);
}

TEST(ReadBack, AwkwardTextsAreTheSameDocumentAgain) {
    for (const char* text : {
             "$a\n%keywords \"b3lyp\\\\6-31g opt\"",
             "totmem: 9\ntotcore: 7\n$a\n%control\n totmem 4\n$b",
             "$a b",
             "$\"a b\"",
             "$a\n%source \"xyz=a b.xyz\" frame=2 more",
             "$a\n%source xyz=a.xyz more guess guess",
             "$a\n%source\n geom b kind=\"x # y\"\n aux.d c",
             "$a\n%batch\n lane 2\n collect required \"a b\" as \"c  d\"\n cluster rmsd geo=0.125 min=0",
             "$a\n%control\n gpu_type NVIDIA A100\n guess b c\n finalgeom \"a b\"\n verbosity p",
             "$a\n%when\n \"a # b\" = 1\n%when %odd",
             "$a\n%keywords <<\n one\n two \\\n<<EO\nEOF",
             "$a\n%keywords <<X\none\n\n  \ntwo\nX\n%extrainput << X\n\n\nX",
             "$a\n%program script\n%body << X\nmail a@b\n  echo $@\n\nX",
             "$a\n%program script\n%runner \"'x'\"\n%body << X\nX",
             "$a\n%program other\n%template \"'x'\"\n%param a=1\n  b=\"c # d\"\n",
             "$a\n%program other\n%keywords job='my t' a=1 b='x y'",
             "$a\n%program xtb\n%args \"--opt\\t# tight\"",
             "$a\n%process\n a \\\n %b\n c \\\\\n \\\n $d",
             "$a\n%mod\n charge add 1\n foo add\n x \"# y\"\n k:\"#\"\n basisset d on=elements:C,,N "
             "role=AUXJ",
             "$a\n%meta\n strucid s-1",
             "define:\n  k: \"a\\tb\"\n  it's: 1\nmatrix:\n  m: \"a,b\", 'c'\n$x[k]",
             "matrix:\n  - 'a': 1, 2\n  - b: 3, 4\n    map: \"'a'\"\n    name: \"p'\", q\n$x",
             "a.b: 1\n\"with blank\": \"*x\"\nnull_: \"~\"\nc: \"\"\n$a",
         }) {
        const TaskDocument document = parse(std::string(text) + "\n");
        expectLaw(document, text);
        EXPECT_THAT(print(document).warnings, IsEmpty()) << text;
    }
}

TEST(ReadBack, ATasksOwnResourcesStandAgainstThoseOfTheHead) {
    const Printed printed =
        print(parse("totcore: 7\ntotmem: 9\n$a\n%control\n totcore 2\n totmem 4\n$b\n%control\n totmem 5\n"));
    EXPECT_EQ(printed.text, "dsl_version: 2\ntotcore: 7\ntotmem: 9\n\n"
                            "$a\n  %source origin\n  %control\n    totcore 2\n    totmem 4\n\n"
                            "$b\n  %source origin\n  %control\n    totcore 7\n    totmem 5\n");
    EXPECT_THAT(printed.warnings, IsEmpty());
    const TaskDocument read = parse(printed.text);
    EXPECT_EQ(read.tasks[0].totalMemory, 4);
    EXPECT_EQ(read.tasks[1].totalMemory, 5);
}

struct LossyText {
    const char* text;
    const char* warning;
};

TEST(ReadBack, WhatALayoutCannotExpressIsReported) {
    for (const auto& [text, warning] : std::initializer_list<LossyText>{
             {"$\" a\"", "task ' a' does not read back: the name reads back as 'a'"},
             {"$\"a #b\"", "task 'a #b' does not read back: the name reads back as 'a'"},
             {"$a\n%program script\n%body << X\nEOF\nX",
              "task 'a' does not read back: %body holds a line 'EOF'"},
             {"$a\n%extrainput << X\n  EOF \nx\nX",
              "task 'a' does not read back: %extrainput holds a line 'EOF'"},
             {"$a\n%keywords << X\none\nEOF\nX", "task 'a' does not read back: %keywords holds a line 'EOF'"},
             {"$a\n%source ,", "task 'a' does not read back: %source reads back as something else"},
             {"$a\n%source guess guess", "task 'a' does not read back: %source reads back as something else"},
             {"$a\n%batch\n lane 1\n cluster min=0.9999999999999",
              "task 'a' does not read back: what is printed is refused: task 'a' requires cluster min to be "
              "in [0, 1)"},
             {"$a\n%batch\n lane 1\n cluster geo=0.1234567890123",
              "task 'a' does not read back: %batch reads back as something else"},
             {"$a\n%process\n a \\ \\\n",
              "task 'a' does not read back: %process reads back as something else"},
             {"$a\n%when\n 'a # b' \"it's\" # '",
              "task 'a' does not read back: %when reads back as something else"},
         }) {
        const TaskDocument document = parse(std::string(text) + "\n");
        expectLaw(document, text);
        EXPECT_THAT(print(document).warnings, ElementsAre(warning)) << text;
    }
}

TEST(ReadBack, WhatARewriteDropsIsReportedInOneLine) {
    for (const auto& [text, warning] : std::initializer_list<LossyText>{
             {"$a\n%interface provider",
              "task 'a' does not read back: it is written without %interface provider"},
             {"$a\n%interface consume p",
              "task 'a' does not read back: it is written without %interface consume p"},
             {"$a\n%control\n alert false\n geom check\n totcore -4\n totmem -1",
              "task 'a' does not read back: it is written without totcore -4, totmem -1, alert false, geom "
              "check"},
             {"$a\n%keywords k\n%args x\n%template t\n%param p\n%runner r\n%body b",
              "task 'a' does not read back: it is written without %args, %template, %param, %runner, %body"},
             {"$a\n%program orca\n%keywords k\n%args x",
              "task 'a' does not read back: it is written without %args"},
             {"$a\n%program xtb\n%args x\n%keywords k",
              "task 'a' does not read back: it is written without %keywords"},
             {"$a\n%program script\n%runner r\n%body b\n%keywords k\n%extrainput e",
              "task 'a' does not read back: it is written without %keywords, %extrainput"},
             {"$a\n%program other\n%keywords job=t and=more words",
              "task 'a' does not read back: it is written without %keywords"},
             {"$a\n%program other\n%template t\n%keywords job=u",
              "task 'a' does not read back: it is written without %keywords"},
             {"$\" a\"\n%interface provider",
              "task ' a' does not read back: it is written without %interface "
              "provider; the name reads back as 'a'"},
         }) {
        const TaskDocument document = parse(std::string(text) + "\n");
        expectLaw(document, text);
        EXPECT_THAT(print(document).warnings, ElementsAre(warning)) << text;
    }
}

TEST(ReadBack, ATextThatEndsItsHeredocHidesNoOtherLoss) {
    EXPECT_THAT(
        warningsOf("$\"a #b\"\n%program script\n%body << E\nEOF\nE\n"),
        ElementsAre("task 'a #b' does not read back: %body holds a line 'EOF'; the name reads back as 'a'"));
    EXPECT_THAT(warningsOf("$a\n%keywords << E\nx\nEOF\nE\n%extrainput << E\nEOF\nE\n"),
                ElementsAre("task 'a' does not read back: %keywords holds a line 'EOF'; %extrainput holds a "
                            "line 'EOF'"));
}

TEST(ReadBack, AListOfSourcesIsReadByMigrateAlone) {
    for (const char* text : {"$b\n$c\n$a\n%source b,c\n%keywords k\n",
                             "$a\n%when\n x\n%source a,b,c\n%when\n y\n completed c\n"}) {
        const TaskDocument document = parse(text);
        expectLaw(document, text);
        EXPECT_THAT(
            print(document).warnings,
            ElementsAre("task 'a' does not read back: what is printed is refused: task 'a' uses removed "
                        "multi-dependency '%source a,b,...' syntax; keep the first task in %source and move "
                        "the rest into '%when completed ...'"));
        EXPECT_TRUE(comparable(parse(print(document).text), CanonicalView::sourceView) ==
                    comparable(document, CanonicalView::sourceView));
    }
}

TEST(ReadBack, DefinesThatWouldBeAppliedOnceMore) {
    const std::string head = "define:\n  a: \"[b]\"\n  b: c\n";
    EXPECT_THAT(warningsOf(head + "$[a]\n"),
                ElementsAre("task '[b]' does not read back: the name holds '[b]', which is a define"));
    EXPECT_THAT(warningsOf(head + "$x\n%keywords [a]\n"), IsEmpty());
    EXPECT_THAT(warningsOf(head + "$x\n%keywords [a]\n", CanonicalView::matrixExpandedView),
                ElementsAre("task 'x' does not read back: its text holds '[b]', which is a define"));
    EXPECT_THAT(warningsOf("define:\n  a: \"[a]\"\n$[a]\n%keywords [a]\n", CanonicalView::matrixExpandedView),
                IsEmpty());
}

} // namespace
} // namespace morquill::views
