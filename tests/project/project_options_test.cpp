#include "project/project_options.h"

#include "console/command_line.h"
#include "fixtures/scratch_tree.h"
#include "support/text.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

/// One word per option and value, so that a whole record is compared at a glance.
std::string show(const ProjectOptions& options) {
    static constexpr std::string_view names[] = {"none",    "init", "add",    "update",
                                                 "rebuild", "exec", "collect"};
    std::string text(names[static_cast<std::size_t>(options.subCommand)]);
    const auto list = [&](std::string_view label, const std::vector<std::string>& values) {
        if (!values.empty()) {
            text += " " + std::string(label) + "=" + join(values, "|");
        }
    };
    list("path", options.path.empty() ? std::vector<std::string>{} : std::vector{options.path});
    list("names", options.names);
    list("xyz", options.xyzFiles);
    list("cmd", options.command.empty() ? std::vector<std::string>{} : std::vector{options.command});
    list("patterns", options.patterns);
    text += options.dryRun ? " dry" : "";
    text += options.runComd ? " comd" : "";
    text += options.runScript ? " script" : "";
    return text;
}

using Words = std::vector<std::string>;

class ProjectOptionsTest : public ScratchTree {
  protected:
    /// The record, or "-" and the message that came before the help.
    std::string parse(const Words& words, ProjectOptions (*read)(int, const char* const*)) {
        std::vector<const char*> argv;
        for (const std::string& word : words) {
            argv.push_back(word.c_str());
        }
        argv.push_back(nullptr);
        std::string shown;
        const Output output = run("", [&] {
            try {
                shown = show(read(static_cast<int>(words.size()), argv.data()));
                return 1;
            } catch (const console::UsageError& error) {
                console::reportUsageError(error);
                return 0;
            }
        });
        EXPECT_EQ(output.out, "");
        if (output.status == 1) {
            EXPECT_EQ(output.err, "");
            return shown;
        }
        return "-" + output.err;
    }
    std::string word(Words words) {
        words.insert(words.begin(), {"mqkit", "project"});
        return parse(words, readProjectWords);
    }
    std::string older(Words words) {
        words.insert(words.begin(), "mqkit");
        return parse(words, readCompatibilityWords);
    }
    std::string update(Words words) {
        words.insert(words.begin(), "mqkit");
        return parse(words, [](int argc, const char* const* argv) {
            try {
                return readUpdateWords(argc, argv);
            } catch (const console::HelpRequest&) {
                ProjectOptions options;
                options.subCommand = ProjectSubCommand::Update;
                options.path = "help";
                return options;
            }
        });
    }
};

TEST_F(ProjectOptionsTest, NamesAreSplitTrimmedAndKeptOnce) {
    ProjectOptions options;
    appendNames(options, "opt,,soc, opt ,\ta b\t");
    appendNames(options, "opt");
    appendNames(options, "");
    appendNames(options, " , ");
    appendNames(options, "Opt");
    EXPECT_THAT(options.names, ElementsAre("opt", "soc", "a b", "Opt"));
}

TEST_F(ProjectOptionsTest, WhatCountsAsAProjectPath) {
    write("p/demo.projmq");
    write("p/mol/a.xyz");
    write("plain/a.xyz");
    write("plain/t.mq");
    dir("plain/d.mq");
    for (const char* token :
         {"missing.projmq", ".projmq", "p", "p/mol", "p/mol/a.xyz", "plain/t.mq", "./p/"}) {
        EXPECT_TRUE(isProjectPathToken(token)) << token;
    }
    for (const char* token : {"", "-p", "-x.projmq", "plain", "plain/a.xyz", "plain/d.mq", "missing.mq",
                              "p/missing", "x.projmq.bak"}) {
        EXPECT_FALSE(isProjectPathToken(token)) << token;
    }
}

TEST_F(ProjectOptionsTest, SubCommandsAreKnownByUniquePrefix) {
    const struct {
        Words words;
        std::string result;
    } rows[] = {
        {{"init"}, "init"},
        {{"I"}, "init"},
        {{"u"}, "update"},
        {{"UPDATE"}, "update"},
        {{"r"}, "rebuild"},
        {{"e"}, "exec"},
        {{"co"}, "collect"},
        {{"a"}, "add"},
        {{}, "-"},
        {{"-h"}, "-"},
        {{"help"}, "-"},
        {{"--help"}, "-"},
        {{"HELP"}, "-"},
        {{"x"}, "-"},
        {{"updates"}, "-"},
        {{"--path"}, "-"},
        {{""},
         "-[mqkit][ERROR] ambiguous project command prefix:  (matches: init, add, update, rebuild, exec, "
         "collect)\n"},
        {{"init", "x"}, "-"},
        {{"init", "-h"}, "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(word(row.words), row.result) << join(row.words, " ");
    }
}

TEST_F(ProjectOptionsTest, WordForm) {
    const std::string comd = "-[mqkit][ERROR] --run-comd is only valid with project update.\n";
    const std::string script = "-[mqkit][ERROR] --run-script is only valid with project rebuild.\n";
    const struct {
        Words words;
        std::string result;
    } rows[] = {
        {{"update"}, "update"},
        {{"update", "-n", "opt,,soc", "-n", "opt"}, "update names=opt|soc"},
        {{"update", "--name", "a", "--path", "p", "--run-comd", "--dry-run"},
         "update path=p names=a dry comd"},
        {{"update", "x.projmq", "--path", "p"}, "-"},
        {{"update", "--path", "p", "--path", "q"}, "-"},
        {{"update", "--path", "", "--path", "q"}, "update path=q"},
        {{"update", "--path"}, "-"},
        {{"update", "-n"}, "-"},
        {{"update", "--name"}, "-"},
        {{"update", "-n", "-h"}, "update names=-h"},
        {{"update", "--path", "--dry-run"}, "update path=--dry-run"},
        {{"update", "--run-script"}, script},
        {{"update", "--cmd", "x"}, "-"},
        {{"update", "--"}, "-"},
        {{"update", "word"}, "-"},
        {{"update", "-x"}, "-"},
        {{"update", ""}, "-"},
        {{"update", "--no-color"}, "-"},
        {{"update", "-h"}, "-"},
        {{"update", "a.projmq", "b.projmq"}, "-"},
        {{"rebuild", "--run-script"}, "rebuild script"},
        {{"rebuild", "--run-runner"}, "rebuild script"},
        {{"rebuild", "--run-comd"}, comd},
        {{"exec", "--run-comd"}, comd},
        {{"collect", "--run-runner"}, script},
        {{"add", "a.xyz", "b.xyz", "a.xyz"}, "add xyz=a.xyz|b.xyz|a.xyz"},
        {{"add", "a.xyz", "b.projmq"}, "add path=b.projmq xyz=a.xyz"},
        {{"add", "b.projmq", "c.projmq"}, "add path=b.projmq xyz=c.projmq"},
        {{"add", "--path", "p", "b.projmq"}, "add path=p xyz=b.projmq"},
        {{"add", "-n", "x", "a.xyz"}, "add names=x xyz=a.xyz"},
        {{"add", "--", "-a.xyz"}, "-"},
        {{"add", "a.xyz", "help"}, "-"},
        {{"add", "--dry-run", "./-a.xyz"}, "add xyz=./-a.xyz dry"},
        {{"collect", "-n", "a", "*.log", "plot/*.png"}, "collect names=a patterns=*.log|plot/*.png"},
        {{"collect", "-n", "a", " x "}, "collect names=a patterns= x "},
        {{"exec", "-n", "a", "--", "ls", "-l", "--dry-run"}, "exec names=a cmd=ls -l --dry-run"},
        {{"exec", "-n", "a", "ls", "-l", "--path", "x", "-h"}, "exec names=a cmd=ls -l --path x -h"},
        {{"exec", "-n", "a", "--cmd", "x", "y"}, "exec names=a cmd=y"},
        {{"exec", "-n", "a", "--cmd", "x", "--cmd", "z"}, "exec names=a cmd=z"},
        {{"exec", "--cmd", "x", "--"}, "exec cmd=x"},
        {{"exec", "--", "a", "--", "help", ""}, "exec cmd=a -- help "},
        {{"exec", "--cmd"}, "-"},
        {{"exec", "--dry-run", "x.projmq", "y.projmq"}, "exec path=x.projmq cmd=y.projmq dry"},
        {{"exec", "-h", "--", "x"}, "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(word(row.words), row.result) << join(row.words, " ");
    }
}

TEST_F(ProjectOptionsTest, APathInsideAProjectIsTakenAsPath) {
    write("p/demo.projmq");
    write("p/a.xyz");
    enter("p");
    EXPECT_EQ(word({"add", "a.xyz", "b.xyz"}), "add path=a.xyz xyz=b.xyz");
    EXPECT_EQ(word({"add", "--path", ".", "a.xyz"}), "add path=. xyz=a.xyz");
    EXPECT_EQ(older({"-n", "opt", "."}), "none path=. names=opt");
}

TEST_F(ProjectOptionsTest, OlderProjectShape) {
    const std::string tag = "-[mqkit][ERROR] ";
    const struct {
        Words words;
        std::string result;
    } rows[] = {
        {{"a.projmq", "-n", "opt"}, "none path=a.projmq names=opt"},
        {{"a.projmq", "-n", "opt", "--exec", "ls", "-l", "--dry-run"},
         "exec path=a.projmq names=opt cmd=ls -l dry"},
        {{"--exec", "-n", "x", "-n", "opt"}, "exec names=opt cmd=-n x"},
        {{"--exec", "a", "help", "--help"}, "-"},
        {{"--exec", "a", "b.projmq", "-x"}, tag + "unknown argument: -x\n"},
        {{"--exec", "a", "-x.projmq"}, "exec cmd=a -x.projmq"},
        {{"--exec", "a", "--exec", "b"}, "exec cmd=b"},
        {{"--exec"}, tag + "--exec expects a value\n"},
        {{"--collect"}, tag + "--collect expects at least one argument\n"},
        {{"--collect", "-h", " *.log ", " ", "-n", "a"}, "collect names=a patterns=-h|*.log"},
        {{"--collect", "a", "--collect", "b"}, "collect patterns=a|b"},
        {{"--rebuild", "--rebuild", "--run-runner"}, "rebuild script"},
        {{"--run-script", "--rebuild"}, "rebuild script"},
        {{"--rebuild", "--exec"}, tag + "--exec cannot be combined with --collect or --rebuild\n"},
        {{"--exec", "a", "--collect", "b"}, tag + "--collect cannot be combined with --exec or --rebuild\n"},
        {{"--collect", "a", "--rebuild"}, tag + "--rebuild cannot be combined with --exec or --collect\n"},
        {{"--run-comd"}, tag + "--run-comd is only valid with project update.\n"},
        {{"-n"}, tag + "-n/--name expects a value\n"},
        {{"--name"}, tag + "-n/--name expects a value\n"},
        {{"--run-script"}, tag + "--run-script is only valid with rebuild.\n"},
        {{"--exec", "a", "--run-runner"}, tag + "--run-script is only valid with rebuild.\n"},
        {{"-n", "opt", "--path", "x", "--rebuild"}, tag + "unknown argument: --path\n"},
        {{"a.projmq", "b.projmq"}, tag + "unknown argument: b.projmq\n"},
        {{"-n", "a", ""}, tag + "unknown argument: \n"},
        {{"-n", "a", "--help"}, "-"},
        {{}, "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(older(row.words), row.result) << join(row.words, " ");
    }
}

TEST_F(ProjectOptionsTest, OlderUpdateShape) {
    const std::string tag = "-[mqkit][ERROR] ";
    const struct {
        Words words;
        std::string result;
    } rows[] = {
        {{"-u"}, "update"},
        {{"-b"}, "update"},
        {{"--batch"}, "update"},
        {{"--update", "x", "-n", "a,b", "--run-comd", "--dry-run"}, "update path=x names=a|b dry comd"},
        {{"-u", "--path", "x", "--name", "a"}, "update path=x names=a"},
        {{"-u", "--path"}, "-"},
        {{"-u", "x", "--path", "y"}, "-"},
        {{"-u", "-n"}, tag + "-n/--name expects a value\n"},
        {{"-u", "-h"}, "update path=help"},
        {{"-u", "x", "y", "-h"}, tag + "unknown argument: y\n"},
        {{"-u", "--rebuild"}, tag + "unknown argument: --rebuild\n"},
        {{"-u", ""}, tag + "unknown argument: \n"},
        {{"-x"}, "-"},
        {{}, "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(update(row.words), row.result) << join(row.words, " ");
    }
}

TEST(OlderProjectShapes, AreKnownByTheirOptionsOrByAProjectFile) {
    const std::vector<const char*> projects[] = {{"x", "-n"}, {"--run-runner"}, {"--dry-run"}, {"a.projmq"}};
    for (const auto& words : projects) {
        EXPECT_TRUE(isProjectShape(words)) << words.back();
    }
    const std::vector<const char*> others[] = {{}, {"-h"}, {"help"}, {"--help"}, {"--path"}, {"-a.projmq"}};
    for (const auto& words : others) {
        EXPECT_FALSE(isProjectShape(words)) << words.size();
    }
    const std::vector<const char*> updates[] = {{"-b"}, {"--batch"}, {"-u", "x"}, {"--update"}};
    for (const auto& words : updates) {
        EXPECT_TRUE(isUpdateShape(words)) << words.front();
    }
    const std::vector<const char*> noUpdates[] = {{}, {"x", "-u"}, {"-U"}};
    for (const auto& words : noUpdates) {
        EXPECT_FALSE(isUpdateShape(words)) << words.size();
    }
}

} // namespace
} // namespace morquill::project
