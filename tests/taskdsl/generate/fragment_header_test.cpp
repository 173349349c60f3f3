#include "taskdsl/generate/fragment_header.h"

#include "fixtures/test_lines.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

FragmentDefinition readHeader(std::string_view text, FragmentNaming naming = FragmentNaming::required) {
    return parseFragmentHeader(linesOf(text, "l.mqlib"), 0, "l.mqlib", naming).value;
}

/// Kind, name and parameters, a required one with a "!" after its name.
std::string shown(std::string_view text) {
    const auto lines = linesOf(text, "l.mqlib");
    const auto [fragment, next] = parseFragmentHeader(lines, 0, "l.mqlib", FragmentNaming::optional);
    EXPECT_EQ(next, lines.size()) << text;
    EXPECT_TRUE(fragment.lines.empty());
    EXPECT_EQ(fragment.path, "l.mqlib");
    std::string result = std::string(fragmentKindName(fragment.kind)) + " " + fragment.name;
    for (const auto& parameter : fragment.parameters) {
        result += " " + parameter.name + (parameter.required ? "!" : "=" + parameter.defaultValue);
    }
    return result;
}

TEST(FragmentHeader, ReadsKindNameAndParameters) {
    const auto lines = linesOf(
        "x\n  &FRAGMENT Task-body opt(method, # required\n   basis = 'a,b',\n extra=)\ny\n", "l.mqlib");
    const auto [fragment, next] = parseFragmentHeader(lines, 1, "l.mqlib", FragmentNaming::required);
    EXPECT_EQ(next, 4U);
    EXPECT_EQ(fragment.kind, FragmentKind::task_body);
    EXPECT_EQ(fragment.kindText, "Task-body");
    EXPECT_EQ(fragment.name, "opt");
    EXPECT_EQ(formatSpan(fragment.span), "l.mqlib:2:3-2:" + std::to_string(lines[1].text().size() + 1));
    ASSERT_EQ(fragment.parameters.size(), 3U);
    EXPECT_EQ(fragment.parameters[0].name, "method");
    EXPECT_TRUE(fragment.parameters[0].required);
    EXPECT_EQ(fragment.parameters[1].name, "basis");
    EXPECT_EQ(fragment.parameters[1].defaultValue, "a,b");
    EXPECT_FALSE(fragment.parameters[1].required);
    EXPECT_EQ(fragment.parameters[2].defaultValue, "");
    EXPECT_FALSE(fragment.parameters[2].required);
    EXPECT_EQ(readHeader("&FRAGMENT text", FragmentNaming::optional).name, "");
    EXPECT_EQ(readHeader("&FRAGMENT text (a=1)", FragmentNaming::optional).parameters.size(), 1U);
}

TEST(FragmentHeader, TellsWhatDoesNotFollowTheForm) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"x", "expected &FRAGMENT declaration"},
        {"&FRAGMENTS text a", "expected &FRAGMENT declaration"},
        {"&FRAGMENT", "unknown fragment kind ''"},
        {"&FRAGMENT foo a", "unknown fragment kind 'foo'"},
        {"&FRAGMENT text", "library fragments must have a name"},
        {"&FRAGMENT text (a)", "library fragments must have a name"},
        {"&FRAGMENT text 1a", "invalid fragment name '1a'"},
        {"&FRAGMENT text a.b", "invalid fragment name 'a.b'"},
        {"&FRAGMENT text a(b) c", "unterminated fragment parameter list"},
        {"&FRAGMENT text a(1b)", "invalid fragment parameter name '1b'"},
        {"&FRAGMENT text a(=1)", "invalid fragment parameter name ''"},
        {"&FRAGMENT text a(b,b=1)", "duplicate fragment parameter 'b'"},
        {"&FRAGMENT text a(b,\nc\n", "l.mqlib:1: unterminated &FRAGMENT parameter list"},
        {"&FRAGMENT text a)", "l.mqlib:1: unmatched ')' in &FRAGMENT header"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([text = text] { (void)readHeader(text); }), message) << text;
    }
}

TEST(FragmentHeader, EveryPartAfterTheKindMayBeMissing) {
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
