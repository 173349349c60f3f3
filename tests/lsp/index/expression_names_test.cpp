#include "lsp/index/expression_names.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

std::string namesOfExpression(std::string_view expression) {
    const std::string text = "@plot curve c\n  x " + std::string(expression) + "\n@end\n";
    const auto all = printNames(text);
    return all.substr(all.find('\n') + 1);
}

TEST(ExpressionNames, TheFirstArgumentOfAFunctionOfTasksIsATask) {
    EXPECT_EQ(namesOfExpression("energy(a) + ENERGY('b') - abs(c)"),
              "1:11 task a\n1:24 task b\n1:34 property c\n");
    EXPECT_EQ(namesOfExpression("energy(self)"), "");
    EXPECT_EQ(namesOfExpression("energy(a + b, c)"), "1:11 property a\n1:15 property b\n1:18 property c\n");
    EXPECT_EQ(namesOfExpression("thermo(task=a, temperature=t)"), "1:16 task a\n1:31 property t\n");
}

TEST(ExpressionNames, FunctionsAndArgumentsAreWords) {
    const std::string_view text = "@plot curve c\n  x f(g(a), b=1)\n@end\n";
    EXPECT_EQ(printWords(text, NameKind::function), "f g");
    EXPECT_EQ(printWords(text, NameKind::argument), "b");
    EXPECT_EQ(printWords(text, NameKind::number), "1");
}

TEST(ExpressionNames, PlaceholdersNameTaskAndValue) {
    EXPECT_EQ(namesOfExpression("{{ a_[x].b }} + {{c}}"),
              "1:7 task a_[x]\n1:10 key x\n1:13 property b < a_[x]\n1:22 task c\n");
}

TEST(ExpressionNames, ATableIsNamedByItsDerive) {
    EXPECT_EQ(namesOfExpression("derived(\"d.t\")"), "1:13 derive d\n1:15 table t < d\n");
}

} // namespace
