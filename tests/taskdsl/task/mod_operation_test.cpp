#include "taskdsl/task/mod_operation.h"

#include "fixtures/faults.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/task/task_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::string normalizeFault(const std::string& key, const std::string& value) {
    return messageOf<DiagnosticError>([&] { (void)normalizeMod(key, value); });
}

std::string basisFault(const std::string& value) {
    return normalizeFault("basisset", value);
}

ModOperation readLine(std::string_view line, Placeholders placeholders = Placeholders::refused) {
    const auto entry = parseModLine(line);
    return normalizeMod(entry.key, entry.value, placeholders);
}

TEST(ParseModLine, SplitsKeyAndValue) {
    struct Case {
        std::string_view line;
        std::string_view key;
        std::string_view value;
    };
    const std::vector<Case> cases{
        {"charge add 1 2", "charge:add", "1"},
        {"anything subtract x", "anything:subtract", "x"},
        {"spin  add  1", "spin:add", "1"},
        {"charge add", "charge", "add"},
        {"charge 1 2", "charge", "1 2"},
        {"charge select 1", "charge", "select 1"},
        {"geom select 1-3 5", "geom:select", "1-3 5"},
        {"geom.ts remove 1  2", "geom.ts:remove", "1 2"},
        {"geom add 1 2", "geom:add", "1"},
        {"geom keep 1", "geom", "keep 1"},
        {"geom select", "geom", "select"},
        {"geometry select 1 2", "geometry", "select 1 2"},
        {"charge", "charge", ""},
        {"charge:2", "charge", "2"},
        {"charge:", "charge", ""},
        {"key:'v:w'", "key", "v:w"},
        {"key: v", "key:", "v"},
        {"a\tadd 1 2", "a\tadd", "1 2"},
        {"basisset def2 on=all", "basisset", "def2 on=all"},
        {":x", "", ""},
        {"", "", ""},
        {" \v ", "", ""},
        {"\v:x", "", ""},
    };
    for (const auto& each : cases) {
        const auto entry = parseModLine(each.line);
        EXPECT_EQ(entry.key, each.key) << each.line;
        EXPECT_EQ(entry.value, each.value) << each.line;
    }
}

TEST(ModOperation, IsOneOfFourWords) {
    for (const char* word : {"add", "subtract", "select", "remove"}) {
        EXPECT_TRUE(isModOperation(word)) << word;
    }
    for (const char* word : {"", "Add", "adds", "set", "charge"}) {
        EXPECT_FALSE(isModOperation(word)) << word;
    }
}

TEST(ParseModTarget, NamesWithSlots) {
    EXPECT_EQ(parseModTarget("charge"), (ModTarget{ModTargetKind::charge, "main"}));
    EXPECT_EQ(parseModTarget("spin.main"), (ModTarget{ModTargetKind::spin, "main"}));
    EXPECT_EQ(parseModTarget("geom.ts_1"), (ModTarget{ModTargetKind::geom, "ts_1"}));
    for (const auto* name :
         {"", "Charge", "charges", "charge2x", "charge2.a", "uhf", "basisset", ".charge"}) {
        EXPECT_EQ(parseModTarget(name), std::nullopt) << name;
    }
}

TEST(ParseModTarget, Faults) {
    const auto fault = [](std::string_view name) {
        return messageOf<DiagnosticError>([&] { (void)parseModTarget(name); });
    };
    for (const std::string name : {"charge", "spin", "geom"}) {
        EXPECT_EQ(fault(name + "12"),
                  "positional %mod target '" + name +
                      "12' is not supported; declare a named geom.<slot> source and use " + name + ".<slot>");
    }
    EXPECT_EQ(fault("charge.1a"),
              "invalid %mod geometry slot '1a'; slots must begin with a letter and contain only "
              "letters, digits, '_' or '-'");
    EXPECT_EQ(fault("charge."),
              "invalid %mod geometry slot ''; slots must begin with a letter and contain only "
              "letters, digits, '_' or '-'");
    EXPECT_EQ(fault("geom.a.b"),
              "invalid %mod target 'geom.a.b'; use charge[.<slot>], spin[.<slot>], or geom[.<slot>]");
}

TEST(NormalizeMod, Scalars) {
    EXPECT_EQ(readLine("charge -1"),
              ModOperation(ScalarMod{ScalarModTarget::charge, "main", ScalarModOp::set, "-1"}));
    EXPECT_EQ(readLine("spin.ts add 1"),
              ModOperation(ScalarMod{ScalarModTarget::spin, "ts", ScalarModOp::add, "1"}));
    EXPECT_EQ(readLine("spin subtract 1"),
              ModOperation(ScalarMod{ScalarModTarget::spin, "main", ScalarModOp::subtract, "1"}));
    EXPECT_EQ(normalizeMod(" charge :add", " 2 "),
              ModOperation(ScalarMod{ScalarModTarget::charge, "main", ScalarModOp::add, "2"}));
}

TEST(NormalizeMod, AtomsAndOthers) {
    EXPECT_EQ(readLine("geom select 1-3 5"), ModOperation(AtomsMod{false, "main", "1-3 5"}));
    EXPECT_EQ(readLine("geom.ts remove 4"), ModOperation(AtomsMod{true, "ts", "4"}));
    EXPECT_EQ(readLine("uhf 1\t2  3"), ModOperation(OtherMod{"uhf", {"1", "2", "3"}}));
    EXPECT_EQ(readLine("uhf"), ModOperation(OtherMod{"uhf", {}}));
    EXPECT_EQ(normalizeMod(":add", "1"), ModOperation(OtherMod{":add", {"1"}}));
    EXPECT_EQ(normalizeMod("charge:Add", "1"), ModOperation(OtherMod{"charge:Add", {"1"}}));
    EXPECT_EQ(normalizeMod("basisset:add", "x"), ModOperation(OtherMod{"basisset:add", {"x"}}));
    EXPECT_EQ(normalizeMod("BASISSET", "x"), ModOperation(OtherMod{"BASISSET", {"x"}}));
}

TEST(NormalizeMod, Faults) {
    EXPECT_EQ(normalizeFault("charge", ""), "%mod charge requires a value");
    EXPECT_EQ(normalizeFault("spin.ts:add", " "), "%mod spin.ts requires a value");
    EXPECT_EQ(normalizeFault("spin.main", ""), "%mod spin requires a value");
    EXPECT_EQ(normalizeFault("charge:select", "1"), "unsupported %mod operation 'select' for charge");
    EXPECT_EQ(normalizeFault("spin:remove", "1"), "unsupported %mod operation 'remove' for spin");
    EXPECT_EQ(normalizeFault("geom", "1"), "%mod geom requires 'select <atom-list>' or 'remove <atom-list>'");
    EXPECT_EQ(normalizeFault("geom.ts", ""),
              "%mod geom.ts requires 'select <atom-list>' or 'remove <atom-list>'");
    EXPECT_EQ(normalizeFault("geom:select", ""), "%mod geom select requires an atom list");
    EXPECT_EQ(normalizeFault("geom:remove", " "), "%mod geom remove requires an atom list");
    EXPECT_EQ(normalizeFault("geom:add", "1"), "unsupported %mod operation 'add' for geom");
    EXPECT_EQ(normalizeFault("geom:subtract", "1"), "unsupported %mod operation 'subtract' for geom");
    EXPECT_EQ(messageOf<DiagnosticError>([] { (void)readLine("charge"); }), "%mod charge requires a value");
}

TEST(BasisSet, ReadsOptions) {
    BasisSetMod basis{"def2-TZVP", BasisSelector::all, {}, {}, BasisRole::auxJ, BasisEcp::automatic};
    EXPECT_EQ(readLine("basisset def2-TZVP role=AUXJ"), ModOperation(basis));
    basis = {"a b", BasisSelector::element, {"Fe", "c"}, {}, BasisRole::orbital, BasisEcp::none};
    EXPECT_EQ(readLine("basisset a b ecp=Disabled on=Elements:Fe,,c,"), ModOperation(basis));
    basis = {"x", BasisSelector::atom, {}, {"1", "2"}, BasisRole::cabs, BasisEcp::required};
    EXPECT_EQ(readLine("basisset x on=ATOM:1,2 role=CABS ecp=required"), ModOperation(basis));
    basis = {"x ROLE=cabs", BasisSelector::all, {}, {}, BasisRole::orbital, BasisEcp::automatic};
    EXPECT_EQ(readLine("basisset x ROLE=cabs on=ALL"), ModOperation(basis));
}

TEST(BasisSet, Prints) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"def2-TZVP role=AUXJ", "basisset def2-TZVP role=aux-j"},
        {"x role=auxjk", "basisset x role=aux-jk"},
        {"x role=aux-jk", "basisset x role=aux-jk"},
        {"x role=auxC", "basisset x role=aux-c"},
        {"x role=cabs", "basisset x role=cabs"},
        {"x role=orbital on=all ecp=auto", "basisset x"},
        {"x ecp=disabled", "basisset x ecp=none"},
        {"a b ecp=required role=aux-c on=elements:Fe,C",
         "basisset a b on=element:Fe,C role=aux-c ecp=required"},
        {"x on=atoms:1,2", "basisset x on=atom:1,2"},
    };
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(formatModText(normalizeMod("basisset", value)), expected) << value;
    }
}

TEST(BasisSet, Faults) {
    EXPECT_EQ(basisFault(""), "%mod basisset requires a non-empty basis name");
    EXPECT_EQ(basisFault("on=all x"), "%mod basisset requires a non-empty basis name");
    EXPECT_EQ(basisFault("x on=all y"), "unexpected token after %mod basisset options: 'y'");
    EXPECT_EQ(basisFault("x on=all on=all"), "duplicate on= option in %mod basisset");
    EXPECT_EQ(basisFault("x role=cabs role=x"), "duplicate role= option in %mod basisset");
    EXPECT_EQ(basisFault("x ecp=auto ecp=auto"), "duplicate ecp= option in %mod basisset");
    EXPECT_EQ(basisFault("x on=element:"), "%mod basisset element selector is empty");
    EXPECT_EQ(basisFault("x on=elements:,,"), "%mod basisset element selector is empty");
    EXPECT_EQ(basisFault("x on=atom:"), "%mod basisset atom selector is empty");
    EXPECT_EQ(basisFault("x on=Half"), "unsupported %mod basisset selector 'Half'; expected on=all, "
                                       "on=element:<list>, or on=atom:<index-list>");
    EXPECT_EQ(basisFault("x on="),
              "unsupported %mod basisset selector ''; expected on=all, on=element:<list>, or "
              "on=atom:<index-list>");
    EXPECT_EQ(basisFault("x role=Aux"), "unsupported %mod basisset role='Aux'");
    EXPECT_EQ(basisFault("x ecp=Maybe"), "unsupported %mod basisset ecp='Maybe'");
}

TEST(BasisSet, APlaceholderWaitsForItsValue) {
    const OtherMod waiting{"basisset", {"x", "role=[r]"}};
    EXPECT_EQ(readLine("basisset x role=[r]", Placeholders::allowed), ModOperation(waiting));
    EXPECT_EQ(formatModText(waiting), "basisset x role=[r]");
    EXPECT_EQ(messageOf<DiagnosticError>([] { (void)readLine("basisset x role=[r]"); }),
              "unsupported %mod basisset role='[r]'");
    EXPECT_EQ(messageOf<DiagnosticError>([] { (void)readLine("basisset x role=[r", Placeholders::allowed); }),
              "unsupported %mod basisset role='[r'");
    EXPECT_EQ(
        messageOf<DiagnosticError>([] { (void)readLine("basisset x role=[[]", Placeholders::allowed); }),
        "unsupported %mod basisset role='[[]'");
    // Keys are not excused.
    EXPECT_EQ(
        messageOf<DiagnosticError>([] { (void)normalizeMod("charge.[s]", "1", Placeholders::allowed); }),
        "invalid %mod geometry slot '[s]'; slots must begin with a letter and contain only letters, digits, "
        "'_' or '-'");
    EXPECT_EQ(
        messageOf<DiagnosticError>([] { (void)normalizeMod("charge:select", "[x]", Placeholders::allowed); }),
        "unsupported %mod operation 'select' for charge");
}

TEST(FormatMod, KeyValueAndLine) {
    struct Case {
        std::string_view line;
        std::string_view key;
        std::string_view value;
        std::string_view text;
    };
    const std::vector<Case> cases{
        {"charge 1", "charge", "1", "charge 1"},
        {"charge:1", "charge", "1", "charge 1"},
        {"charge.main 1", "charge", "1", "charge 1"},
        {"spin.ts subtract 1", "spin.ts:subtract", "1", "spin.ts subtract 1"},
        {"charge:add 1", "charge:add", "1", "charge add 1"},
        {"geom.main select 1-3  5", "geom:select", "1-3 5", "geom select 1-3 5"},
        {"geom.ts remove 2", "geom.ts:remove", "2", "geom.ts remove 2"},
        {"basisset x on=all", "basisset", "x", "basisset x"},
        {"uhf 1 2", "uhf", "1 2", "uhf 1 2"},
        {"uhf", "uhf", "", "uhf"},
        {"uhf add 1 2", "uhf:add", "1", "uhf:add 1"},
    };
    for (const auto& each : cases) {
        const auto op = readLine(each.line);
        EXPECT_EQ(formatModKey(op), each.key) << each.line;
        EXPECT_EQ(formatModValue(op), each.value) << each.line;
        EXPECT_EQ(formatModText(op), each.text) << each.line;
        EXPECT_EQ(formatModEntry(parseModLine(each.line)), each.text) << each.line;
    }
}

TEST(FormatMod, LinesThatWouldBeReadOtherwiseArePrintedSoThatTheyAreNot) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"charge:add 1 2", "charge:add 1 2"},   {"uhf:add\t1", "uhf add\t1"},
        {"basisset add\tx", "basisset add\tx"}, {"uhf:'a\t#b'", "uhf:\"a\t#b\""},
        {"charge:'\"\t#1'", "charge:'\"\t#1'"},
    };
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(formatModText(readLine(line)), expected) << line;
        EXPECT_EQ(formatModText(readLine(cleanLine(expected))), expected);
    }
}

TEST(FormatMod, PrintingTwiceGivesTheSameLine) {
    std::mt19937 random(5);
    const std::vector<std::string> pieces{
        "charge", "geom", "basisset", "uhf", "add",   "select", " ",    " ", " ", "\t", "\v", ":",
        ".",      "a",    "1",        "on=", "atom:", "role=",  "cabs", ",", "#", "'",  "[b]"};
    int read = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string line;
        for (auto count = 1 + random() % 9; count > 0; --count) {
            line += pieces[random() % pieces.size()];
        }
        const auto entry = parseModLine(cleanLine(line));
        std::string once;
        try {
            once = entry.key.empty() ? "" : formatModEntry(entry);
        } catch (const DiagnosticError&) {
            continue;
        }
        ++read;
        const auto again = parseModLine(cleanLine("    " + once));
        ASSERT_EQ(again.key.empty() ? "" : formatModEntry(again), once) << ::testing::PrintToString(line);
    }
    EXPECT_GT(read, 7000);
}

/// True when a line of a `%mod` block reads as the operation; blanks and tabs within a value are alike.
bool readsAs(const std::string& line, const ModOperation& op) {
    const auto entry = parseModLine(cleanLine(line));
    try {
        const auto read = normalizeMod(entry.key, entry.value, Placeholders::allowed);
        return !entry.key.empty() && read.index() == op.index() && formatModKey(read) == formatModKey(op) &&
               splitBlank(formatModValue(read)) == splitBlank(formatModValue(op));
    } catch (const DiagnosticError&) {
        return false;
    }
}

/// The spellings of a line, the plainest first.
std::vector<std::string> spellingsOf(const ModOperation& op) {
    const std::string key = formatModKey(op);
    const std::string value = formatModValue(op);
    std::string words = key;
    if (op.index() < 2) {
        std::replace(words.begin(), words.end(), ':', ' ');
    }
    std::string tabs = value;
    std::replace(tabs.begin(), tabs.end(), ' ', '\t');
    const std::string gap = value.empty() ? "" : " ";
    return {words + gap + value, key + gap + value, key + gap + tabs, key + ":\"" + tabs + "\"",
            key + ":'" + tabs + "'"};
}

TEST(FormatMod, TakesThePlainestSpellingThatReadsBack) {
    std::mt19937 random(7);
    const std::vector<std::string> keys{"charge",      "charge:add", "spin.ts:subtract", "geom:select", "uhf",
                                        "geom:remove", "uhf:add",    "basisset",         "a b",         "#k",
                                        "'k",          "a\tb"};
    const std::vector<std::string> pieces{"add", "subtract", "select", "1", "-2", "x",  " ",   " ", " ",
                                          "\t",  "\v",       "#",      "'", "\"", "\\", "[b]", ":", "on=all"};
    std::size_t unreadable = 0;
    std::vector<std::size_t> taken(5);
    for (int round = 0; round < 20000; ++round) {
        std::string value;
        for (auto count = random() % 8; count > 0; --count) {
            value += pieces[random() % pieces.size()];
        }
        ModOperation op;
        try {
            op = normalizeMod(keys[random() % keys.size()], value, Placeholders::allowed);
        } catch (const DiagnosticError&) {
            continue;
        }
        const auto spellings = spellingsOf(op);
        const auto plainest = std::find_if(spellings.begin(), spellings.end(),
                                           [&op](const auto& line) { return readsAs(line, op); });
        const bool isReadable = plainest != spellings.end();
        ASSERT_EQ(formatModText(op), isReadable ? *plainest : spellings.front())
            << ::testing::PrintToString(value);
        ++(isReadable ? taken[static_cast<std::size_t>(plainest - spellings.begin())] : unreadable);
    }
    EXPECT_GT(unreadable, 20U);
    for (const auto count : taken) {
        EXPECT_GT(count, 20U) << "every spelling is the plainest of some operations";
    }
}

TEST(ModEntries, EveryLineIsKeptAndTheLastValueCounts) {
    TaskInfo task;
    for (const auto* line : {"charge add 1", ":x", "uhf 1", "", "charge add 2"}) {
        addModLine(task, line);
    }
    EXPECT_THAT(*task.modEntries,
                ElementsAre(ModEntry{"charge:add", "1"}, ModEntry{"uhf", "1"}, ModEntry{"charge:add", "2"}));
    EXPECT_THAT(modValues(task), ElementsAre(Pair("charge:add", "2"), Pair("uhf", "1")));
}

TEST(CheckMods, SlotsMustBeDeclared) {
    const auto fault = [](const TaskInfo& task, Placeholders placeholders = Placeholders::allowed) {
        return messageOf<DiagnosticError>([&] { checkModsAgainstSources(task, placeholders); });
    };
    TaskInfo task;
    EXPECT_EQ(fault(task), "no fault");
    task.modEntries.edit() = {{"charge", "1"}, {"spin.ts", "1"}};
    EXPECT_EQ(fault(task), "%mod targets geometry slot 'ts', but %source does not declare geom.ts");
    task.source = SourceStructured{{parseSourceBinding("geom a"), parseSourceBinding("geom.ts b")}};
    EXPECT_EQ(fault(task), "no fault");
    task.modEntries.edit().push_back({"geom.q:select", "1"});
    EXPECT_EQ(fault(task), "%mod targets geometry slot 'q', but %source does not declare geom.q");
    task.source = SourceStructured{{parseSourceBinding("aux.q b"), parseSourceBinding("geom.ts b")}};
    EXPECT_EQ(fault(task), "%mod targets geometry slot 'q', but %source does not declare geom.q");
    task.modEntries.edit() = {{"basisset", "x on=[sel]"}, {"q.q", "1"}};
    EXPECT_EQ(fault(task), "no fault");
    EXPECT_EQ(fault(task, Placeholders::refused),
              "unsupported %mod basisset selector '[sel]'; expected on=all, on=element:<list>, "
              "or on=atom:<index-list>");
    task.modEntries.edit() = {{"charge", ""}};
    EXPECT_EQ(fault(task), "%mod charge requires a value");
}

} // namespace
} // namespace morquill::taskdsl
