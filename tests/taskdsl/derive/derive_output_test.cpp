#include "taskdsl/derive/derive_output.h"

#include "fixtures/derive_fixture.h"
#include "support/directory.h"
#include "support/file.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

TEST(DeriveOutput, EveryLineBeginsWithTheIndent) {
    const auto spec = parseDerive(blockOf("let a = 1\nemit a", "energies"));
    EXPECT_EQ(renderDerive(spec, ""), "@derive energies\n  let a = 1\n  emit a = a\n@end\n");
    EXPECT_EQ(renderDerive(spec, "    "),
              "    @derive energies\n      let a = 1\n      emit a = a\n    @end\n");
}

TEST(DeriveOutput, TextsAreQuotedAndNamesAreNot) {
    DeriveSpec spec;
    spec.name = "d";
    const auto value = plot::parsePlotExpression("a", {});
    spec.statements = {
        ReportStatement{"plain", value, {}},
        ReportStatement{"a\"\\\n\t\r", value, {}},
        EmitScalarStatement{"n", value, "", {}},
        EmitTableStatement{"t", DeriveSinkFormat::none, "not printed", {}},
        EmitKvStatement{"p", "", value, {}},
        EmitArtifactStatement{"p", "q", value, {}},
        FromStatement{DerivedTableSource{"my run", "t"}, {}},
        JoinStatement{"s p", "b", "atom.id", {}},
    };
    EXPECT_EQ(renderDerive(spec, ""), "@derive d\n"
                                      "  report \"plain\" = a\n"
                                      "  report \"a\\\"\\\\\\n\\t\\r\" = a\n"
                                      "  emit n = a\n"
                                      "  emit table t\n"
                                      "  emit kv \"p\" from a\n"
                                      "  emit artifact \"p\" from a as q\n"
                                      "  from derived(\"my run.t\")\n"
                                      "  join atoms(\"s p\") as b on atom.id\n"
                                      "@end\n");
}

/// A `@derive` block in a text.
struct WrittenBlock {
    CapturedBlock block;
    std::string text; ///< header to end
};

std::vector<WrittenBlock> blocksOf(const std::string& path) {
    const std::string text = readTextFile(path).value_or("");
    EXPECT_FALSE(text.empty()) << path;
    std::vector<WrittenBlock> blocks;
    bool inside = false;
    std::uint32_t number = 0;
    for (const auto line : splitLines(text)) {
        ++number;
        if (line.starts_with("@derive ")) {
            blocks.push_back({{std::string(line.substr(8)), spanOfLine(path, number, line), {}}, ""});
            inside = true;
        } else if (inside && line != "@end") {
            blocks.back().block.lines.push_back({std::string(line), path, number});
        }
        if (inside) {
            blocks.back().text += std::string(line) + '\n';
            inside = line != "@end";
        }
    }
    return blocks;
}

TEST(DeriveOutput, ExamplesAreCanonical) {
    std::size_t blocks = 0;
    for (const auto& name : listDirectoryEntries("examples/derive")) {
        for (const auto& [block, text] : blocksOf("examples/derive/" + name)) {
            const auto [print, warnings] = printed(parseDerive(block));
            EXPECT_EQ(print, text) << name;
            EXPECT_EQ(warnings.size(), 0U) << name;
            ++blocks;
        }
    }
    EXPECT_EQ(blocks, 5U);
}

} // namespace
} // namespace morquill::taskdsl::derive
