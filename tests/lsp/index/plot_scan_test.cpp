#include "lsp/index/block_scans.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

TEST(PlotScan, NamesTasksThatItShows) {
    EXPECT_EQ(printNames("@plot barrier b\n"
                         "  from task opt\n"
                         "  point r label \"opt\" value {{ r_opt.energy }} * 2\n"
                         "  point ts value energy(ts, kind=\"scf\")\n"
                         "  relative to r\n"
                         "@end\n"),
              "0:14 plot= b\n"
              "1:12 task opt\n"
              "2:8 plotitem= r\n"
              "2:31 task r_opt\n"
              "2:37 property energy < r_opt\n"
              "3:8 plotitem= ts\n"
              "3:24 task ts\n"
              "4:14 plotitem r\n");
}

TEST(PlotScan, AColumnIsCalledAfterItsTask) {
    EXPECT_EQ(printNames("@plot excited e\n"
                         "  column S label \"x\"\n"
                         "  column T task \"triplets\" multiplicity triplet\n"
                         "  arrow from S root 2 to T first lower\n"
                         "@end\n"),
              "0:14 plot= e\n"
              "1:9 plotitem= S\n"
              "1:9 task S\n"
              "2:9 plotitem= T\n"
              "2:17 task triplets\n"
              "3:13 plotitem S\n"
              "3:25 plotitem T\n");
}

TEST(PlotScan, NamesAxesTablesAndSeries) {
    EXPECT_EQ(printNames("@plot curve c\n"
                         "  from variants scan\n"
                         "  x matrix_value(r) label \"d [y]\"\n"
                         "  series scf = scf_energy * 627.5 label \"E\" unit kcal/mol\n"
                         "  legend:\n"
                         "    order scf\n"
                         "@end\n"
                         "@plot scatter s\n"
                         "  from derived(d.t)\n"
                         "@end\n"),
              "0:12 plot= c\n"
              "1:16 task scan\n"
              "2:17 key r\n"
              "2:30 key y\n"
              "3:9 plotitem= scf\n"
              "3:15 property scf_energy\n"
              "5:10 plotitem scf\n"
              "7:14 plot= s\n"
              "8:15 derive d\n"
              "8:17 table t < d\n");
}

TEST(PlotScan, APlotOfATaskEndsWithItsBlock) {
    EXPECT_EQ(printNames("$t\n"
                         "  %plot spectrum ir\n"
                         "    x frequency * 0.9 # scaled\n"
                         "    y max(a,\n"
                         "          b)\n"
                         "  %source opt\n"),
              "0:1 task= t\n"
              "1:17 plot= ir\n"
              "2:6 property frequency\n"
              "3:10 property a\n"
              "4:10 property b\n"
              "5:10 task opt\n");
}

TEST(PlotScan, ABlockThatIsNotClosedEndsAtTheNextTask) {
    EXPECT_EQ(printNames("@plot bar b\n  x a\n$t\n"), "0:10 plot= b\n1:4 property a\n2:1 task= t\n");
}

} // namespace
