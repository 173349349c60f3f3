#include "lsp/sources/resolve.h"

#include "fixtures/temporary_directory.h"
#include "lsp/base/uri.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

/// Texts in which the names under test stand between `<` and `>`.
struct ResolveTest : testing::Test {
    const SourceFile& open(const std::string& name, std::string text) {
        return sources.of(store.open(uriOfPath(directory.path(name)), 1, std::move(text)));
    }
    /// The places as "<file>:<line>:<byte>", joined by one blank.
    std::string print(const std::vector<Place>& places) const {
        std::string printed;
        for (const auto& place : places) {
            PositionWalk walk(*place.file->buffer, PositionUnit::utf8);
            const auto at = walk.at(place.get().begin);
            printed += (printed.empty() ? "" : " ") + place.file->path.substr(directory.root().size() + 1) +
                       ":" + std::to_string(at.line) + ":" + std::to_string(at.character);
        }
        return printed;
    }
    /// Definitions and references of the first name that stands behind `before`.
    std::string meaning(const SourceFile& file, std::string_view before) {
        const auto place = placeAt(file, file.text().find(before) + before.size());
        if (!place) {
            return "none";
        }
        const Resolver resolver(sources, file);
        const auto definitions = resolver.definitions(*place);
        return print(definitions) + " | " + print(resolver.references(definitions));
    }

    TemporaryDirectory directory;
    TextStore store;
    Workspace workspace;
    SourceFiles sources{store, workspace};
};

TEST_F(ResolveTest, Tasks) {
    const auto& file = open("a.mq", "$opt\n"
                                    "  %keywords \"opt\"\n"
                                    "$freq\n"
                                    "  %source opt\n"
                                    "  %control\n"
                                    "    guess opt\n"
                                    "  %when completed opt and {{ opt.energy }} < 0\n"
                                    "@plot barrier opt\n"
                                    "  from task opt\n"
                                    "@end\n");
    const std::string all = "a.mq:0:1 | a.mq:0:1 a.mq:3:10 a.mq:5:10 a.mq:6:18 a.mq:6:29 a.mq:8:12";
    EXPECT_EQ(meaning(file, "$"), all);
    EXPECT_EQ(meaning(file, "%source "), all);
    EXPECT_EQ(meaning(file, "from task "), all);
    EXPECT_EQ(meaning(file, "%keywords \""), " | ");
    EXPECT_EQ(meaning(file, "@plot barrier "), "a.mq:7:14 | a.mq:7:14");
}

TEST_F(ResolveTest, TasksOfIncludedFiles) {
    directory.write("b.mq", "$b\n  %source a\n");
    directory.write("extra.mq", "$pre\n");
    const auto& file = open("a.mq", "$a\n  %source pre\n&INCLUDE b.mq\n$c\n  %source b\n");
    EXPECT_EQ(meaning(file, "$"), "a.mq:0:1 | a.mq:0:1 b.mq:1:10");
    EXPECT_EQ(meaning(file, "%source "), "extra.mq:0:1 | a.mq:1:10 extra.mq:0:1");
    EXPECT_EQ(meaning(*sources.ofPath(directory.path("b.mq")), "$"), "b.mq:0:1 | b.mq:0:1 a.mq:4:10");
}

TEST_F(ResolveTest, PatternsAndTemplates) {
    const auto& file = open("a.mq", "@foreach i in series(1-2)\n$p_[i.value]\n@end\n$px\n"
                                    "$q\n  %source p_1\n  %when completed p*\n");
    EXPECT_EQ(meaning(file, "%source "), "a.mq:1:1 | a.mq:1:1");
    EXPECT_EQ(meaning(file, "completed "), "a.mq:1:1 a.mq:3:1 | a.mq:1:1");
    EXPECT_EQ(meaning(file, "$p_["), "a.mq:0:9 | a.mq:0:9 a.mq:1:4");
}

TEST_F(ResolveTest, Keys) {
    directory.write("values.yaml", "define:\n  y: 1\n");
    directory.write("b.mq", "define:\n  x: 2\n$b_[x]_[z]\n");
    const auto& file = open("a.mq", "&INCLUDE \"values.yaml\"\n"
                                    "define:\n"
                                    "  x: 1\n"
                                    "matrix:\n"
                                    "  - z: 1, 2\n"
                                    "  - w: 1, 2\n"
                                    "    map: z\n"
                                    "$a_[x]_[y]_[z]_[q]\n"
                                    "&INCLUDE b.mq\n");
    EXPECT_EQ(meaning(file, "define:\n  "), "a.mq:2:2 | a.mq:2:2 a.mq:7:4");
    EXPECT_EQ(meaning(file, "_["), "a.mq:2:2 | a.mq:2:2 a.mq:7:4");
    EXPECT_EQ(meaning(file, "]_["), "values.yaml:1:2 | a.mq:7:8 values.yaml:1:2");
    EXPECT_EQ(meaning(file, "map: "), "a.mq:4:4 | a.mq:4:4 a.mq:6:9 a.mq:7:12 b.mq:2:8");
    EXPECT_EQ(meaning(file, "[z]_["), " | ");
}

TEST_F(ResolveTest, FragmentsAndTheirParameters) {
    directory.write("l.mqlib", "&FRAGMENT task_body opt(m, b=[m])\n"
                               "  %keywords [m]/[b]\n"
                               "&FRAGMENT document d(m)\n"
                               "$x\n"
                               "&INCLUDE opt(m=[m])\n");
    const auto& file = open("a.mq", "&INCLUDE \"l.mqlib\" as lib\n$a\n  &INCLUDE lib.opt(m=hf)\n");
    EXPECT_EQ(meaning(file, "&INCLUDE lib."), "l.mqlib:0:20 | a.mq:2:15 l.mqlib:0:20 l.mqlib:4:9");
    EXPECT_EQ(meaning(file, "opt("),
              "l.mqlib:0:24 | a.mq:2:19 l.mqlib:0:24 l.mqlib:0:30 l.mqlib:1:13 l.mqlib:4:13");
    EXPECT_EQ(meaning(file, "  &INCLUDE "), "a.mq:0:22 | a.mq:0:22 a.mq:2:11");
}

TEST_F(ResolveTest, NamesOfADeriveAreItsOwn) {
    const auto& file = open("a.mq", "@derive d\n"
                                    "  let g = energy(a)\n"
                                    "  formula f(x) = 2 * x\n"
                                    "  emit g = f(g)\n"
                                    "@end\n"
                                    "@derive e\n"
                                    "  from derived(d.t)\n"
                                    "  select g = 1\n"
                                    "  emit table t\n"
                                    "@end\n"
                                    "@derive h\n"
                                    "  from derived(e.t)\n"
                                    "  emit table u\n"
                                    "@end\n");
    EXPECT_EQ(meaning(file, "let "), "a.mq:1:6 | a.mq:1:6 a.mq:3:13");
    EXPECT_EQ(meaning(file, "formula "), "a.mq:2:10 | a.mq:2:10 a.mq:3:11");
    EXPECT_EQ(meaning(file, "2 * "), "a.mq:2:12 | a.mq:2:12 a.mq:2:21");
    EXPECT_EQ(meaning(file, "derived("), "a.mq:0:8 | a.mq:0:8 a.mq:6:15");
    EXPECT_EQ(meaning(file, "derived(d."), " | ");
    EXPECT_EQ(meaning(file, "derived(e."), "a.mq:8:13 | a.mq:8:13 a.mq:11:17");
}

TEST_F(ResolveTest, Kinds) {
    EXPECT_EQ(kindClass(NameKind::axis), kindClass(NameKind::define));
    EXPECT_EQ(kindClass(NameKind::task), NameKind::task);
    EXPECT_TRUE(isPattern("a*"));
    EXPECT_FALSE(isPattern("a[x]"));
}

} // namespace
