#include "project/status/status_file.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

const std::string header = "# TASK            STATUS           UPDATED_AT              REASON\n";

class StatusFile : public ScratchTree {
  protected:
    void put(const std::string& text) const { write("mq.status", text); }
    [[nodiscard]] std::string onDisk() const { return readTextFile(path).value_or("(no file)"); }

    std::string path = at("mq.status");
};

TEST(CompletedTasks, AreReadLineByLine) {
    struct Row {
        const char* text;
        std::vector<std::string> completed;
    };
    const Row rows[] = {
        {"", {}},
        {"# comment\n\n  \t\r\n", {}},
        {header.c_str(), {}},
        {"opt\n", {"opt"}},
        {"opt FAILED\n", {}},
        {"opt rendered 2026-01-01T00:00:00Z -\n", {"opt"}},
        {"opt Rendered", {"opt"}},
        {"  opt \t RENDERED \r\n", {"opt"}},
        {"  # opt RENDERED\n", {}},
        {"  my old task \r\n", {"my old task"}},
        {"opt\vFAILED\n", {}},
        {"a_name_of_20_letters_RENDERED        -                       -\n",
         {"a_name_of_20_letters_RENDERED        -                       -"}},
        {"b RENDERED\na\nb RENDERED\n", {"a", "b"}},
        {"opt RENDERED\nopt FAILED\n", {"opt"}},
        {"opt FAILED\nopt RENDERED\n", {"opt"}},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(parseCompletedTasks(row.text), ::testing::ElementsAreArray(row.completed)) << row.text;
    }
}

TEST(CompletedTasks, AreKeptInTheOrderOfTheSelection) {
    EXPECT_THAT(keptTasks({"c", "x", "a"}, {"a", "b", "c"}), ElementsAre("c", "a"));
    EXPECT_THAT(keptTasks({"c"}, {}), ElementsAre());
}

TEST(StatusRecordsText, IsReadRowByRow) {
    struct Row {
        const char* text;
        TaskStatusRecord record;
    };
    const Row rows[] = {
        {"opt RENDERED 2026-01-01T00:00:00Z -", {"opt", TaskStatus::Rendered, "2026-01-01T00:00:00Z", "-"}},
        {"opt failed - scf", {"opt", TaskStatus::Failed, "-", "scf"}},
        {"opt Failed", {"opt", TaskStatus::Failed, "-", "-"}},
        {"opt RENDERED now", {"opt", TaskStatus::Rendered, "now", "-"}},
        {"opt", {"opt", TaskStatus::Rendered, "-", "-"}},
        {"opt freq done", {"opt", TaskStatus::Rendered, "-", "-"}},
        {"a_name_of_16_chrRENDERED         t1  r1", {"a_name_of_16_chr", TaskStatus::Rendered, "t1", "r1"}},
        {"a_name_of_16_chrFAILED", {"a_name_of_16_chr", TaskStatus::Failed, "-", "-"}},
        {"FAILED", {"FAILED", TaskStatus::Rendered, "-", "-"}},
        {"prerendered", {"prerendered", TaskStatus::Rendered, "-", "-"}},
        {"xRENDERED FAILED t r", {"xRENDERED", TaskStatus::Failed, "t", "r"}},
    };
    for (const auto& row : rows) {
        const auto records = parseStatusRecords(row.text);
        ASSERT_EQ(records.size(), 1U) << row.text;
        EXPECT_EQ(records.begin()->second, row.record) << row.text;
        EXPECT_EQ(records.begin()->first, row.record.name);
    }
    EXPECT_TRUE(parseStatusRecords(header + "\n# x RENDERED\n\v\n\v# y RENDERED\n").empty());
}

TEST(StatusRecordsText, TheLastRowOfANameStands) {
    const auto records = parseStatusRecords("opt RENDERED t1 -\nopt FAILED t2 why\n");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records.at("opt"), (TaskStatusRecord{"opt", TaskStatus::Failed, "t2", "why"}));
}

TEST(StatusRecordsText, IsPaddedNeverCutAndSortedByName) {
    StatusRecords records;
    records["soc"] = {"soc", TaskStatus::Failed, "2026-01-01T00:00:00Z", "line\nfeed\n"};
    records["opt"] = {"opt", TaskStatus::Rendered, "-", "-"};
    records["a_name_of_16_chr"] = {"a_name_of_16_chr", TaskStatus::Rendered, "", ""};
    EXPECT_EQ(formatStatusRecords(records),
              header + "a_name_of_16_chrRENDERED         -                       -\n"
                       "opt             RENDERED         -                       -\n"
                       "soc             FAILED           2026-01-01T00:00:00Z    linefeed\n");
}

TEST(StatusRecordsText, SurvivesWritingAndReading) {
    StatusRecords records;
    for (const std::string name : {"o", "a_name_of_16_chr", "a_name_longer_than_16_chr"}) {
        records[name] = {name, name == "o" ? TaskStatus::Failed : TaskStatus::Rendered,
                         "2026-01-01T00:00:00Z", "why"};
    }
    // A time that fills its column does not run into the reason.
    records["t"] = {"t", TaskStatus::Rendered, "2026-01-01T00:00:00.123Z", "why"};
    records["u"] = {"u", TaskStatus::Failed, "2026-01-01T00:00:00.123456Z", "-"};
    EXPECT_EQ(parseStatusRecords(formatStatusRecords(records)), records);
}

TEST_F(StatusFile, ThatIsMissingADirectoryOrUnreadableGivesNothing) {
    EXPECT_TRUE(readCompletedTasks(root).empty());
    EXPECT_TRUE(readStatusRecords(path).empty());
    EXPECT_TRUE(removeTaskRecords(root, {"opt"}));
    EXPECT_EQ(onDisk(), "(no file)");

    fs::create_directory(path);
    EXPECT_TRUE(readCompletedTasks(root).empty());
    EXPECT_TRUE(removeTaskRecords(root, {"opt"}));
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_FALSE(writeStatusRecords(path, {{"opt", {"opt", TaskStatus::Rendered, "-", "-"}}}));
    fs::remove(path);

    // A regular file whose first byte cannot be read, whoever asks.
    fs::create_symlink("/proc/self/mem", path);
    EXPECT_TRUE(readCompletedTasks(root).empty());
    EXPECT_FALSE(removeTaskRecords(root, {"opt"}));
    EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(StatusFile, WithoutAnAnswerFromTheFileSystemIsAFailure) {
    fs::create_symlink("mq.status", path);
    EXPECT_FALSE(writeStatusRecords(path, {}));
    EXPECT_FALSE(removeTaskRecords(root, {"opt"}));
}

TEST_F(StatusFile, WithoutRecordsIsRemoved) {
    EXPECT_TRUE(writeStatusRecords(path, {}));
    put("opt\n");
    EXPECT_TRUE(writeStatusRecords(path, {}));
    EXPECT_EQ(onDisk(), "(no file)");
}

TEST_F(StatusFile, LosesOnlyTheNamedRecords) {
    put("soc FAILED t1 why\n"
        "# note\n"
        "opt RENDERED\n"
        "old\n");
    EXPECT_TRUE(removeTaskRecords(root, {"opt", "other"}));
    EXPECT_EQ(onDisk(), header + "old             RENDERED         -                       -\n"
                                 "soc             FAILED           t1                      why\n");
    EXPECT_TRUE(removeTaskRecords(root, {"soc", "old"}));
    EXPECT_EQ(onDisk(), "(no file)");
}

TEST_F(StatusFile, IsWrittenBackEvenWhenNothingWasErased) {
    put("opt\n");
    EXPECT_TRUE(removeTaskRecords(root, {"other"}));
    EXPECT_EQ(onDisk(), header + "opt             RENDERED         -                       -\n");
}

TEST_F(StatusFile, KeepsItsOldTextWhenTheDiskIsFull) {
    put("opt\nsoc\n");
    {
        const FileSizeLimit limit(64);
        EXPECT_FALSE(removeTaskRecords(root, {"soc"}));
    }
    EXPECT_EQ(onDisk(), "opt\nsoc\n");
}

} // namespace
} // namespace morquill::project
