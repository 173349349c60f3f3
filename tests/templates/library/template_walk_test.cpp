#include "templates/library/template_walk.h"

#include "fixtures/scratch_tree.h"

#include <stdexcept>

namespace morquill::templates {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class TemplateWalk : public ScratchTree {
  protected:
    /// "<path below the start> | <stem> <extension> <folder>" of every file.
    std::vector<std::string> walked(const std::string& below = "") {
        std::vector<std::string> files;
        walkRegularFiles(at(below), [&](const FoundFile& file) {
            files.push_back(file.path.substr(at(below).size() + 1) + " | " + file.stem + " " +
                            file.extension + " " + file.folder);
        });
        return files;
    }
};

TEST_F(TemplateWalk, VisitsRegularFilesAtAnyDepthWithTheirParts) {
    write("opt.mq");
    write("dft/b.v2.mq");
    write("dft/deep/.hidden");
    write("dft/none");
    dir("empty");
    EXPECT_THAT(walked(), UnorderedElementsAre("opt.mq | opt .mq ", "dft/b.v2.mq | b.v2 .mq dft",
                                               "dft/deep/.hidden | .hidden  deep", "dft/none | none  dft"));
}

TEST_F(TemplateWalk, FollowsLinksToFilesAndNotToDirectories) {
    write("outside/a.mq");
    write("tree/t.mq");
    link("../outside/a.mq", "tree/file.mq");
    link("../outside", "tree/dir");
    link(".", "tree/loop");
    link("nowhere", "tree/dangling.mq");
    EXPECT_THAT(walked("tree"), UnorderedElementsAre("t.mq | t .mq ", "file.mq | file .mq "));
}

TEST_F(TemplateWalk, PassesOverWhatItCannotRead) {
    write("a.mq");
    write("closed/b.mq");
    write("open/c.mq");
    mode("closed", 0);
    {
        const Unprivileged nobody;
        EXPECT_THAT(walked(), UnorderedElementsAre("a.mq | a .mq ", "open/c.mq | c .mq open"));
    }
    EXPECT_THAT(walked("missing"), IsEmpty());
    EXPECT_THAT(walked("a.mq"), IsEmpty());
}

TEST(QuotedPath, ProtectsQuotesAndBackslashes) {
    EXPECT_EQ(quotedPath(""), "\"\"");
    EXPECT_EQ(quotedPath("a b/c"), "\"a b/c\"");
    EXPECT_EQ(quotedPath(R"(a"b\c)"), R"("a\"b\\c")");
}

TEST_F(TemplateWalk, AFileThatCannotBeLoadedIsReportedAndTheOthersGoOn) {
    for (const char* name : {"a.yaml", "b.yml", "c.mq", "d.YAML"}) {
        write(name);
    }
    std::vector<std::string> loaded;
    const Output output = run("", [&] {
        loadFiles(at(""), {".yaml", ".yml"}, "list", [&](const FoundFile& file) {
            loaded.push_back(file.stem);
            if (file.stem == "a") {
                throw std::runtime_error("no list");
            }
        });
        return 0;
    });
    EXPECT_THAT(loaded, UnorderedElementsAre("a", "b"));
    EXPECT_THAT(output.err, ::testing::StartsWith("[mqkit][ERROR] failed to load list \""));
    EXPECT_THAT(output.err, ::testing::EndsWith("a.yaml\": no list\n"));
}

} // namespace
} // namespace morquill::templates
