// What a renamed block left on disk, place by place. More of it is in rename_test.cpp.

#include "project/rename/rename_files.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

class RenameFiles : public ScratchTree {
  protected:
    RenameReport report;
    const RenamedBlock block{"opt", "sp"};
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

} // namespace
} // namespace morquill::project
