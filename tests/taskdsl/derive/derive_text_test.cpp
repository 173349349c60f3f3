#include "taskdsl/derive/derive_text.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

std::string halvesText(const std::optional<Halves>& halves) {
    return halves ? std::string(halves->left) + "|" + std::string(halves->right) : "-";
}

TEST(DeriveText, EqualsAreFoundAtTopLevel) {
    EXPECT_EQ(halvesText(splitAtEquals(" a = b = c ")), "a|b = c");
    EXPECT_EQ(halvesText(splitAtEquals("f(a=1)")), "-");
    EXPECT_EQ(halvesText(splitAtEquals("'a=\\'=' = \"=\"")), "'a=\\'='|\"=\"");
    EXPECT_EQ(halvesText(splitAtEquals("{{ a=b }}=c")), "{{ a=b }}|c");
    EXPECT_EQ(halvesText(splitAtEquals("=")), "|");
    EXPECT_EQ(halvesText(splitAtEquals("a)=b")), "a)|b");
}

TEST(DeriveText, WordsHaveBorders) {
    EXPECT_EQ(halvesText(splitAtWord("atoms(x)AS a as b", "as")), "atoms(x)|a as b");
    EXPECT_EQ(halvesText(splitAtWord("has asx as_ a.as as.b x/as/y", "as")), "-");
    EXPECT_EQ(halvesText(splitAtWord("'a as b' {{ c as d }} (e as f)", "as")), "-");
    EXPECT_EQ(halvesText(splitAtWord("as", "as")), "|");
    EXPECT_EQ(halvesText(splitAtWord("as as", "as", 1)), "as|");
    EXPECT_EQ(halvesText(splitAtWord("[a as b] as c", "as")), "[a|b] as c");
    EXPECT_EQ(halvesText(splitAtWord("[a as b] as c", "as", 0, Brackets::shielding)), "[a as b]|c");
}

TEST(DeriveText, ListsKeepEmptyEntries) {
    using List = std::vector<std::string_view>;
    EXPECT_EQ(splitAtCommas(" a , f(b, c),, 'd,e' "), (List{"a", "f(b, c)", "", "'d,e'"}));
    EXPECT_EQ(splitAtCommas(""), List{""});
    EXPECT_EQ(splitAtCommas(","), (List{"", ""}));
}

TEST(DeriveText, ParenthesesAreOnePairOrNone) {
    EXPECT_EQ(insideParentheses(" ( a (b) ')' ) "), "a (b) ')'");
    EXPECT_EQ(insideParentheses("()"), "");
    for (const char* text : {"", "(", "a", "(a) (b)", "(a", "(a')'", "((a)"}) {
        EXPECT_EQ(insideParentheses(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace morquill::taskdsl::derive
