#include "lsp/index/expression_tokens.h"

namespace {

using namespace morquill::lsp;

/// The tokens as `<letter of the kind><depth> <text>`, joined by "|".
std::string print(std::string_view text) {
    std::size_t depth = 0;
    std::vector<Token> tokens;
    addTokens(text, depth, tokens);
    std::string printed;
    for (const auto& token : tokens) {
        printed += printed.empty() ? "" : "|";
        printed += "ndsxo"[static_cast<std::size_t>(token.kind)];
        printed += std::to_string(token.depth) + " " + std::string(token.text);
    }
    return printed;
}

TEST(ExpressionTokens, AreTheTokensOfTheGrammar) {
    EXPECT_EQ(print("a.b_1 + 1.5e-3*'x\\'y'"), "n0 a.b_1|o0 +|d0 1.5e-3|o0 *|s0 'x\\'y'");
    EXPECT_EQ(print("f(a, g(b)) == {{ t.k }}"),
              "n0 f|o0 (|n1 a|o1 ,|n1 g|o1 (|n2 b|o1 )|o0 )|o0 ==|x0 {{ t.k }}");
    EXPECT_EQ(print("[k]_x in [\"C\"]"), "n0 [k]_x|n0 in|o0 [|s0 \"C\"|o0 ]");
    EXPECT_EQ(print("axis:"), "n0 axis|o0 :");
}

TEST(ExpressionTokens, AnyBytesAreTokens) {
    EXPECT_EQ(print("\"open"), "s0 \"open");
    EXPECT_EQ(print("{{ open"), "x0 {{ open");
    EXPECT_EQ(print(")))(\xff"), "o0 )|o0 )|o0 )|o0 (|o1 \xff");
}

TEST(ExpressionTokens, StatementsGoOnAsInTheParser) {
    const std::vector<std::string_view> lines = {"  let a = (b  # c", "    + d)", "", "emit:", "x y +", "z"};
    const auto statements = readStatements(lines);
    ASSERT_EQ(statements.size(), 3U);
    EXPECT_EQ(statements[0].word, "let");
    EXPECT_EQ(statements[0].tokens.size(), 7U);
    EXPECT_EQ(statements[1].word, "emit");
    EXPECT_EQ(statements[2].word, "x");
    EXPECT_EQ(statements[2].tokens.size(), 3U);
}

TEST(ExpressionTokens, Insides) {
    EXPECT_EQ(insideQuotes("\"a b\""), "a b");
    EXPECT_EQ(insideQuotes("'open"), "open");
    EXPECT_EQ(insideQuotes("\""), "");
    EXPECT_EQ(insideSnapshot("{{ t.k }}"), "t.k");
    EXPECT_EQ(insideSnapshot("{{ open"), "open");
}

} // namespace
