// What a renamed block left on disk, place by place.

#include "project/rename/rename_files.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

class RenameFiles : public ScratchTree {
  protected:
    RenameReport report;
    const RenamedBlock block{"opt", "sp"};
    const RenamedBlock toNew{"opt", "new"};
};

TEST_F(RenameFiles, TheBlockDirectoryAndWhatIsNamedAfterItInside) {
    write("m1/opt/opt_m1.log", "1");
    write("m1/opt/deep/opt_b/x", "2");
    write("m1/opt/opt.txt", "3");
    write("m1/soc/opt_m1.log", "4");
    renameBlockArtifacts(at("m1"), "m1", block, report);
    EXPECT_THAT(report.errors, ElementsAre());
    EXPECT_EQ(report.directoriesRenamed, 1);
    EXPECT_EQ(report.filesRenamed, 2);
    EXPECT_THAT(tree("m1"), ElementsAre("soc/", "soc/opt_m1.log = 4", "sp/", "sp/deep/", "sp/deep/sp_b/",
                                        "sp/deep/sp_b/x = 2", "sp/opt.txt = 3", "sp/sp_m1.log = 1"));
}

TEST_F(RenameFiles, ANameThatWouldBeTooLongIsFoundBeforehand) {
    const RenamedBlock longer{"opt", "opt1234"};
    const auto name = [](const std::string& start, std::size_t size) {
        return start + std::string(size - start.size(), 'x');
    };
    write("m1/opt/a/" + name("opt_", 251)); // 255 bytes with four more
    write("m1/opt/a/" + name("x_opt_", 255));
    write("m1/.morq/store/records/" + name("opt_m2", 252)); // of another case
    write("m1/.morq/store/records/deep/" + name("opt_m1", 252));
    EXPECT_EQ(findOverlongName(at("m1"), "m1", longer), std::nullopt);
    const auto record = "m1/.morq/store/revisions/deep/" + name("opt_m1", 252);
    write(record);
    EXPECT_EQ(findOverlongName(at("m1"), "m1", longer), at(record));
    EXPECT_EQ(findOverlongName(at("m1"), "m1", {"opt", "sp"}), std::nullopt);
    const auto file = "m1/opt/a/" + name("opt_", 252);
    write(file);
    EXPECT_EQ(findOverlongName(at("m1"), "m1", longer), at(file));
    EXPECT_EQ(findOverlongName(at("none"), "m1", longer), std::nullopt);
}

TEST_F(RenameFiles, DerivedTreesHaveFilesOfThatBlockAndCase) {
    struct Row {
        const char* path;
        const char* after;
    };
    const Row rows[] = {
        {".morq/cache/snapshots/opt_m1.json", ".morq/cache/snapshots/sp_m1.json"},
        {".morq/store/records/opt_m1_2", ".morq/store/records/sp_m1_2"},
        {".morq/run/db-queue/opt_m1", ".morq/run/db-queue/sp_m1"},
        {".morq/store/revisions/a/b/opt_m1", ".morq/store/revisions/a/b/sp_m1"},
        {"Results/DB/snapshots/opt_m1", "Results/DB/snapshots/sp_m1"},
        {"Results/DB/records/opt_m1", "Results/DB/records/sp_m1"},
        {"Results/DB/queue/opt_m1", "Results/DB/queue/sp_m1"},
        {"Results/DB/revisions/a/opt_m1", "Results/DB/revisions/a/sp_m1"},
        // Of another case, too deep, or in no such tree.
        {".morq/store/records/opt_m2", ".morq/store/records/opt_m2"},
        {".morq/store/records/deep/opt_m1", ".morq/store/records/deep/opt_m1"},
        {"Results/opt_m1", "Results/opt_m1"},
        {".morq/store/objects/opt_m1", ".morq/store/objects/opt_m1"},
    };
    for (const auto& row : rows) {
        write("m1/" + std::string(row.path), row.path);
    }
    renameBlockArtifacts(at("m1"), "m1", block, report);
    for (const auto& row : rows) {
        EXPECT_EQ(readTextFile(at("m1/" + std::string(row.after))), row.path);
    }
    EXPECT_EQ(report.filesRenamed, 8);
    renameBlockArtifacts(at("m1"), "", {"sp", "ts"}, report);
    EXPECT_EQ(report.filesRenamed, 8) << "without a case name they cannot be told apart";
}

TEST_F(RenameFiles, TheDirectoryOfATakenNameStays) {
    write("m1/opt/a", "1");
    write("m1/sp/b", "2");
    renameBlockArtifacts(at("m1"), "m1", block, report);
    EXPECT_THAT(report.errors, ElementsAre("target block directory already exists: " + at("m1/sp")));
    EXPECT_EQ(report.directoriesRenamed, 0);
    EXPECT_THAT(tree("m1"), ElementsAre("opt/", "opt/a = 1", "sp/", "sp/b = 2"));
}

TEST_F(RenameFiles, TheTextsOfACaseAreRewrittenButNotTheContentStores) {
    write("m1/a.txt", "opt opt_m1 opt_[x] option");
    write("m1/deep/b.txt", "$opt\n");
    write("m1/.morq/store/objects/ab", "opt");
    write("m1/Results/DB/repository/cd", "opt");
    write("m1/Results/DB/records/r", "opt");
    write("m1/image.png", "opt");
    write("m1/bytes", std::string_view("opt\0", 4));
    rewriteCaseTree(at("m1"), block, "m1", report);
    EXPECT_EQ(readTextFile(at("m1/a.txt")), "sp sp_m1 sp_[x] option");
    EXPECT_EQ(readTextFile(at("m1/deep/b.txt")), "$sp\n");
    EXPECT_EQ(readTextFile(at("m1/Results/DB/records/r")), "sp");
    for (const char* kept : {"m1/.morq/store/objects/ab", "m1/Results/DB/repository/cd", "m1/image.png"}) {
        EXPECT_EQ(readTextFile(at(kept)), "opt") << kept;
    }
    EXPECT_EQ(readTextFile(at("m1/bytes")), std::string("opt\0", 4));
    EXPECT_EQ(report.textFilesUpdated, 3);
    EXPECT_THAT(report.warnings, ElementsAre());
    EXPECT_THAT(report.errors, ElementsAre());
}

TEST_F(RenameFiles, WhatCannotBeReadIsAWarning) {
    write("m1/closed/a.txt", "opt");
    write("m1/b.txt", "opt");
    mode("m1/closed", 0);
    mode("m1/b.txt", 0);
    {
        const Unprivileged nobody;
        rewriteCaseTree(at("m1"), block, "m1", report);
    }
    mode("m1/closed", 0755);
    EXPECT_THAT(report.warnings,
                ::testing::UnorderedElementsAre("could not read text file; skipped: " + at("m1/b.txt"),
                                                "could not read directory; skipped: " + at("m1/closed")));
    EXPECT_EQ(report.textFilesUpdated, 0);
}

TEST_F(RenameFiles, AFileReachedTwiceIsRewrittenOnce) {
    write("m1/a.txt", "opt");
    EXPECT_TRUE(rewriteTextFile(at("m1/a.txt"), block, "m1", report));
    EXPECT_TRUE(rewriteTextFile(at("m1/../m1/a.txt"), {"sp", "ts"}, "m1", report));
    EXPECT_EQ(readTextFile(at("m1/a.txt")), "sp");
    EXPECT_EQ(report.textFilesUpdated, 1);
}

TEST_F(RenameFiles, EachDatabaseGoesWithItsCompanionsAndCountsOnce) {
    for (const char* name :
         {"project.db", "project.db-wal", "project.db-shm", "project.db-journal", "other.db"}) {
        write(".morq/cache/" + std::string(name));
    }
    write("Results/DB/project.db");
    invalidateDatabases(root, "case(m1)", report);
    EXPECT_EQ(report.databasesInvalidated, 2);
    EXPECT_THAT(tree(".morq/cache"), ElementsAre("other.db = ", "project.db-journal = "));
    EXPECT_THAT(tree("Results/DB"), ElementsAre());
    EXPECT_THAT(report.warnings, ElementsAre());
}

TEST_F(RenameFiles, OfPrefixedFilesTakesTheDeepestFirst) {
    write("opt_a/opt_b/opt_c.log", "1");
    write("opt_a/x_opt_", "2");
    write("opt_d", "3");
    write("opt", "4");
    renamePrefixedFiles(root, "opt_", "new_", Depth::any, report);
    EXPECT_THAT(report.errors, ElementsAre());
    EXPECT_EQ(report.filesRenamed, 4);
    EXPECT_THAT(tree(), ElementsAre("new_a/", "new_a/new_b/", "new_a/new_b/new_c.log = 1", "new_a/x_opt_ = 2",
                                    "new_d = 3", "opt = 4"));
    renamePrefixedFiles(root, "new_", "new_", Depth::any, report);
    renamePrefixedFiles(at("none"), "new_", "x_", Depth::any, report);
    renamePrefixedFiles(at("opt"), "new_", "x_", Depth::any, report);
    EXPECT_EQ(report.filesRenamed, 4);
}

TEST_F(RenameFiles, OfPrefixedFilesStaysAtTheTopUnlessAskedToGoDown) {
    write("opt_a/opt_b", "1");
    renamePrefixedFiles(root, "opt_", "new_", Depth::one, report);
    EXPECT_THAT(tree(), ElementsAre("new_a/", "new_a/opt_b = 1"));
}

TEST_F(RenameFiles, NeverReplacesWhatStandsAtTheNewName) {
    write("opt_a", "1");
    write("new_a", "2");
    write("opt_b", "3");
    link("nowhere", "new_b");
    write("opt_c", "4");
    renamePrefixedFiles(root, "opt_", "new_", Depth::any, report);
    EXPECT_THAT(report.errors, ElementsAre("target already exists; cannot rename: " + at("new_a"),
                                           "target already exists; cannot rename: " + at("new_b")));
    EXPECT_THAT(tree(), ElementsAre("new_a = 2", "new_b -> nowhere", "new_c = 4", "opt_a = 1", "opt_b = 3"));
}

TEST_F(RenameFiles, TellsTheReasonWhenANameCannotBe) {
    write("opt_a", "1");
    renamePrefixedFiles(root, "opt_", std::string(300, 'n'), Depth::any, report);
    EXPECT_THAT(report.errors, ElementsAre("failed to rename: " + at("opt_a") + " -> " +
                                           at(std::string(300, 'n')) + "a: File name too long"));
    dir("m1/opt");
    renameBlockArtifacts(at("m1"), "m1", {"opt", "no/where"}, report);
    EXPECT_EQ(report.errors.back(), "failed to rename block directory: " + at("m1/opt") + " -> " +
                                        at("m1/no/where") + ": No such file or directory");
}

TEST_F(RenameFiles, RewritesOneTextFileOnce) {
    write("a.txt", "opt_m1 opt_[x] opt opt2 opt opt");
    write("b.txt", "nothing to do");
    const std::string binary("opt\0opt", 7);
    write("c.txt", binary);
    for (const char* name : {"d.CHK", "e.sqlite3", "f.db-wal", "g.txt-SHM", "h.tar"}) {
        write(name, "opt");
    }
    link("a.txt", "link.txt");
    for (const char* name : {"a.txt", "link.txt", "a.txt", "b.txt", "c.txt", "d.CHK", "e.sqlite3", "f.db-wal",
                             "g.txt-SHM", "h.tar"}) {
        EXPECT_TRUE(rewriteTextFile(at(name), toNew, "m1", report)) << name;
    }
    EXPECT_EQ(report.textFilesUpdated, 1);
    EXPECT_THAT(report.warnings, ElementsAre());
    EXPECT_EQ(readTextFile(at("a.txt")), "new_m1 new_[x] new opt2 new opt");
    EXPECT_EQ(readTextFile(at("c.txt")), binary);
    EXPECT_EQ(readTextFile(at("d.CHK")), "opt");
    EXPECT_THAT(report.visitedFiles, ::testing::UnorderedElementsAre(at("a.txt"), at("b.txt"), at("c.txt")));
}

TEST_F(RenameFiles, WithoutACaseNameLeavesCaseForms) {
    write("a.txt", "opt_m1 opt_[x] opt");
    EXPECT_TRUE(rewriteTextFile(at("a.txt"), toNew, "", report));
    EXPECT_EQ(readTextFile(at("a.txt")), "opt_m1 new_[x] new");
}

TEST_F(RenameFiles, SkipsWhatItCannotReadAndKeepsWhatItCannotWrite) {
    EXPECT_TRUE(rewriteTextFile(at("missing"), toNew, "", report));
    EXPECT_THAT(report.warnings, ElementsAre("could not read text file; skipped: " + at("missing")));
    write("a.txt", "opt " + std::string(200, 'x'));
    {
        const FileSizeLimit limit(204);
        EXPECT_FALSE(rewriteTextFile(at("a.txt"), {"opt", "longer"}, "", report));
    }
    EXPECT_THAT(report.errors, ElementsAre("could not write file back: " + at("a.txt")));
    EXPECT_EQ(readTextFile(at("a.txt")), "opt " + std::string(200, 'x'));
}

TEST_F(RenameFiles, NeverTakesAFileOfMoreThanTwoGigabytesIntoMemory) {
    write("big.txt", "opt " + std::string(1 << 16, ' '));
    write("big.bin", std::string("opt\0", 4));
    for (const char* name : {"big.txt", "big.bin"}) {
        std::filesystem::resize_file(at(name), (std::uintmax_t{2} << 30) + 1); // a hole takes no space
        EXPECT_TRUE(rewriteTextFile(at(name), toNew, "", report));
    }
    EXPECT_THAT(report.warnings, ElementsAre("could not read text file; skipped: " + at("big.txt")));
}

TEST_F(RenameFiles, FollowsLinksInsideTheTreeOnly) {
    write("outside.txt", "opt");
    write("outside/dir/x.txt", "opt");
    write("project/shared.txt", "opt");
    write("project/m1/.morq/store/objects/ab", "opt");
    write("project/m1/inner.txt", "opt");
    link("../../outside.txt", "project/m1/out.txt");
    link("../../outside/dir", "project/m1/outdir");
    link("../shared.txt", "project/m1/shared.txt");
    link(".morq/store/objects/ab", "project/m1/object");
    link("inner.txt", "project/m1/a_link");
    link("nowhere", "project/m1/dangling");
    report.linkRoot = at("project");
    rewriteCaseTree(at("project/m1"), toNew, "m1", report);
    EXPECT_THAT(report.warnings, ElementsAre());
    EXPECT_THAT(report.errors, ElementsAre());
    EXPECT_EQ(report.textFilesUpdated, 2);
    EXPECT_EQ(readTextFile(at("outside.txt")), "opt");
    EXPECT_EQ(readTextFile(at("outside/dir/x.txt")), "opt");
    EXPECT_EQ(readTextFile(at("project/shared.txt")), "new");
    EXPECT_EQ(readTextFile(at("project/m1/inner.txt")), "new");
    EXPECT_EQ(readTextFile(at("project/m1/.morq/store/objects/ab")), "opt");
}

TEST_F(RenameFiles, RemovesEachStaleDatabaseWithItsCompanions) {
    for (const char* name :
         {".morq/cache/project.db", ".morq/cache/project.db-wal", ".morq/cache/project.db-shm",
          ".morq/cache/other.db", "Results/DB/project.db-shm"}) {
        write(name, "");
    }
    invalidateDatabases(root, "case(m1)", report);
    EXPECT_EQ(report.databasesInvalidated, 2);
    EXPECT_THAT(tree(),
                ElementsAre(".morq/", ".morq/cache/", ".morq/cache/other.db = ", "Results/", "Results/DB/"));
    invalidateDatabases(root, "case(m1)", report);
    invalidateDatabases(at("none"), "case(m1)", report);
    EXPECT_EQ(report.databasesInvalidated, 2);
    EXPECT_THAT(report.warnings, ElementsAre());
    dir(".morq/cache/project.db");
    dir("Results/DB/project.db-wal");
    invalidateDatabases(root, "project(p)", report);
    EXPECT_THAT(report.warnings,
                ElementsAre("project(p) cache DB failed to remove stale database: Is a directory",
                            "project(p) legacy DB failed to remove stale database: Is a directory"));
}

} // namespace
} // namespace morquill::project
