// The statements of a table pipeline as records, and what they leave behind for the statements after them.

#include "fixtures/derive_reader.h"
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

} // namespace
} // namespace morquill::taskdsl::derive
