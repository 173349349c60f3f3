#include "templates/template_command.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/messages.h"
#include "support/fault.h"
#include "support/file.h"
#include "templates/library/define_section.h"
#include "templates/library/merge.h"
#include "templates/library/template_library.h"
#include "templates/library/template_text.h"
#include "templates/library/variable_template.h"
#include "templates/sample_workspace.h"
#include "templates/selector/selector.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <vector>

namespace morquill::templates {

namespace {

using console::ErrorTag;
using console::writeOut;

/// The options and names for `list`, `categories` and `merge`.
struct TemplateOptions {
    std::optional<std::string> directory;
    std::string output = "merged_task.mq";
    std::vector<std::string> names;
};

void setDirectory(TemplateOptions& options, console::Words values) {
    options.directory = values.front();
}
void setOutput(TemplateOptions& options, console::Words values) {
    options.output = values.front();
}

constexpr std::string_view directoryNeedsValue = "-d/--dir expects a value";
constexpr std::string_view outputNeedsValue = "-o/--output expects a value";

// clang-format off
constexpr console::OptionRow<TemplateOptions> listOptions[] = {
    {"-d",    console::oneValue, setDirectory, directoryNeedsValue, ErrorTag::coloured},
    {"--dir", console::oneValue, setDirectory, directoryNeedsValue, ErrorTag::coloured},
};
constexpr console::OptionRow<TemplateOptions> mergeOptions[] = {
    {"-d",       console::oneValue, setDirectory, directoryNeedsValue, ErrorTag::coloured},
    {"--dir",    console::oneValue, setDirectory, directoryNeedsValue, ErrorTag::coloured},
    {"-o",       console::oneValue, setOutput, outputNeedsValue, ErrorTag::coloured},
    {"--output", console::oneValue, setOutput, outputNeedsValue, ErrorTag::coloured},
};
// clang-format on

TemplateLibrary openLibrary(const TemplateOptions& options) {
    return loadTemplateLibrary(options.directory ? *options.directory : resolveTemplatePath());
}

using RunWord = int (*)(int argc, char** argv, int firstArgument);

/// A word of the command and the old forms that mean the same.
struct TemplateWord {
    std::string_view name;
    std::string_view letter;
    std::string_view option;
    RunWord run;
    RunWord runOld; ///< null when it is `run`
};

int runList(int argc, char** argv, int firstArgument) {
    return runTemplateList(argc, argv, firstArgument, ListOrder::byName);
}

int runCategories(int argc, char** argv, int firstArgument) {
    return runTemplateList(argc, argv, firstArgument, ListOrder::byCategory);
}

int runInteractiveIgnoringRest(int /*argc*/, char** /*argv*/, int /*firstArgument*/) {
    return runSelector();
}

int runInteractive(int argc, char** argv, int firstArgument) {
    if (argc > firstArgument) {
        throw console::colouredRefusal("template interactive does not accept extra arguments");
    }
    return runInteractiveIgnoringRest(argc, argv, firstArgument);
}

int runSample(int /*argc*/, char** /*argv*/, int /*firstArgument*/) {
    return createSampleWorkspace();
}

constexpr TemplateWord templateWords[] = {
    {"list", "-l", "--list", runList, nullptr},
    {"categories", "-c", "--category", runCategories, nullptr},
    {"merge", "-m", "--merge", runTemplateMerge, nullptr},
    {"variable", "-v", "--variable", runTemplateVariable, nullptr},
    {"interactive", "-i", "--interactive", runInteractive, runInteractiveIgnoringRest},
    {{}, "-t", "--test", nullptr, runSample}, // has no word of its own
};

int showHelp(int /*argc*/, char** argv, int /*firstArgument*/) {
    printTemplateHelp(argv[0]);
    return 0;
}

/// The operation for a word of the command. Throws `UsageError` without a message for an unknown one.
RunWord findWord(std::string_view word) {
    if (console::isHelpToken(word)) {
        return showHelp;
    }
    for (const TemplateWord& row : templateWords) {
        if (row.run != nullptr && row.name == word) {
            return row.run;
        }
    }
    throw console::UsageError(ErrorTag::none);
}

/// The row of an old form; null for an unknown one.
const TemplateWord* rowOfOldForm(std::string_view option) noexcept {
    const auto* row =
        std::find_if(std::begin(templateWords), std::end(templateWords), [option](const TemplateWord& word) {
            return word.letter == option || word.option == option;
        });
    return row == std::end(templateWords) ? nullptr : row;
}

/// The operation for an old form. Throws `UsageError` without a message for an unknown one.
RunWord findOldForm(std::string_view option) {
    const TemplateWord* row = rowOfOldForm(option);
    if (row == nullptr) {
        throw console::UsageError(ErrorTag::none);
    }
    return row->runOld != nullptr ? row->runOld : row->run;
}

/// Runs the operation that `find` returns for the word at
/// `wordIndex`; a refusal without a message shows the help.
int runForm(int argc, char** argv, int wordIndex, RunWord (*find)(std::string_view word)) {
    return console::runCommandLine(
        [&] { return find(argc > wordIndex ? argv[wordIndex] : "")(argc, argv, wordIndex + 1); },
        printTemplateHelp, argv[0], console::HelpAfter::emptyRefusal);
}

constexpr std::string_view templateHelp = R"(# Usage:
  `@ template [command] <options>`
# Commands:
  `list [-d <template_dir>]`
      -- Prints available template names.
  `categories [-d <template_dir>]`
      -- Groups templates by category.
  `merge [-o <output.mq>] [-d <template_dir>] <template...>`
      -- Combines one or more templates into a task file.
  `variable <task.mq> <var_template>`
      -- Generates a variable-definition template for a given `task.mq`.
  `interactive`
      -- Enters the interactive template-selection flow.
# Options:
  `-d, --dir <template_dir>`
      Template directory; overrides the default template path
      Used by `list` / `categories` / `merge`
  `-o, --output <output.mq>`
      Output file for `merge`; default is `merged_task.mq`; pass `-` to write to stdout
# Examples:
  `@ template list`
  `@ template categories`
  `@ template merge opt freq -o task.mq`
  `@ template merge -d ./conf/mq_templates opt freq -o -`
  `@ template variable task.mq mytemplate`
  `@ template interactive`
# Compatibility forms:
  `@ -l`
      Equivalent to: `@ template list`
  `@ -c`
      Equivalent to: `@ template categories`
  `@ -m opt freq -o task.mq`
      Equivalent to: `@ template merge opt freq -o task.mq`
  `@ -v task.mq mytemplate`
      Equivalent to: `@ template variable task.mq mytemplate`
  `@ -i`
      Equivalent to: `@ template interactive`
)";

/// Does the work of a command; when memory runs out, the message names the file being processed.
int namingFile(const std::string& path, const std::function<int()>& work) {
    try {
        return work();
    } catch (const std::exception& fault) {
        if (!isOutOfMemory(fault)) {
            throw;
        }
        throw console::colouredRefusal(faultText(fault, path));
    }
}

int mergeTemplates(const TemplateOptions& options) {
    const auto library = openLibrary(options);
    std::vector<std::string_view> texts;
    for (const auto& name : options.names) {
        const TaskTemplate* found = findTemplate(library, name);
        if (found == nullptr) {
            throw console::colouredRefusal("template not found: '" + name + "'");
        }
        texts.emplace_back(found->content);
    }
    const std::string merged = mergeTemplateTexts(texts);
    if (options.output == "-") {
        writeOut(merged);
        return 0;
    }
    if (!writeTextFile(options.output, merged)) {
        throw console::colouredRefusal("could not write output file: " + options.output);
    }
    console::printNote("wrote task file: " + options.output);
    return 0;
}

} // namespace

int runTemplate(int argc, char** argv) {
    return runForm(argc, argv, 2, findWord);
}

bool isTemplateShape(console::Words arguments) noexcept {
    return !arguments.empty() && rowOfOldForm(arguments.front()) != nullptr;
}

int runTemplateCompat(int argc, char** argv) {
    return argc < 2 ? 1 : runForm(argc, argv, 1, findOldForm);
}

int runTemplateList(int argc, char** argv, int firstArgument, ListOrder order) {
    TemplateOptions options;
    console::readWords(
        console::wordsFrom(argc, argv, firstArgument), listOptions, options,
        [](console::Words words) -> std::size_t { throw console::unknownArgument(words.front()); });
    const auto library = openLibrary(options);
    writeOut(order == ListOrder::byCategory ? formatTemplateCategories(library)
                                            : formatTemplateList(library));
    return 0;
}

int runTemplateMerge(int argc, char** argv, int firstArgument) {
    TemplateOptions options;
    console::readWords(console::wordsFrom(argc, argv, firstArgument), mergeOptions, options,
                       [&options](console::Words words) {
                           const std::string_view word = words.front();
                           if (word.empty() || word.starts_with('-')) {
                               throw console::unknownArgument(word);
                           }
                           options.names.emplace_back(word);
                           return std::size_t{1};
                       });
    if (options.names.empty()) {
        throw console::colouredRefusal("specify at least one template to merge");
    }
    return namingFile(options.output, [&options] { return mergeTemplates(options); });
}

int runTemplateVariable(int argc, char** argv, int firstArgument) {
    if (argc - firstArgument != 2) {
        throw console::colouredRefusal("template variable expects: <task.mq> <var_template>");
    }
    const std::string taskPath = argv[firstArgument];
    return namingFile(taskPath, [&] {
        writeDefineSection(taskPath, argv[firstArgument + 1]);
        return 0;
    });
}

void writeDefineSection(const std::string& taskPath, const std::string& templateName) {
    const auto text = readTextFile(taskPath);
    if (!text) {
        console::reportError("could not read file: " + taskPath);
        return;
    }
    const auto names = scanPlaceholders(*text, BuiltIns::drop);
    if (names.empty()) {
        console::printNote("file " + taskPath + " has no placeholders that require define values");
        return;
    }
    const auto templates = loadVariableTemplates(resolveTemplatePath());
    const VariableTemplate* found = findVariableTemplate(templates, templateName);
    if (found == nullptr) {
        console::reportError("variable template not found: '" + templateName + "'");
        return;
    }
    if (!writeTextFile(taskPath, replaceDefineSection(*text, buildDefineSection(names, found->values)))) {
        console::reportError("could not write file: " + taskPath);
        return;
    }
    console::printNote("wrote define section for " + taskPath + " using variable template: " + templateName);
}

void printTemplateHelp(std::string_view programPath) {
    console::printHelp(templateHelp, programPath);
}

} // namespace morquill::templates
