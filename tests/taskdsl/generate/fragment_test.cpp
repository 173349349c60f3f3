#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/fragment_arguments.h"
#include "taskdsl/generate/fragment_header.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

FragmentDefinition readHeader(std::string_view text, bool nameRequired = true) {
    std::size_t index = 0;
    return parseFragmentHeader(linesOf(text, "l.mqlib"), index, "l.mqlib", nameRequired);
}

TEST(FragmentKinds, HaveTheirSpellings) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"document", "document"},  {"doc", "document"},
        {"task", "task_body"},     {" Task-Body ", "task_body"},
        {"taskbody", "task_body"}, {"process", "process"},
        {"command", "process"},    {"commands", "process"},
        {"cmd", "process"},        {"preprocess", "preprocess"},
        {"control", "control"},    {"mod", "mod"},
        {"when", "when"},          {"meta", "meta"},
        {"param", "param"},        {"args", "args"},
        {"batch", "batch"},        {"text", "text"},
        {"BODY", "text"},          {"extrainput", "text"},
        {"unknown", "unknown"},    {"", "unknown"},
        {"keywords", "unknown"},
    };
    for (const auto& [spelling, name] : rows) {
        EXPECT_EQ(fragmentKindName(parseFragmentKind(spelling)), name) << spelling;
    }
    EXPECT_EQ(fragmentKindName(static_cast<FragmentKind>(99)), "unknown");
}

TEST(FragmentKinds, FitTheirOwnScopeAndCommandsFitEachOther) {
    for (int kind = 0; kind <= 12; ++kind) {
        for (int scope = 1; scope <= 12; ++scope) {
            const bool commands = (kind == 3 || kind == 4) && (scope == 3 || scope == 4);
            EXPECT_EQ(kindFits(static_cast<FragmentKind>(kind), static_cast<FragmentKind>(scope)),
                      kind == 0 || kind == scope || commands)
                << kind << " in " << scope;
        }
    }
}

TEST(FragmentHeader, ReadsKindNameAndParameters) {
    std::size_t index = 1;
    const auto lines = linesOf(
        "x\n  &FRAGMENT Task-body opt(method, # required\n   basis = 'a,b',\n extra=)\ny\n", "l.mqlib");
    const auto fragment = parseFragmentHeader(lines, index, "l.mqlib", true);
    EXPECT_EQ(index, 3U);
    EXPECT_EQ(fragment.kind, FragmentKind::task_body);
    EXPECT_EQ(fragment.kindText, "Task-body");
    EXPECT_EQ(fragment.name, "opt");
    EXPECT_EQ(formatSpan(fragment.span), "l.mqlib:2:3-2:" + std::to_string(lines[1].text.size() + 1));
    ASSERT_EQ(fragment.parameters.size(), 3U);
    EXPECT_EQ(fragment.parameters[0].name, "method");
    EXPECT_TRUE(fragment.parameters[0].required);
    EXPECT_EQ(fragment.parameters[1].name, "basis");
    EXPECT_EQ(fragment.parameters[1].defaultValue, "a,b");
    EXPECT_FALSE(fragment.parameters[1].required);
    EXPECT_EQ(fragment.parameters[2].defaultValue, "");
    EXPECT_FALSE(fragment.parameters[2].required);
    EXPECT_EQ(readHeader("&FRAGMENT text", false).name, "");
    EXPECT_EQ(readHeader("&FRAGMENT text (a=1)", false).parameters.size(), 1U);
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

ValueMap bindOf(std::string_view header, std::string_view arguments) {
    const SourceLine line{"", "t.mq", 7};
    return bindArguments(readHeader(header), parseIncludeLine("&INCLUDE x.y(" + std::string(arguments) + ")"),
                         line);
}

TEST(FragmentArguments, TakeTheArgumentOrTheDefault) {
    EXPECT_EQ(bindOf("&FRAGMENT text f(a, b=2, c='x y')", "a=1, c=3"),
              (ValueMap{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST(FragmentArguments, ReferToOneAnother) {
    EXPECT_EQ(bindOf("&FRAGMENT text f(a=[b]-[b], b=<[c]>, c)", "c=1"),
              (ValueMap{{"a", "<1>-<1>"}, {"b", "<1>"}, {"c", "1"}}));
    EXPECT_EQ(bindOf("&FRAGMENT text f(a=[other])", ""), (ValueMap{{"a", "[other]"}}));
}

TEST(FragmentArguments, TellUnknownMissingAndCircularOnes) {
    const std::vector<std::tuple<const char*, const char*, const char*>> rows{
        {"&FRAGMENT text f(a)", "b=1", "t.mq:7: unknown argument 'b' for fragment 'f'"},
        {"&FRAGMENT text f(a)", "", "t.mq:7: missing required argument 'a' for fragment 'f'"},
        {"&FRAGMENT text f(a=[b], b=[a])", "",
         "t.mq:7: fragment parameter reference cycle in 'f': a -> b -> a"},
        {"&FRAGMENT text f(x=[a], a=[b], b=[c], c=[b])", "",
         "t.mq:7: fragment parameter reference cycle in 'f': b -> c -> b"},
        {"&FRAGMENT text f(a)", "a=[a]", "t.mq:7: fragment parameter reference cycle in 'f': a -> a"},
    };
    for (const auto& [header, arguments, message] : rows) {
        EXPECT_EQ(messageOf([&, h = header, a = arguments] { (void)bindOf(h, a); }), message);
    }
}

TEST(FragmentArguments, LongChainsResolveAndDoublingOnesEnd) {
    // Declared before what it needs, so that the first one walks the whole chain.
    std::string chain = "&FRAGMENT text f(";
    for (int i = 20'000; i > 0; --i) {
        chain += "p" + std::to_string(i) + "=[p" + std::to_string(i - 1) + "], ";
    }
    chain += "p0=x";
    std::string doubling = "&FRAGMENT text f(p0=xxxx";
    for (int i = 1; i <= 60; ++i) {
        const auto before = "[p" + std::to_string(i - 1) + "]";
        doubling += ", p" + std::to_string(i) + "=" + before + before;
    }
    EXPECT_EQ(bindOf(chain + ")", "").at("p20000"), "x");
    EXPECT_EQ(messageOf([&] { (void)bindOf(doubling + ")", ""); }),
              "t.mq:7: parameters of fragment 'f' are longer than 64 MiB");
}

} // namespace
} // namespace morquill::taskdsl
