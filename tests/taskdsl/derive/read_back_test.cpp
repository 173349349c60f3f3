#include "fixtures/derive_fixture.h"
#include "taskdsl/derive/derive_substitute.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

struct Row {
    std::string written; ///< statements
    std::string printed;
};

/// Puts the rows between `lead` and `tail`, which are canonical, and expects them to print as given, to read
/// back and to print the same again, without a warning.
void expectReadBack(const std::string& lead, const std::vector<Row>& rows, const std::string& tail) {
    for (const auto& [written, expected] : rows) {
        SCOPED_TRACE(written);
        const auto [text, warnings] = printed(parseDerive(blockOf(lead + written + "\n" + tail)));
        EXPECT_EQ(statementsOf(text), lead + expected + "\n" + tail);
        EXPECT_EQ(join(warnings, "\n"), "");
        const auto again = readAgain(text);
        ASSERT_TRUE(again.has_value());
        EXPECT_EQ(renderDerive(*again, ""), text);
    }
}

struct LossRow {
    std::string written;
    std::string printed;
    std::string why;
};

/// The same for what has no form that reads back.
void expectLosses(const std::string& lead, const std::vector<LossRow>& rows, const std::string& tail) {
    for (const auto& [written, expected, why] : rows) {
        SCOPED_TRACE(written);
        const auto [text, warnings] = printed(parseDerive(blockOf(lead + written + "\n" + tail)));
        EXPECT_EQ(statementsOf(text), lead + expected + "\n" + tail);
        EXPECT_EQ(join(warnings, "\n"), "derive 'd' does not read back: " + why);
    }
}

const std::string atoms = "from atoms(opt) as a\n";
const std::string tasks = "from tasks(\"*\")\n";
const std::string sink = "emit table t\n";

TEST(ReadBack, ScalarEmitKeepsAValueApartFromItsUnit) {
    expectReadBack("",
                   {
                       {"emit e = (unit)", "emit e = (unit)"},
                       {"emit e = (Unit) unit x", "emit e = (Unit) unit \"x\""},
                       {"emit e = (a) + (unit)", "emit e = (a + unit)"},
                       {"emit e = 2 * (unit(x))", "emit e = (2 * unit(x))"},
                       {"emit e = f(unit)", "emit e = f(unit)"},
                       {"emit e = (units)", "emit e = units"},
                       {"emit e = (unit.a)", "emit e = unit.a"},
                       {"emit e = (a[unit])", "emit e = (a[unit])"},
                       {"emit e = 'unit' + {{ unit.unit }}", "emit e = \"unit\" + {{ unit.unit }}"},
                       {"emit unit = 1", "emit unit = 1"},
                       {"emit unit = (unit)", "emit unit = (unit)"},
                       {"emit e = (a:)", "emit e = (a:)"},
                       {"emit e = (a:) unit m", "emit e = a: unit \"m\""},
                       {"emit e = (a:b)", "emit e = a:b"},
                       {"emit e = (or)", "emit e = or"},
                   },
                   "");
}

TEST(ReadBack, PlainPlacesPrintNoParentheses) {
    expectReadBack("",
                   {
                       {"let a = (unit) + (else) - (or)", "let a = unit + else - or"},
                       {"let a = (as:in[by])", "let a = as:in[by]"},
                       {"report l = (matches)", "report \"l\" = matches"},
                   },
                   "emit e = e\n");
    expectReadBack(atoms,
                   {
                       {"select s = (as)", "select s = as"},
                       {"select s = (by)\nemit atomvec v = (unit)", "select s = by\nemit atomvec v = unit"},
                   },
                   "emit table t\n");
}

TEST(ReadBack, RequireKeepsItsConditionApartFromItsMessage) {
    expectReadBack("",
                   {
                       {"require (else) else 'm'", "require (else) else \"m\""},
                       {"require (else)", "require (else)"},
                       {"require (ELSE) == 1", "require (ELSE) == 1"},
                       {"require 1 == (else) + 2", "require 1 == (else + 2)"},
                       {"require not (else) and b", "require not (else) and b"},
                       {"require (a or else) and b", "require (a or else) and b"},
                       {"require x in [else] else m", "require x in [else] else \"m\""},
                       {"require (a[else]) == 1", "require a[else] == 1"},
                       {"require f(else) else \"else\"", "require f(else) else \"else\""},
                   },
                   "emit e = e\n");
    expectReadBack(tasks, {{"where else == 1 or else", "where else == 1 or else"}}, "select s = s\n" + sink);
}

TEST(ReadBack, ConditionsKeepTheirWordsApartFromTheirNames) {
    expectReadBack(tasks,
                   {
                       {"where (in) == 1", "where (in) == 1"},
                       {"where (matches) matches \"x\"", "where (matches) matches \"x\""},
                       {"where (or) + 1 < (and) - 2", "where (or + 1) < (and - 2)"},
                       {"where 1 == (in)", "where 1 == in"},
                       {"where (or(x)) in [or, (and), a[in]]", "where (or(x)) in [or, and, a[in]]"},
                       {"where (not) == 1", "where (not) == 1"},
                       {"where (not) + 1 == 1", "where (not + 1) == 1"},
                       {"where 1 + not == 1", "where 1 + not == 1"},
                       {"where not(x) == 1", "where not(x) == 1"},
                       {"where not and b", "where not and b"},
                       {"where not not", "where not not"},
                       {"where (a:or) == 1", "where (a:or) == 1"},
                       {"where (a.or) == 1", "where a.or == 1"},
                       {"where (or) + 1", "where (or) + 1"},
                       {"where not (in(a, b)) - x and c", "where not (in(a, b)) - x and c"},
                       {"where 'in' == {{ in.or }}", "where \"in\" == {{ in.or }}"},
                   },
                   "select s = s\n" + sink);
}

TEST(ReadBack, GroupKeysAndSinksKeepExpressionsApartFromNames) {
    expectReadBack(tasks,
                   {
                       {"group by (as) as k", "group by (as) as k"},
                       {"group by a + (as) as k, (as(1)) + by as l, f(as) as m, b",
                        "group by (a + as) as k, (as(1) + by) as l, f(as) as m, b as b"},
                   },
                   sink);
    expectReadBack(atoms,
                   {
                       {"emit kv p from (as) as q", "emit kv \"p\" from (as) as q"},
                       {"emit kv p from (as)", "emit kv \"p\" from (as) as as"},
                       {"emit artifact p from 2 * (As) as q", "emit artifact \"p\" from (2 * As) as q"},
                       {"emit kv 'from' from (from) as from", "emit kv \"from\" from from as from"},
                   },
                   "");
}

TEST(ReadBack, SortKeepsAKeyApartFromItsWords) {
    expectReadBack(tasks + "select s = s\n",
                   {
                       {"sort (by)", "sort (by) asc"},
                       {"sort by by", "sort (by) asc"},
                       {"sort (By) + 1 desc", "sort (By + 1) desc"},
                       {"sort 1 + (by)", "sort 1 + by asc"},
                       {"sort by(x)", "sort by(x) asc"},
                       {"sort (desc) asc", "sort desc asc"},
                       {"sort (a + asc)", "sort a + asc asc"},
                   },
                   sink);
}

TEST(ReadBack, AnAggregateWithoutACallPrintsInParentheses) {
    expectReadBack(tasks + "group by g as g\n",
                   {
                       {"aggregate n = (x)", "aggregate n = (x)"},
                       {"aggregate n = (x + 1)", "aggregate n = (x + 1)"},
                       {"aggregate n = (f(x))", "aggregate n = f(x)"},
                       {"aggregate n = \"a\" + f(\"b\")", "aggregate n = \"a\" + f(\"b\")"},
                   },
                   sink);
    EXPECT_EQ(canonical("formula shifted(x) = x + 1\n" + tasks +
                        "group by g\naggregate n = shifted(a), m = shifted(sum(a))\n" + sink),
              tasks + "group by g as g\naggregate n = (a + 1)\naggregate m = sum(a) + 1\n" + sink);
}

TEST(ReadBack, GroupsThatPrintWithoutParenthesesAreTold) {
    const std::string negated = "'not' before a group prints without parentheses";
    expectLosses(
        "",
        {
            {"require not (a or b)", "require not a or b", negated},
            {"require x and not (a and b) else m", "require x and not a and b else \"m\"", negated},
            {"require not ((a or b) and c)", "require not (a or b) and c", negated},
            {"require not (a or b)\nrequire not (c or d)", "require not a or b\nrequire not c or d", negated},
            {"require (a or b) or c", "require a or b or c",
             "a group before 'or' prints without parentheses"},
            {"require (a and b) and c", "require a and b and c",
             "a group before 'and' prints without parentheses"},
        },
        "emit e = e\n");
}

TEST(ReadBack, ExpressionsThatPrintAsOthersAreTold) {
    expectLosses(
        "",
        {
            {"emit e = a + (b - c)", "emit e = a + b - c", "parentheses on the right of '+' are not printed"},
            {"emit e = a * (b / c)", "emit e = a * b / c", "parentheses on the right of '*' are not printed"},
            {"emit e = a + (b + (unit))", "emit e = (a + b + unit)",
             "parentheses on the right of '+' are not printed"},
            {"emit e = 0.12345678901234567", "emit e = 0.123456789012346",
             "the number 0.12345678901234566 prints with 15 digits"},
        },
        "");
    EXPECT_EQ(printed(parseDerive(blockOf("formula f(x) = x + 1\nemit e = a + f(b)"))).warnings,
              std::vector<std::string>{
                  "derive 'd' does not read back: parentheses on the right of '+' are not printed"});
    expectReadBack("",
                   {
                       {"emit e = a - (b - c) + 298.15 * 1e-300", "emit e = a - (b - c) + 298.15 * 1e-300"},
                       {"emit e = a - (b * c) / (-(d))", "emit e = a - b * c / -d"},
                       {"emit e = 999999999999999 + 1e15", "emit e = 999999999999999 + 1e+15"},
                   },
                   "");
}

TEST(ReadBack, NamesThatBelongToOtherStatementsAreTold) {
    for (const std::string name : {"table", "value", "report", "atomvec", "kv", "Artifact"}) {
        expectLosses("",
                     {{"emit  " + name + " = 1", "emit " + name + " = 1",
                       "'emit " + name + "' begins another statement"}},
                     "");
    }
    expectLosses(atoms + "select s = s\n",
                 {
                     {"emit atomvec atoms.atoms.q = x", "emit atomvec atoms.q = x",
                      "the property 'atoms.q' loses its 'atoms.'"},
                     {"emit kv p from (as) as atoms[].atoms.q", "emit kv \"p\" from (as) as atoms.q",
                      "the property 'atoms.q' loses its 'atoms.'"},
                 },
                 sink);
    EXPECT_EQ(canonical("emit  tables = 1\nemit e"), "emit tables = 1\nemit e = e\n");
}

TEST(ReadBack, ConditionsThatNoParenthesesHelpAreTold) {
    // A pair around the whole of a condition is taken off again.
    const auto [text, warnings] =
        printed(parseDerive(blockOf("formula same(x) = x\nrequire same(or)\nemit e")));
    EXPECT_EQ(statementsOf(text), "require or\nemit e = e\n");
    EXPECT_EQ(join(warnings, "\n"), "derive 'd' does not read back: 'require' reads differently");
    // A bracket that is never closed hides what follows it.
    const auto open = printed(parseDerive(blockOf("formula f(x) = g[(x)\nrequire f(1) == 2 and c\nemit e")));
    EXPECT_EQ(statementsOf(open.text), "require g[(1) == 2 and c\nemit e = e\n");
    EXPECT_EQ(join(open.warnings, "\n"), "derive 'd' does not read back: 'require' reads differently");
}

TEST(ReadBack, TheDeepestExpressionKeepsItsDepth) {
    std::string deep = "x";
    for (int i = 0; i < 1000; ++i) {
        deep = "f(" + deep + ")";
    }
    expectReadBack("", {{"emit e = " + deep + " + (unit)", "emit e = " + deep + " + (unit)"}}, "");
}

TEST(ReadBack, OneLineOfManyMayNotHoldWhatTheyHold) {
    // A backslash before a quote is skipped where comments are looked for, and only there.
    const auto [text, warnings] =
        printed(parseDerive(blockOf("let a = {{ x.b\\\"c\" }} +\n  \"}} #\"\nemit a")));
    EXPECT_EQ(statementsOf(text), "let a = {{ x.b\\\"c\" }} + \"}} #\"\nemit a = a\n");
    EXPECT_EQ(join(warnings, "\n"), "derive 'd' does not read back: 'let a' reads differently");
}

/// The warnings of the body once the values are put in.
std::string warningsWith(const ValueMap& values, std::string_view body) {
    auto spec = parseDerive(blockOf(body));
    substituteDerive(spec, values);
    return join(printed(spec).warnings, "\n");
}

TEST(ReadBack, ValuesThatAreNoNamesAreTold) {
    const std::string lead = "derive 'd' does not read back: ";
    EXPECT_EQ(warningsWith({{"t", "opt"}}, "let a = [t] + f([t], b=[t]) + {{ [t].[t] }}\nemit a"), "");
    EXPECT_EQ(warningsWith({{"t", "298"}}, "let a = [t]\nemit a"), lead + "'298' is no name");
    EXPECT_EQ(warningsWith({{"t", "a b"}}, "let a = [t](1)\nemit a"), lead + "'a b' is no name");
    EXPECT_EQ(warningsWith({{"t", "a\nb"}}, "let a = f([t]=1)\nemit a"), lead + "'a\\nb' is no name");
    EXPECT_EQ(warningsWith({{"t", "a.b"}}, "let a = {{ [t].c }}\nemit a"),
              lead + "'{{ a.b.c }}' is no reference");
    EXPECT_EQ(warningsWith({{"t", "a b"}}, "let a = {{ [t].c }}\nemit a"), "");
    EXPECT_EQ(warningsWith({{"t", ""}}, "report '[t]' = x\nemit value x to kv '[t]'\nemit e = x unit '[t]'"),
              lead + "a text of 'report' is empty; a text of 'emit value' is empty");
    EXPECT_EQ(warningsWith({{"t", "or"}}, tasks + "where [t] == 1\nselect s\n" + sink), "");
}

TEST(ReadBack, AllReasonsOfADeriveStandInOneLine) {
    const auto [text, warnings] = printed(
        parseDerive(blockOf("require not (a or b) else \"x\"\nlet x = a + (b + c)\nlet y = d + (e + f)\n"
                            "emit q = x\n")));
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings.front(),
              "derive 'd' does not read back: 'not' before a group prints without parentheses; "
              "parentheses on the right of '+' are not printed");
}

} // namespace
} // namespace morquill::taskdsl::derive
