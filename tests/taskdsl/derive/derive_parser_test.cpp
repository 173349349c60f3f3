#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/derive/read_back.h"

#include "fixtures/blocks.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

struct Fault {
    std::string body;
    std::string message;
};

void expectFaults(const std::vector<Fault>& faults) {
    for (const auto& [body, message] : faults) {
        EXPECT_EQ(refusal(body), message) << body;
    }
}

/// The same fault behind `lead`, one row per statement text.
void expectFaultsBehind(const std::string& lead, const std::vector<Fault>& faults) {
    for (const auto& [body, message] : faults) {
        EXPECT_EQ(refusal(lead + body), message) << body;
    }
}

struct Form {
    std::string written;
    std::string canonical;
};

/// Each form prints as given, and what it prints reads back as itself.
void expectForms(const std::string& lead, const std::string& tail, const std::vector<Form>& forms) {
    for (const auto& [written, expected] : forms) {
        const std::string first = canonical(lead + written + "\n" + tail);
        EXPECT_EQ(first, lead + expected + "\n" + tail) << written;
        EXPECT_EQ(canonical(first), first) << written;
    }
}

const std::string tasks = "from tasks(\"*\")\n";
const std::string atoms = "from atoms(opt) as a\n";
const std::string sink = "emit table t\n";

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
    expectFaults({
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
    expectFaults({
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
    expectFaultsBehind(
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
    expectFaults({
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
    expectFaultsBehind(
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
    expectFaultsBehind(
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
    expectFaultsBehind(
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

TEST(DeriveLet, SplitsAtTheFirstTopLevelEquals) {
    expectForms("", "emit x = a\n",
                {
                    {"let a = f(b=1)", "let a = f(b=1)"},
                    {"let a={{ t.k=v }}", "let a = {{ t.k=v }}"},
                    {"let  _A9 =  '=' ", "let _A9 = \"=\""},
                });
    expectFaults({
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
    expectFaults({
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
    expectFaults({
        {"report a", "report statement must be 'report label = expression'"},
        {"report = a", "report label cannot be empty"},
        {"report '' = a", "report label cannot be empty"},
        {"report a =", "report statement requires an expression"},
    });
}

TEST(DeriveFrom, SelectsTasks) {
    expectForms("", "select a = a\n" + sink,
                {
                    {"from tasks()", "from tasks(\"*\")"},
                    {"from tasks(opt, 'conf*', name=sp, pattern=\"x\")",
                     "from tasks(\"opt\", \"conf*\", \"sp\", \"x\")"},
                    {"from tasks(program=orca)", "from tasks(\"*\", program=\"orca\")"},
                    {"from tasks(a, template=t, program='g 16')",
                     "from tasks(\"a\", program=\"g 16\", template=\"t\")"},
                    {"from tasks(template_task=t)", "from tasks(\"*\", template=\"t\")"},
                });
    expectFaults({
        {"from opt", "from source must be tasks(...), atoms(task) as alias, or derived(derive.table)"},
        {"from tasks (opt)",
         "from source must be tasks(...), atoms(task) as alias, or derived(derive.table)"},
        {"from TASKS(opt)", "from currently supports only tasks(...) sources"},
        {"from tasks(a) + 1", "from currently supports only tasks(...) sources"},
        {"from tasks(1)", "tasks() selector must be an identifier or string literal"},
        {"from tasks(name=f(x))", "tasks() selector must be an identifier or string literal"},
        {"from tasks(program={{ a.b }})", "tasks() selector must be an identifier or string literal"},
        {"from tasks(program='', program=b)", "tasks() program selector may be specified only once"},
        {"from tasks(template=a, template_task=b)", "tasks() template selector may be specified only once"},
        {"from tasks(kind=a)", "unsupported tasks() selector 'kind'"},
        {"from tasks(*)", "expected a number, identifier, string, function call, or '('"},
    });
}

TEST(DeriveFrom, SelectsAtoms) {
    expectForms("", "select q = q\n" + sink,
                {
                    {"from atoms(opt) as a", "from atoms(opt) as a"},
                    {"from atoms(task='opt')AS a", "from atoms(opt) as a"},
                    {"from atoms(\"opt 1\") as a", "from atoms(\"opt 1\") as a"},
                    {"from atoms(opt.x) as a", "from atoms(\"opt.x\") as a"},
                });
    expectFaults({
        {"from atoms(opt)", "atoms(task) source requires 'as alias'"},
        {"from atoms('x as y')", "atoms(task) source requires 'as alias'"},
        {"from ATOMS(opt) as a", "atom table source must be atoms(task) as alias"},
        {"from atoms(opt) + 1 as a", "atom table source must be atoms(task) as alias"},
        {"from atoms() as a", "atoms() requires exactly one task argument"},
        {"from atoms(a, b) as a", "atoms() accepts exactly one task"},
        {"from atoms(a, task=b) as a", "atoms() accepts only one task argument"},
        {"from atoms(task=a, task=b) as a", "atoms() accepts only one task argument"},
        {"from atoms(name=a) as a", "atoms() accepts only one task argument"},
        {"from atoms(1) as a", "atoms() task must be an identifier or string literal"},
        {"from atoms(a) as", "atom source alias must be a simple identifier"},
        {"from atoms(a) as b.c", "atom source alias must be a simple identifier"},
    });
}

TEST(DeriveFrom, SelectsATableOfAnotherDerive) {
    expectForms("", sink,
                {
                    {"from derived(d.t)", "from derived(d.t)"},
                    {"from Derived('d.t')", "from derived(d.t)"},
                    {"from derived(d, table=t)", "from derived(d.t)"},
                    {"from derived(name=' t ', derive=d)", "from derived(d.t)"},
                    {"from derived(' d.t ')", "from derived(d.t)"},
                });
    expectFaults({
        {"from derived(d.t) + 1",
         "derived table source must be derived(derive.table) or derived(derive, table=name)"},
        {"from derived(d, t)", "derived() accepts one positional selector"},
        {"from derived(d.t, derive=e)", "derived() derive selector may be specified only once"},
        {"from derived(derive=d, derive=e)", "derived() derive selector may be specified only once"},
        {"from derived(d, table=t, name=u)", "derived() table selector may be specified only once"},
        {"from derived(d, value=t)", "unsupported derived() selector 'value'"},
        {"from derived()", "derived() requires a derive selector"},
        {"from derived(table=t)", "derived() requires a derive selector"},
        {"from derived(1)", "derived() selector must be an identifier or string literal"},
        {"from derived(d, table=1)", "derived() table selector must be an identifier or string literal"},
        {"from derived('a b', table=t)", "derived() derive id must be an identifier"},
        {"from derived(d.e, table=t)", "derived() derive id must be an identifier"},
        {"from derived(d, table='')", "derived() table name must be an identifier"},
        {"from derived(d)", "derived() shorthand must be 'derive.table'"},
        {"from derived('1d.t')", "derived() derive id must be an identifier"},
        {"from derived('a b.t')", "derived() derive id must be an identifier"},
        {"from derived('d .t')", "derived() derive id must be an identifier"},
        {"from derived('d. t')", "derived() table name must be an identifier"},
        {"from derived(d.t.u)", "derived() table name must be an identifier"},
        {"from derived(d.t[1])", "derived() table name must be an identifier"},
        {"from derived('.t')", "derived() shorthand must be 'derive.table'"},
        {"from derived('d.')", "derived() shorthand must be 'derive.table'"},
        {"from derived('')", "derived() shorthand must be 'derive.table'"},
    });
}

TEST(DeriveJoin, AddsTheAtomsOfAnotherTask) {
    expectForms(atoms, "emit kv \"p\" from q as q\n",
                {
                    {"join atoms(sp) as b on atom.id", "join atoms(sp) as b on atom.id"},
                    {"JOIN atoms(task=\"s p\") As b On Atom.ID", "join atoms(\"s p\") as b on atom.id"},
                });
    expectFaultsBehind(atoms,
                       {
                           {"join atoms(sp) as b", "join must be 'join atoms(task) as alias on atom.id'"},
                           {"join on atom.id", "join must be 'join atoms(task) as alias on atom.id'"},
                           {"join atoms(sp) as b on", "atom joins currently require 'on atom.id'"},
                           {"join atoms(sp) as b on id", "atom joins currently require 'on atom.id'"},
                           {"join x on id", "atom joins currently require 'on atom.id'"},
                           {"join atoms(sp) on atom.id", "atoms(task) source requires 'as alias'"},
                           {"join sp as b on atom.id", "atom table source must be atoms(task) as alias"},
                           {"join atoms(sp) as a on atom.id", "duplicate atom source alias 'a'"},
                           {"join atoms(sp) as b on atom.id\njoin atoms(ts) as b on atom.id",
                            "duplicate atom source alias 'b'"},
                       });
}

TEST(DeriveSelect, TakesListsApart) {
    EXPECT_EQ(canonical(tasks + "select a, b = f(1, 2), c + 1 as d, {{ t.k, as x }} AS e,\n g\n" + sink),
              tasks +
                  "select a = a\nselect b = f(1, 2)\nselect d = c + 1\nselect e = {{ t.k, as x }}\n"
                  "select g = g\n" +
                  sink);
    expectFaultsBehind(
        tasks,
        {
            {"select ,a", "select list contains an empty entry"},
            {"select a,,b", "select list contains an empty entry"},
            {"select a + b",
             "select entry must be 'name = expression', 'expression as name', or a bare row identifier"},
            {"select a.b",
             "select entry must be 'name = expression', 'expression as name', or a bare row identifier"},
            {"select a.b = c", "select column name must be an identifier"},
            {"select = c", "select column name must be an identifier"},
            {"select a as", "select column name must be an identifier"},
            {"select a =", "select statement requires an expression"},
            {"select as a", "select statement requires an expression"},
            {"select a, a", "duplicate select column 'a'"},
            {"select a\nselect b as a", "duplicate select column 'a'"},
        });
}

TEST(DeriveGroupBy, NamesItsKeys) {
    expectForms(tasks, sink,
                {
                    {"group by method", "group by method as method"},
                    {"group by method, f(a, b) as key", "group by method as method, f(a, b) as key"},
                    {"group by a.b AS c", "group by a.b as c"},
                });
    EXPECT_EQ(refusal(tasks + "select a\ngroup by a\n" + sink), "(accepted)");
    expectFaultsBehind(
        tasks,
        {
            {"group by ,a", "group by contains an empty key"},
            {"group by a,,b", "group by contains an empty key"},
            {"group by as a", "group by key requires an expression"},
            {"group by a + b", "group by expression requires 'as name' when it is not a bare identifier"},
            {"group by a.b", "group by expression requires 'as name' when it is not a bare identifier"},
            {"group by a as", "group by key name must be an identifier"},
            {"group by a as b.c", "group by key name must be an identifier"},
            {"group by a, b as a", "duplicate table column/group key 'a'"},
        });
}

TEST(DeriveAggregate, NamesItsColumns) {
    const std::string lead = tasks + "group by m as m\n";
    EXPECT_EQ(
        canonical(lead + "aggregate n = count(), e = mean(energy)\nreduce w = sum(x) / count()\n" + sink),
        lead + "aggregate n = count()\naggregate e = mean(energy)\naggregate w = sum(x) / count()\n" + sink);
    expectFaultsBehind(
        lead, {
                  {"aggregate a = f(b),,c = f(d)", "aggregate list contains an empty entry"},
                  {"aggregate ,", "@derive statement ends with a continuation operator"},
                  {"aggregate mean(e)", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = e", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = 2 * (e)", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = (e) + (f)", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = \"f(x)\"", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = e + \"f(x)\"", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = 'f(x)' * e", "aggregate entry must be 'name = function(expression)'"},
                  {"aggregate a = {{ f(x).e }}", "aggregate entry must be 'name = function(expression)'"},
                  {"reduce a.b = mean(e)", "aggregate name must be an identifier"},
                  {"aggregate = mean(e)", "aggregate name must be an identifier"},
                  {"aggregate a =", "aggregate statement requires an expression"},
                  {"aggregate a = f(b), a = f(c)", "duplicate aggregate column 'a'"},
                  {"aggregate a = f(b)\naggregate a = f(c)", "duplicate aggregate column 'a'"},
                  {"aggregate m = f(b)", "duplicate table column/group key 'm'"},
              });
}

TEST(DeriveSort, TakesKeysWithADirection) {
    const std::string lead = tasks + "select a = a\n";
    EXPECT_EQ(canonical(lead + "sort by a, b DESC, c * 2 asc, f(a, desc)\nsort descend\n" + sink),
              lead + "sort a asc\nsort b desc\nsort c * 2 asc\nsort f(a, desc) asc\nsort descend asc\n" +
                  sink);
    expectFaultsBehind(lead, {
                                 {"sort by", "sort requires at least one expression"},
                                 {"sort ,a", "sort list contains an empty entry"},
                                 {"sort a,,b", "sort list contains an empty entry"},
                                 {"sort desc", "sort statement requires an expression"},
                                 {"sort by asc", "sort statement requires an expression"},
                                 {"sort ,", "@derive statement ends with a continuation operator"},
                             });
}

TEST(DeriveLimit, IsAPositiveCountOf64Bits) {
    const std::string lead = tasks + "select a = a\n";
    expectForms(lead, sink,
                {
                    {"limit 10", "limit 10"},
                    {"limit +007", "limit 7"},
                    {"limit 18446744073709551615", "limit 18446744073709551615"},
                });
    const std::string positive = "limit requires a positive integer";
    expectFaultsBehind(lead, {
                                 {"limit 0", "limit must be greater than zero"},
                                 {"limit -1", positive},
                                 {"limit -0", positive},
                                 {"limit x", positive},
                                 {"limit 5x", positive},
                                 {"limit 5 6", positive},
                                 {"limit 1.5", positive},
                                 {"limit +-1", positive},
                                 {"limit 18446744073709551616", positive},
                             });
}

TEST(DeriveEmitTable, GoesToAFileOrNowhere) {
    const std::string lead = tasks + "select a = a\n";
    expectForms(lead, "",
                {
                    {"emit table t", "emit table t"},
                    {"emit table t TO Csv out/to/x.csv", "emit table t to csv \"out/to/x.csv\""},
                    {"emit table t to tsv 'a b.tsv'", "emit table t to tsv \"a b.tsv\""},
                    {"emit table t to jsonl a b", "emit table t to jsonl \"a b\""},
                });
    expectFaultsBehind(lead,
                       {
                           {"emit table a.b", "emit table name must be an identifier"},
                           {"emit table t csv", "emit table sink must be 'to csv|tsv|jsonl <path>'"},
                           {"emit table t to", "emit table file sink must be csv, tsv, or jsonl"},
                           {"emit table t to xml p", "emit table file sink must be csv, tsv, or jsonl"},
                           {"emit table t to none p", "emit table file sink must be csv, tsv, or jsonl"},
                           {"emit table t to csv", "emit table sink path cannot be empty"},
                           {"emit table t to csv ''", "emit table sink path cannot be empty"},
                       });
}

TEST(DeriveEmitValue, GoesToAKvFile) {
    expectForms("", "", {{"emit value x TO KV out/x.kv", "emit value x to kv \"out/x.kv\""}});
    expectFaults({
        {"emit value x", "emit value must be 'emit value name to kv <path>'"},
        {"emit value x to", "emit value must be 'emit value name to kv <path>'"},
        {"emit value x to csv p", "emit value currently supports only 'to kv <path>'"},
        {"emit value x in kv p", "emit value currently supports only 'to kv <path>'"},
        {"emit value a.b to kv p", "emit value name must be an identifier"},
        {"emit value x to kv", "emit value kv path cannot be empty"},
        {"emit value x to kv \"\"", "emit value kv path cannot be empty"},
    });
}

TEST(DeriveEmitReport, GoesToTheRoot) {
    expectForms("", "",
                {
                    {"emit report to root", "emit report to root"},
                    {"EMIT REPORT TO ROOT sum mary.txt", "emit report to root \"sum mary.txt\""},
                });
    expectFaults({
        {"emit report", "emit report must be 'emit report to root [path]'"},
        {"emit report to", "emit report must be 'emit report to root [path]'"},
        {"emit report to case", "emit report currently supports only 'to root [path]'"},
        {"emit report = a", "emit report currently supports only 'to root [path]'"},
        {"emit report to root ''", "emit report root path cannot be empty"},
    });
}

TEST(DeriveEmitAtomVector, TakesAnExpressionOrARowField) {
    expectForms(atoms + "select q = q\n", "",
                {
                    {"emit atomvec atoms[].charge-1.x = q * 2", "emit atomvec charge-1.x = q * 2"},
                    {"emit atomvec atoms.q", "emit atomvec q = q"},
                    {"emit atomvec a.q", "emit atomvec a.q = a.q"},
                    {"emit atomvec 1 = q", "emit atomvec 1 = q"},
                });
    const std::string field = "emit atomvec requires at least one selected/grouped/aggregate row field";
    expectFaultsBehind(atoms,
                       {
                           {"emit atomvec = q", "emit atomvec requires a property name"},
                           {"emit atomvec atoms. = q", "emit atomvec requires a property name"},
                           {"emit atomvec q =", "emit atomvec requires an expression after '='"},
                           {"emit atomvec a b = q",
                            "atom vector property must contain only letters, digits, '_', '-' and '.'"},
                           {"emit atomvec atoms[1].q = q",
                            "atom vector property must contain only letters, digits, '_', '-' and '.'"},
                           {"emit atomvec q", field},
                           {"select q\nemit atomvec a-b", field},
                           {"select q\nemit atomvec 1a", field},
                       });
}

TEST(DeriveEmitKvAndArtifact, TakeATargetASourceAndAProperty) {
    for (const std::string statement : {"emit kv", "emit artifact"}) {
        expectForms(
            atoms, "",
            {
                {statement + " out/from/q.kv from a.q", statement + " \"out/from/q.kv\" from a.q as a.q"},
                {statement + " 'a from b' FROM q / 2 AS atoms[].half-q",
                 statement + " \"a from b\" from q / 2 as half-q"},
                {statement + " p from q as atoms.r", statement + " \"p\" from q as r"},
                {statement + " p from atoms.q", statement + " \"p\" from atoms.q as q"},
            });
        const std::string charset =
            "atom vector property must contain only letters, digits, '_', '-' and '.'";
        expectFaultsBehind(
            atoms, {
                       {statement + " p", statement + " must use '<target> from <expression> [as property]'"},
                       {statement + " from q", statement + " target cannot be empty"},
                       {statement + " from", statement + " target cannot be empty"},
                       {statement + " '' from q", statement + " path cannot be empty"},
                       {statement + " p from", statement + " requires a source expression after 'from'"},
                       {statement + " p from as r", statement + " requires a source expression after 'from'"},
                       {statement + " p from q * 2",
                        statement +
                            " requires 'as <atom-property>' when the source expression is not a bare column"},
                       {statement + " p from q as", statement + " requires a property name"},
                       {statement + " p from q as 'r'", charset},
                       {statement + " p from q:r", charset},
                   });
    }
}

TEST(DeriveEmitScalar, TakesAnExpressionAndAUnit) {
    expectForms("", "",
                {
                    {"emit x", "emit x = x"},
                    {"emit x unit kJ/mol", "emit x = x unit \"kJ/mol\""},
                    {"emit x = a + b UNIT 'kcal mol'", "emit x = a + b unit \"kcal mol\""},
                    {"emit x = f('unit', unit=1)", "emit x = f(\"unit\", unit=1)"},
                    {"emit unit = 3", "emit unit = 3"},
                    {"emit reporter = 1", "emit reporter = 1"},
                });
    // A bare word of another emit is a value of that name.
    EXPECT_EQ(canonical("emit table\nemit kv"), "emit table = table\nemit kv = kv\n");
    const std::string shorthand =
        "emit shorthand requires a simple identifier because it also names the expression";
    expectFaults({
        {"emit x unit", "emit unit requires a unit name"},
        {"emit unit", "emit unit requires a unit name"},
        {"emit x = a unit", "emit unit requires a unit name"},
        {"emit x unit ''", "emit unit cannot be empty"},
        {"emit a.b = 1", "scalar emit name must be an identifier"},
        {"emit = 1", "scalar emit name must be an identifier"},
        {"emit x =", "emit statement requires an expression"},
        {"emit x = unit eV", "emit statement requires an expression"},
        {"emit a + b", shorthand},
        {"emit a.b", shorthand},
        {"emit 'x'", shorthand},
    });
}

TEST(DeriveEmitScalar, TakesABlockOfModifiers) {
    EXPECT_EQ(canonical("emit g = a - b:\n  unit kJ/mol\n  report reaction free energy\n\n  # more\n"
                        "  Report 'again'\nemit h\n"),
              "emit g = a - b unit \"kJ/mol\"\nreport \"reaction free energy\" = a - b\n"
              "report \"again\" = a - b\nemit h = h\n");
    EXPECT_EQ(canonical("emit g unit eV :\n\treport gap"), "emit g = g unit \"eV\"\nreport \"gap\" = g\n");
    EXPECT_EQ(canonical("  emit g:\n    report gap\n  emit h"),
              "emit g = g\nreport \"gap\" = g\nemit h = h\n");
    expectFaults({
        {"emit g:", "emit modifier block requires at least one indented unit or report entry"},
        {"emit g:\nunit eV", "emit modifier block requires at least one indented unit or report entry"},
        {"emit g:\n unit", "emit unit cannot be empty"},
        {"emit g:\n unit ''", "emit unit cannot be empty"},
        {"emit g:\n unit eV\n unit kJ", "emit unit may be specified only once"},
        {"emit g unit eV:\n unit kJ", "emit unit may be specified only once"},
        {"emit g:\n report", "emit report modifier requires a label"},
        {"emit g:\n report ''", "emit report label cannot be empty"},
        {"emit g:\n emit h", "unknown emit modifier; expected unit or report"},
        {"emit g:\n units eV", "unknown emit modifier; expected unit or report"},
        {"emit unit:", "emit unit requires a unit name"},
    });
}

TEST(DeriveBlock, ModifiersOfOneEmitAreBounded) {
    std::string body = "emit g = ";
    for (int i = 0; i < 1000; ++i) {
        body += "a + ";
    }
    body += "a:\n";
    for (int i = 0; i < 1000; ++i) {
        body += " report r\n";
    }
    EXPECT_EQ(refusal(body), "derive expansion exceeds the maximum size of 100000 nodes");
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
