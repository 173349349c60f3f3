// What the writer prints reads back: the text that parsing and printing it gives is the same text.

#include "fixtures/temporary_directory.h"
#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace morquill::views {
namespace {

std::string canonical(const std::string& text) {
    taskdsl::TaskParser parser({.legacyMultiSource = true});
    return renderCanonicalDocument(parser.parseText(text, ""), CanonicalView::sourceView);
}

TEST(RoundTrip, AwkwardScalarsSurvive) {
    for (const char* value : {"plain", "two words", "a\"b", "a \\\"b\\\" c", "back\\slash", "\\n stays",
                              "a # b", "it's", "'single'", "tab\\tescape", "x,y:z", "\"\\\"quoted\\\"\"",
                              "''twice''", "\"a\" and \"b\"", "ends in \\", "\"'nested'\""}) {
        for (const char* directive : {"%keywords ", "%program other\n%template ", "%program script\n%runner ",
                                      "%program xtb\n%args ", "%source xyz=", "%source "}) {
            const std::string once = canonical("$a\n" + std::string(directive) + value + "\n");
            EXPECT_EQ(canonical(once), once) << directive << value;
        }
    }
}

TEST(RoundTrip, WhatASecondReaderTakesApartIsProtected) {
    for (const char* text :
         {"x: \"*a\"\ny: \"~\"\nz: \"{\"\n$a", "define:\n  k: \"'a'\"\n$a",
          "matrix:\n  k: \"a'b\",\"c'd\"\n$a", "matrix:\n  - k: 1\n    name: \"'a'\"\n$a",
          "$a\n%control\n finalgeom \"a'b\"", "$a\n%control\n finalgeom a\\\\\\\\b",
          "$a\n%keywords <<\n<<EOF\nEOF", "$a\n%process\n \\\n %foo\n \\\n $g16\n x",
          "$a\n%batch\nlane 1\ncollect x as \"a  b\"", "$a\n%batch\nlane 1\ncollect x as \"#b\"",
          "$a\n%batch\nlane 1\ncollect x as \"a'b\\\"\"",
          "$a\n%program script\n%runner \"\\\"/opt/my tools/py\\\"\"",
          "$a\n%program other\n%template \"'x'\""}) {
        const std::string once = canonical(std::string(text) + "\n");
        EXPECT_EQ(canonical(once), once) << text;
    }
    EXPECT_NE(canonical("$a\n%program script\n%runner \"\\\"/opt/my tools/py\\\"\"\n")
                  .find("  %runner \"\\\"/opt/my tools/py\\\"\"\n"),
              std::string::npos);
}

TEST(RoundTrip, ConditionsAndModsThatLookLikeStructureStayWhereTheyAre) {
    for (const char* text :
         {"%when %odd", "%when $x\n  completed b\n%when @end", "%mod %foo x\n  charge 1\n%mod $y"}) {
        const std::string once = canonical("$a\n" + std::string(text) + "\n");
        EXPECT_EQ(canonical(once), once) << text;
    }
}

TEST(RoundTrip, WhatIsWrittenBesideTheExtraFilesReadsBackAsTheWholeDocument) {
    const TemporaryDirectory directory;
    const auto write = [&](const char* name, const std::string& text) { (void)directory.write(name, text); };
    const auto read = [&] {
        taskdsl::TaskParser parser({.legacyMultiSource = true});
        return parser.parseFile(directory.path("t.mq"));
    };
    write("extra.yaml",
          "totmem: 9\nsite: extra\ndefine:\n  k: e\n  m: e\nmatrix:\n  - x: 1, 2\n    name: a, b\n"
          "solvents: [water, toluene]\n");
    write("extra.mq",
          "queue: extra\n$first\n%keywords [k] [x]\n@plot barrier p\npoint x value 1\npoint y value "
          "2\n@end\n@derive d\nemit e = 1\n@end\n");
    write("sub/b.mq", "queue: b\nhost: b\ntotcore: 3\nmatrix:\n  z: 5, 6\n$b\n%keywords [k] [z]\n");
    write("t.mq",
          "dsl_version: 2\nsite: own\ndefine:\n  k: own\nmatrix:\n  - y: 3\n  - x2: 3, 4\n    map: "
          "x\n$t\n%source first__x_1\n"
          "%keywords [k] [m] [x] [y] [x2]\n@foreach solvents\n$s_[solvents.value]\n%when completed t\n"
          "@end\n&INCLUDE sub/b.mq\n@derive own\nemit f = 1\n@end\n");
    const auto before = read();
    const auto printed =
        renderCanonicalDocument(taskdsl::withoutImplicitContent(before), CanonicalView::sourceView);
    write("t.mq", printed);
    const auto after = read();
    for (const auto view : {CanonicalView::sourceView, CanonicalView::matrixExpandedView}) {
        EXPECT_EQ(renderCanonicalDocument(after, view), renderCanonicalDocument(before, view));
    }
    EXPECT_EQ(after.settings, before.settings);
    EXPECT_EQ(after.matrixAxes, before.matrixAxes);
    EXPECT_EQ(renderCanonicalDocument(taskdsl::withoutImplicitContent(after), CanonicalView::sourceView),
              printed);
}

TEST(RoundTrip, TheExamplesAreStable) {
    std::size_t seen = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("examples")) {
        if (entry.path().extension() != ".mq") {
            continue;
        }
        taskdsl::TaskParser parser({.legacyMultiSource = true});
        const std::string once =
            renderCanonicalDocument(parser.parseFile(entry.path().string()), CanonicalView::sourceView);
        EXPECT_EQ(canonical(once), once) << entry.path();
        ++seen;
    }
    EXPECT_GE(seen, 7U);
}

TEST(RoundTrip, EveryDirectiveSurvives) {
    const std::string text = "dsl_version: 2\n"
                             "\n"
                             "$a\n"
                             "  %source \"xyz=start.xyz frame=2\"\n"
                             "  %program orca\n"
                             "  %batch\n"
                             "    lane 4\n"
                             "    cluster rmsd geo=0.125 energy=off temperature=300\n"
                             "    collect required *.xyz as out/x\n"
                             "  %control\n"
                             "    totcore 8\n"
                             "    guess true\n"
                             "    finalgeom \"a b.xyz\"\n"
                             "  %when\n"
                             "    completed b and ({{ b.energy }} < -1.5 or defined x)\n"
                             "  %keywords \"B3LYP def2-SVP Opt\"\n"
                             "  %extrainput << EOF\n"
                             "%scf\n"
                             "  MaxIter 200 # kept\n"
                             "end\n"
                             "EOF\n"
                             "  %preprocess\n"
                             "    copy \"a b\" c\n"
                             "  %process\n"
                             "    multiwfn x\n"
                             "  %mod\n"
                             "    charge add 1\n"
                             "    basisset def2-TZVP on=element:N,O role=aux-j ecp=none\n"
                             "  %meta\n"
                             "    strucid s-1\n"
                             "\n"
                             "$b\n"
                             "  %source\n"
                             "    geom a\n"
                             "    geom.x xyz=f.xyz frame=2\n"
                             "    density a kind=fchk\n"
                             "  %program script\n"
                             "  %runner \"/usr/bin/env bash\"\n"
                             "  %body << EOF\n"
                             "set -eu\n"
                             "\n"
                             "# comment\n"
                             "EOF\n";
    EXPECT_EQ(canonical(text), text);
}

} // namespace
} // namespace morquill::views
