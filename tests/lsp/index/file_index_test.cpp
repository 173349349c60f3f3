#include "lsp/index/file_index.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

TEST(FileIndex, FindsTheNarrowestName) {
    const std::string text = "$opt_[x]\n  %source a # opt\n";
    const auto index = indexFile(text, FileForm::tasks);
    const auto nameAt = [&](std::size_t offset) {
        const auto* found = occurrenceAt(index, offset);
        return found == nullptr ? std::string("-") : std::string(nameOf(text, *found));
    };
    EXPECT_EQ(nameAt(0), "-");
    EXPECT_EQ(nameAt(1), "opt_[x]");
    EXPECT_EQ(nameAt(5), "opt_[x]");
    EXPECT_EQ(nameAt(6), "x");
    EXPECT_EQ(nameAt(7), "x"); // behind its last byte
    EXPECT_EQ(nameAt(12), "source");
    EXPECT_EQ(nameAt(text.find("a #")), "a");
    EXPECT_EQ(nameAt(text.find("opt", 20)), "# opt");
    EXPECT_EQ(nameAt(9999), "-");
}

TEST(FileIndex, ANameThatBeginsWinsOverOneThatEnds) {
    const std::string text = "@derive d\n  let a = b\n  emit c = a*b\n@end\n";
    const auto index = indexFile(text, FileForm::tasks);
    const auto at = text.find("a*b");
    EXPECT_EQ(nameOf(text, *occurrenceAt(index, at)), "a");
    EXPECT_EQ(nameOf(text, *occurrenceAt(index, at + 2)), "b");
}

TEST(FileIndex, BlocksLieInOneAnother) {
    const std::string text = "dsl_version: 2\n"
                             "define:\n"
                             "  x: 1\n"
                             "\n"
                             "@foreach i in series(1-2)\n"
                             "$a_[i.value]\n"
                             "  %body << END\n"
                             "text\n"
                             "END\n"
                             "  %when completed b\n"
                             "\n"
                             "@end\n"
                             "$b\n";
    EXPECT_EQ(printBlocks(text, FileForm::tasks), "file 0-12\n"
                                                  "  prelude 0-2\n"
                                                  "    section 0-0 dsl_version\n"
                                                  "    defines 1-2 define\n"
                                                  "  loop 4-11 i\n"
                                                  "    task 5-9 a_[i.value]\n"
                                                  "      directive 6-8 body\n"
                                                  "        heredoc 6-8\n"
                                                  "      directive 9-9 when\n"
                                                  "  task 12-12 b\n");
    const auto index = indexFile(text, FileForm::tasks);
    const auto block = blockAt(index, text.find("text"));
    EXPECT_EQ(index.blocks[block].kind, BlockKind::heredoc);
    EXPECT_EQ(nameOf(text, index.occurrences[index.blocks[enclosing(index, block, BlockKind::task)].name]),
              "a_[i.value]");
    EXPECT_EQ(enclosing(index, block, BlockKind::derive), noIndex);
    EXPECT_EQ(blockAt(index, text.size()), 0U);
}

} // namespace
