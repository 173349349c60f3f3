#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/derive/read_back.h"

#include "fixtures/derive_fixture.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

TEST(DeriveHeader, IsTheNameInQuotesOrNot) {
    EXPECT_EQ(parseDerive(blockOf("emit x", "  energies ")).name, "energies");
    EXPECT_EQ(parseDerive(blockOf("emit x", "\"energies\"")).name, "energies");
    EXPECT_EQ(refusal("emit x", ""), "@derive requires a name");
    EXPECT_EQ(refusal("emit x", "''"), "@derive requires a name");
    EXPECT_EQ(refusal("emit x", "a b"), "@derive name must be an identifier");
    EXPECT_EQ(refusal("emit x", "1a"), "@derive name must be an identifier");
}

TEST(DeriveBlock, KeepsStatementsInOrderWithTheirSpans) {
    const auto spec = parseDerive(blockOf("let a = 1\n\n  emit x = a + # first\n    2\n"));
    ASSERT_EQ(spec.statements.size(), 2U);
    const auto& let = std::get<LetStatement>(spec.statements[0]);
    EXPECT_EQ(formatSpan(let.span), "t.mq:2:1-2:9");
    const auto& emit = std::get<EmitScalarStatement>(spec.statements[1]);
    EXPECT_EQ(formatSpan(emit.span), "t.mq:4:3-5:5");
    EXPECT_EQ(formatSpan(spec.span), "t.mq:1:1-1:10");
}

TEST(DeriveBlock, FaultsCarryTheSpanOfTheirStatement) {
    try {
        (void)parseDerive(blockOf("emit x\n\tlet 1 = 2"));
        FAIL();
    } catch (const DiagnosticError& error) {
        EXPECT_STREQ(error.what(), "t.mq:3:5-3:10: error: let name must be an identifier");
    }
    try {
        (void)parseDerive(blockOf("let a = 1"));
        FAIL();
    } catch (const DiagnosticError& error) {
        EXPECT_STREQ(error.what(),
                     "t.mq:1:1-1:10: error: @derive block must contain at least one emit statement");
    }
}

TEST(DeriveBlock, StatementReaderSpeaksOfDerive) {
    expectRefusals({
        {"let a = b }}", "unexpected '}}' in @derive statement"},
        {"let a = b)", "unmatched ')' in @derive statement"},
        {"let a = (b", "unterminated parenthesized @derive statement"},
        {"let a = b +", "@derive statement ends with a continuation operator"},
        {"let a = 'b", "unterminated string literal; strings cannot span physical lines"},
        {"let a = {{ b.c",
         "unterminated '{{ ... }}' snapshot reference; snapshots cannot span physical lines"},
    });
}

TEST(DeriveBlock, NeedsAnEmitAndAPipelineNeedsASink) {
    expectRefusals({
        {"", "@derive block must contain at least one emit statement"},
        {"let a = 1", "@derive block must contain at least one emit statement"},
        {tasks + "select a", "@derive block must contain at least one emit statement"},
        {"emit x\n" + tasks, "table pipeline must end with at least one emit sink"},
        {"emit report to root\n" + tasks + "select a", "table pipeline must end with at least one emit sink"},
    });
    for (const char* body : {"emit x", "emit report to root", "emit value x to kv p"}) {
        EXPECT_EQ(refusal(body), "(accepted)") << body;
    }
}

TEST(DeriveBlock, UnknownStatementsListTheKnownOnes) {
    const std::string message = "unknown @derive statement; expected profile, formula, bind, let, "
                                "require/assert, emit, report, from, "
                                "join, where, select, group by, aggregate/reduce, sort, limit, emit table, "
                                "emit value, emit report, emit "
                                "atomvec, emit kv, or emit artifact";
    for (const char* body :
         {"from* x", "from*\nemit x", "letx = 1", "emit", "let", "from", "where", "group by", "group  by a",
          "let\ta = 1", "\"let a = 1\"", "plot x", "limit", "sort", "require", "\xff"}) {
        EXPECT_EQ(refusal(body), message) << body;
    }
}

TEST(DeriveBlock, KeywordsMatchInAnyCase) {
    EXPECT_EQ(canonical("LET a = 1\nEmit X = a UNIT kJ"), "let a = 1\nemit X = a unit \"kJ\"\n");
    EXPECT_EQ(canonical("FROM tasks() \nGroup By a AS b\nSORT BY a DESC\nEMIT TABLE t TO CSV p"),
              "from tasks(\"*\")\ngroup by a as b\nsort a desc\nemit table t to csv \"p\"\n");
}

TEST(DerivePhases, PreambleStatementsPrecedeFrom) {
    expectRefusalsAfter(
        tasks, {
                   {"profile p for f = (a=1)", "profile definitions must precede the from statement"},
                   {"formula f(x) = x", "formula definitions must precede the from statement"},
                   {"bind thermo(a) to (b = h)", "bind statements must precede the from statement"},
                   {"let a = 1", "let statements must precede the from statement"},
                   {"require a",
                    "require/assert statements must precede the from statement; use where for row filtering"},
                   {"assert a",
                    "require/assert statements must precede the from statement; use where for row filtering"},
                   {"report a = 1", "report statements must precede the from statement"},
                   {"emit report to root", "emit report statements must precede the from statement"},
                   {"emit report", "emit report statements must precede the from statement"},
                   {"emit value a to kv p", "scalar value emit statements must precede the from statement"},
                   {"emit a = 1", "scalar emit statements must precede the from statement"},
                   {tasks, "@derive currently supports only one from statement"},
                   {"from nothing", "@derive currently supports only one from statement"},
               });
}

TEST(DerivePhases, PipelineStatementsFollowFrom) {
    expectRefusals({
        {"join atoms(b) as b on atom.id", "join requires a preceding from statement"},
        {"where a", "where requires a preceding from statement"},
        {"select a", "select requires a preceding from statement"},
        {"group by a", "group by requires a preceding from statement"},
        {"aggregate a = sum(b)", "aggregate/reduce requires a preceding group by statement"},
        {"reduce a = sum(b)", "aggregate/reduce requires a preceding group by statement"},
        {tasks + "reduce a = sum(b)", "aggregate/reduce requires a preceding group by statement"},
        {"sort a", "sort requires a preceding from statement"},
        {"limit 1", "limit requires a preceding from statement"},
        {"emit table t", "emit table requires a preceding from statement"},
        {"emit atomvec q", "emit atomvec requires a preceding atom table source"},
        {"emit kv p from q", "emit kv requires a preceding atom table source"},
        {"emit artifact p from q", "emit artifact requires a preceding atom table source"},
    });
}

TEST(DerivePhases, NothingButSinksFollowsASink) {
    const std::string lead = atoms + "select q\ngroup by q\n" + sink;
    expectRefusalsAfter(
        lead, {
                  {"join atoms(b) as b on atom.id", "join cannot appear after an emit sink"},
                  {"where a", "where cannot appear after an emit sink"},
                  {"select a", "select cannot appear after an emit sink"},
                  {"group by a", "group by cannot appear after an emit sink"},
                  {"aggregate a = sum(b)", "aggregate/reduce cannot appear after an emit sink"},
                  {"sort a", "sort cannot appear after an emit sink"},
                  {"limit 1", "limit cannot appear after an emit sink"},
                  {"emit table u\nemit kv p from q\nemit artifact p from q\nemit atomvec q", "(accepted)"},
              });
}

TEST(DerivePhases, PipelineStatementsKeepTheirOrder) {
    const std::string join = "join statements must precede where/select/group/sort/limit statements";
    const std::string where = "where statements must precede select/group/sort/limit statements";
    const std::string joined = "join atoms(b) as b on atom.id";
    expectRefusalsAfter(
        atoms,
        {
            {"where a\n" + joined, join},
            {"select a\n" + joined, join},
            {"group by a\n" + joined, join},
            {"sort a\n" + joined, join},
            {"limit 1\n" + joined, join},
            {"select a\nwhere a", where},
            {"group by a\nwhere a", where},
            {"sort a\nwhere a", where},
            {"limit 1\nwhere a", where},
            {"group by a\nselect b", "select statements must precede group by statements"},
            {"group by a\nsort a\nselect b", "select statements must precede group by statements"},
            {"sort a\nselect b", "select statements must precede sort/limit statements"},
            {"limit 1\nselect b", "select statements must precede sort/limit statements"},
            {"sort a\ngroup by a", "group by must precede sort/limit statements"},
            {"limit 1\ngroup by a", "group by must precede sort/limit statements"},
            {"group by a\ngroup by b", "@derive currently supports only one group by statement"},
            {"group by a\nsort a\ngroup by b", "group by must precede sort/limit statements"},
            {"group by a\nsort a\naggregate b = sum(c)",
             "aggregate/reduce must precede sort/limit statements"},
            {"group by a\nlimit 1\nreduce b = sum(c)", "aggregate/reduce must precede sort/limit statements"},
            {"limit 1\nsort a", "sort statements must precede limit statements"},
            {"limit 1\nlimit 2", "@derive currently supports only one limit statement"},
        });
}

TEST(DerivePhases, SomeStatementsNeedTheirKindOfSource) {
    expectRefusalsAfter(
        tasks,
        {
            {"join atoms(b) as b on atom.id", "join is currently supported only for atoms(...) sources"},
            {"emit atomvec q", "emit atomvec is valid only for atoms(...) pipelines"},
            {"emit kv p from q", "emit kv is valid only for atoms(...) pipelines"},
            {"emit artifact p from q", "emit artifact is valid only for atoms(...) pipelines"},
            {"emit table t",
             "emit table requires at least one select, group key, aggregate column, or derived table source"},
        });
    EXPECT_EQ(
        refusal(atoms + sink),
        "emit table requires at least one select, group key, aggregate column, or derived table source");
    EXPECT_EQ(canonical("from derived(d.t)\nemit table t"), "from derived(d.t)\nemit table t\n");
    EXPECT_EQ(canonical(tasks + "group by a\nemit table t"), tasks + "group by a as a\nemit table t\n");
}

TEST(DerivePhases, ComeBeforeTheShapeOfTheStatement) {
    EXPECT_EQ(refusal(tasks + "let"), refusal("let"));
    EXPECT_EQ(refusal(tasks + "let ="), "let statements must precede the from statement");
    EXPECT_EQ(refusal(tasks + "limit 1\nlimit x"), "@derive currently supports only one limit statement");
}

TEST(DeriveKeywords, TheWordsOfOneAreASingleBlankApart) {
    const auto statementOf = [](const std::string& body) {
        return parseDerive(blockOf(body)).statements.back();
    };
    // With two blanks, and where nothing follows, the second word names a scalar.
    for (const std::string name : {"table", "value", "report", "kv", "artifact", "atomvec"}) {
        EXPECT_EQ(std::get<EmitScalarStatement>(statementOf("emit  " + name + " = 1")).name, name);
    }
    EXPECT_EQ(std::get<EmitScalarStatement>(statementOf("emit kv")).name, "kv");
    EXPECT_EQ(std::get<EmitScalarStatement>(statementOf("Emit Reports")).name, "Reports");
    EXPECT_EQ(std::get<EmitReportStatement>(statementOf("EMIT Report to root")).path, "");
    EXPECT_EQ(refusal(tasks + "group  by a\n" + sink).substr(0, 26), "unknown @derive statement;");
    EXPECT_EQ(refusal(tasks + "group by\n" + sink).substr(0, 26), "unknown @derive statement;");
}

TEST(DeriveKeywords, TheOtherEmitsAreKnownByTheirWord) {
    for (const std::string_view name : {"artifact", "ATOMVEC", "kv", "report", "table", "value"}) {
        EXPECT_TRUE(isEmitWord(name)) << name;
    }
    for (const std::string_view name : {"", "emit", "by", "tables", "let"}) {
        EXPECT_FALSE(isEmitWord(name)) << name;
    }
}

} // namespace
} // namespace morquill::taskdsl::derive
