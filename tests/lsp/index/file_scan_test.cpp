#include "lsp/index/file_index.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

TEST(FileScan, ALoopNamesItsItems) {
    EXPECT_EQ(printNames("ions: [cl]\n"
                         "@foreach step in series(1-3)\n"
                         "@foreach? ions\n"
                         "$p_[step.index]_[ions.value]_[other.x]\n"
                         "@end\n"
                         "@end\n"
                         "$q_[step.index]\n"),
              "0:0 collection= ions\n"
              "1:9 loop= step\n"
              "2:10 collection ions\n"
              "3:1 task= p_[step.index]_[ions.value]_[other.x]\n"
              "3:4 loop step\n"
              "3:9 item index < step\n"
              "3:17 collection ions\n"
              "3:22 item value < ions\n"
              "3:30 key other.x\n"
              "6:1 task= q_[step.index]\n"
              "6:4 key step.index\n");
}

TEST(FileScan, ANameInQuotesIsWithoutThem) {
    EXPECT_EQ(printNames("$\"two words\" # c\n"), "0:2 task= two words\n");
}

TEST(FileScan, AByteOrderMarkIsNoPartOfTheText) {
    EXPECT_EQ(printNames("\xef\xbb\xbf$a\n"), "0:4 task= a\n");
}

TEST(FileScan, AHeredocHidesWhatLooksLikeABlock) {
    EXPECT_EQ(printNames("$a\n%body << END\n$b\n%source c\nEND\n$d\n"), "0:1 task= a\n5:1 task= d\n");
    EXPECT_EQ(printNames("$a\n%body << END\n%source c\n$d\n"), "0:1 task= a\n3:1 task= d\n");
}

TEST(FileScan, LinesEndInCarriageReturnAndLineFeed) {
    EXPECT_EQ(printNames("$a\r\n  %source b\r\n"), "0:1 task= a\n1:10 task b\n");
}

TEST(FileScan, CommentsStandBehindStatements) {
    EXPECT_EQ(printWords("# one\n$a # two\n  %keywords \"#p\" # three\n  text # four\n@derive d # five\n"
                         "  let a = \"#\" # six\n@end # seven\n",
                         NameKind::comment),
              "# one # two # three # four # five # six # seven");
}

TEST(FileScan, AnyBytesHaveAnIndex) {
    const std::string many(100000, '[');
    for (const auto& text :
         {many, "$" + many, "@derive d\n let " + many + "\n@end", "&INCLUDE a(" + many,
          std::string("\0\r\n$\0\n", 6), std::string("matrix:\n  -\n  :\n"), "@plot\n" + many,
          std::string("&INCLUDE \"\n&INCLUDE <\n&FRAGMENT\n&INCLUDE x.mqlib as\n%\n$\n@derive\n")}) {
        for (const auto form : {FileForm::tasks, FileForm::library, FileForm::fragment, FileForm::values}) {
            const auto index = indexFile(text, form);
            for (const auto& o : index.occurrences) {
                EXPECT_LE(o.end(), text.size());
            }
        }
    }
}

} // namespace
