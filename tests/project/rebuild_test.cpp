#include "project/rebuild.h"

#include "scratch_tree.h"

#include <cstdlib>

namespace morquill::project {
namespace {

class Rebuild : public ScratchTree {
  protected:
    Rebuild() {
        write("bin/morquill", "#!/bin/sh\n");
        mode("bin/morquill", 0755);
        ::setenv("PATH", (at("bin") + ":" + path_).c_str(), 1);
        write("m1/m1.mq", "$opt\n$soc\n");
        for (const char* name : {"m1/opt/a.mqwk", "m1/opt/b.mqwk", "m1/soc/c.mqwk"}) {
            write(name);
        }
    }
    ~Rebuild() override { ::setenv("PATH", path_.c_str(), 1); }

    Output rebuild() {
        return run("", [&] { return rebuildCase(at("m1"), at("m1/m1.mq"), {"opt", "soc"}, {}); });
    }

  private:
    std::string path_ = ::getenv("PATH");
};

TEST_F(Rebuild, CountsTheMarkersThatWereThereAndTellsOfThoseThatWent) {
    mode("m1/soc", 0777);
    mode("m1/opt", 0555);
    Output output;
    {
        const Unprivileged user;
        output = rebuild();
    }
    mode("m1/opt", 0755);
    EXPECT_EQ(output.status, 1); // true
    EXPECT_EQ(output.err, "[mqkit][WARN] failed to remove work marker: " + at("m1/opt/a.mqwk") +
                              "\n[mqkit][WARN] failed to remove work marker: " + at("m1/opt/b.mqwk") + "\n");
    EXPECT_THAT(output.out,
                ::testing::HasSubstr("[mqkit] m1 / $opt : removed 0 .mqwk file(s)\n"
                                     "[mqkit] m1 / $soc : removed 1 .mqwk file(s)\n"
                                     "\n"
                                     "[mqkit] summary: cases=1, mq.status touched=0, records removed=0, "
                                     "block directories visited=2, block directories missing=0, removed "
                                     ".mqwk=3\n"));
}

} // namespace
} // namespace morquill::project
