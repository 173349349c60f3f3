#include "taskdsl/derive/derive_spec.h"

#include "support/text.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace morquill::taskdsl::derive {
namespace {

TEST(DeriveEnumerations, HaveTheWordsOfTheLanguage) {
    using enum DeriveCompareOp;
    constexpr std::array<std::pair<DeriveCompareOp, std::string_view>, 9> operators{{{truthy, "truthy"},
                                                                                     {equal, "=="},
                                                                                     {notEqual, "!="},
                                                                                     {less, "<"},
                                                                                     {lessEqual, "<="},
                                                                                     {greater, ">"},
                                                                                     {greaterEqual, ">="},
                                                                                     {in, "in"},
                                                                                     {matches, "matches"}}};
    for (const auto& [op, text] : operators) {
        EXPECT_EQ(deriveCompareOpName(op), text);
    }
    EXPECT_EQ(deriveConditionKindName(DeriveConditionKind::conjunction), "and");
    EXPECT_EQ(deriveConditionKindName(DeriveConditionKind::disjunction), "or");
    EXPECT_EQ(deriveConditionKindName(DeriveConditionKind::negation), "not");
    EXPECT_EQ(deriveSortDirectionName(DeriveSortDirection::desc), "desc");
    EXPECT_EQ(deriveSinkFormatName(DeriveSinkFormat::tsv), "tsv");
    EXPECT_EQ(deriveSinkFormatName(DeriveSinkFormat::jsonl), "jsonl");
    EXPECT_EQ(deriveValueKindName(DeriveValueKind::string), "string");
}

TEST(DeriveEnumerations, AValueOutOfRangeHasTheTextOfValueZero) {
    for (const int value : {-1, 9, 1'000'000}) {
        EXPECT_EQ(deriveCompareOpName(static_cast<DeriveCompareOp>(value)), "truthy");
        EXPECT_EQ(deriveConditionKindName(static_cast<DeriveConditionKind>(value)), "leaf");
        EXPECT_EQ(deriveValueKindName(static_cast<DeriveValueKind>(value)), "number");
        EXPECT_EQ(deriveSortDirectionName(static_cast<DeriveSortDirection>(value)), "asc");
        EXPECT_EQ(deriveSinkFormatName(static_cast<DeriveSinkFormat>(value)), "none");
    }
}

DeriveCondition leaf(const char* name) {
    DeriveCondition condition;
    condition.left = plot::makeExpression(plot::IdentifierExpr{name});
    return condition;
}

/// `a or b or ... or z`, leaning to the right with `levels` words.
DeriveCondition chain(int levels) {
    DeriveCondition condition = leaf("last");
    for (int i = 0; i < levels; ++i) {
        DeriveCondition outer;
        outer.kind = DeriveConditionKind::disjunction;
        outer.children.push_back(leaf("first"));
        outer.children.push_back(std::move(condition));
        condition = std::move(outer);
    }
    return condition;
}

TEST(DeriveCondition, ACopyHasEveryFieldAndIsItsOwn) {
    DeriveCondition original = chain(2);
    original.children[0].op = DeriveCompareOp::in;
    original.children[0].right = leaf("r").left;
    original.children[0].list = {leaf("v").left, nullptr};
    DeriveCondition copy = original;
    EXPECT_EQ(copy.kind, DeriveConditionKind::disjunction);
    ASSERT_EQ(copy.children.size(), 2U);
    EXPECT_EQ(copy.children[0].op, DeriveCompareOp::in);
    EXPECT_EQ(copy.children[0].left, original.children[0].left);
    EXPECT_EQ(copy.children[0].right, original.children[0].right);
    EXPECT_EQ(copy.children[0].list, original.children[0].list);
    EXPECT_EQ(copy.children[1].children.size(), 2U);
    EXPECT_EQ(plot::renderPlotExpression(copy.children[1].children[1].left), "last");

    copy.children[1].children.clear();
    copy.children[0].op = DeriveCompareOp::truthy;
    EXPECT_EQ(original.children[1].children.size(), 2U);
    EXPECT_EQ(original.children[0].op, DeriveCompareOp::in);

    copy = original.children[0];
    EXPECT_EQ(copy.op, DeriveCompareOp::in);
    EXPECT_EQ(copy.left, original.children[0].left);
    EXPECT_EQ(copy.right, original.children[0].right);
    EXPECT_EQ(copy.list, original.children[0].list);
    EXPECT_TRUE(copy.children.empty());
    copy = original.children[1]; // a part of another condition
    EXPECT_EQ(copy.children.size(), 2U);
    original = original.children[1]; // a part of itself
    EXPECT_EQ(original.children.size(), 2U);
    EXPECT_EQ(plot::renderPlotExpression(original.children[1].left), "last");
}

TEST(DeriveCondition, AChainOfAnyLengthIsCopiedAssignedAndFreedWithoutRecursion) {
    const DeriveCondition longOne = chain(300'000);
    DeriveCondition copy = longOne;
    copy = longOne;
    std::size_t levels = 0;
    const DeriveCondition* node = &copy;
    while (!node->children.empty()) {
        node = &node->children.back();
        ++levels;
    }
    EXPECT_EQ(levels, 300'000U);
    EXPECT_EQ(plot::renderPlotExpression(node->left), "last");
}

TEST(DeriveEnumerations, HaveOneTextPerValue) {
    const auto textOf = [](auto name, auto value, int count) {
        std::vector<std::string> texts;
        for (int i = 0; i < count; ++i) {
            texts.emplace_back(name(static_cast<decltype(value)>(i)));
        }
        return join(texts, " ");
    };
    EXPECT_EQ(textOf(deriveCompareOpName, DeriveCompareOp{}, 10), "truthy == != < <= > >= in matches truthy");
    EXPECT_EQ(textOf(deriveConditionKindName, DeriveConditionKind{}, 5), "leaf and or not leaf");
    EXPECT_EQ(textOf(deriveValueKindName, DeriveValueKind{}, 3), "number string number");
    EXPECT_EQ(textOf(deriveSortDirectionName, DeriveSortDirection{}, 3), "asc desc asc");
    EXPECT_EQ(textOf(deriveSinkFormatName, DeriveSinkFormat{}, 5), "none csv tsv jsonl none");
    EXPECT_EQ(deriveSinkFormatName(static_cast<DeriveSinkFormat>(-1)), "none");
}

} // namespace
} // namespace morquill::taskdsl::derive
