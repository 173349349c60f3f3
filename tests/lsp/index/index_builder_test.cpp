#include "lsp/index/index_builder.h"

namespace {

using namespace morquill::lsp;

TEST(IndexBuilder, OrdersWhatWasAddedAndKeepsTheLinks) {
    const std::string_view text = "ab.cd";
    IndexBuilder builder(text);
    const auto owner = builder.add(NameKind::library, NameRole::reference, text.substr(3, 2));
    builder.add(NameKind::fragment, NameRole::reference, text.substr(0, 2), 0, owner);
    EXPECT_EQ(builder.add(NameKind::task, NameRole::reference, ""), noIndex);
    const auto index = builder.take();
    ASSERT_EQ(index.occurrences.size(), 2U);
    EXPECT_EQ(nameOf(text, index.occurrences[0]), "ab");
    EXPECT_EQ(index.occurrences[0].qualifier, 1U);
    EXPECT_EQ(index.occurrences[1].qualifier, noIndex);
}

TEST(IndexBuilder, ALongerNameComesBeforeOneInIt) {
    const std::string_view text = "[x]";
    IndexBuilder builder(text);
    builder.addKeys(text);
    builder.add(NameKind::string, NameRole::word, text.substr(1));
    const auto index = builder.take();
    EXPECT_EQ(index.occurrences[0].kind, NameKind::string);
    EXPECT_EQ(index.occurrences[1].kind, NameKind::key);
}

TEST(IndexBuilder, FindsKeysAsSubstitutionDoes) {
    const std::string_view text = "[a] [b c] [] [[d]] [e.f-g_1 [h]";
    IndexBuilder builder(text);
    builder.addKeys(text);
    std::vector<std::string> keys;
    for (const auto& o : builder.take().occurrences) {
        keys.emplace_back(nameOf(text, o));
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"a", "d", "h"}));
}

TEST(IndexBuilder, ABlockEndsWithItsLastFilledLine) {
    const std::string_view text = "one\ntwo\n\n";
    IndexBuilder builder(text);
    const auto block = builder.open(BlockKind::task, text.substr(0, 3));
    const auto scope = builder.addScope(BlockKind::formula, text.substr(0, 3));
    builder.noteFilled(text.substr(4, 3));
    builder.closeTo(block);
    const auto index = builder.take();
    EXPECT_EQ(index.blocks[block].end, 7U);
    EXPECT_EQ(index.blocks[scope].end, 3U);
    EXPECT_EQ(index.blocks[scope].parent, block);
    EXPECT_EQ(index.blocks[0].end, text.size());
}

} // namespace
