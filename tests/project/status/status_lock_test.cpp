#include "project/status/status_lock.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

class StatusLock : public ScratchTree {
  protected:
    StatusLock() {
        write("p/demo.projmq", "$opt\n");
        for (const std::string name : {"m1", "m2"}) {
            link("../demo.projmq", "p/" + name + "/" + name + ".mq");
        }
    }

    std::optional<StatusLocks> lockProject() {
        return lockStatusFiles(TargetKind::Project, at("p"), at("p/demo.projmq"));
    }
    std::optional<StatusLocks> lockCase(const std::string& name) {
        return lockStatusFiles(TargetKind::Case, at("p/" + name), at("p/" + name + "/" + name + ".mq"));
    }
    /// What is reported when the locks cannot be had.
    template <class Lock>
    std::string refusal(Lock lock) {
        return run("", [&] { return lock().has_value(); }).err;
    }
    std::string inUse(const std::string& directory) {
        return "[mqkit][ERROR] another mqkit is changing the status files here: " + at(directory) + "\n";
    }
};

TEST_F(StatusLock, AProjectIsLockedAgainstAllOthers) {
    const auto held = lockProject();
    ASSERT_TRUE(held);
    EXPECT_EQ(refusal([this] { return lockProject(); }), inUse("p"));
    EXPECT_EQ(refusal([this] { return lockCase("m1"); }), inUse("p/m1"));
}

TEST_F(StatusLock, ACaseIsLockedAgainstItselfAndItsProject) {
    const auto held = lockCase("m1");
    ASSERT_TRUE(held);
    EXPECT_TRUE(lockCase("m2"));
    EXPECT_EQ(refusal([this] { return lockCase("m1"); }), inUse("p/m1"));
    EXPECT_EQ(refusal([this] { return lockProject(); }), inUse("p"));
}

TEST_F(StatusLock, EndsWithItsHolder) {
    { const auto held = lockProject(); }
    EXPECT_TRUE(lockCase("m1"));
}

} // namespace
} // namespace morquill::project
