#include "lsp/sources/workspace.h"

#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

struct WorkspaceTest : testing::Test {
    void walk() {
        workspace.setFolders({directory.root()}, PositionUnit::utf16);
        while (workspace.step()) {
        }
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& [path, file] : workspace.files()) {
            found.push_back(path.substr(directory.root().size() + 1));
        }
        return found;
    }

    TemporaryDirectory directory;
    Workspace workspace;
};

using testing::ElementsAre;

TEST_F(WorkspaceTest, FindsSourcesAndPassesOverWhatHoldsNone) {
    for (const auto* file :
         {"a.mq", "sub/b.mqlib", "sub/notes.txt", "Results/c.mq", ".morq/d.mq", ".git/e.mq", "p/p.projmq",
          "p/case/case.mq", "p/case/opt/opt.mq", "p/extra.yaml", "p/other.yaml"}) {
        directory.write(file, "$x\n");
    }
    walk();
    EXPECT_THAT(names(), ElementsAre("a.mq", "p/case/case.mq", "p/extra.yaml", "p/p.projmq", "sub/b.mqlib"));
}

TEST_F(WorkspaceTest, TheCaseOfAnEndingMeansNothing) {
    directory.write("A.MQ", "$x\n");
    directory.write("L.MqLib", "&FRAGMENT control c\n");
    directory.write("x.mq.txt", "$x\n");
    walk();
    EXPECT_THAT(names(), ElementsAre("A.MQ", "L.MqLib"));
}

TEST_F(WorkspaceTest, FollowsNoLinks) {
    directory.write("a.mq", "$x\n");
    std::filesystem::create_symlink("a.mq", directory.path("b.mq"));
    std::filesystem::create_directory_symlink(".", directory.path("loop"));
    walk();
    EXPECT_THAT(names(), ElementsAre("a.mq"));
}

TEST_F(WorkspaceTest, KnowsWhoIncludesAFile) {
    directory.write("a.mq", "$x\n&INCLUDE sub/b.mq\n");
    directory.write("sub/b.mq", "$x\n&INCLUDE \"../l.mqlib\" as l\n");
    directory.write("l.mqlib", "&FRAGMENT control c\n");
    walk();
    EXPECT_THAT(workspace.includersOf(directory.path("l.mqlib")),
                ElementsAre(directory.path("sub/b.mq"), directory.path("a.mq")));
    EXPECT_THAT(workspace.includersOf(directory.path("extra.mq")), ElementsAre(directory.path("a.mq")));
    directory.write("sub/b.mq", "$x\n");
    workspace.refresh(directory.path("sub/b.mq"));
    EXPECT_THAT(workspace.includersOf(directory.path("l.mqlib")), ElementsAre());
    std::filesystem::remove(directory.path("sub/b.mq"));
    workspace.refresh(directory.path("sub/b.mq"));
    EXPECT_THAT(names(), ElementsAre("a.mq", "l.mqlib"));
}

TEST_F(WorkspaceTest, KeepsTheNames) {
    directory.write("a.mq", "define:\n  d: 1\n$\xf0\x9d\x84\x9e\n");
    walk();
    const auto& symbols = workspace.files().begin()->second.symbols;
    ASSERT_EQ(symbols.size(), 2U);
    EXPECT_EQ(symbols[0].name, "d");
    EXPECT_EQ(symbols[0].kind, NameKind::define);
    EXPECT_EQ(symbols[1].end, (Position{2, 3}));
}

TEST_F(WorkspaceTest, GoesPieceByPiece) {
    EXPECT_TRUE(workspace.isDone());
    workspace.setFolders({directory.root()}, PositionUnit::utf16);
    EXPECT_FALSE(workspace.isDone());
    EXPECT_FALSE(workspace.step());
    EXPECT_TRUE(workspace.isDone());
    workspace.setFolders({directory.path("gone")}, PositionUnit::utf16);
    EXPECT_FALSE(workspace.step());
}

} // namespace
