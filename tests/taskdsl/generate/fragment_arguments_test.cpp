// Definitions and arguments as records. What headers and include lines give is the matter of
// fragment_test.cpp.

#include "taskdsl/generate/fragment_arguments.h"

#include "fixtures/faults.h"

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

} // namespace
} // namespace morquill::taskdsl
