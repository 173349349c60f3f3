#include "taskdsl/generate/define_block.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(DefineBlock, ReadsIndentedPairsUpToTheNextSection) {
    const auto lines = makeSourceLines("define:\n"
                                       "  a: 1 # one\n"
                                       "\n"
                                       "# a comment at the margin\n"
                                       "    b : \"two # 2\"\n"
                                       "  c:\n"
                                       "  no colon\n"
                                       "  : no key\n"
                                       "  a: 3:4\n"
                                       " d: one blank\n",
                                       "t.mq");
    const auto block = parseDefineBlock(lines, 1);
    EXPECT_EQ(block.value, (ValueMap{{"a", "3:4"}, {"b", "two # 2"}, {"c", ""}}));
    EXPECT_EQ(block.next, 9U);
}

TEST(DefineBlock, EndsAtATaskHeaderATabAndTheEnd) {
    const auto expectBlock = [](std::string_view text, const ValueMap& value, std::size_t next) {
        const auto block = parseDefineBlock(makeSourceLines(text, "t.mq"), 0);
        EXPECT_EQ(block.value, value) << text;
        EXPECT_EQ(block.next, next) << text;
    };
    expectBlock("  a: 1\n  $x: 2\n", {{"a", "1"}}, 1);
    expectBlock("\t\ta: 1\n", {}, 0);
    expectBlock("  a: 1\n", {{"a", "1"}}, 1);
    expectBlock("", {}, 0);
}

TEST(DefineBlock, ReadsWhatTheWriterQuotes) {
    EXPECT_EQ(parseDefineBlock(makeSourceLines(R"(  a: "x\t\"y\"\n\\")", "t.mq"), 0).value,
              (ValueMap{{"a", "x\t\"y\"\n\\"}}));
}

TEST(ReservedKeys, AreTheNamesThemselvesAndWithDotsOrDigits) {
    for (const char* name : {"geom", "xyz_file", "charge", "spin", "uhf", "source", "atom_count"}) {
        const std::string key = name;
        EXPECT_TRUE(isReservedKey(key)) << key;
        EXPECT_TRUE(isReservedKey(key + ".x")) << key;
        EXPECT_TRUE(isReservedKey(key + ".")) << key;
        EXPECT_TRUE(isReservedKey(key + "12")) << key;
        EXPECT_FALSE(isReservedKey(key + "1x")) << key;
        EXPECT_FALSE(isReservedKey(key + "_x")) << key;
        EXPECT_FALSE(isReservedKey("x" + key)) << key;
    }
    EXPECT_FALSE(isReservedKey("Charge"));
    EXPECT_FALSE(isReservedKey(""));
}

TEST(MergeDefines, OverridesOrKeeps) {
    TaskDocument document;
    mergeDefines(document, {{"a", "1"}, {"b", "2"}}, NameClash::takeNew);
    mergeDefines(document, {{"b", "3"}, {"c", "4"}}, NameClash::keepOld);
    EXPECT_EQ(document.defines, (ValueMap{{"a", "1"}, {"b", "2"}, {"c", "4"}}));
    mergeDefines(document, {{"b", "5"}}, NameClash::takeNew);
    EXPECT_EQ(document.defines, (ValueMap{{"a", "1"}, {"b", "5"}, {"c", "4"}}));
}

TEST(MergeDefines, RefusesReservedKeys) {
    TaskDocument document;
    EXPECT_EQ(messageOf([&] {
                  mergeDefines(document, {{"charge2", "1"}}, NameClash::keepOld);
              }),
              "define key 'charge2' is reserved for runtime %source placeholders");
}

} // namespace
} // namespace morquill::taskdsl
