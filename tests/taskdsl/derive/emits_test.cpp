// The emit statements as records: where results go and under which name.

#include "fixtures/derive_fixture.h"

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

TEST(DeriveEmitTable, GoesToAFileOrNowhere) {
    const std::string lead = tasks + "select a = a\n";
    expectForms(lead, "",
                {
                    {"emit table t", "emit table t"},
                    {"emit table t TO Csv out/to/x.csv", "emit table t to csv \"out/to/x.csv\""},
                    {"emit table t to tsv 'a b.tsv'", "emit table t to tsv \"a b.tsv\""},
                    {"emit table t to jsonl a b", "emit table t to jsonl \"a b\""},
                });
    expectRefusalsAfter(lead,
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
    expectRefusals({
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
    expectRefusals({
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
    expectRefusalsAfter(atoms,
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
        expectRefusalsAfter(
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
    expectRefusals({
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
    expectRefusals({
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

TEST(DeriveEmitScalar, ModifiersAreBounded) {
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

} // namespace
} // namespace morquill::taskdsl::derive
