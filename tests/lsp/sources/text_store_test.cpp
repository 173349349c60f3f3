#include "lsp/sources/text_store.h"

namespace {

using namespace morquill::lsp;

Json range(int line, int character, int endLine, int endCharacter) {
    return {{"start", {{"line", line}, {"character", character}}},
            {"end", {{"line", endLine}, {"character", endCharacter}}}};
}

constexpr auto utf16 = PositionUnit::utf16;

TEST(TextStore, KeepsWhatIsOpen) {
    TextStore store;
    store.open("file:///tmp/a%20b.mq", 3, "$opt\n");
    const OpenText* text = store.find("file:///tmp/a%20b.mq");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->path, "/tmp/a b.mq");
    EXPECT_EQ(text->version, 3);
    EXPECT_EQ(store.findPath("/tmp/a b.mq"), text);
    EXPECT_EQ(store.findPath("/tmp/../tmp/a b.mq"), text);
    EXPECT_EQ(store.findPath(""), nullptr);
    EXPECT_TRUE(store.close("file:///tmp/a%20b.mq"));
    EXPECT_FALSE(store.close("file:///tmp/a%20b.mq"));
    EXPECT_EQ(store.find("file:///tmp/a%20b.mq"), nullptr);
}

TEST(TextStore, ATextNeedsNoFile) {
    TextStore store;
    EXPECT_EQ(store.open("untitled:Untitled-1", 1, "").path, "");
}

TEST(TextStore, AppliesChangesOneAfterTheOther) {
    TextStore store;
    store.open("u", 1,
               "a\xf0\x9d\x84\x9e"
               "b\r\nc");
    const Json changes = {{{"range", range(0, 3, 1, 0)}, {"text", "-"}},
                          {{"range", range(0, 0, 0, 1)}, {"text", "x\ny"}}};
    EXPECT_TRUE(store.change("u", 2, changes, utf16));
    EXPECT_EQ(store.find("u")->buffer.text(), "x\ny\xf0\x9d\x84\x9e-c");
    EXPECT_EQ(store.find("u")->version, 2);
    EXPECT_TRUE(store.change("u", 3, {{{"text", "whole"}}}, utf16));
    EXPECT_EQ(store.find("u")->buffer.text(), "whole");
}

TEST(TextStore, RefusesWhatIsNoChange) {
    TextStore store;
    store.open("u", 1, "ab");
    EXPECT_FALSE(store.change("v", 2, Json::array(), utf16));
    EXPECT_FALSE(store.change("u", 2, "text", utf16));
    EXPECT_FALSE(store.change("u", 2, {{{"range", range(0, 0, 0, 1)}}}, utf16));
    EXPECT_FALSE(store.change("u", 2, {{{"range", range(0, 2, 0, 1)}, {"text", "x"}}}, utf16));
    EXPECT_FALSE(store.change("u", 2, {{{"range", range(0, -1, 0, 1)}, {"text", "x"}}}, utf16));
    EXPECT_EQ(store.find("u")->buffer.text(), "ab");
}

TEST(TextStore, HugeNumbersAreTheEnd) {
    TextStore store;
    store.open("u", 1, "ab\ncd");
    Json all = range(0, 0, 0, 0);
    all["end"] = {{"line", 4294967295U}, {"character", 4294967295U}};
    EXPECT_TRUE(store.change("u", 2, {{{"range", all}, {"text", "x"}}}, utf16));
    EXPECT_EQ(store.find("u")->buffer.text(), "x");
}

TEST(TextStore, KnowsWhatChangedSince) {
    TextStore store;
    store.open("file:///a.mq", 1, "");
    const auto stamp = store.stamp();
    EXPECT_FALSE(store.changedSince("/a.mq", stamp));
    EXPECT_TRUE(store.change("file:///a.mq", 2, {{{"text", "x"}}}, utf16));
    EXPECT_TRUE(store.changedSince("/a.mq", stamp));
    EXPECT_FALSE(store.changedSince("/b.mq", stamp));
    store.countDiskChange("/b.mq");
    EXPECT_TRUE(store.changedSince("/b.mq", stamp));
}

} // namespace
