// Words, options and statuses. The command-line tests compare the whole output.

#include "templates/template_command.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/scratch_tree.h"

namespace morquill::templates {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class TemplateCommand : public ScratchTree {
  protected:
    TemplateCommand() {
        write("lib/opt.mq", "$opt\n  %keywords [func]\n");
        write("other/sp.mq", "$sp\n  %keywords sp\n");
        write("lib/vars.yaml", "name: dft\nvariables:\n  func: PBE0\n");
    }

    Output words(std::vector<std::string> all) {
        all.insert(all.begin(), {"mqkit", "template"});
        return runCommand(runTemplate, std::move(all));
    }
    Output letters(std::vector<std::string> all) {
        all.insert(all.begin(), "mqkit");
        return runCommand(runTemplateCompat, std::move(all));
    }

    console::testing::ScopedEnv path{"MORQUILL_TEMPLATE_PATH", at("lib")};
    console::testing::ScopedEnv home{"HOME", at("home")};
};

TEST_F(TemplateCommand, ListsTheConfiguredDirectoryOrTheGivenOne) {
    EXPECT_EQ(words({"list"}).out, "Available templates:\n  opt (General)\n");
    EXPECT_EQ(words({"list", "-d", "other"}).out, "Available templates:\n  sp (General)\n");
    EXPECT_EQ(words({"list", "-d", "lib", "--dir", "other"}).out, "Available templates:\n  sp (General)\n");
    EXPECT_EQ(words({"categories"}).out, "General:\n  opt\n\n");
    EXPECT_EQ(letters({"-l"}).out, words({"list"}).out);
    EXPECT_EQ(letters({"--category"}).out, words({"categories"}).out);
}

TEST_F(TemplateCommand, MergesIntoAFileOrToStandardOutput) {
    const Output shown = words({"merge", "opt", "-o", "-"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.out, HasSubstr("$opt\n"));
    const Output written = words({"merge", "opt"});
    EXPECT_EQ(written.out, "[mqkit] wrote task file: merged_task.mq\n");
    EXPECT_EQ(readTextFile(at("merged_task.mq")), shown.out);
    EXPECT_EQ(letters({"-m", "-d", "other", "sp", "--output", "x.mq"}).out,
              "[mqkit] wrote task file: x.mq\n");
    EXPECT_THAT(readTextFile(at("x.mq")).value_or(""), HasSubstr("$sp\n"));
}

TEST_F(TemplateCommand, AVariableTemplateFillsTheDefinesAndReportsIt) {
    write("t.mq", "$opt\n  %keywords [func]\n");
    const Output output = words({"variable", "t.mq", "dft"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.out, "[mqkit] wrote define section for t.mq using variable template: dft\n");
    EXPECT_THAT(readTextFile(at("t.mq")).value_or(""), StartsWith("define:\n  func: PBE0\n"));
    // A failure is reported and does not change the status.
    const std::pair<std::vector<std::string>, std::string> rows[] = {
        {{"missing.mq", "dft"}, "[mqkit][ERROR] could not read file: missing.mq\n"},
        {{"lib/opt.mq", "none"}, "[mqkit][ERROR] variable template not found: 'none'\n"},
    };
    for (const auto& [names, error] : rows) {
        const Output failed = words({"variable", names[0], names[1]});
        EXPECT_EQ(failed.status, 0) << error;
        EXPECT_EQ(failed.err, error);
    }
    EXPECT_EQ(words({"variable", "other/sp.mq", "dft"}).out,
              "[mqkit] file other/sp.mq has no placeholders that require define values\n");
}

TEST_F(TemplateCommand, RefusalsNameWhatIsWrong) {
    struct Row {
        std::vector<std::string> words;
        const char* error;
    };
    const Row rows[] = {
        {{"list", "opt"}, " unknown argument: opt"},
        {{"list", "-d"}, " -d/--dir expects a value"},
        {{"categories", "-d", "lib", "--dir"}, " -d/--dir expects a value"},
        {{"merge"}, " specify at least one template to merge"},
        {{"merge", "-o"}, " -o/--output expects a value"},
        {{"merge", "opt", "-x"}, " unknown argument: -x"},
        {{"merge", ""}, " unknown argument: "},
        {{"merge", "opt", "none"}, " template not found: 'none'"},
        {{"merge", "opt", "-o", "no/where.mq"}, " could not write output file: no/where.mq"},
        {{"variable", "t.mq"}, " template variable expects: <task.mq> <var_template>"},
        {{"interactive", "now"}, " template interactive does not accept extra arguments"},
    };
    for (const auto& row : rows) {
        const Output output = words(row.words);
        EXPECT_EQ(output.status, 1) << row.error;
        EXPECT_EQ(output.out, "") << row.error;
        EXPECT_EQ(output.err, "[mqkit][ERROR]" + std::string(row.error) + "\n");
    }
}

TEST_F(TemplateCommand, OnlyAHelpTokenShowsTheHelpWithSuccess) {
    const std::string usage = "Usage:\n  mqkit template [command] <options>\nCommands:\n";
    for (const char* token : {"-h", "help", "--help"}) {
        const Output output = words({token});
        EXPECT_EQ(output.status, 0) << token;
        EXPECT_THAT(output.out, StartsWith(usage)) << token;
    }
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{}, {"lists"}, {"List"}}) {
        const Output output = words(wrong);
        EXPECT_EQ(output.status, 1);
        EXPECT_THAT(output.out, StartsWith(usage));
    }
    EXPECT_EQ(letters({"list"}).status, 1);
    EXPECT_EQ(letters({}).status, 1);
    EXPECT_EQ(letters({}).out, "");
}

TEST(TemplateShape, IsKnownByItsFirstWord) {
    for (const char* word : {"-t", "-i", "-l", "-c", "-m", "-v", "--test", "--list", "--interactive",
                             "--category", "--merge", "--variable"}) {
        const std::vector<const char*> words{word, "x"};
        EXPECT_TRUE(isTemplateShape(words)) << word;
    }
    const std::vector<const char*> others[] = {{}, {""}, {"list"}, {"x", "-t"}, {"-T"}};
    for (const auto& words : others) {
        EXPECT_FALSE(isTemplateShape(words)) << words.size();
    }
}

} // namespace
} // namespace morquill::templates
