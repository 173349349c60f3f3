#include "project/cases/target.h"

#include "fixtures/scratch_tree.h"
#include "support/paths.h"

#include <sys/stat.h>

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Target : public ScratchTree {
  protected:
    /// proj/demo.projmq with the cases mol1 (a link) and mol2 (a stub), one block each.
    void makeProject() const {
        write("proj/demo.projmq");
        write("proj/mol1/mol1.xyz");
        link("../demo.projmq", "proj/mol1/mol1.mq");
        write("proj/mol1/opt/comd");
        write("proj/mol2/mol2.mq");
        write("proj/mol2/opt/pre_comd");
    }

    /// "project <root> <file>", "case <dir> <file>" or the message; paths without the scratch directory.
    [[nodiscard]] std::string target(const std::string& path) const {
        const auto found = resolveTarget(path);
        if (!found) {
            return shorten(found.error());
        }
        return shorten(found->kind == TargetKind::Case
                           ? "case " + found->caseDir + " " + found->caseFile
                           : "project " + found->projectRoot + " " + found->projectFile);
    }
    [[nodiscard]] std::string projectTemplate(const std::string& path) const {
        const auto found = resolveProjectTemplate(path);
        return shorten(found ? found->root + " " + found->file : found.error());
    }
    [[nodiscard]] std::string shorten(std::string text) const {
        for (auto place = text.find(root); place != std::string::npos; place = text.find(root)) {
            text.replace(place, root.size(), "~");
        }
        return text;
    }
};

TEST_F(Target, TemplatesAreRegularFilesWithTheExactExtension) {
    for (const char* name :
         {"p/b.projmq", "p/a.projmq", "p/c.PROJMQ", "p/.projmq", "p/d.projmq.bak", "p/x/e.projmq"}) {
        write(name);
    }
    dir("p/dir.projmq");
    link("nowhere", "p/dangling.projmq");
    link("a.projmq", "p/link.projmq");
    ASSERT_EQ(::mkfifo(at("p/fifo.projmq").c_str(), 0600), 0);
    EXPECT_THAT(listProjectTemplates(at("p")),
                ElementsAre(at("p/a.projmq"), at("p/b.projmq"), at("p/link.projmq")));
    EXPECT_THAT(listProjectTemplates(at("p/a.projmq")), IsEmpty());
    EXPECT_THAT(listProjectTemplates(at("missing")), IsEmpty());
}

TEST_F(Target, CasesAreDirectoriesWithATaskFile) {
    for (const char* name : {"p/b/b.mq", "p/a/other.mq", "p/.git/x.mq", "p/empty/x.xyz", "p/hidden/.mq",
                             "p/upper/x.MQ", "p/file.mq", "p/-n $(x)\n\xff/c.mq", "p/deep/x/c.mq"}) {
        write(name);
    }
    dir("p/odd/dir.mq");
    link("gone", "p/dangling/c.mq");
    link("b", "p/linked");
    link("loop", "p/loop");
    EXPECT_THAT(listCaseDirectories(at("p")), ElementsAre(at("p/-n $(x)\n\xff"), at("p/a"), at("p/b"),
                                                          at("p/dangling"), at("p/linked"), at("p/odd")));
    EXPECT_THAT(listCaseDirectories(at("missing")), IsEmpty());
}

TEST_F(Target, ACaseComesWithItsFirstTaskFile) {
    for (const char* name : {"p/a/b.mq", "p/a/a.mq", "p/a/a.MQ", "p/both/.mq", "p/both/a.mq", "p/bare/.mq"}) {
        write(name);
    }
    std::vector<std::string> found;
    for (const auto& [directory, name] : listCaseFiles(at("p"))) {
        found.push_back(joinPath(directory, name));
    }
    EXPECT_THAT(found, ElementsAre(at("p/a/a.mq"), at("p/both/.mq")));
}

TEST_F(Target, AProjectIsFoundFromWithin) {
    makeProject();
    write("proj/mol1/notes.txt");
    const std::string proj = at("proj");
    for (const char* path :
         {"proj", "proj/", "proj/demo.projmq", "proj/mol1", "proj/mol1/mol1.mq", "proj/mol1/opt",
          "proj/mol1/notes.txt", "proj/mol1/opt/comd", "proj/not/there/yet"}) {
        EXPECT_EQ(findProjectDirectory(at(path)), proj) << path;
    }
    enter("proj/mol1/opt");
    EXPECT_EQ(findProjectDirectory(""), proj);
    EXPECT_EQ(findProjectDirectory(".."), proj);
}

TEST_F(Target, TheClimbToAProjectEndsAfterSixLevels) {
    write("p/demo.projmq");
    dir("p/1/2/3/4/5/6");
    EXPECT_EQ(findProjectDirectory(at("p/1/2/3/4/5")), at("p"));
    EXPECT_EQ(findProjectDirectory(at("p/1/2/3/4/5/6")), at("p/1/2/3/4/5/6"));
    write("p/1/2/3/4/5/file");
    EXPECT_EQ(findProjectDirectory(at("p/1/2/3/4/5/file")), at("p"));
    EXPECT_EQ(findProjectDirectory("/"), "/");
}

TEST_F(Target, AFileOfACaseLeadsPastATemplateInTheCaseItself) {
    makeProject();
    write("proj/mol2/own.projmq");
    EXPECT_EQ(findProjectDirectory(at("proj/mol2/mol2.mq")), at("proj"));
    EXPECT_EQ(findProjectDirectory(at("proj/mol2")), at("proj/mol2"));
    EXPECT_EQ(findProjectDirectory(at("proj/mol2/own.projmq")), at("proj/mol2"));
}

TEST_F(Target, ACaseIsKnownByItsTaskFileStatusOrResults) {
    write("a/x.mq");
    write("b/mq.status");
    dir("c/Results");
    dir("d/.morq/store");
    dir("e/.morq/cache");
    dir("f/dir.mq");
    link("gone", "g/x.mq");
    for (const char* name : {"a", "b", "c", "d", "g"}) {
        dir(std::string(name) + "/sub/deep");
        EXPECT_EQ(findCaseDirectory(at(name)), at(name));
        EXPECT_EQ(findCaseDirectory(at(name) + "/sub/deep"), at(name));
    }
    EXPECT_EQ(findCaseDirectory(at("e")), at("e"));
    dir("e/sub");
    EXPECT_EQ(findCaseDirectory(at("e/sub")), at("e/sub"));
    dir("f/sub");
    EXPECT_EQ(findCaseDirectory(at("f/sub")), at("f/sub"));
    EXPECT_EQ(findCaseDirectory(at("a/x.mq")), at("a"));
    EXPECT_EQ(findCaseDirectory(at("a/missing")), at("a"));
}

TEST_F(Target, TheClimbToACaseEndsAfterFourLevelsOrAtABlocksParent) {
    write("mol/mol.mq");
    write("mol/opt/.morq.result.kv");
    dir("mol/opt/1/2/3/4");
    dir("mol/other/1/2/3");
    EXPECT_EQ(findCaseDirectory(at("mol/other/1/2")), at("mol"));
    EXPECT_EQ(findCaseDirectory(at("mol/other/1/2/3")), at("mol/other/1/2/3"));
    EXPECT_EQ(findCaseDirectory(at("mol/opt/1/2/3")), at("mol"));
    EXPECT_EQ(findCaseDirectory(at("mol/opt/1/2/3/4")), at("mol/opt/1/2/3/4"));
}

TEST_F(Target, AnExplicitPathLeadsToTheTemplate) {
    makeProject();
    for (const char* path : {"proj", "proj/demo.projmq", "proj/mol1/opt", "./proj/../proj/", "proj/none"}) {
        EXPECT_EQ(projectTemplate(path), "~/proj ~/proj/demo.projmq") << path;
    }
    EXPECT_EQ(projectTemplate("missing.projmq"),
              "could not resolve a .projmq project template from path: ~/missing.projmq");
    dir("d.projmq");
    EXPECT_EQ(projectTemplate("d.projmq"),
              "could not resolve a .projmq project template from path: ~/d.projmq");
    write("proj/other.projmq");
    EXPECT_EQ(projectTemplate("proj/mol1"),
              "multiple .projmq files were found in the project directory; specify one explicitly: "
              "~/proj");
    EXPECT_EQ(projectTemplate("proj/other.projmq"), "~/proj ~/proj/other.projmq");
}

TEST_F(Target, WithoutAPathTheCurrentDirectoryIsAsked) {
    makeProject();
    enter("proj");
    EXPECT_EQ(projectTemplate(""), "~/proj ~/proj/demo.projmq");
    enter("proj/empty");
    EXPECT_EQ(projectTemplate(""), "~/proj ~/proj/demo.projmq");
    EXPECT_EQ(target(""), "project ~/proj ~/proj/demo.projmq");
    write("proj/other.projmq");
    EXPECT_EQ(projectTemplate(""),
              "multiple .projmq files were found in the enclosing project directory; specify one "
              "explicitly: ~/proj");
    enter("proj");
    EXPECT_EQ(projectTemplate(""), "multiple .projmq files were found in the current directory; "
                                   "specify one explicitly.");
    enter("1/2/3/4/5/6/7");
    EXPECT_EQ(projectTemplate(""), "no .projmq file was found in the current directory or enclosing "
                                   "project; use --path or <xxx.projmq>.");
    EXPECT_EQ(target(""), projectTemplate(""));
}

TEST_F(Target, UpdateAndRebuildTakeACaseBeforeAProject) {
    makeProject();
    EXPECT_EQ(target("proj"), "project ~/proj ~/proj/demo.projmq");
    EXPECT_EQ(target("proj/demo.projmq"), "project ~/proj ~/proj/demo.projmq");
    EXPECT_EQ(target("proj/mol1"), "case ~/proj/mol1 ~/proj/mol1/mol1.mq");
    EXPECT_EQ(target("proj/mol1/opt"), "case ~/proj/mol1 ~/proj/mol1/mol1.mq");
    EXPECT_EQ(target("proj/mol1/mol1.mq"), "case ~/proj/mol1 ~/proj/mol1/mol1.mq");
    EXPECT_EQ(target("proj/mol1/mol1.xyz"), "case ~/proj/mol1 ~/proj/mol1/mol1.mq");
    write("proj/stray.mq");
    EXPECT_EQ(target("proj"), "case ~/proj ~/proj/stray.mq");
    write("proj/mol1/second.mq");
    EXPECT_EQ(target("proj/mol1/opt"), "multiple .mq files were found in the case directory; specify "
                                       "one explicitly: ~/proj/mol1");
    EXPECT_EQ(target("proj/mol1/second.mq"), "case ~/proj/mol1 ~/proj/mol1/second.mq");
}

TEST_F(Target, ACaseWithoutATaskFileGivesWayToTheProject) {
    makeProject();
    write("proj/bare/mq.status");
    EXPECT_EQ(target("proj/bare"), "project ~/proj ~/proj/demo.projmq");
    write("proj/other.projmq");
    EXPECT_EQ(target("proj/bare"), "multiple .projmq files were found in the project directory; "
                                   "specify one explicitly: ~/proj");
    EXPECT_EQ(target("nothing"), "could not resolve a .projmq project template or case .mq file from "
                                 "path: ~/nothing");
}

TEST_F(Target, WhatMayNotBeReadHoldsNothing) {
    makeProject();
    write("proj/closed/closed.mq");
    mode("proj/closed", 0);
    {
        const Unprivileged user;
        EXPECT_THAT(listCaseDirectories(at("proj")), ElementsAre(at("proj/mol1"), at("proj/mol2")));
        EXPECT_EQ(target("proj/closed"), "project ~/proj ~/proj/demo.projmq");
        EXPECT_EQ(target("proj/closed/closed.mq"), "project ~/proj ~/proj/demo.projmq");
    }
    mode("proj/closed", 0755);
    mode("proj", 0111); // may be passed through, not listed
    {
        const Unprivileged user;
        EXPECT_THAT(listCaseDirectories(at("proj")), IsEmpty());
        EXPECT_EQ(target("proj/demo.projmq"), "project ~/proj ~/proj/demo.projmq");
        EXPECT_EQ(target("proj/mol1"), "case ~/proj/mol1 ~/proj/mol1/mol1.mq");
    }
    mode("proj", 0755);
}

TEST_F(Target, NamesOfAnyBytesResolve) {
    write("-p 'q\"\n\xff/a b.projmq");
    write("-p 'q\"\n\xff/m $(x)/m.mq");
    EXPECT_EQ(target("-p 'q\"\n\xff"), "project ~/-p 'q\"\n\xff ~/-p 'q\"\n\xff/a b.projmq");
    EXPECT_EQ(target("-p 'q\"\n\xff/m $(x)"), "case ~/-p 'q\"\n\xff/m $(x) ~/-p 'q\"\n\xff/m $(x)/m.mq");
    const std::string endless(1 << 20, 'x');
    EXPECT_EQ(target(endless), "could not resolve a .projmq project template or case .mq file from "
                               "path: ~/" +
                                   endless);
}

} // namespace
} // namespace morquill::project
