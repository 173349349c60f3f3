// The emit statements as records: where results go and under which name.

#include "fixtures/derive_reader.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

TEST(ReadEmitScalar, HoldsNameValueAndUnit) {
    struct Row {
        const char* text;
        const char* name;
        const char* value;
        const char* unit;
    };
    const Row rows[] = {
        {"gap", "gap", "gap", ""},
        {"gap = lumo - homo", "gap", "lumo - homo", ""},
        {"gap unit eV", "gap", "gap", "eV"},
        {"e = f('unit x') UNIT 'kcal / mol'", "e", "f(\"unit x\")", "kcal / mol"},
        {"unit = a unit eV", "unit", "a", "eV"}, // a value may be called so
    };
    for (const auto& [text, name, value, unit] : rows) {
        const auto emit = readOne<EmitScalarStatement>(readEmitScalar, text);
        EXPECT_EQ(emit.name, name) << text;
        EXPECT_EQ(printed(emit.value), value) << text;
        EXPECT_EQ(emit.unit, unit) << text;
        EXPECT_EQ(emit.span, statementPlace) << text;
    }
    EXPECT_EQ(readerFault(readEmitScalar, "gap unit"), atStatement("emit unit requires a unit name"));
    EXPECT_EQ(readerFault(readEmitScalar, "a.b = 1"), atStatement("scalar emit name must be an identifier"));
    EXPECT_EQ(readerFault(readEmitScalar, "a ="), atStatement("emit statement requires an expression"));
    EXPECT_EQ(
        readerFault(readEmitScalar, "a + b"),
        atStatement("emit shorthand requires a simple identifier because it also names the expression"));
}

/// A reader whose next statements are the given lines, each indented by four.
BlockReader readerBefore(std::initializer_list<const char*> lines) {
    BlockReader reader = readerAt();
    reader.indent = 2;
    std::int32_t number = 5;
    for (const char* line : lines) {
        reader.lines.push_back({line, {"t.mq", number, 5, number, 30}, 4});
        ++number;
    }
    return reader;
}

TEST(ReadEmitScalar, TakesTheDeeperLinesAsModifiers) {
    BlockReader reader = readerBefore({"unit eV", "report 'Gap'", "report gap again"});
    reader.lines.push_back({"let a = 1", {"t.mq", 8, 3, 8, 12}, 2});
    readEmitScalar(reader, "gap = a - b:");
    EXPECT_EQ(reader.next, 3U); // the line that is not deeper stays
    ASSERT_EQ(reader.spec.statements.size(), 3U);
    const auto& emit = std::get<EmitScalarStatement>(reader.spec.statements[0]);
    EXPECT_EQ(emit.unit, "eV");
    const auto& first = std::get<ReportStatement>(reader.spec.statements[1]);
    EXPECT_EQ(first.label, "Gap");
    EXPECT_EQ(first.value, emit.value); // one tree
    EXPECT_EQ(formatSpan(first.span), "t.mq:6:5-6:30");
    const auto& second = std::get<ReportStatement>(reader.spec.statements[2]);
    EXPECT_EQ(second.label, "gap again");
    EXPECT_EQ(formatSpan(second.span), "t.mq:7:5-7:30");
    // Each report is one more copy of the three nodes.
    EXPECT_EQ(reader.surface.expandedNodes, 6U);
}

TEST(ReadEmitScalar, FaultsOfModifiersStandAtTheirLine) {
    const auto faultOf = [](const char* text, std::initializer_list<const char*> lines) {
        BlockReader reader = readerBefore(lines);
        return messageOf([&] { readEmitScalar(reader, text); });
    };
    EXPECT_EQ(faultOf("gap:", {"label x"}),
              "t.mq:5:5-5:30: error: unknown emit modifier; expected unit or report");
    EXPECT_EQ(faultOf("gap:", {"unit eV", "unit J"}),
              "t.mq:6:5-6:30: error: emit unit may be specified only once");
    EXPECT_EQ(faultOf("gap unit eV:", {"unit J"}),
              "t.mq:5:5-5:30: error: emit unit may be specified only once");
    EXPECT_EQ(faultOf("gap:", {"report"}), "t.mq:5:5-5:30: error: emit report modifier requires a label");
    EXPECT_EQ(faultOf("gap:", {"unit ''"}), "t.mq:5:5-5:30: error: emit unit cannot be empty");
    EXPECT_EQ(faultOf("gap:", {}),
              atStatement("emit modifier block requires at least one indented unit or report entry"));
}

TEST(ReadEmitTable, GoesToAFileOfAKnownFormatOrNowhere) {
    struct Row {
        const char* text;
        DeriveSinkFormat sink;
        const char* path;
    };
    const Row rows[] = {
        {"t", DeriveSinkFormat::none, ""},
        {"t to csv out/t.csv", DeriveSinkFormat::csv, "out/t.csv"},
        {"t TO TSV 'a b.tsv'", DeriveSinkFormat::tsv, "a b.tsv"},
        {"t to jsonl x", DeriveSinkFormat::jsonl, "x"},
    };
    for (const auto& [text, sink, path] : rows) {
        const auto emit = readOne<EmitTableStatement>(readEmitTable, text);
        EXPECT_EQ(emit.name, "t");
        EXPECT_EQ(emit.sink, sink) << text;
        EXPECT_EQ(emit.path, path) << text;
    }
    EXPECT_EQ(readerFault(readEmitTable, "t to xlsx p"),
              atStatement("emit table file sink must be csv, tsv, or jsonl"));
    EXPECT_EQ(readerFault(readEmitTable, "t csv p"),
              atStatement("emit table sink must be 'to csv|tsv|jsonl <path>'"));
    EXPECT_EQ(readerFault(readEmitTable, ""), atStatement("emit table name must be an identifier"));
}

TEST(ReadEmitValueAndReport, KnowOneSinkEach) {
    const auto value = readOne<EmitValueStatement>(readEmitValue, "gap to kv 'a b.kv'");
    EXPECT_EQ(value.name + "|" + value.path, "gap|a b.kv");
    EXPECT_EQ(readerFault(readEmitValue, "gap to csv p"),
              atStatement("emit value currently supports only 'to kv <path>'"));
    EXPECT_EQ(readOne<EmitReportStatement>(readEmitReport, "to root").path, "");
    EXPECT_EQ(readOne<EmitReportStatement>(readEmitReport, "to root sum.txt").path, "sum.txt");
    EXPECT_EQ(readerFault(readEmitReport, "to kv p"),
              atStatement("emit report currently supports only 'to root [path]'"));
}

TEST(ReadEmitAtomVector, NamesAPropertyOfTheAtoms) {
    const auto written = readOne<EmitAtomVectorStatement>(readEmitAtomVector, "atoms[].q-2 = q * q");
    EXPECT_EQ(written.property + " <- " + printed(written.value), "q-2 <- q * q");
    for (const std::uint32_t seen : {seenSelect, seenGroupBy, seenAggregate}) {
        const auto bare = readOne<EmitAtomVectorStatement>(readEmitAtomVector, "atoms.q", seen);
        EXPECT_EQ(bare.property + " <- " + printed(bare.value), "q <- q");
    }
    const auto noField =
        atStatement("emit atomvec requires at least one selected/grouped/aggregate row field");
    EXPECT_EQ(readerFault(readEmitAtomVector, "q", seenWhere), noField);
    EXPECT_EQ(readerFault(readEmitAtomVector, "a-b", seenSelect), noField); // would be a difference
    EXPECT_EQ(readerFault(readEmitAtomVector, "a/b = q"),
              atStatement("atom vector property must contain only letters, digits, '_', '-' and '.'"));
}

TEST(ReadEmitKvAndArtifact, HoldTargetSourceAndProperty) {
    const auto kv = readOne<EmitKvStatement>(readEmitKv, "out/q.kv from q / 2 as atoms.half");
    EXPECT_EQ(kv.target + "|" + kv.property + "|" + printed(kv.value), "out/q.kv|half|q / 2");
    const auto artifact = readOne<EmitArtifactStatement>(readEmitArtifact, "'from x' from charge");
    EXPECT_EQ(artifact.target + "|" + artifact.property + "|" + printed(artifact.value),
              "from x|charge|charge");
    EXPECT_EQ(artifact.span, statementPlace);
    EXPECT_EQ(readerFault(readEmitArtifact, "p from q + 1"),
              atStatement("emit artifact requires 'as <atom-property>' when the source expression is not a "
                          "bare column"));
    EXPECT_EQ(readerFault(readEmitKv, "p"),
              atStatement("emit kv must use '<target> from <expression> [as property]'"));
}

} // namespace
} // namespace morquill::taskdsl::derive
