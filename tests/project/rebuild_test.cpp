#include "project/rebuild.h"

#include "fixtures/project_tree.h"
#include "fixtures/scratch_tree.h"

#include <cstdlib>

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Rebuild : public ProjectTree {
  protected:
    Rebuild() {
        write("p/m1/mq.status", "opt\nsoc\n");
        write("p/m1/opt/a.mqwk");
        sibling("morquill", "echo \"$@\" >>\"$HOME\"");
    }

    Output rebuild(const RebuildOptions& how) {
        return run("", [&] { return rebuildProject(project(), templateFile(), {"opt"}, how); });
    }
};

TEST_F(Rebuild, WorkMarkersAreRegularFilesDirectlyInTheBlock) {
    for (const char* name :
         {"b/a.mqwk", "b/.hidden.mqwk", "b/a.mqwk.log", "b/a.MQWK", "b/.mqwk", "b/sub/c.mqwk"}) {
        write(name);
    }
    dir("b/dir.mqwk");
    EXPECT_EQ(countWorkMarkers(at("b")), 2);
    EXPECT_EQ(removeWorkMarkers(at("b")), 2);
    EXPECT_THAT(tree("b"),
                ElementsAre(".mqwk = ", "a.MQWK = ", "a.mqwk.log = ", "dir.mqwk/", "sub/", "sub/c.mqwk = "));
    EXPECT_EQ(countWorkMarkers(at("b")), 0);
    EXPECT_EQ(countWorkMarkers(at("missing")), 0);
    EXPECT_EQ(removeWorkMarkers(at("missing")), 0);
}

TEST_F(Rebuild, AMarkerThatStaysIsTold) {
    write("b/a.mqwk");
    mode("b", 0555);
    const Output output = run("", [&] {
        const Unprivileged nobody;
        return removeWorkMarkers(at("b"));
    });
    mode("b", 0755);
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][WARN] failed to remove work marker: " + at("b/a.mqwk") + "\n");
}

TEST_F(Rebuild, CleansWhatWasSelectedAndRunsTheGenerator) {
    const Output output = rebuild({});
    EXPECT_EQ(output.status, 1); // true
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(tree("p/m1/opt"), ElementsAre());
    EXPECT_THAT(readTextFile(at("p/m1/mq.status")).value_or(""), HasSubstr("\nsoc "));
    EXPECT_THAT(readTextFile(at("p/m1/mq.status")).value_or(""), ::testing::Not(HasSubstr("\nopt ")));
    EXPECT_EQ(readTextFile(at("home")), templateFile() + "\n");
    EXPECT_THAT(
        output.out,
        HasSubstr("[mqkit] m1 : removed 1 completed record(s) from mq.status\n"
                  "[mqkit] m1 / $opt : removed 1 .mqwk file(s)\n"
                  "\n[mqkit] summary: cases=2, mq.status touched=1, records removed=1, block directories "
                  "visited=2, block directories missing=0, removed .mqwk=1\n"));
    EXPECT_THAT(output.out, EndsWith("[mqkit] full morquill rebuild completed\n"));
}

TEST_F(Rebuild, MarkersMayBeKept) {
    RebuildOptions how;
    how.removeWorkMarkers = false;
    const Output output = rebuild(how);
    EXPECT_THAT(output.out, HasSubstr("removed .mqwk=0\n"));
    EXPECT_THAT(tree("p/m1/opt"), ElementsAre("a.mqwk = "));
}

TEST_F(Rebuild, ADryRunTouchesNothing) {
    RebuildOptions how;
    how.dryRun = true;
    const auto before = tree("p");
    const Output output = rebuild(how);
    EXPECT_EQ(output.status, 1); // true
    EXPECT_THAT(output.out, HasSubstr("[mqkit][DRY-RUN] m1 / $opt : would remove 1 .mqwk file(s)\n"));
    EXPECT_EQ(tree("p"), before);
    EXPECT_EQ(readTextFile(at("home")), std::nullopt);
}

TEST_F(Rebuild, AFailedGeneratorEndsIt) {
    sibling("morquill", "exit 3");
    sibling("mqrun", "echo \"$@\" >>\"$HOME\"");
    RebuildOptions how;
    how.runScript = true;
    const Output output = rebuild(how);
    EXPECT_EQ(output.status, 0); // false
    EXPECT_THAT(output.err, StartsWith("[mqkit][ERROR] failed to re-run morquill"));
    EXPECT_EQ(readTextFile(at("home")), std::nullopt) << "the runner is not started";
}

TEST_F(Rebuild, TheRunnerStartsAfterAProjectAndNeverAfterACase) {
    sibling("mqrun", "echo run \"$@\" in \"$(pwd -P)\" >>\"$HOME\"");
    RebuildOptions how;
    how.runScript = true;
    EXPECT_EQ(rebuild(how).status, 1);
    EXPECT_EQ(readTextFile(at("home")),
              templateFile() + "\nrun kick --path " + project() + " in " + project() + "\n");
    std::filesystem::remove(at("home"));
    const Output one = run("", [&] { return rebuildCase(at("p/m2"), at("p/m2/m2.mq"), {"opt"}, how); });
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(readTextFile(at("home")), at("p/m2/m2.mq") + "\n");
}

class RebuildOfACase : public ScratchTree {
  protected:
    RebuildOfACase() {
        write("bin/morquill", "#!/bin/sh\n");
        mode("bin/morquill", 0755);
        ::setenv("PATH", (at("bin") + ":" + path_).c_str(), 1);
        write("m1/m1.mq", "$opt\n$soc\n");
        for (const char* name : {"m1/opt/a.mqwk", "m1/opt/b.mqwk", "m1/soc/c.mqwk"}) {
            write(name);
        }
    }
    ~RebuildOfACase() override { ::setenv("PATH", path_.c_str(), 1); }

    Output rebuild() {
        return run("", [&] { return rebuildCase(at("m1"), at("m1/m1.mq"), {"opt", "soc"}, {}); });
    }

  private:
    std::string path_ = ::getenv("PATH");
};

TEST_F(RebuildOfACase, CountsTheMarkersThatWereThereAndTellsOfThoseThatWent) {
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
