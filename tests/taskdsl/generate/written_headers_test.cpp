#include "taskdsl/generate/written_headers.h"

#include "fixtures/temporary_directory.h"
#include "taskdsl/parser/task_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace morquill::taskdsl {
namespace {

/// "<line>:<name>" of every header, joined with blanks.
std::string headersOf(std::string_view text) {
    std::string result;
    for (const auto& header : listWrittenHeaders(text)) {
        result += (result.empty() ? "" : " ") + std::to_string(header.line) + ":" + std::string(header.name);
    }
    return result;
}

TEST(WrittenHeaders, AreNamedAsTheyAreWritten) {
    EXPECT_EQ(headersOf(""), "");
    EXPECT_EQ(
        headersOf("dsl_version: 2\ndefine:\n  m: x\n\n$opt_[m] # c\n%program orca\n  $ \"a b\"\r\n$\n$freq"),
        "5:opt_[m] 7:a b 9:freq");
    EXPECT_EQ(headersOf("\xEF\xBB\xBF$opt\n"), "1:opt");
    EXPECT_EQ(headersOf("&INCLUDE a.mq\n$opt\n&INCLUDE b.mq\n$soc\n"), "2:opt 4:soc");
}

TEST(WrittenHeaders, OfALoopAreListedOnce) {
    EXPECT_EQ(headersOf("@foreach n in series(1-3)\n$opt_[n.value]\n%program orca\n@end\n@foreach? none\n"
                        "$soc_[none.value]\n@end\n$last\n"),
              "2:opt_[n.value] 6:soc_[none.value] 8:last");
}

TEST(WrittenHeaders, AreNotLookedForInTextThatIsTakenAsItIs) {
    struct Row {
        const char* text;
        const char* headers;
    };
    const Row rows[] = {
        {"$a\n%body << END\n$no\nEND # not yet\n$no\n  END\n$b\n", "1:a 7:b"},
        {"$a\n%keywords <<\n$no\nEOF\n$b\n", "1:a 5:b"},
        {"$a\n%extrainput <<EOF\n$no\nEOF\n%extrainputs << X\n$no\nX\n$b\n", "1:a 8:b"},
        {"$a\n%args << EOF\n$b\n", "1:a 3:b"}, // no heredoc
        {"$a\n%body\n  text\n  $b\n", "1:a 4:b"},
        {"$a\n%process\nrun \\\n# nothing\n\n$no\n$b\n", "1:a 7:b"},
        {"$a\n%preprocess\nrun \\\n$no \\\n$no\n$b\n", "1:a 6:b"},
        {"$a\n%process\nrun \\\\\n$b\n", "1:a 4:b"}, // two backslashes are characters of the command
        {"$a\n%keywords k \\\n$b\n", "1:a 3:b"},
        {"$a\n%process\nrun\n%keywords x\nfree text \\\n$b\n", "1:a 6:b"},
        {"@foreach? n\n$a\n%process\nrun \\\n@end\n$no\n$b\n", "2:a 7:b"}, // "@end" is gone by then
        {"@plot scatter\n$no\n@end # plot\n$a\n@derive d\n%body <<X\n$no\n@end\n$b\n", "4:a 9:b"},
        {"$a\n@plot scatter\n$no\n", "1:a"},
        {"$a\n%body << END\n$no\n", "1:a"},
        {"%body <<X\n$a\n", "2:a"}, // no directive outside a task
    };
    for (const auto& row : rows) {
        EXPECT_EQ(headersOf(row.text), row.headers) << row.text;
    }
}

TEST(WrittenHeaders, AreThoseThatTheParserMeetsInTheFileItself) {
    const TemporaryDirectory directory;
    directory.write("inner.mq", "\n\n$inner\n%program orca\n");
    directory.write("extra.mq", "$extra\n%program orca\n");
    directory.write("f.mqlib", "&FRAGMENT document blocks\n$fragment\n%program orca\n");
    const std::string text = "define:\n  m: x\nmatrix:\n  k: 1,2\nitems:\n  - name: p\n  - name: q\n"
                             "&INCLUDE f.mqlib as f\n&INCLUDE inner.mq\n&INCLUDE f.blocks\n"
                             "$opt_[m]\n%program orca\n%process\nrun \\\n$no\n"
                             "@foreach items\n$loop_[items.name]_[k]\n%program script\n%runner bash\n"
                             "%body <<X\n$no\nX\n@end\n$\"last one\"\n%program orca\n";
    directory.write("a.mq", text);
    const auto path = directory.path("a.mq");
    const auto document = TaskParser().parseFile(path);
    std::set<std::size_t> parsed;
    for (const auto& task : document.templateTasks) {
        if (task.headerSpan.path.str() == path) {
            parsed.insert(static_cast<std::size_t>(task.headerSpan.line));
        }
    }
    std::set<std::size_t> listed;
    for (const auto& header : listWrittenHeaders(text)) {
        listed.insert(header.line);
    }
    EXPECT_EQ(listed, parsed);
    EXPECT_EQ(headersOf(text), "11:opt_[m] 17:loop_[items.name]_[k] 24:last one");
}

} // namespace
} // namespace morquill::taskdsl
