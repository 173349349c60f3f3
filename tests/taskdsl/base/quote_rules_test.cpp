#include "taskdsl/base/quote_rules.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

/// The bytes of the text that are outside quotes, snapshots and brackets when the walk comes to them.
std::string topOf(const QuoteRule& rule, std::string_view text) {
    std::string top;
    QuoteWalk walk(rule);
    for (std::size_t at = 0; at < text.size(); at = walk.step(text, at)) {
        top += walk.atTop() ? std::string(1, text[at]) : "";
    }
    return top;
}

TEST(QuoteRules, LanguagesDifferInOneTable) {
    using namespace quote_rules;
    struct Row {
        const QuoteRule& rule;
        const char* name;
        bool open;    ///< `\"#`: the backslash protects the quote
        bool doubles; ///< `"\"#`
        bool singles; ///< `'\'#`
        bool letters; ///< `"\a"` loses its backslash
        bool braces;  ///< `{{#` is inside
        bool nested;  ///< `{{ {{ }} #` is inside
        bool parens;  ///< `(#` is inside
        bool squares; ///< `[#` is inside
    };
    const Row rows[] = {
        {taskComment[3], "taskComment", false, true, true, true, false, false, false, false},
        {shellWords, "shellWords", true, true, false, false, false, false, false, false},
        {valueList, "valueList", false, true, true, true, false, false, false, false},
        {includeLine, "includeLine", false, true, true, true, false, false, true, false},
        {includeArguments, "includeArguments", false, true, true, true, true, true, true, true},
        {includeTarget, "includeTarget", false, true, true, false, false, false, false, false},
        {whenCondition, "whenCondition", false, true, true, true, true, true, true, false},
        {whenEnclosure, "whenEnclosure", true, true, true, true, true, true, false, false},
        {plotText, "plotText", true, true, false, true, true, true, true, false},
        {plotWords, "plotWords", false, true, false, true, false, false, true, false},
        {statementLine, "statementLine", false, true, true, true, true, true, false, false},
        {deriveText, "deriveText", false, true, true, true, true, false, true, false},
        {deriveCondition, "deriveCondition", false, true, true, true, true, false, true, true},
        {expressionString, "expressionString", false, true, true, true, false, false, false, false},
        {rawComment, "rawComment", false, false, false, false, false, false, false, false},
    };
    const auto shelters = [](const QuoteRule& rule, std::string_view text) {
        return !topOf(rule, text).ends_with('#');
    };
    for (const Row& row : rows) {
        EXPECT_EQ(!shelters(row.rule, R"(\"#)"), row.open) << row.name;
        EXPECT_EQ(shelters(row.rule, R"("\"#)"), row.doubles) << row.name;
        EXPECT_EQ(shelters(row.rule, R"('\'#)"), row.singles) << row.name;
        QuoteWalk walk(row.rule);
        EXPECT_EQ(walk.step("\"", 0) == 1 && walk.step("\\a", 0) == 2, row.letters) << row.name;
        EXPECT_EQ(shelters(row.rule, "{{#"), row.braces) << row.name;
        EXPECT_EQ(shelters(row.rule, "{{ {{ }} #"), row.nested) << row.name;
        EXPECT_EQ(shelters(row.rule, "(#"), row.parens) << row.name;
        EXPECT_EQ(shelters(row.rule, "[#"), row.squares) << row.name;
    }
}

TEST(QuoteRules, ATaskLineHasARowForEveryPairingOfItsQuotes) {
    const std::string_view text = R"('a'"b")";
    EXPECT_EQ(topOf(quote_rules::taskComment[0], text), text);
    EXPECT_EQ(topOf(quote_rules::taskComment[1], text), R"('"b")");
    EXPECT_EQ(topOf(quote_rules::taskComment[2], text), R"('a'")");
    EXPECT_EQ(topOf(quote_rules::taskComment[3], text), R"('")");
}

} // namespace
} // namespace morquill::taskdsl
