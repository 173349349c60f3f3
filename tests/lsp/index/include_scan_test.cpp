#include "lsp/index/block_scans.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

std::string links(std::string_view text, FileForm form = FileForm::tasks) {
    const auto index = indexFile(text, form);
    std::string printed;
    for (const auto& link : index.links) {
        printed += std::string(text.substr(link.begin, link.end - link.begin)) + " -> " + link.target;
        if (link.alias != noIndex) {
            printed += " as " + std::string(nameOf(text, index.occurrences[link.alias]));
        }
        printed += '\n';
    }
    return printed;
}

TEST(IncludeScan, LinksFiles) {
    EXPECT_EQ(links("&INCLUDE \"a b.mq\"\n&INCLUDE <lib/x.mqlib> as x # why\n&INCLUDE y.mqlib as y\n"),
              "a b.mq -> a b.mq\nlib/x.mqlib -> <lib/x.mqlib> as x\ny.mqlib -> y.mqlib as y\n");
}

TEST(IncludeScan, NamesTheFragmentAndItsParameters) {
    EXPECT_EQ(printNames("&INCLUDE \"l.mqlib\" as lib\n"
                         "&INCLUDE lib.opt(\n"
                         "  name = a,  # the first\n"
                         "  method = [f](x, y))\n"
                         "$t\n"
                         "  &INCLUDE lib.one\n"),
              "0:10 path l.mqlib\n"
              "0:22 lib= lib\n"
              "1:9 lib lib\n"
              "1:13 fragment opt < lib\n"
              "2:2 param name < opt\n"
              "3:2 param method < opt\n"
              "3:12 key f\n"
              "4:1 task= t\n"
              "5:11 lib lib\n"
              "5:15 fragment one < lib\n");
}

TEST(IncludeScan, ReadsALibrary) {
    EXPECT_EQ(printNames("# head\n"
                         "&INCLUDE \"r.mqlib\" as r\n"
                         "&FRAGMENT task_body opt(\n"
                         "  method,\n"
                         "  basis = [method]x)\n"
                         "  %keywords \"[method]/[basis] [f]\"\n"
                         "  %control\n"
                         "    &INCLUDE r.node(cores=[basis])\n"
                         "    guess old\n"
                         "&FRAGMENT when w\n"
                         "  completed [method]\n"
                         "&FRAGMENT document d(name)\n"
                         "$[name]_a\n"
                         "&INCLUDE opt(method=hf)\n",
                         FileForm::library),
              "1:10 path r.mqlib\n"
              "1:22 lib= r\n"
              "2:20 fragment= opt\n"
              "3:2 param= method\n"
              "4:2 param= basis\n"
              "4:11 param method\n"
              "5:14 param method\n"
              "5:23 param basis\n"
              "5:31 key f\n"
              "7:13 lib r\n"
              "7:15 fragment node < r\n"
              "7:20 param cores < node\n"
              "7:27 param basis\n"
              "8:10 task old\n"
              "9:15 fragment= w\n"
              "10:12 task [method]\n"
              "10:13 key method\n"
              "11:19 fragment= d\n"
              "11:21 param= name\n"
              "12:1 task= [name]_a\n"
              "12:2 param name\n"
              "13:9 fragment opt\n"
              "13:13 param method < opt\n");
}

TEST(IncludeScan, AListThatIsNotClosedEndsAtTheNextTask) {
    EXPECT_EQ(printNames("&INCLUDE lib.opt(\n  name = a,\n$t\n"), "2:1 task= t\n");
}

} // namespace
