#include "taskdsl/generate/yaml_section.h"

#include "fixtures/faults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::StartsWith;

YamlSection readSection(const std::string& text, const std::string& path = "t.mq", std::size_t firstLine = 1) {
    return readYamlSection(text, path, firstLine);
}

TEST(YamlSection, ScalarsAndInnerMappingsAreSettings) {
    const std::pair<const char*, ValueMap> rows[] = {
        {"a: 1", {{"a", "1"}}},
        {"a: 'x # y'\nb: \"t\\tu\"", {{"a", "x # y"}, {"b", "t\tu"}}},
        {"a: 007\nb: true\nc: 1e3", {{"a", "007"}, {"b", "true"}, {"c", "1e3"}}}, // texts as written
        {"a:\n  b: 1\n  c: {d: 2}\n", {{"a.b", "1"}, {"a.c.d", "2"}}},
        {"a: |\n  one\n  two\n", {{"a", "one\ntwo\n"}}},
        {"a: ''", {{"a", ""}}},
        {"1: x\n'b c': y", {{"1", "x"}, {"b c", "y"}}},
        {"a:\nb: ~\nc: {d: , e: 1}", {{"c.e", "1"}}}, // null says nothing
        {"a: {b: [1, 2], c: 3}", {{"a.c", "3"}}},     // nor does a sequence inside a mapping
        {"x: &x {k: 1}\ny: *x", {{"x.k", "1"}, {"y.k", "1"}}},
        {"", {}},
        {"# nothing\n", {}},
        // Lines of a key and a word, which need no YAML library, say what YAML says of them.
        {"a: 8\n\nb.c: B3LYP/def2-TZVP+x_1\n", {{"a", "8"}, {"b.c", "B3LYP/def2-TZVP+x_1"}}},
        {"a: 1\na: 2\n", {{"a", "2"}}},
        {"a: null\nb: Null\nc: nullable\n", {{"c", "nullable"}}},
        {"a: one\n  two\n", {{"a", "one two"}}},
        {"a: 1 # note\nb:  2 \n", {{"a", "1"}, {"b", "2"}}},
    };
    for (const auto& [text, settings] : rows) {
        const auto section = readSection(text);
        EXPECT_EQ(section.settings, settings) << text;
        EXPECT_THAT(section.collections, IsEmpty()) << text;
    }
}

TEST(YamlSection, ASequenceIsACollectionWithItsPositions) {
    const auto section =
        readSection("mols:\n  - water\n  - name: oh\n    at: {x: 1}\n  -\n  - [1]\n  - last\nnone: []\n");
    EXPECT_THAT(section.settings, IsEmpty());
    EXPECT_THAT(section.collections,
                ElementsAre(Pair("mols", ElementsAre(ValueMap{{"index", "1"}, {"value", "water"}},
                                                     ValueMap{{"index", "2"}, {"name", "oh"}, {"at.x", "1"}},
                                                     ValueMap{{"index", "5"}, {"value", "last"}})),
                            Pair("none", IsEmpty())));
}

TEST(YamlSection, FaultsHaveTheLineOfTheFile) {
    const auto fault = [](const std::string& text, const std::string& path, std::size_t firstLine) {
        return messageOf([&] { (void)readSection(text, path, firstLine); });
    };
    EXPECT_EQ(fault("a: 1\nb: [1\n", "t.mq", 10),
              "failed to parse YAML prelude in 't.mq': yaml-cpp: error at "
              "line 12, column 1: end of sequence flow not found");
    EXPECT_THAT(fault("a: 'x", "", 1), StartsWith("failed to parse YAML prelude in '<memory>': "));
    EXPECT_THAT(fault("a: *none", "t.mq", 1), StartsWith("failed to parse YAML prelude in 't.mq': "));
    EXPECT_EQ(fault("- a\n", "t.mq", 1), "structured prelude must be a YAML mapping");
    EXPECT_EQ(fault("text", "t.mq", 1), "structured prelude must be a YAML mapping");
}

TEST(YamlSection, MappingsNestAHundredDeepAtMost) {
    const auto nested = [](int depth) {
        std::string text = "a: ";
        for (int i = 0; i < depth; ++i) {
            text += "{k: ";
        }
        return text + "1" + std::string(static_cast<std::size_t>(depth), '}');
    };
    EXPECT_EQ(messageOf([&] { (void)readSection(nested(100)); }), "no fault");
    EXPECT_EQ(messageOf([&] { (void)readSection(nested(101)); }),
              "failed to parse YAML prelude in 't.mq': mappings are nested more than 100 deep");
}

} // namespace
} // namespace morquill::taskdsl
