#include "lsp/index/block_scans.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

TEST(DeriveScan, NamesWhatItsPreambleGives) {
    EXPECT_EQ(printNames("@derive d\n"
                         "  let g = free_energy(opt) + energy(\"ts\")\n"
                         "  require nimag(ts) == 1 and g < 0 else \"g\"\n"
                         "  emit g = 2 * g unit \"kcal/mol\"\n"
                         "  emit value g to kv \"out.kv\"\n"
                         "  report \"g\" = g\n"
                         "@end\n"),
              "0:8 derive= d\n"
              "1:6 let= g\n"
              "1:22 task opt\n"
              "1:37 task ts\n"
              "2:16 task ts\n"
              "2:29 let g\n"
              "3:7 emitted= g\n"
              "3:15 let g\n"
              "4:13 emitted g\n"
              "5:15 let g\n");
}

TEST(DeriveScan, NamesFormulasProfilesAndBinds) {
    EXPECT_EQ(printNames("@derive d\n"
                         "  profile q for thermo = (model=\"rrho\")\n"
                         "  formula twice(x) = 2 * x\n"
                         "  formula four(x) = twice(twice(x))\n"
                         "  bind thermo(opt, using=q) to (g = gibbs_energy,\n"
                         "    s = entropy)\n"
                         "  emit e = four(g) + s\n"
                         "@end\n"),
              "0:8 derive= d\n"
              "1:10 profile= q\n"
              "2:10 formula= twice\n"
              "2:16 param= x\n"
              "2:25 param x\n"
              "3:10 formula= four\n"
              "3:15 param= x\n"
              "3:20 formula twice\n"
              "3:26 formula twice\n"
              "3:32 param x\n"
              "4:14 task opt\n"
              "4:25 profile q\n"
              "4:32 let= g\n"
              "4:36 property gibbs_energy\n"
              "5:4 let= s\n"
              "5:8 property entropy\n"
              "6:7 emitted= e\n"
              "6:11 formula four\n"
              "6:16 let g\n"
              "6:21 let s\n");
}

TEST(DeriveScan, NamesWhatItsPipelineGives) {
    EXPECT_EQ(printNames("@derive d\n"
                         "  from atoms(neutral) as n\n"
                         "  join atoms(cation) as c on atom.id\n"
                         "  where n.element in [\"C\"]\n"
                         "  select shift = c.charge - n.charge, abs(shift) as size\n"
                         "  sort size desc\n"
                         "  emit table shifts to csv \"x.csv\"\n"
                         "  emit atomvec v = shift\n"
                         "@end\n"),
              "0:8 derive= d\n"
              "1:13 task neutral\n"
              "1:25 alias= n\n"
              "2:13 task cation\n"
              "2:24 alias= c\n"
              "2:29 property atom.id\n"
              "3:8 alias n\n"
              "3:10 property element < n\n"
              "4:9 column= shift\n"
              "4:17 alias c\n"
              "4:19 property charge < c\n"
              "4:28 alias n\n"
              "4:30 property charge < n\n"
              "4:42 column shift\n"
              "4:52 column= size\n"
              "5:7 column size\n"
              "6:13 table= shifts\n"
              "7:15 emitted= v\n"
              "7:19 column shift\n");
}

TEST(DeriveScan, NamesPatternsAxesAndTables) {
    EXPECT_EQ(printNames("@derive d\n"
                         "  from tasks(\"opt*\", program=\"orca\", template=\"opt\")\n"
                         "  select conformer = matrix_value(\"conf\")\n"
                         "  emit table t\n"
                         "@end\n"
                         "@derive e\n"
                         "  from derived(d, table=t)\n"
                         "  group by coalesce(family, \"none\") as family\n"
                         "  aggregate n = count()\n"
                         "  emit table u\n"
                         "@end\n"),
              "0:8 derive= d\n"
              "1:14 task opt*\n"
              "1:47 task opt\n"
              "2:9 column= conformer\n"
              "2:35 key conf\n"
              "3:13 table= t\n"
              "5:8 derive= e\n"
              "6:15 derive d\n"
              "6:24 table t < d\n"
              "7:20 property family\n"
              "7:39 column= family\n"
              "8:12 column= n\n"
              "9:13 table= u\n");
}

} // namespace
