// The statements of a table pipeline as records, and what they leave behind for the statements after them.

#include "fixtures/derive_fixture.h"
#include "taskdsl/derive/derive_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace morquill::taskdsl::derive {
namespace {

using ::testing::ElementsAre;

/// Reads the texts one after the other as statements of one block.
BlockReader readAll(StatementReader read, std::initializer_list<const char*> texts) {
    BlockReader reader = readerAt();
    for (const char* text : texts) {
        read(reader, text);
    }
    return reader;
}

std::string faultOfLast(StatementReader read, std::initializer_list<const char*> texts) {
    return bareMessageOf([&] { (void)readAll(read, texts); });
}

TEST(ReadFrom, TellsTheSourcesApartAndNotesWhichWasSeen) {
    const auto tasks = readAll(readFrom, {"tasks('conf*', opt, program=orca, template=t)"});
    const auto& source = std::get<TasksSource>(std::get<FromStatement>(tasks.spec.statements.at(0)).source);
    EXPECT_THAT(source.patterns, ElementsAre("conf*", "opt"));
    EXPECT_EQ(source.program, "orca");
    EXPECT_EQ(source.templateName, "t");
    EXPECT_EQ(tasks.seen, 0U);

    const auto atoms = readAll(readFrom, {"atoms('opt 1') as a"});
    const auto& table = std::get<AtomsSource>(std::get<FromStatement>(atoms.spec.statements.at(0)).source);
    EXPECT_EQ(table.task + "|" + table.alias, "opt 1|a");
    EXPECT_EQ(atoms.seen, seenAtomsSource);
    EXPECT_THAT(atoms.aliases, ElementsAre("a"));

    const auto derived = readAll(readFrom, {"derived(energies, table=best)"});
    const auto& other =
        std::get<DerivedTableSource>(std::get<FromStatement>(derived.spec.statements.at(0)).source);
    EXPECT_EQ(other.derive + "|" + other.table, "energies|best");
    EXPECT_EQ(derived.seen, seenDerivedSource);
    EXPECT_EQ(std::get<FromStatement>(derived.spec.statements.at(0)).span, statementPlace);
}

TEST(ReadFrom, ASourceWithoutAPatternTakesEveryTask) {
    const auto from = readOne<FromStatement>(readFrom, "tasks(program='g 16')");
    EXPECT_THAT(std::get<TasksSource>(from.source).patterns, ElementsAre("*"));
    EXPECT_EQ(std::get<TasksSource>(from.source).program, "g 16");
    EXPECT_EQ(readerFault(readFrom, "files(a)"),
              atStatement("from source must be tasks(...), atoms(task) as alias, or derived(derive.table)"));
}

TEST(ReadJoin, IsAlwaysOnTheAtomAndKnowsTheAliasesBeforeIt) {
    BlockReader reader = readerAt();
    readFrom(reader, "atoms(opt) as a");
    readJoin(reader, "atoms(task=sp) as b on ATOM.ID");
    const auto& join = std::get<JoinStatement>(reader.spec.statements.at(1));
    EXPECT_EQ(join.task + "|" + join.alias + "|" + join.key, "sp|b|atom.id");
    EXPECT_THAT(reader.aliases, ElementsAre("a", "b"));
    for (const char* alias : {"a", "b"}) {
        EXPECT_EQ(
            bareMessageOf([&] { readJoin(reader, "atoms(ts) as " + std::string(alias) + " on atom.id"); }),
            "duplicate atom source alias '" + std::string(alias) + "'");
    }
}

TEST(ReadWhere, HoldsItsCondition) {
    const auto where = readOne<WhereStatement>(readWhere, "charge < 0 or not (element == 'H')");
    EXPECT_EQ(renderDeriveCondition(where.condition), "charge < 0 or not element == \"H\"");
    EXPECT_EQ(where.span, statementPlace);
}

TEST(ReadSelect, MakesOneStatementPerColumn) {
    const auto reader = readAll(readSelect, {"a, b = f(1, 2)", "c + 1 as d"});
    std::string columns;
    for (const auto& statement : reader.spec.statements) {
        const auto& select = std::get<SelectStatement>(statement);
        EXPECT_EQ(select.span, statementPlace);
        columns += select.name + " <- " + printed(select.value) + "\n";
    }
    EXPECT_EQ(columns, "a <- a\nb <- f(1, 2)\nd <- c + 1\n");
    EXPECT_THAT(reader.selected, ElementsAre("a", "b", "d"));
    EXPECT_EQ(faultOfLast(readSelect, {"a, b", "c as a"}), "duplicate select column 'a'");
}

TEST(ReadGroupBy, HoldsItsKeysInOneStatement) {
    const auto reader = readAll(readGroupBy, {"element, round(x, 1) as bin"});
    ASSERT_EQ(reader.spec.statements.size(), 1U);
    const auto& group = std::get<GroupByStatement>(reader.spec.statements[0]);
    ASSERT_EQ(group.keys.size(), 2U);
    EXPECT_EQ(group.keys[0].name + " <- " + printed(group.keys[0].expression), "element <- element");
    EXPECT_EQ(group.keys[1].name + " <- " + printed(group.keys[1].expression), "bin <- round(x, 1)");
    EXPECT_EQ(faultOfLast(readGroupBy, {"a, b as a"}), "duplicate table column/group key 'a'");
    EXPECT_EQ(faultOfLast(readGroupBy, {"a + b"}),
              "group by expression requires 'as name' when it is not a bare identifier");
}

TEST(ReadAggregate, NeedsAFunctionAndAFreeName) {
    const auto reader = readAll(readAggregate, {"n = count(), e = 2 * mean(energy)"});
    EXPECT_EQ(printed(std::get<AggregateStatement>(reader.spec.statements.at(1)).value), "2 * mean(energy)");
    EXPECT_THAT(reader.aggregates, ElementsAre("e", "n"));
    EXPECT_EQ(faultOfLast(readAggregate, {"n = energy"}),
              "aggregate entry must be 'name = function(expression)'");
    EXPECT_EQ(faultOfLast(readAggregate, {"n = energy + (energy)"}),
              "aggregate entry must be 'name = function(expression)'");
    // A formula that expands to no call is printed so: it has to be read again.
    EXPECT_EQ(
        printed(std::get<AggregateStatement>(readAll(readAggregate, {"n = (energy)"}).spec.statements.at(0))
                    .value),
        "energy");
    EXPECT_EQ(faultOfLast(readAggregate, {"n = count()", "n = sum(a)"}), "duplicate aggregate column 'n'");
    BlockReader grouped = readerAt();
    readGroupBy(grouped, "element");
    EXPECT_EQ(bareMessageOf([&] { readAggregate(grouped, "element = count()"); }),
              "duplicate table column/group key 'element'");
}

TEST(ReadSort, TakesTheDirectionOffTheEndOfEachKey) {
    struct Row {
        const char* text;
        const char* keys;
    };
    const Row rows[] = {
        {"a", "a asc\n"},
        {"by a DESC", "a desc\n"},
        {"a desc, b", "a desc\nb asc\n"},
        {"-f(a, b)\tasc", "-f(a, b) asc\n"},
    };
    for (const auto& [text, keys] : rows) {
        const auto reader = readAll(readSort, {text});
        std::string read;
        for (const auto& statement : reader.spec.statements) {
            const auto& sort = std::get<SortStatement>(statement);
            read += printed(sort.key) + " " + std::string(deriveSortDirectionName(sort.direction)) + "\n";
        }
        EXPECT_EQ(read, keys) << text;
    }
    EXPECT_EQ(readerFault(readSort, "by"), atStatement("sort requires at least one expression"));
    EXPECT_EQ(readerFault(readSort, "a,"), atStatement("sort list contains an empty entry"));
    EXPECT_EQ(readerFault(readSort, "desc"), atStatement("sort statement requires an expression"));
}

TEST(ReadLimit, IsACountOfSixtyFourBits) {
    EXPECT_EQ(readOne<LimitStatement>(readLimit, "1").count, 1U);
    EXPECT_EQ(readOne<LimitStatement>(readLimit, "+20").count, 20U);
    EXPECT_EQ(readOne<LimitStatement>(readLimit, "18446744073709551615").count,
              std::numeric_limits<std::uint64_t>::max());
    for (const char* text : {"", "+", "++1", "-1", "1.5", "1 2", "ten", "18446744073709551616"}) {
        EXPECT_EQ(readerFault(readLimit, text), atStatement("limit requires a positive integer")) << text;
    }
    EXPECT_EQ(readerFault(readLimit, "0"), atStatement("limit must be greater than zero"));
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
    expectRefusals({
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
    expectRefusals({
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
    expectRefusals({
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
    expectRefusalsAfter(atoms,
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
    expectRefusalsAfter(
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
    expectRefusalsAfter(
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
    expectRefusalsAfter(
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
    expectRefusalsAfter(lead, {
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
    expectRefusalsAfter(lead, {
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

} // namespace
} // namespace morquill::taskdsl::derive
