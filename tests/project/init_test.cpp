#include "project/workflows.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <cstdlib>

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/// A directory `work` with a task file and two geometries; projects go to `tasks`.
class Init : public ScratchTree {
  protected:
    Init() {
        for (const char* name : {"MORQUILL_TASK_PATH", "MORQUILL_MQRUN_PATH"}) {
            ::unsetenv(name);
        }
        ::setenv("HOME", root.c_str(), 1);
        enter("work");
        configure(""); // no other file is looked for
        write("work/task.mq", "$opt\n");
        write("work/b.xyz", "b");
        write("work/a.gjf", "a");
    }
    ~Init() override {
        ::unsetenv("MORQUILL_TASK_PATH");
        ::unsetenv("MORQUILL_MQRUN_PATH");
    }
    void configure(const std::string& text) const { write("work/morquill.conf", text); }
    Output init(std::string_view input) {
        return run(input, [] { return runProjectInit(); });
    }
    /// A stand-in for the runner that records its arguments and directory, and ends as told.
    void makeRunner(const std::string& name, int status) const {
        write(name, "#!/bin/sh\npwd -P >" + at("ran") + "\nfor a do echo \"<$a>\" >>" + at("ran") +
                        "; done\nexit " + std::to_string(status) + "\n");
        std::filesystem::permissions(at(name), std::filesystem::perms::owner_all);
    }
};

TEST_F(Init, MakesAProjectFromTheCurrentDirectory) {
    configure("MORQUILL_TASK_PATH = ../tasks/\n");
    const Output output = init("  water 1\t\nn\n");
    const std::string project = at("tasks/water 1");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(output.out, "[INFO] project name: source .mq file: " + at("work/task.mq") +
                              "\ngeometry files found: 2\ncreated project directory: " + project +
                              "\nwrote project template: " + project +
                              "/water 1.projmq\ncreated task: a (symlinked to .projmq)\n"
                              "created task: b (symlinked to .projmq)\n\nproject created\nproject path: " +
                              project + "\nproject template: " + project +
                              "/water 1.projmq\n[INFO] start the generated project now? (y/n): ");
    EXPECT_THAT(tree("tasks"), ElementsAre("water 1/", "water 1/a/", "water 1/a/a.gjf = a",
                                           "water 1/a/a.mq -> ../water 1.projmq", "water 1/b/",
                                           "water 1/b/b.mq -> ../water 1.projmq", "water 1/b/b.xyz = b",
                                           "water 1/water 1.projmq = $opt\n"));
}

TEST_F(Init, WithoutANameTheDirectoryGivesIt) {
    ::setenv("MORQUILL_TASK_PATH", at("tasks").c_str(), 1);
    const Output output = init("");
    EXPECT_EQ(output.status, 1);
    EXPECT_THAT(output.out,
                StartsWith("[INFO] project name: using current directory name as project name: work\n"));
    EXPECT_TRUE(isRegularFile(at("tasks/work/work.projmq")));
}

TEST_F(Init, TheFileGoesBeforeTheEnvironmentAndTheDefaultDoesNotCount) {
    const Output unset = init("x\n");
    EXPECT_EQ(unset.status, 0);
    EXPECT_EQ(unset.out, "");
    EXPECT_EQ(unset.err, "[ERROR] MORQUILL_TASK_PATH is not set\n");
    ::setenv("MORQUILL_TASK_PATH", at("env").c_str(), 1);
    configure("MORQUILL_TASK_PATH=" + at("file") + "\n");
    EXPECT_EQ(init("x\n").status, 1);
    EXPECT_TRUE(isDirectory(at("file/x")));
    EXPECT_FALSE(isDirectory(at("env")));
    configure("MORQUILL_TASK_PATH=\n");
    EXPECT_EQ(init("x\n").status, 1);
    EXPECT_TRUE(isDirectory(at("env/x")));
}

TEST_F(Init, ASecondRunAddsWhatIsNew) {
    configure("MORQUILL_TASK_PATH=" + at("tasks") + "\n");
    EXPECT_EQ(init("p\n").status, 1);
    write("work/c.com", "c");
    write("work/task.mq", "$changed\n");
    const Output output = init("p\nno\n");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[WARNING] project directory already exists: " + at("tasks/p") +
                              "\n[WARNING] directory already exists: " + at("tasks/p/a") +
                              "\n[WARNING] directory already exists: " + at("tasks/p/b") + "\n");
    EXPECT_THAT(output.out, HasSubstr("project template already exists: " + at("tasks/p/p.projmq") +
                                      "\ncreated task: c (symlinked to .projmq)\n"));
    EXPECT_EQ(readTextFile(at("tasks/p/p.projmq")), "$opt\n");
    EXPECT_EQ(readTextFile(at("tasks/p/c/c.com")), "c");
}

TEST_F(Init, OnlyOneLetterStartsTheRunner) {
    configure("MORQUILL_TASK_PATH=" + at("tasks") + "\nMORQUILL_MQRUN_PATH=../bin/run it\n");
    makeRunner("bin/run it", 0);
    for (const char* answer : {"yes", "YES", " y", "y ", "n", ""}) {
        EXPECT_THAT(init("p\n" + std::string(answer) + "\n").out, Not(HasSubstr("running"))) << answer;
    }
    EXPECT_FALSE(isRegularFile(at("ran")));
    const std::string project = at("tasks/p");
    for (const char* answer : {"y\n", "Y"}) {
        std::filesystem::remove(at("ran"));
        const Output output = init("p\n" + std::string(answer));
        EXPECT_EQ(output.status, 1);
        EXPECT_THAT(output.out, ::testing::EndsWith("(y/n): running: cd '" + project + "' && '" +
                                                    at("bin/run it") + "' kick --path '" + project + "'\n"));
        EXPECT_EQ(readTextFile(at("ran")), project + "\n<kick>\n<--path>\n<" + project + ">\n");
    }
}

TEST_F(Init, AFailedRunnerIsToldAndTheProjectStands) {
    configure("MORQUILL_TASK_PATH=" + at("tasks") + "\nMORQUILL_MQRUN_PATH=" + at("bin/mqrun") + "\n");
    makeRunner("bin/mqrun", 3);
    const Output output = init("p\ny\n");
    EXPECT_EQ(output.status, 1);
    EXPECT_THAT(output.err, ::testing::EndsWith("[ERROR] project runner failed: program '" + at("bin/mqrun") +
                                                "' exited with code 3\n"));
}

TEST_F(Init, NothingIsMadeWhenSomethingIsMissing) {
    configure("MORQUILL_TASK_PATH=" + at("tasks") + "\n");
    write("work/second.projmq");
    Output output = init("p\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] invalid selection; try again\n");
    EXPECT_EQ(init("p\n2\n").status, 1);
    std::filesystem::remove_all(at("tasks"));
    std::filesystem::remove(at("work/second.projmq"));
    std::filesystem::remove(at("work/task.mq"));
    output = init("p\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] no .mq or .projmq file was found\n");
    write("work/task.mq");
    std::filesystem::remove(at("work/b.xyz"));
    std::filesystem::remove(at("work/a.gjf"));
    output = init("p\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] no geometry files were found (.xyz, .gjf, .com, .inp, .log, .gms)\n");
    EXPECT_FALSE(isDirectory(at("tasks")));
    std::filesystem::current_path("/");
    configure("");
    ::setenv("MORQUILL_TASK_PATH", at("tasks").c_str(), 1);
    output = init("\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] project name cannot be inferred from current directory\n");
}

TEST_F(Init, FileSystemErrorsEndTheRunAndLeaveWhatStands) {
    write("file");
    ::setenv("MORQUILL_TASK_PATH", at("file").c_str(), 1);
    Output output = init("p\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] failed to create project: Not a directory\n");

    ::setenv("MORQUILL_TASK_PATH", at("tasks").c_str(), 1);
    output = init(std::string(300, 'n') + "\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] failed to create project: File name too long\n");

    dir("tasks/p/p.projmq");
    output = init("p\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.err, HasSubstr("[ERROR] failed to create project: "));

    link("nowhere", "tasks/q/q.projmq");
    output = init("q\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.err, HasSubstr("[ERROR] failed to create project: File exists\n"));
    EXPECT_THAT(tree("tasks/q"), ElementsAre("q.projmq -> nowhere"));

    output = init("sub/name\n");
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] failed to create project: No such file or directory\n");
}

TEST_F(Init, ATornTemplateIsTakenAwaySoThatTheNextRunMakesIt) {
    ::setenv("MORQUILL_TASK_PATH", at("tasks").c_str(), 1);
    const std::string text(1001, '#');
    write("work/task.mq", text);
    const Output output = run("p\n", [] {
        const FileSizeLimit limit(1000); // the messages go to files, too
        return runProjectInit();
    });
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[ERROR] failed to create project: File too large\n");
    EXPECT_THAT(tree("tasks"), ElementsAre("p/"));
    EXPECT_EQ(init("p\n").status, 1);
    EXPECT_EQ(readTextFile(at("tasks/p/p.projmq")), text);
}

TEST_F(Init, ANameOfAnyBytes) {
    ::setenv("MORQUILL_TASK_PATH", at("tasks").c_str(), 1);
    EXPECT_EQ(init("-p 'q\" $(x) \xff\n").status, 1);
    EXPECT_TRUE(isRegularFile(at("tasks/-p 'q\" $(x) \xff/-p 'q\" $(x) \xff.projmq")));
    EXPECT_EQ(readTextFile(at("tasks/-p 'q\" $(x) \xff/a/a.mq")), "$opt\n");
}

} // namespace
} // namespace morquill::project
