#include "project/status/status_scope.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <csignal>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <sys/stat.h>

namespace {
bool memoryIsUsedUp = false; // what every allocation meets in the test that needs it
} // namespace

void* operator new(std::size_t size) {
    void* memory = memoryIsUsedUp ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

const std::string statusHeader = "# TASK            STATUS           UPDATED_AT              REASON\n";
const std::string optRow = "opt             RENDERED         -                       -\n";
const std::string socRow = "soc             RENDERED         -                       -\n";

class StatusScope : public ScratchTree {
  protected:
    Output scope(const std::vector<std::string>& cases, const std::vector<std::string>& selected,
                 console::RunMode mode = console::RunMode::apply) {
        std::vector<std::string> dirs;
        for (const auto& name : cases) {
            dirs.push_back(at(name));
        }
        return run("", [&] {
            const auto counts = scopeStatusFiles(dirs, selected, mode, backups);
            summary = counts.value_or(UpdateSummary{});
            return counts.has_value();
        });
    }
    Output restore() {
        return run("", [&] { return restoreStatusFiles(backups); });
    }

    std::vector<StatusBackup> backups;
    UpdateSummary summary;
};

TEST_F(StatusScope, LeavesOnlySelectedCompletedTasksAndPutsEveryByteBack) {
    write("m1/mq.status", "opt\nfreq RENDERED t r\nsoc rendered\r\nother FAILED");
    write("m2/mq.status", "freq RENDERED\n");
    dir("m3");
    const auto before = tree();
    const auto scoped = scope({"m1", "m2", "m3"}, {"soc", "none", "opt"});
    EXPECT_EQ(scoped.status, 1);
    EXPECT_EQ(scoped.out,
              "[mqkit] m1 : scoped mq.status to selected completed task(s): $soc, $opt\n"
              "[mqkit] m2 : temporarily hid mq.status because no selected task is marked completed\n");
    EXPECT_EQ(scoped.err, "");
    EXPECT_THAT(tree(), ElementsAre("m1/", "m1/mq.status = " + statusHeader + socRow + optRow, "m2/", "m3/"));
    EXPECT_EQ(summary.cases, 3);
    EXPECT_EQ(summary.statusScoped, 1);
    EXPECT_EQ(summary.statusHidden, 1);
    EXPECT_EQ(summary.selectedCompletedRecords, 2);

    write("m3/mq.status", "made in the meantime");
    const auto restored = restore();
    EXPECT_EQ(restored.status, 1);
    EXPECT_EQ(restored.out + restored.err, "");
    EXPECT_EQ(tree(), before);
}

TEST_F(StatusScope, ADryRunOnlyTells) {
    write("m1/mq.status", "opt\n");
    write("m2/mq.status", "freq\n");
    dir("m3");
    const auto before = tree();
    const auto told = scope({"m1", "m2", "m3"}, {"opt"}, console::RunMode::dryRun);
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(told.out, "[mqkit][DRY-RUN] m1 : would scope mq.status to selected completed task(s): $opt\n"
                        "[mqkit][DRY-RUN] m2 : would temporarily hide mq.status because no selected task is "
                        "marked completed\n");
    EXPECT_EQ(tree(), before);
    EXPECT_EQ(summary.statusScoped, 1);
    EXPECT_EQ(summary.statusHidden, 1);
}

TEST_F(StatusScope, AHiddenFileComesBackAsTheLinkAndWithTheModeItHad) {
    write("shared.status", "freq\n");
    link("../shared.status", "m1/mq.status");
    write("m2/mq.status", "freq\n");
    ASSERT_EQ(::chmod(at("m2/mq.status").c_str(), 0640), 0);
    const auto before = tree();
    EXPECT_EQ(scope({"m1", "m2"}, {"opt"}).status, 1);
    EXPECT_THAT(tree(), ElementsAre("m1/", "m2/", "shared.status = freq\n"));
    EXPECT_EQ(restore().status, 1);
    EXPECT_EQ(tree(), before);
    struct stat info {};
    ASSERT_EQ(::stat(at("m2/mq.status").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
}

TEST_F(StatusScope, AnUnreadableFileStopsIt) {
    write("m1/mq.status", "opt\n");
    link("/proc/self/mem", "m2/mq.status"); // a regular file without a readable first byte
    const auto output = scope({"m1", "m2", "m3"}, {"opt"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to read mq.status: " + at("m2/mq.status") + "\n");
    EXPECT_EQ(backups.size(), 1U);
    EXPECT_EQ(restore().status, 1);
    EXPECT_EQ(readTextFile(at("m1/mq.status")), "opt\n");
}

TEST_F(StatusScope, ADirectoryOfThatNameIsNoStatusFile) {
    dir("m1/mq.status");
    EXPECT_EQ(scope({"m1"}, {"opt"}).out, "");
    EXPECT_EQ(restore().status, 1);
    EXPECT_THAT(tree(), ElementsAre("m1/", "m1/mq.status/"));
}

TEST_F(StatusScope, AFullDiskStopsItAndTheOldTextComesBack) {
    write("m1/mq.status", "opt\n");
    const auto output = run("", [&] {
        const FileSizeLimit limit(80); // enough for the message, which goes to a file here
        return scopeStatusFiles({at("m1")}, {"opt"}, console::RunMode::apply, backups).has_value();
    });
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to prepare mq.status for comd-only update: m1\n");
    EXPECT_EQ(restore().status, 1);
    EXPECT_EQ(readTextFile(at("m1/mq.status")), "opt\n");
}

TEST_F(StatusScope, ADiskWithoutRoomForTheOldBytesStopsItBeforeAnythingIsTouched) {
    const std::string old = "freq\n" + std::string(200, '#') + "\n";
    write("m1/mq.status", old);
    const auto output = run("", [&] {
        const FileSizeLimit limit(150); // enough for the message, which goes to a file here
        const auto scoped = scopeStatusFiles({at("m1")}, {"opt"}, console::RunMode::apply, backups);
        return scoped.has_value() || readTextFile(at("m1/mq.status")) != old;
    });
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to prepare mq.status for comd-only update: m1\n");
    EXPECT_EQ(restore().status, 1);
    EXPECT_EQ(readTextFile(at("m1/mq.status")), old);
}

TEST_F(StatusScope, ADiskThatFillsUpMeanwhileKeepsNothingBack) {
    const std::string comment = "# " + std::string(500, 'x') + "\n";
    write("m1/mq.status", "freq\n" + comment);
    write("m2/mq.status", "opt\n" + comment);
    write("m3/target", "opt\n" + comment);
    link("target", "m3/mq.status");
    mode("m2/mq.status", 0640);
    const auto before = tree();
    ASSERT_EQ(scope({"m1", "m2", "m3"}, {"opt"}).status, 1);
    EXPECT_THAT(tree(), ElementsAre("m1/", "m2/", "m2/mq.status = " + statusHeader + optRow, "m3/",
                                    "m3/mq.status -> target", "m3/target = " + statusHeader + optRow));
    const auto restored = run("", [&] {
        const FileSizeLimit limit(100);
        return restoreStatusFiles(backups);
    });
    EXPECT_EQ(restored.status, 1);
    EXPECT_EQ(restored.err, "");
    EXPECT_EQ(tree(), before);
    struct stat info {};
    ASSERT_EQ(::stat(at("m2/mq.status").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
}

TEST_F(StatusScope, ALackOfMemoryStopsNoRestore) {
    write("m1/mq.status", "freq\n");
    write("m2/mq.status", "opt\nfreq\n");
    write("m3/status", "freq\n");
    link("status", "m3/mq.status");
    dir("m4");
    write("m5/mq.status", "freq\n");
    const auto before = tree();
    ASSERT_EQ(scope({"m1", "m2", "m3", "m4", "m5"}, {"opt"}).status, 1);
    write("m4/mq.status", "new\n");
    dir("m5/mq.status");
    const auto output = run("", [&] {
        memoryIsUsedUp = true;
        const bool restored = restoreStatusFiles(backups);
        memoryIsUsedUp = false;
        return restored;
    });
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to restore mq.status: " + at("m5/mq.status") +
                              " (a directory is in its place)\n");
    std::filesystem::remove(at("m5/mq.status"));
    write("m5/mq.status", "freq\n");
    EXPECT_EQ(tree(), before);
}

TEST_F(StatusScope, OnlyWhatCameMeanwhileIsRemoved) {
    link("../nowhere.status", "dangling/mq.status");
    link("../m1", "linked/mq.status");
    dir("m1");
    dir("piped");
    ASSERT_EQ(::mkfifo(at("piped/mq.status").c_str(), 0600), 0);
    const auto identity = [&](const std::string& name) {
        struct stat info {};
        EXPECT_EQ(::lstat(at(name).c_str(), &info), 0) << name;
        return std::pair(info.st_ino, info.st_mode & S_IFMT);
    };
    const auto fifo = identity("piped/mq.status");
    const auto known = {std::string("dangling"), std::string("linked"), std::string("piped")};
    EXPECT_EQ(scope(known, {"opt"}).out, "");
    EXPECT_EQ(restore().status, 1);
    EXPECT_EQ(identity("piped/mq.status"), fifo);
    const auto links = ElementsAre("dangling/", "dangling/mq.status -> ../nowhere.status", "linked/",
                                   "linked/mq.status -> ../m1", "m1/", "piped/");
    std::filesystem::remove(at("piped/mq.status"));
    EXPECT_THAT(tree(), links);

    // What the generator writes through the dangling link, or puts in the place of a link, has come.
    backups.clear();
    EXPECT_EQ(scope(known, {"opt"}).out, "");
    write("dangling/mq.status", "new\n");
    EXPECT_EQ(readTextFile(at("nowhere.status")), "new\n");
    std::filesystem::remove(at("linked/mq.status"));
    write("linked/mq.status", "new\n");
    ASSERT_EQ(::mkfifo(at("piped/mq.status").c_str(), 0600), 0);
    EXPECT_EQ(restore().status, 1);
    EXPECT_THAT(tree(), links);
}

TEST_F(StatusScope, WhatCameInThePlaceOfAStatusFileIsNeverWrittenThrough) {
    write("m1/mq.status", "freq\n");
    write("m2/mq.status", "opt\nfreq\n");
    write("shared", "opt\n");
    link("../shared", "m3/mq.status");
    write("foreign", "keep\n");
    const auto before = tree();
    ASSERT_EQ(scope({"m1", "m2", "m3"}, {"opt"}).status, 1);
    ASSERT_EQ(::mkfifo(at("m1/mq.status").c_str(), 0600), 0);
    for (const std::string name : {"m2/mq.status", "m3/mq.status"}) {
        std::filesystem::remove(at(name));
        link("../foreign", name);
    }
    const auto restored = restore();
    EXPECT_EQ(restored.status, 1);
    EXPECT_EQ(restored.err, "");
    EXPECT_EQ(tree(), before);
}

TEST_F(StatusScope, WhatLayBehindALinkGoesBackEvenWhereTheLinkCannot) {
    write("shared", "opt\nfreq\n");
    link("../shared", "m1/mq.status");
    ASSERT_EQ(scope({"m1"}, {"opt"}).status, 1);
    std::filesystem::remove(at("m1/mq.status"));
    dir("m1/mq.status");
    const auto output = restore();
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to restore mq.status: " + at("m1/mq.status") +
                              " (a directory is in its place; what it held is in " + at("shared") + ")\n");
    EXPECT_EQ(readTextFile(at("shared")), "opt\nfreq\n");
}

TEST_F(StatusScope, EveryFailedRestoreIsReportedAndStopsNone) {
    write("m1/mq.status", "freq\n");
    write("m2/mq.status", "freq\n");
    write("m3/mq.status", "freq\n");
    ASSERT_EQ(scope({"m1", "m2", "m3"}, {"opt"}).status, 1);
    std::filesystem::remove_all(at("m1"));
    dir("m3/mq.status");
    const auto output = restore();
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to restore mq.status: " + at("m3/mq.status") +
                              " (a directory is in its place; what it held is in " +
                              at("m3/mq.status.saved") + ")\n[mqkit][ERROR] failed to restore mq.status: " +
                              at("m1/mq.status") + " (its directory is gone)\n");
    EXPECT_EQ(readTextFile(at("m2/mq.status")), "freq\n");
    EXPECT_EQ(readTextFile(at("m3/mq.status.saved")), "freq\n");
}

TEST_F(StatusScope, WhatCannotGoBackIsLeftBesideItsPlaceOrWhereTheCaseHasGone) {
    write("hidden/mq.status", "freq\n");
    write("narrowed/mq.status", "opt\nfreq\n");
    write("blocked/mq.status", "freq\n");
    write("blocked/mq.status.saved", "older\n");
    ASSERT_EQ(scope({"hidden", "narrowed", "blocked"}, {"opt"}).status, 1);
    std::filesystem::rename(at("hidden"), at("hidden2"));
    std::filesystem::rename(at("narrowed"), at("narrowed2"));
    dir("blocked/mq.status");
    const auto output = restore();
    const std::string failed = "[mqkit][ERROR] failed to restore mq.status: ";
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err,
              failed + at("blocked/mq.status") + " (a directory is in its place; what it held is in " +
                  at("blocked/mq.status.saved-2") + ")\n" + failed + at("narrowed/mq.status") +
                  " (its directory is gone; what it held is in " + at("narrowed2/mq.status.saved") + ")\n" +
                  failed + at("hidden/mq.status") + " (its directory is gone; what it held is in " +
                  at("hidden2/mq.status") + ")\n");
    EXPECT_THAT(tree(), ElementsAre("blocked/", "blocked/mq.status.saved = older\n",
                                    "blocked/mq.status.saved-2 = freq\n", "blocked/mq.status/", "hidden2/",
                                    "hidden2/mq.status = freq\n", "narrowed2/",
                                    "narrowed2/mq.status = " + statusHeader + optRow,
                                    "narrowed2/mq.status.saved = opt\nfreq\n"));
}

TEST_F(StatusScope, TheGuardRestoresOnceAndAlsoWhenAnExceptionPasses) {
    write("m1/mq.status", "freq\n");
    const auto narrowed = [&](StatusRestorer& restorer) {
        return scopeStatusFiles({at("m1")}, {"opt"}, console::RunMode::apply, restorer.backups()) &&
               !readTextFile(at("m1/mq.status"));
    };
    const auto output = run("", [&] {
        try {
            StatusRestorer restorer;
            EXPECT_TRUE(narrowed(restorer));
            throw std::runtime_error("child");
        } catch (const std::runtime_error&) {
            return readTextFile(at("m1/mq.status")) == "freq\n";
        }
    });
    EXPECT_EQ(output.status, 1);
    const auto twice = run("", [&] {
        StatusRestorer restorer;
        EXPECT_TRUE(narrowed(restorer));
        EXPECT_TRUE(restorer.restore());
        write("m1/mq.status", "later\n");
        return restorer.restore();
    });
    EXPECT_EQ(twice.status, 1);
    EXPECT_EQ(readTextFile(at("m1/mq.status")), "later\n");
}

} // namespace
} // namespace morquill::project
