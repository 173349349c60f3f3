#include "support/quote_walk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill {
namespace {

using ::testing::ElementsAre;

/// Each byte of the text by what the walk says of it: `.` at top, `(` in brackets, `q` in quotes, `s` in a
/// snapshot, all before it is taken in; a second byte that is taken in with the first is `+`.
std::string traceOf(const QuoteRow& row, std::string_view text) {
    const QuoteRule rule(row);
    QuoteWalk walk(rule);
    std::string trace;
    for (std::size_t at = 0; at < text.size();) {
        trace += walk.inQuotes() ? 'q' : walk.inSnapshot() ? 's' : walk.depth() > 0 ? '(' : '.';
        EXPECT_EQ(walk.inOpen(), trace.back() == '(' || trace.back() == '.');
        EXPECT_EQ(walk.atTop(), trace.back() == '.');
        const std::size_t next = walk.step(text, at);
        trace.append(next - at - 1, '+');
        at = next;
    }
    return trace;
}

TEST(QuoteWalk, OneKindOfQuotesHidesTheOther) {
    EXPECT_EQ(traceOf({}, R"(a"b'c"d'e"f')"), "..qqqq..qqqq");
    EXPECT_EQ(traceOf({.quotes = "'"}, R"("a'b"c'd)"), "...qqqq.");
    EXPECT_EQ(traceOf({.quotes = ""}, R"("a'b)"), "....");
}

TEST(QuoteWalk, ABackslashProtectsWhereTheRuleSaysSo) {
    const std::string_view text = R"(\x "\x" '\x')";
    EXPECT_EQ(traceOf({.backslash = Backslash::nowhere}, text), "....qqq..qqq");
    EXPECT_EQ(traceOf({.backslash = Backslash::inDoubleQuotes}, text), "....q+q..qqq");
    EXPECT_EQ(traceOf({.backslash = Backslash::inQuotes}, text), "....q+q..q+q");
    EXPECT_EQ(traceOf({.backslash = Backslash::exceptInSingleQuotes}, text), ".+..q+q..qqq");
    EXPECT_EQ(traceOf({.backslash = Backslash::everywhere}, text), ".+..q+q..q+q");
}

TEST(QuoteWalk, ABackslashProtectsTheBytesOfTheRule) {
    const std::string_view text = R"("\a\"\'\\\ ")";
    EXPECT_EQ(traceOf({}, text), ".q+q+q+q+q+q");
    EXPECT_EQ(traceOf({.isProtected = Protected::shellBytes}, text), ".qqq+q+q+q+q");
    EXPECT_EQ(traceOf({.isProtected = Protected::quoteOrBackslash}, text), ".qqq+qqq+qqq");
    EXPECT_EQ(traceOf({}, R"("\)"), ".q"); // the last byte
}

TEST(QuoteWalk, SnapshotsAreFlatOrNested) {
    const QuoteRow none{.snapshots = Snapshots::none};
    const QuoteRow flat{.snapshots = Snapshots::flat};
    const QuoteRow nested{.snapshots = Snapshots::nested};
    EXPECT_EQ(traceOf(none, "{{a}}b"), "......");
    EXPECT_EQ(traceOf(flat, "{{a}}b"), ".+ss+.");
    EXPECT_EQ(traceOf(nested, "{{a}}b"), ".+ss+.");
    EXPECT_EQ(traceOf(flat, "{{{{a}}b}}"), ".+ssss+...");
    EXPECT_EQ(traceOf(nested, "{{{{a}}b}}"), ".+s+ss+ss+");
    EXPECT_EQ(traceOf(flat, "{{'}}'a'"), ".+ss+.qq");
    EXPECT_EQ(traceOf(nested, "{{'}}'}}a"), ".+sqqqs+.");
    EXPECT_EQ(traceOf(nested, "{a} }} {{{b"), "........+ss");
    EXPECT_EQ(traceOf(nested, "{"), ".");
}

TEST(QuoteWalk, BracketsCountInTheOpen) {
    const QuoteRow row{.snapshots = Snapshots::nested, .opening = "([", .closing = ")]"};
    EXPECT_EQ(traceOf(row, "(a[b)c]d"), ".((((((."); // all are of one kind
    EXPECT_EQ(traceOf(row, ")(a"), "..(");           // one that closes nothing
    EXPECT_EQ(traceOf(row, R"("("{{(}}a)"), ".qq.+ss+.");
    EXPECT_EQ(traceOf({.opening = "({", .closing = ")}"}, "{{a}}b"), ".((((."); // braces may be brackets
}

TEST(QuoteWalk, GoesOnInAFurtherText) {
    const QuoteRule rule(QuoteRow{.opening = "(", .closing = ")"});
    QuoteWalk walk(rule);
    for (const std::string_view text : {"(", "\"\\"}) {
        for (std::size_t at = 0; at < text.size(); at = walk.step(text, at)) {
        }
    }
    EXPECT_EQ(walk.depth(), 1U);
    EXPECT_TRUE(walk.inQuotes());
    EXPECT_EQ(walk.step("\"", 0), 1U); // no backslash of another text protects it
    EXPECT_FALSE(walk.inQuotes());
}

TEST(QuoteWalk, FindsAndSplitsAtTop) {
    const QuoteRule rule(QuoteRow{.opening = "(", .closing = ")"});
    const std::string_view text = R"("a,b",(c,d), e)";
    EXPECT_EQ(findAtTop(text, rule, [&](std::size_t at) { return text[at] == ','; }), 5U);
    EXPECT_EQ(findAtTop(text, rule, [&](std::size_t at) { return text[at] == 'd'; }), std::string_view::npos);
    EXPECT_THAT(splitAtTop(text, rule, ','), ElementsAre("\"a,b\"", "(c,d)", " e"));
    EXPECT_THAT(splitAtTop("", rule, ','), ElementsAre(""));
    EXPECT_THAT(splitAtTop(",", rule, ','), ElementsAre("", ""));
}

} // namespace
} // namespace morquill
