#include "taskdsl/derive/task_references.h"

#include "fixtures/derive_fixture.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

std::string references(std::string_view body) {
    const auto names = collectDeriveTaskReferences(parseDerive(blockOf(body)));
    return join({names.begin(), names.end()}, " ");
}

TEST(TaskReferences, FirstArgumentsOfTaskFunctionsAreTasks) {
    for (const char* function :
         {"energy", "scf_energy", "correlated_energy", "single_point", "free_energy", "gibbs_energy",
          "gibbs_corr", "zpe", "thermal_corr", "nimag", "imag_freq", "kv", "result", "Energy", "ZPE"}) {
        EXPECT_EQ(references("emit e = " + std::string(function) + "(opt, other)"), "opt") << function;
    }
    const std::pair<const char*, const char*> rows[] = {
        {"energy('my opt')", "my opt"},
        {"energy(task=opt)", "opt"},
        {"energy('')", ""},
        {"energy()", ""},
        {"energy(1)", ""},
        {"energy(a, energy(b), {{ c.k }})", "a b c"},
        {"energy(-{{ a.k }})", "a"},
        {"max(a, energy(b))", "b"},
        {"-energy(a) + 2 * (zpe(b) - max(1, kv(c, d)))", "a b c"},
        {"{{ a.k }} + {{ b.k.l }}", "a b"},
        {"enthalpy(opt)", ""},
        {"opt", ""},
    };
    for (const auto& [expression, names] : rows) {
        EXPECT_EQ(references("emit e = " + std::string(expression)), names) << expression;
    }
}

TEST(TaskReferences, SelfIsNoTask) {
    EXPECT_EQ(references("emit e = energy(self) + energy('SELF') + {{ Self.k }} + zpe(task=sElf)"), "");
    EXPECT_EQ(references("from atoms(self) as a\njoin atoms(Self) as b on atom.id\nemit kv p from q"), "");
    EXPECT_EQ(references("emit e = energy(myself)"), "myself");
}

TEST(TaskReferences, EveryStatementIsLookedAt) {
    EXPECT_EQ(
        references(
            "let a = energy(t01)\n"
            "require energy(t02) == energy(t03) and x in [energy(t04), {{ t05.k }}] or not energy(t06)\n"
            "emit e = energy(t07)\n"
            "report r = energy(t08)\n"
            "emit value e to kv energy\n"
            "emit report to root energy\n"
            "from atoms(t09) as a\n"
            "join atoms(t10) as b on atom.id\n"
            "where energy(t11) or energy(t12) or energy(t13)\n"
            "select s = energy(t14)\n"
            "group by energy(t15) as g, energy(t16) as h\n"
            "aggregate m = sum(energy(t17))\n"
            "sort energy(t18)\n"
            "limit 1\n"
            "emit table t to csv p\n"
            "emit atomvec v = energy(t19)\n"
            "emit kv p from energy(t20) as q\n"
            "emit artifact p from energy(t21) as q"),
        "t01 t02 t03 t04 t05 t06 t07 t08 t09 t10 t11 t12 t13 t14 t15 t16 t17 t18 t19 t20 t21");
    EXPECT_EQ(references("from tasks(opt, 'b*', template=c)\nselect a\nemit table t"), "");
    EXPECT_EQ(references("from derived(d.t)\nemit table t"), "");
}

TEST(TaskReferences, LongChainsAndSumsAreWalkedWithoutRecursion) {
    std::string chain = "from tasks()\nwhere ";
    for (int i = 0; i < 20'000; ++i) {
        chain += "energy(a) or ";
    }
    EXPECT_EQ(references(chain + "energy(b)\nselect c\nemit table t"), "a b");
    std::string sum = "emit e = energy(a)";
    for (int i = 0; i < 20'000; ++i) {
        sum += " + 1";
    }
    EXPECT_EQ(references(sum), "a");
}

} // namespace
} // namespace morquill::taskdsl::derive
