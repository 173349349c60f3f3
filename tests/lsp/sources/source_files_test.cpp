#include "lsp/sources/source_files.h"

#include "fixtures/temporary_directory.h"
#include "lsp/base/uri.h"

#include <set>

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

struct SourceFilesTest : testing::Test {
    std::set<std::string> names(const std::vector<const SourceFile*>& files) const {
        std::set<std::string> found;
        for (const auto* file : files) {
            found.insert(file->path.substr(directory.root().size() + 1));
        }
        return found;
    }
    const OpenText& open(const std::string& name, const std::string& text) {
        return store.open(uriOfPath(directory.path(name)), 1, text);
    }

    TemporaryDirectory directory;
    TextStore store;
    Workspace workspace;
    SourceFiles sources{store, workspace};
};

using Names = std::set<std::string>;

TEST_F(SourceFilesTest, FollowIncludesAndExtraFiles) {
    directory.write("b.mq", "$b\n&INCLUDE \"sub/c.mq\"\n");
    directory.write("sub/c.mq", "$c\n&INCLUDE ../b.mq\n");
    directory.write("extra.mq", "$e\n");
    directory.write("l.mqlib", "&INCLUDE \"m.mqlib\" as m\n&FRAGMENT control x\n");
    const auto& root =
        sources.of(open("a.mq", "&INCLUDE \"l.mqlib\" as l\n$a\n&INCLUDE b.mq\n&INCLUDE gone.mq\n"));
    EXPECT_EQ(names(sources.closure(root)), (Names{"a.mq", "b.mq", "sub/c.mq", "extra.mq", "l.mqlib"}));
}

TEST_F(SourceFilesTest, AFileBelongsToTheDocumentsThatLeadToIt) {
    directory.write("known.mq", "$k\n&INCLUDE b.mq\n");
    directory.write("other.mq", "$o\n");
    const auto& b = sources.of(open("b.mq", "$b\n"));
    EXPECT_EQ(names(sources.documentFiles(b)), (Names{"b.mq"}));
    open("a.mq", "$a\n&INCLUDE b.mq\n");
    workspace.setFolders({directory.root()}, PositionUnit::utf16);
    while (workspace.step()) {
    }
    EXPECT_EQ(names(sources.documentFiles(b)), (Names{"a.mq", "b.mq", "known.mq"}));
}

TEST_F(SourceFilesTest, TheUnsavedTextCounts) {
    const auto path = directory.write("a.mq", "$disk\n");
    EXPECT_EQ(sources.ofPath(path)->text(), "$disk\n");
    open("a.mq", "$open\n");
    EXPECT_EQ(sources.ofPath(path)->text(), "$open\n");
    EXPECT_EQ(sources.ofPath(directory.path("gone.mq")), nullptr);
    EXPECT_EQ(sources.ofPath(""), nullptr);
}

TEST_F(SourceFilesTest, DefinitionsAreFoundByName) {
    const auto& file = sources.of(open("a.mq", "define:\n  x: 1\n$x\n  %source x\n"));
    EXPECT_EQ(file.definitions.count("x"), 2U);
    EXPECT_EQ(file.definitions.count("y"), 0U);
}

} // namespace
