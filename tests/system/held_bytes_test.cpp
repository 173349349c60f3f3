#include "system/held_bytes.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <algorithm>

#include <sys/stat.h>
#include <sys/wait.h>

namespace morquill::system {
namespace {

using ::testing::ElementsAre;

class Held : public ScratchTree {};

TEST_F(Held, BytesAreOnTheDiskWithoutANameUntilTheyGetOne) {
    write("dir/file", "new");
    mode("dir/file", 0640);
    const std::string old("old\0bytes", 9);
    auto held = holdBytes(at("dir/file"), old);
    ASSERT_TRUE(held && held->canReplace());
    EXPECT_THAT(tree(), ElementsAre("dir/", "dir/file = new"));
    EXPECT_FALSE(held->linkTo(at("dir/file"))) << "never over another file";
    std::filesystem::remove(at("dir/file"));
    const HeldBytes moved = std::move(*held);
    EXPECT_TRUE(moved.linkTo(at("dir/file")));
    EXPECT_EQ(readTextFile(at("dir/file")), old);
    struct stat info {};
    ASSERT_EQ(::stat(at("dir/file").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
}

TEST_F(Held, BytesKnowTheirDirectory) {
    write("dir/file", "new");
    const auto held = holdBytes(at("dir/file"), "old");
    ASSERT_TRUE(held.has_value());
    EXPECT_EQ(held->directory(), at("dir"));
    std::filesystem::rename(at("dir"), at("moved"));
    EXPECT_EQ(held->directory(), at("moved"));
    EXPECT_EQ(HeldBytes().directory(), "");
}

TEST_F(Held, NothingIsKeptWithoutRoom) {
    write("file");
    const FileSizeLimit limit(3);
    EXPECT_TRUE(holdBytes(at("file"), "123").has_value());
    EXPECT_FALSE(holdBytes(at("file"), "1234").has_value());
}

TEST_F(Held, IsEmptyWhereNoCopyCanBeMade) {
    const auto held = holdBytes(at("missing/file"), "text");
    ASSERT_TRUE(held.has_value());
    EXPECT_FALSE(held->canReplace());
    EXPECT_FALSE(held->linkTo(at("file")));
    write("closed/file");
    mode("closed", 0555);
    {
        const Unprivileged user;
        const auto closed = holdBytes(at("closed/file"), "text");
        EXPECT_TRUE(closed && !closed->canReplace());
    }
    mode("closed", 0755);
}

/// Holds 300 copies under limits on descriptors; how many
/// are real, or 255 when the ordinary numbers are gone.
int heldUnder(const std::string& path, rlim_t soft, rlim_t hard) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit limit{soft, hard};
        ::setrlimit(RLIMIT_NOFILE, &limit);
        std::vector<HeldBytes> all;
        for (int i = 0; i < 300; ++i) {
            auto held = holdBytes(path, "text");
            all.push_back(held ? std::move(*held) : HeldBytes());
        }
        const auto real =
            std::count_if(all.begin(), all.end(), [](const auto& one) { return one.canReplace(); });
        rlimit after{};
        ::getrlimit(RLIMIT_NOFILE, &after);
        const int next = ::open("/dev/null", O_RDONLY);
        ::_exit(next >= 0 && next < 200 && after.rlim_cur == soft ? static_cast<int>(real) - 100 : 255);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status) == 255 ? 255 : WEXITSTATUS(status) + 100;
}

TEST_F(Held, ManyCopiesLeaveTheOrdinaryDescriptorsFree) {
    write("file");
    EXPECT_EQ(heldUnder(at("file"), 128, 1000), 300);
    const int some = heldUnder(at("file"), 220, 220); // about 64 of them stay free
    EXPECT_GT(some, 120);
    EXPECT_LT(some, 160);
}

} // namespace
} // namespace morquill::system
