#include "taskdsl/generate/fragment_arguments.h"

#include "fixtures/test_lines.h"
#include "taskdsl/generate/fragment_header.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

FragmentDefinition fragment(std::vector<FragmentParameter> parameters) {
    FragmentDefinition definition;
    definition.name = "f";
    definition.parameters = std::move(parameters);
    return definition;
}

ValueMap bind(const FragmentDefinition& definition, const ValueMap& arguments) {
    IncludeDirective include;
    include.arguments = arguments;
    return bindArguments(definition, include, {"&INCLUDE l.f", "t.mq", 7});
}

TEST(BindArguments, EveryParameterHasAValue) {
    const auto definition = fragment({{"need", "", true}, {"with", "d", false}, {"empty", "", false}});
    EXPECT_EQ(bind(definition, {{"need", "1"}}), (ValueMap{{"need", "1"}, {"with", "d"}, {"empty", ""}}));
    EXPECT_EQ(bind(definition, {{"need", ""}, {"with", "w"}, {"empty", "e"}}),
              (ValueMap{{"need", ""}, {"with", "w"}, {"empty", "e"}}));
    EXPECT_EQ(bind(fragment({}), {}), ValueMap{});
}

TEST(BindArguments, ReferencesAreResolvedAmongTheParametersOnly) {
    struct Row {
        const char* a;
        const char* b;
        const char* c;
        const char* resolvedA;
    };
    const Row rows[] = {
        {"[b]", "1", "", "1"},
        {"[b]+[c]", "1", "2", "1+2"},
        {"[b][b]", "[c]", "x", "xx"},
        {"[define]", "", "", "[define]"}, // waits for the file that it stands in
        {"[b", "1", "", "[b"},
        {"[b]", "[d]", "", "[d]"},
    };
    for (const auto& [a, b, c, resolvedA] : rows) {
        const auto bound = bind(fragment({{"a", a, false}, {"b", "", true}, {"c", c, false}}), {{"b", b}});
        EXPECT_EQ(bound.at("a"), resolvedA) << a;
    }
}

TEST(BindArguments, FaultsHaveThePlaceOfTheIncludeLine) {
    const auto definition = fragment({{"a", "", true}, {"b", "[c]", false}, {"c", "x", false}});
    EXPECT_EQ(messageOf([&] { (void)bind(definition, {}); }),
              "t.mq:7: missing required argument 'a' for fragment 'f'");
    EXPECT_EQ(messageOf([&] {
                  (void)bind(definition, {{"z", "1"}});
              }),
              "t.mq:7: unknown argument 'z' for fragment 'f'");
    EXPECT_EQ(messageOf([&] {
                  (void)bind(definition, {{"a", "1"}, {"c", "<[b]>"}});
              }),
              "t.mq:7: fragment parameter reference cycle in 'f': b -> c -> b");
}

ValueMap bindOf(std::string_view header, std::string_view arguments) {
    const SourceLine line{"", "t.mq", 7};
    return bindArguments(
        parseFragmentHeader(linesOf(header, "l.mqlib"), 0, "l.mqlib", FragmentNaming::required).value,
        parseIncludeLine("&INCLUDE x.y(" + std::string(arguments) + ")"), line);
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
