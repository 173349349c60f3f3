#include "lsp/index/block_scans.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

TEST(PreludeScan, NamesSettingsCollectionsDefinesAndAxes) {
    EXPECT_EQ(printNames("dsl_version: 2\n"
                         "site:\n"
                         "  queue: long\n"
                         "solvents: [water, toluene]\n"
                         "ions:\n"
                         "  - name: cl\n"
                         "    charge: -1\n"
                         "define:\n"
                         "  grid: \"int=[x]\"\n"
                         "matrix:\n"
                         "  f: a, b\n"),
              "0:0 setting= dsl_version\n"
              "1:0 setting= site\n"
              "2:2 item= queue < site\n"
              "3:0 collection= solvents\n"
              "4:0 collection= ions\n"
              "5:4 item= name < ions\n"
              "6:4 item= charge < ions\n"
              "8:2 define= grid\n"
              "8:14 key x\n"
              "10:2 axis= f\n");
}

TEST(PreludeScan, AnAxisThatFollowsNamesTheOther) {
    EXPECT_EQ(printNames("matrix:\n"
                         "  - f: a, b\n"
                         "    name: x, y\n"
                         "  - g: c, d\n"
                         "    map: f\n"
                         "  - name: e\n"),
              "1:4 axis= f\n"
              "3:4 axis= g\n"
              "4:9 key f\n"
              "5:4 axis= name\n");
}

TEST(PreludeScan, EndsAtTheFirstTaskAndAtWhatIsNoKey) {
    EXPECT_EQ(printNames("a: 1\n$t\nb: 2\n"), "0:0 setting= a\n1:1 task= t\n");
    EXPECT_EQ(printNames("a: 1\n  \nwords\nb: 2\n"), "0:0 setting= a\n");
    EXPECT_EQ(printNames("&INCLUDE \"x.yaml\"\na: 1\n&INCLUDE \"y.mq\"\nb: 2\n"),
              "0:10 path x.yaml\n1:0 setting= a\n2:10 path y.mq\n");
}

TEST(PreludeScan, AnIncludeIsJudgedByTheEndOfItsTarget) {
    EXPECT_EQ(printNames("&INCLUDE \"x.yaml.d/t.mq\"\ndefine:\n  m: b3lyp\n"), "0:10 path x.yaml.d/t.mq\n");
    EXPECT_EQ(printNames("&INCLUDE X.YML\ndefine:\n  m: b3lyp\n"), "0:9 path X.YML\n2:2 define= m\n");
    EXPECT_EQ(printNames("&INCLUDE l.mqlib\ndefine:\n  m: b3lyp\n"), "0:9 path l.mqlib\n");
}

TEST(PreludeScan, AnIncludeThatIsBeingTypedEndsNoPrelude) {
    EXPECT_EQ(printNames("&INCLUDE \"x.ya\ndefine:\n  m: b3lyp\n"), "2:2 define= m\n");
}

TEST(PreludeScan, AYamlFileIsAPrelude) {
    EXPECT_EQ(printNames("a: 1\n# b: 2\nlist: [1]\n", FileForm::values),
              "0:0 setting= a\n2:0 collection= list\n");
    EXPECT_EQ(printNames("", FileForm::values), "");
}

} // namespace
