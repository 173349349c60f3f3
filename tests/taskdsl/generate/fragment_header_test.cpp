#include "taskdsl/generate/fragment_header.h"

#include "fixtures/test_lines.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(FragmentLine, IsTheKeywordBeforeABlankOrTheEnd) {
    for (const char* line : {"&FRAGMENT", "&FRAGMENT task a"}) {
        EXPECT_TRUE(isFragmentLine(line)) << line;
    }
    for (const char* line :
         {"", "FRAGMENT", "&FRAGMENTS", "&Fragment task", "x &FRAGMENT", "&FRAGMENT(a)", "&FRAGMENT\ttask"}) {
        EXPECT_FALSE(isFragmentLine(line)) << line;
    }
}

/// Kind, name and parameters, a required one with a "!" behind its name.
std::string shown(std::string_view text) {
    std::size_t index = 0;
    const auto lines = linesOf(text, "l.mqlib");
    const auto fragment = parseFragmentHeader(lines, index, "l.mqlib", false);
    EXPECT_EQ(index + 1, lines.size()) << text;
    EXPECT_TRUE(fragment.lines.empty());
    EXPECT_EQ(fragment.path, "l.mqlib");
    std::string result = std::string(fragmentKindName(fragment.kind)) + " " + fragment.name;
    for (const auto& parameter : fragment.parameters) {
        result += " " + parameter.name + (parameter.required ? "!" : "=" + parameter.defaultValue);
    }
    return result;
}

TEST(FragmentHeader, EveryPartBehindTheKindMayBeMissing) {
    const std::pair<const char*, const char*> rows[] = {
        {"&FRAGMENT text", "text "},
        {"&FRAGMENT TASK-Body opt", "task_body opt"},
        {"&FRAGMENT control c()", "control c"},
        {"&FRAGMENT control(a)", "control  a!"},
        {"&FRAGMENT mod m ( a , b = 1 )", "mod m a! b=1"},
        {"&FRAGMENT mod m(a='x, y', b=\"(\", c=[k])", "mod m a=x, y b=( c=[k]"},
        {"&FRAGMENT mod m(a=1=2)", "mod m a=1=2"},
        {"&FRAGMENT mod m(a,) # note", "mod m a!"},
        {"&FRAGMENT mod m( # first\n  a,\n  # nothing\n  b=2\n)", "mod m a! b=2"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(shown(text), expected) << text;
    }
}

TEST(FragmentHeader, AnOpenListTakesTheFileAndIsAFault) {
    EXPECT_EQ(messageOf([] { (void)shown("&FRAGMENT mod m(a,\nb\nc\n"); }),
              "l.mqlib:1: unterminated &FRAGMENT parameter list");
    EXPECT_EQ(messageOf([] { (void)shown("&FRAGMENT mod m)(a"); }),
              "l.mqlib:1: unmatched ')' in &FRAGMENT header");
    EXPECT_EQ(messageOf([] { (void)shown("&FRAGMENT mod m.n"); }), "invalid fragment name 'm.n'");
}

} // namespace
} // namespace morquill::taskdsl
