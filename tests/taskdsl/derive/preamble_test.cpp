// let, require and report as records and in print.

#include "fixtures/derive_fixture.h"
#include "taskdsl/derive/derive_output.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

struct StatementFault {
    const char* text;
    const char* message;
};

template <std::size_t N>
void expectFaults(StatementReader read, const StatementFault (&faults)[N]) {
    for (const auto& [text, message] : faults) {
        EXPECT_EQ(readerFault(read, text), atStatement(message)) << text;
    }
}

TEST(ReadLet, NamesAValue) {
    const auto let = readOne<LetStatement>(readLet, "gap = (lumo - homo) * f(x = 1)");
    EXPECT_EQ(let.name, "gap");
    EXPECT_EQ(printed(let.value), "(lumo - homo) * f(x=1)");
    EXPECT_EQ(let.span, statementPlace);
    EXPECT_EQ(printed(readOne<LetStatement>(readLet, "a = 'b = c'").value), "\"b = c\"");
    expectFaults(readLet, {{"gap", "let statement must be 'let name = expression'"},
                           {"f(a=1)", "let statement must be 'let name = expression'"},
                           {"", "let statement must be 'let name = expression'"},
                           {"= 1", "let name must be an identifier"},
                           {"a.b = 1", "let name must be an identifier"},
                           {"'a' = 1", "let name must be an identifier"},
                           {"a =", "let statement requires an expression"},
                           {"a = b +", "expected a number, identifier, string, function call, or '('"}});
}

TEST(ReadLet, ResolvesTheFormulasOfItsBlock) {
    BlockReader reader = readerAt();
    parseFormula("twice(x) = x + x", {}, reader.surface);
    readLet(reader, "a = twice(b)");
    EXPECT_EQ(printed(std::get<LetStatement>(reader.spec.statements.at(0)).value), "b + b");
}

TEST(ReadRequire, HoldsAConditionAndAMessage) {
    struct Row {
        const char* text;
        const char* condition;
        const char* message;
    };
    const Row rows[] = {
        {"a > 1 and b", "a > 1 and b", ""},
        {"a > 1 else 'too small'", "a > 1", "too small"},
        {"a ELSE not enough atoms", "a", "not enough atoms"},
        {"a == 'x else y'", "a == \"x else y\"", ""},
        {"a in [else, b]", "a in [else, b]", ""}, // a value of the list
    };
    for (const auto& [text, condition, message] : rows) {
        const auto require = readOne<RequireStatement>(readRequire, text);
        EXPECT_EQ(renderDeriveCondition(require.condition), condition) << text;
        EXPECT_EQ(require.message, message) << text;
        EXPECT_EQ(require.span, statementPlace);
    }
    expectFaults(readRequire, {{"else 'm'", "require condition cannot be empty before else"},
                               {"a else", "require else requires an error message"},
                               {"a else ''", "require error message cannot be empty"}});
}

TEST(ReadReport, LabelsAValue) {
    const auto report = readOne<ReportStatement>(readReport, "'Gap / eV' = gap * 27.2");
    EXPECT_EQ(report.label, "Gap / eV");
    EXPECT_EQ(printed(report.value), "gap * 27.2");
    EXPECT_EQ(report.span, statementPlace);
    EXPECT_EQ(readOne<ReportStatement>(readReport, "two words = a").label, "two words");
    expectFaults(readReport, {{"gap", "report statement must be 'report label = expression'"},
                              {"= gap", "report label cannot be empty"},
                              {"'' = gap", "report label cannot be empty"},
                              {"gap =", "report statement requires an expression"}});
}

TEST(DeriveLet, SplitsAtTheFirstTopLevelEquals) {
    expectForms("", "emit x = a\n",
                {
                    {"let a = f(b=1)", "let a = f(b=1)"},
                    {"let a={{ t.k=v }}", "let a = {{ t.k=v }}"},
                    {"let  _A9 =  '=' ", "let _A9 = \"=\""},
                });
    expectRefusals({
        {"let a", "let statement must be 'let name = expression'"},
        {"let f(a=1)", "let statement must be 'let name = expression'"},
        {"let 'a = 1'", "let statement must be 'let name = expression'"},
        {"let a.b = 1", "let name must be an identifier"},
        {"let = 1", "let name must be an identifier"},
        {"let =", "let name must be an identifier"},
        {"let a =", "let statement requires an expression"},
        {"let a = 1 2", "unexpected token '2'"},
    });
}

TEST(DeriveRequire, TakesAConditionAndAMessage) {
    expectForms("", "emit x = a\n",
                {
                    {"require a > 1", "require a > 1"},
                    {"assert a > 1 ELSE too small", "require a > 1 else \"too small\""},
                    {"require a in [x, 'else'] else \"say \\\"no\\\"\"",
                     "require a in [x, \"else\"] else \"say \\\"no\\\"\""},
                    {"require a else b else c", "require a else \"b else c\""},
                    {"require elsewhere", "require elsewhere"},
                    {"require {{ t.a else b }}", "require {{ t.a else b }}"},
                });
    expectRefusals({
        {"require else x", "require condition cannot be empty before else"},
        {"require else", "require condition cannot be empty before else"},
        {"require a else", "require else requires an error message"},
        {"require a else ''", "require error message cannot be empty"},
        {"assert a else \"\"", "require error message cannot be empty"},
        {"require ()", "condition cannot be empty"},
    });
}

TEST(DeriveReport, TakesALabelAndAnExpression) {
    expectForms("", "emit x = a\n",
                {
                    {"report barrier = a", "report \"barrier\" = a"},
                    {"report \"a = b\" = a", "report \"a = b\" = a"},
                    {"report free energy = f(x=1)", "report \"free energy\" = f(x=1)"},
                });
    expectRefusals({
        {"report a", "report statement must be 'report label = expression'"},
        {"report = a", "report label cannot be empty"},
        {"report '' = a", "report label cannot be empty"},
        {"report a =", "report statement requires an expression"},
    });
}

} // namespace
} // namespace morquill::taskdsl::derive
