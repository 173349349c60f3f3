#include "templates/template_command.h"

#include "frontend/console.h"
#include "support/fault.h"
#include "support/file.h"
#include "templates/define_section.h"
#include "templates/merge.h"
#include "templates/sample_workspace.h"
#include "templates/selector.h"
#include "templates/template_library.h"
#include "templates/template_text.h"
#include "templates/variable_template.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

namespace morquill::templates {

namespace {

using frontend::greenText;
using frontend::writeErr;
using frontend::writeOut;

/// A refused command line: the message behind the error tag, status 1.
int refuse(const std::string& message) {
    writeErr(frontend::errorTag() + message + "\n");
    return 1;
}

int showHelp(char** argv) {
    printTemplateHelp(argv[0]);
    return 1;
}

bool isDirectoryOption(std::string_view argument) noexcept {
    return argument == "-d" || argument == "--dir";
}

bool isOutputOption(std::string_view argument) noexcept {
    return argument == "-o" || argument == "--output";
}

constexpr const char* directoryNeedsValue = " -d/--dir expects a value";
constexpr const char* outputNeedsValue = " -o/--output expects a value";

/// A word of the command with the old forms that stand for it.
struct TemplateWord {
    std::string_view name;
    std::string_view letter;
    std::string_view option;
    int (*run)(int argc, char** argv, int firstArgument);
    int (*runOld)(int argc, char** argv, int firstArgument); ///< null: the same as `run`
};

int runList(int argc, char** argv, int firstArgument) {
    return runTemplateList(argc, argv, firstArgument, false);
}

int runCategories(int argc, char** argv, int firstArgument) {
    return runTemplateList(argc, argv, firstArgument, true);
}

int runInteractiveAnyway(int /*argc*/, char** /*argv*/, int /*firstArgument*/) {
    return runSelector();
}

int runInteractive(int argc, char** argv, int firstArgument) {
    return argc > firstArgument ? refuse(" template interactive does not accept extra arguments")
                                : runInteractiveAnyway(argc, argv, firstArgument);
}

int runSample(int /*argc*/, char** /*argv*/, int /*firstArgument*/) {
    return createSampleWorkspace();
}

constexpr TemplateWord templateWords[] = {
    {"list", "-l", "--list", runList, nullptr},
    {"categories", "-c", "--category", runCategories, nullptr},
    {"merge", "-m", "--merge", runTemplateMerge, nullptr},
    {"variable", "-v", "--variable", runTemplateVariable, nullptr},
    {"interactive", "-i", "--interactive", runInteractive, runInteractiveAnyway},
    {{}, "-t", "--test", nullptr, runSample}, // has no word of its own
};

/// A row of the help: its form and what is told about it.
struct HelpRow {
    std::string form;
    std::vector<std::string> lines;
};

std::string helpRows(std::string_view heading, const std::vector<HelpRow>& rows) {
    std::string text = frontend::cyanHeading(heading) + "\n";
    for (const auto& row : rows) {
        text += "  " + greenText(row.form) + "\n";
        for (const auto& line : row.lines) {
            text += "      " + line + "\n";
        }
    }
    return text;
}

/// The examples of the help; those with an old form are shown a second time beside it.
struct HelpExample {
    std::string_view form;
    std::string_view oldForm;
};

constexpr HelpExample helpExamples[] = {
    {" template list", " -l"},
    {" template categories", " -c"},
    {" template merge opt freq -o task.mq", " -m opt freq -o task.mq"},
    {" template merge -d ./conf/mq_templates opt freq -o -", {}},
    {" template variable task.mq mytemplate", " -v task.mq mytemplate"},
    {" template interactive", " -i"},
};

/// Does the work of a command; when the memory runs out, the message names the file that it works on.
int namingFile(const std::string& path, const std::function<int()>& work) {
    try {
        return work();
    } catch (const std::exception& fault) {
        if (!isOutOfMemory(fault)) {
            throw;
        }
        return refuse(" " + faultText(fault, path));
    }
}

int mergeTemplates(const std::vector<std::string>& names, const std::string& pathList,
                   const std::string& output) {
    const auto library = loadTemplateLibrary(pathList);
    std::vector<std::string_view> texts;
    for (const auto& name : names) {
        const TaskTemplate* found = findTemplate(library, name);
        if (found == nullptr) {
            return refuse(" template not found: '" + name + "'");
        }
        texts.emplace_back(found->content);
    }
    const std::string merged = mergeTemplateTexts(texts);
    if (output == "-") {
        writeOut(merged);
        return 0;
    }
    if (!writeTextFile(output, merged)) {
        return refuse(" could not write output file: " + output);
    }
    writeOut("[mqkit] wrote task file: " + output + "\n");
    return 0;
}

} // namespace

int runTemplate(int argc, char** argv) {
    if (argc < 3) {
        return showHelp(argv);
    }
    const std::string_view word = argv[2];
    if (frontend::isHelpToken(word)) {
        printTemplateHelp(argv[0]);
        return 0;
    }
    const auto* row =
        std::find_if(std::begin(templateWords), std::end(templateWords),
                     [&](const auto& entry) { return entry.run != nullptr && entry.name == word; });
    return row == std::end(templateWords) ? showHelp(argv) : row->run(argc, argv, 3);
}

int runTemplateCompat(int argc, char** argv) {
    if (argc < 2) {
        return 1;
    }
    const std::string_view option = argv[1];
    const auto* row =
        std::find_if(std::begin(templateWords), std::end(templateWords),
                     [&](const auto& entry) { return entry.letter == option || entry.option == option; });
    if (row == std::end(templateWords)) {
        return showHelp(argv);
    }
    return (row->runOld != nullptr ? row->runOld : row->run)(argc, argv, 2);
}

int runTemplateList(int argc, char** argv, int firstArgument, bool byCategory) {
    std::optional<std::string> directory;
    for (int i = firstArgument; i < argc; i += 2) {
        if (!isDirectoryOption(argv[i])) {
            return refuse(" unknown argument: " + std::string(argv[i]));
        }
        if (i + 1 == argc) {
            return refuse(directoryNeedsValue);
        }
        directory = argv[i + 1];
    }
    const auto library = loadTemplateLibrary(directory ? *directory : resolveTemplatePath());
    writeOut(byCategory ? formatTemplateCategories(library) : formatTemplateList(library));
    return 0;
}

int runTemplateMerge(int argc, char** argv, int firstArgument) {
    std::string output = "merged_task.mq";
    std::optional<std::string> directory;
    std::vector<std::string> names;
    for (int i = firstArgument; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const bool isLast = i + 1 == argc;
        if (isOutputOption(argument)) {
            if (isLast) {
                return refuse(outputNeedsValue);
            }
            output = argv[++i];
        } else if (isDirectoryOption(argument)) {
            if (isLast) {
                return refuse(directoryNeedsValue);
            }
            directory = argv[++i];
        } else if (argument.empty() || argument.starts_with('-')) {
            return refuse(" unknown argument: " + std::string(argument));
        } else {
            names.emplace_back(argument);
        }
    }
    if (names.empty()) {
        return refuse(" specify at least one template to merge");
    }
    return namingFile(output, [&] {
        return mergeTemplates(names, directory ? *directory : resolveTemplatePath(), output);
    });
}

int runTemplateVariable(int argc, char** argv, int firstArgument) {
    if (argc - firstArgument != 2) {
        return refuse(" template variable expects: <task.mq> <var_template>");
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
        writeErr("[mqkit][ERROR] could not read file: " + taskPath + "\n");
        return;
    }
    const auto names = scanPlaceholders(*text, true);
    if (names.empty()) {
        writeOut("[mqkit] file " + taskPath + " has no placeholders that require define values\n");
        return;
    }
    const auto templates = loadVariableTemplates(resolveTemplatePath());
    const VariableTemplate* found = findVariableTemplate(templates, templateName);
    if (found == nullptr) {
        writeErr("[mqkit][ERROR] variable template not found: '" + templateName + "'\n");
        return;
    }
    if (!writeTextFile(taskPath, replaceDefineSection(*text, buildDefineSection(names, found->values)))) {
        writeErr("[mqkit][ERROR] could not write file: " + taskPath + "\n");
        return;
    }
    writeOut("[mqkit] wrote define section for " + taskPath + " using variable template: " + templateName +
             "\n");
}

void printTemplateHelp(std::string_view programPath) {
    const std::string program = frontend::toolBaseName(programPath);
    std::vector<HelpRow> examples;
    std::vector<HelpRow> oldForms;
    for (const auto& example : helpExamples) {
        const std::string form = program + std::string(example.form);
        examples.push_back({form, {}});
        if (!example.oldForm.empty()) {
            oldForms.push_back(
                {program + std::string(example.oldForm), {"Equivalent to: " + greenText(form)}});
        }
    }
    writeOut(
        helpRows("Usage:", {{program + " template [command] <options>", {}}}) +
        helpRows("Commands:",
                 {{"list [-d <template_dir>]", {"-- Prints available template names."}},
                  {"categories [-d <template_dir>]", {"-- Groups templates by category."}},
                  {"merge [-o <output.mq>] [-d <template_dir>] <template...>",
                   {"-- Combines one or more templates into a task file."}},
                  {"variable <task.mq> <var_template>",
                   {"-- Generates a variable-definition template for a given " + greenText("task.mq") + "."}},
                  {"interactive", {"-- Enters the interactive template-selection flow."}}}) +
        helpRows("Options:",
                 {{"-d, --dir <template_dir>",
                   {"Template directory; overrides the default template path",
                    "Used by " + greenText("list") + " / " + greenText("categories") + " / " +
                        greenText("merge")}},
                  {"-o, --output <output.mq>",
                   {"Output file for " + greenText("merge") + "; default is " + greenText("merged_task.mq") +
                    "; pass " + greenText("-") + " to write to stdout"}}}) +
        helpRows("Examples:", examples) + helpRows("Compatibility forms:", oldForms));
}

} // namespace morquill::templates
