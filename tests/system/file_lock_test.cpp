#include "system/file_lock.h"

#include "fixtures/scratch_tree.h"

namespace morquill::system {
namespace {

/// A lock belongs to an opened file, so that a second opening stands for another process.
class FileLock : public ScratchTree {};

TEST_F(FileLock, AnExclusiveOneKeepsOthersOutUntilItIsClosed) {
    write("file", "text");
    dir("dir");
    for (const std::string name : {"file", "dir"}) {
        auto first = tryLock(at(name), LockKind::exclusive);
        ASSERT_TRUE(first && first->isOpen()) << name;
        EXPECT_FALSE(tryLock(at(name), LockKind::exclusive)) << name;
        EXPECT_FALSE(tryLock(at(name), LockKind::shared)) << name;
        EXPECT_TRUE(first->close());
        EXPECT_TRUE(tryLock(at(name), LockKind::exclusive)) << name;
    }
    EXPECT_EQ(readTextFile(at("file")), "text");
}

TEST_F(FileLock, SharedOnesExcludeAnExclusiveOneOnly) {
    write("file", "");
    const auto first = tryLock(at("file"), LockKind::shared);
    const auto second = tryLock(at("file"), LockKind::shared);
    EXPECT_TRUE(second && second->isOpen());
    EXPECT_FALSE(tryLock(at("file"), LockKind::exclusive));
}

TEST_F(FileLock, OfALinkIsThatOfTheFileItLeadsTo) {
    write("file", "");
    link("file", "link");
    const auto first = tryLock(at("link"), LockKind::exclusive);
    EXPECT_FALSE(tryLock(at("file"), LockKind::exclusive));
}

TEST_F(FileLock, WhereThereIsNoFileNothingIsLocked) {
    const auto lock = tryLock(at("missing"), LockKind::exclusive);
    ASSERT_TRUE(lock);
    EXPECT_FALSE(lock->isOpen());
}

TEST_F(FileLock, APathDoesNotEndAtANulByte) {
    write("file", "");
    const auto lock = tryLock(at("file") + std::string("\0x", 2), LockKind::exclusive);
    ASSERT_TRUE(lock);
    EXPECT_FALSE(lock->isOpen());
    EXPECT_TRUE(tryLock(at("file"), LockKind::exclusive)) << "which nobody has locked";
}

TEST_F(FileLock, AFileForReadingOnlyIsLockedAsWell) {
    write("file", "");
    mode("file", 0400);
    const auto first = tryLock(at("file"), LockKind::exclusive);
    EXPECT_FALSE(tryLock(at("file"), LockKind::exclusive));
}

} // namespace
} // namespace morquill::system
