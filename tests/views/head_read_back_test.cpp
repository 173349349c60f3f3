// The head of a document is checked line by line: `reportLostHeadLines`.

#include "taskdsl/parser/task_parser.h"
#include "views/read_back.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morquill::views {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> headWarnings(const std::string& text,
                                      CanonicalView view = CanonicalView::sourceView) {
    const auto document = taskdsl::TaskParser({.legacyMultiSource = true}).parseText(text, "");
    std::vector<std::string> warnings;
    const taskdsl::WarningSink sink = [&warnings](const std::string& line) { warnings.push_back(line); };
    reportLostHeadLines({document, view, sink});
    return warnings;
}

TEST(HeadReadBack, HeadLinesThatThePreludeReadsOtherwise) {
    const auto lost = [](const std::string& what) {
        return what + " does not read back: the prelude reads its line as something else";
    };
    EXPECT_THAT(headWarnings("\"a: b\": 1\n\"define\": 2\nok: 3\nplain_key: \"a # b\"\n"),
                ElementsAre(lost("setting 'a: b'"), lost("setting 'define'")));
    EXPECT_THAT(headWarnings("define:\n  a\" # b: x\"\n"), ElementsAre(lost("define 'a\" # b'")));
    const std::string matrix = "matrix:\n  - $a: 1\n  - b: 2\n";
    EXPECT_THAT(headWarnings(matrix), ElementsAre(lost("matrix axis '$a'")));
    EXPECT_THAT(headWarnings(matrix, CanonicalView::matrixExpandedView), IsEmpty());
}

TEST(HeadReadBack, PlainLinesPass) {
    EXPECT_THAT(headWarnings("totcore: 8\nmethod: \"b3lyp d3\"\ndefine:\n  f: pbe0\nmatrix:\n  b: x, y\n"),
                IsEmpty());
}

} // namespace
} // namespace morquill::views
