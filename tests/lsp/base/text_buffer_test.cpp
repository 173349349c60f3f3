#include "lsp/base/text_buffer.h"

namespace {

using namespace morquill::lsp;
using enum PositionUnit;

// a-umlaut takes 2 bytes and 1 unit of UTF-16, the euro sign 3 and 1, the G clef 4 and 2.
constexpr std::string_view umlaut = "\xc3\xa4";
constexpr std::string_view euro = "\xe2\x82\xac";
constexpr std::string_view clef = "\xf0\x9d\x84\x9e";

std::string mixed() {
    return std::string(umlaut) + "b" + std::string(clef) + std::string(euro) + "z";
}

TEST(TextBuffer, LinesEndInEachOfThreeWays) {
    const TextBuffer buffer("a\nbb\r\nccc\rdddd");
    ASSERT_EQ(buffer.lineCount(), 4U);
    EXPECT_EQ(buffer.line(0), (ByteRange{0, 1}));
    EXPECT_EQ(buffer.line(1), (ByteRange{2, 4}));
    EXPECT_EQ(buffer.line(2), (ByteRange{6, 9}));
    EXPECT_EQ(buffer.line(3), (ByteRange{10, 14}));
    EXPECT_EQ(buffer.line(4), (ByteRange{14, 14}));
    EXPECT_EQ(TextBuffer("").lineCount(), 1U);
    EXPECT_EQ(TextBuffer("\n\r\n\r").lineCount(), 4U);
}

TEST(TextBuffer, CountsCharactersInTheUnitThatWasAgreedOn) {
    const TextBuffer buffer("x\n" + mixed());
    struct Row {
        std::uint32_t utf16;
        std::uint32_t utf8;
        std::size_t offset;
    };
    // before the umlaut, b, the clef, the euro sign, z, and at the end
    for (const auto& row :
         {Row{0, 0, 2}, Row{1, 2, 4}, Row{2, 3, 5}, Row{4, 7, 9}, Row{5, 10, 12}, Row{6, 11, 13}}) {
        EXPECT_EQ(buffer.offsetAt({1, row.utf16}, utf16), row.offset);
        EXPECT_EQ(buffer.offsetAt({1, row.utf8}, utf8), row.offset);
        EXPECT_EQ(PositionWalk(buffer, utf16).at(row.offset), (Position{1, row.utf16}));
        EXPECT_EQ(PositionWalk(buffer, utf8).at(row.offset), (Position{1, row.utf8}));
    }
}

TEST(TextBuffer, PlacesOutsideAreBroughtInside) {
    const TextBuffer buffer(mixed() + "\r\nb");
    const auto end = mixed().size();
    EXPECT_EQ(buffer.offsetAt({0, 99}, utf16), end);
    EXPECT_EQ(buffer.offsetAt({0, 99}, utf8), end);
    EXPECT_EQ(buffer.offsetAt({9, 0}, utf16), end + 3);
    // inside the clef: its begin
    EXPECT_EQ(buffer.offsetAt({0, 3}, utf16), 3U);
    EXPECT_EQ(buffer.offsetAt({0, 5}, utf8), 3U);
    // inside the line end: the end of the line
    EXPECT_EQ(PositionWalk(buffer, utf8).at(end + 1), (Position{0, static_cast<std::uint32_t>(end)}));
    EXPECT_EQ(PositionWalk(buffer, utf8).at(9999), (Position{1, 1}));
    // inside the umlaut
    EXPECT_EQ(PositionWalk(buffer, utf16).at(1), (Position{0, 0}));
}

TEST(TextBuffer, BytesThatAreNoUtf8CountOneEach) {
    const std::string text = "\xff\xc3x\xe2\x82y\xf0\x9d\x84";
    const TextBuffer buffer(text);
    for (std::uint32_t i = 0; i <= text.size(); ++i) {
        EXPECT_EQ(buffer.offsetAt({0, i}, utf16), i);
        EXPECT_EQ(PositionWalk(buffer, utf16).at(i), (Position{0, i}));
    }
}

TEST(TextBuffer, WalksForwardAndBack) {
    const TextBuffer buffer(mixed() + "\n" + mixed());
    PositionWalk walk(buffer, utf16);
    EXPECT_EQ(walk.at(7), (Position{0, 4}));
    EXPECT_EQ(walk.at(10), (Position{0, 5}));
    EXPECT_EQ(walk.at(3), (Position{0, 2}));
    EXPECT_EQ(walk.at(12), (Position{1, 0}));
    EXPECT_EQ(walk.at(15), (Position{1, 2}));
    EXPECT_EQ(walk.at(0), (Position{0, 0}));
}

TEST(TextBuffer, TheParserCountsLineFeedsAlone) {
    const TextBuffer buffer("ab\rcd\nef\r\ngh");
    EXPECT_EQ(buffer.sourceOffset(1, 1), 0U);
    EXPECT_EQ(buffer.sourceOffset(1, 4), 3U);
    EXPECT_EQ(buffer.sourceOffset(2, 1), 6U);
    EXPECT_EQ(buffer.sourceOffset(2, 99), 9U);
    EXPECT_EQ(buffer.sourceOffset(3, 2), 11U);
    EXPECT_EQ(buffer.sourceOffset(9, 1), 12U);
    EXPECT_EQ(buffer.sourceOffset(0, 5), 0U);
    EXPECT_EQ(buffer.sourceOffset(2, -4), 6U);
}

TEST(TextBuffer, TheParserDoesNotCountAByteOrderMark) {
    const TextBuffer buffer("\xef\xbb\xbf$a\n$b");
    EXPECT_EQ(buffer.sourceOffset(1, 1), 3U);
    EXPECT_EQ(buffer.sourceOffset(2, 1), 6U);
}

TEST(TextBuffer, ReplacesARange) {
    TextBuffer buffer("one\ntwo\nthree");
    buffer.replace({4, 7}, "2\n2b");
    EXPECT_EQ(buffer.text(), "one\n2\n2b\nthree");
    EXPECT_EQ(buffer.lineCount(), 4U);
    EXPECT_EQ(buffer.line(2), (ByteRange{6, 8}));
    buffer.replace({0, buffer.text().size()}, "");
    EXPECT_EQ(buffer.lineCount(), 1U);
}

TEST(TextBuffer, CountsUnits) {
    EXPECT_EQ(unitCount(mixed(), utf16), 6U);
    EXPECT_EQ(unitCount(mixed(), utf8), 11U);
}

} // namespace
