#include "views/file_commands.h"

#include "frontend/console.h"
#include "frontend/logger.h"
#include "support/fault.h"
#include "support/file.h"
#include "taskdsl/task_parser.h"
#include "views/canonical_writer.h"

#include <exception>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace morquill::views {

using frontend::cyanHeading;
using frontend::errorTag;
using frontend::greenText;
using frontend::writeErr;
using frontend::writeOut;

namespace {

/// Plain on a terminal too; `expand` and what comes after the arguments use the coloured error tag.
constexpr std::string_view plainErrorTag = "[mqkit][ERROR]";

struct FileCommandOptions {
    std::string inputPath;
    std::string outputPath;
    bool inPlace = false;
    bool expanded = false;
};

/// What tells the three commands apart while their arguments are read.
struct CommandForm {
    std::string_view name;
    bool allowsInPlace;
    bool allowsExpanded;
    bool colouredMessages;
    bool leavesExtraFiles; ///< what extra files beside the result bring is not written into it
};

constexpr CommandForm fmtForm{"fmt", true, false, false, true};
constexpr CommandForm migrateForm{"migrate", true, false, false, true};
constexpr CommandForm expandForm{"expand", false, true, true, false};

int refuse(const CommandForm& form, std::string_view text) {
    writeErr((form.colouredMessages ? errorTag() : std::string(plainErrorTag)) + " " + std::string(text) +
             "\n");
    return 1;
}

int refuseTagged(std::string_view text) {
    writeErr(errorTag() + " " + std::string(text) + "\n");
    return 1;
}

bool isOutputOption(std::string_view argument) noexcept {
    return argument == "-o" || argument == "--out" || argument == "--output";
}

/// Reads the arguments behind the command word; 0, or the exit status of a refusal that was told.
int readArguments(const CommandForm& form, int argc, char** argv, FileCommandOptions& options) {
    const auto missingPath = [&form] {
        return refuse(form, std::string(form.name) + " expects a <task.mq> path");
    };
    if (argc < 3) {
        return missingPath();
    }
    bool hasInput = false;
    for (int i = 2; i < argc; ++i) {
        const std::string argument = argv[i];
        if (isOutputOption(argument)) {
            if (i + 1 == argc) {
                return refuse(form, argument + " expects a value");
            }
            options.outputPath = argv[++i];
        } else if (form.allowsInPlace && (argument == "-i" || argument == "--in-place")) {
            options.inPlace = true;
        } else if (form.allowsExpanded && (argument == "--expanded" || argument == "--matrix-expanded")) {
            options.expanded = true;
        } else if (argument.empty() || argument.front() == '-') {
            // What is unknown is told with the coloured tag by every command.
            return refuseTagged("unknown argument: " + argument);
        } else if (hasInput) {
            return refuse(form, "unexpected extra path: " + argument);
        } else {
            options.inputPath = argument;
            hasInput = true;
        }
    }
    if (!hasInput) {
        return missingPath();
    }
    if (options.inPlace && !options.outputPath.empty()) {
        return refuse(form, "use either --in-place or --out, not both");
    }
    return 0;
}

int reportWritten(const std::string& path) {
    writeOut("[mqkit] wrote task file: " + path + "\n");
    return 0;
}

int deliverCanonicalText(std::string text, const FileCommandOptions& options) {
    if (options.inPlace) {
        if (!writeTextFile(options.inputPath, text)) {
            writeErr(std::string(plainErrorTag) + " could not write file: " + options.inputPath + "\n");
            return 1;
        }
        return reportWritten(options.inputPath);
    }
    if (!options.outputPath.empty()) {
        if (!writeTextFile(options.outputPath, text)) {
            return refuseTagged("could not write output file: " + options.outputPath);
        }
        return reportWritten(options.outputPath);
    }
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    writeOut(text);
    return 0;
}

/// True when whoever reads the result finds the extra files of the input beside it. A result that replaces
/// one of them has to hold what that one held.
bool isWrittenBesideInput(const FileCommandOptions& options) {
    const std::filesystem::path output(options.inPlace ? options.inputPath : options.outputPath);
    const auto directory = [](const std::filesystem::path& file) {
        return normalisedPath(file.has_parent_path() ? file.parent_path().string() : ".");
    };
    return options.inPlace ||
           (!output.empty() && output.filename() != "extra.mq" && output.filename() != "extra.yaml" &&
            directory(output) == directory(options.inputPath));
}

/// A file that is written in place must be a regular one; otherwise a pipe or a terminal serves, too.
taskdsl::TaskDocument readDocument(const FileCommandOptions& options, bool allowLegacy) {
    taskdsl::TaskParser parser(allowLegacy);
    return options.inPlace ? parser.parseFile(options.inputPath) : parser.parseInput(options.inputPath);
}

int convert(const CommandForm& form, const FileCommandOptions& options, bool allowLegacy) {
    try {
        auto document = readDocument(options, allowLegacy);
        if (form.leavesExtraFiles && isWrittenBesideInput(options)) {
            document = taskdsl::withoutImplicitContent(std::move(document));
        }
        const auto view = options.expanded ? CanonicalView::matrixExpandedView : CanonicalView::sourceView;
        return deliverCanonicalText(renderCanonicalDocument(document, view, frontend::logWarning), options);
    } catch (const std::exception& error) {
        return refuseTagged(faultText(error, options.inputPath));
    }
}

int runRewriteCommand(int argc, char** argv, bool allowLegacy, const CommandForm& form) {
    FileCommandOptions options;
    if (const int status = readArguments(form, argc, argv, options); status != 0) {
        return status;
    }
    return convert(form, options, allowLegacy);
}

/// One line of a help text: plain text, a heading, or text whose first part stands in green.
void printRewriteHelp(std::string_view programPath, std::string_view name, std::string_view purpose,
                      std::string_view promise, std::string_view participle, std::string_view example) {
    const std::string prog = frontend::toolBaseName(programPath);
    const std::string command = prog + " " + std::string(name) + " ";
    const std::string written(participle);
    const std::string file(example);
    writeOut(cyanHeading("Usage:") + "\n  " + greenText(command + "<task.mq> [-o <output.mq> | --in-place]") +
             "\n" + "      -- " + std::string(purpose) + "\n" + "      -- " + std::string(promise) + "\n" +
             "      -- Choose exactly one output mode: " + greenText("-o") + " for a new file, or " +
             greenText("--in-place") + " to overwrite the source file.\n\n" + cyanHeading("Options:") +
             "\n  " + greenText("-o, --output <output.mq>") + "\n      Write " + written +
             " output to a new file\n  " + greenText("--in-place") +
             "\n      Overwrite the source task file\n\n" + cyanHeading("Examples:") + "\n  " +
             greenText(command + file + " -o " + written + ".mq") + "\n  " +
             greenText(command + file + " --in-place") + "\n");
}

} // namespace

void printFmtHelp(std::string_view programPath) {
    printRewriteHelp(programPath, "fmt", "Reformats a task file into canonical DSL v2 layout.",
                     "Formatting only; task semantics are preserved.", "formatted", "task.mq");
}

int runFmt(int argc, char** argv) {
    return runRewriteCommand(argc, argv, false, fmtForm);
}

void printMigrateHelp(std::string_view programPath) {
    printRewriteHelp(
        programPath, "migrate", "Converts legacy task syntax into canonical DSL v2 output.",
        "Intended for historical files, compatibility forms, or task files that need a unified modern "
        "layout.",
        "migrated", "legacy.mq");
}

int runMigrate(int argc, char** argv) {
    return runRewriteCommand(argc, argv, true, migrateForm);
}

void printExpandHelp(std::string_view programPath) {
    const std::string command = frontend::toolBaseName(programPath) + " expand ";
    writeOut(cyanHeading("Usage:") + "\n  " + greenText(command + "<task.mq> [-o <output.mq>] [--expanded]") +
             "\n      -- Resolves task/YAML includes, contextual fragments, libraries, and @foreach blocks.\n"
             "      -- Emits canonical DSL v2 without modifying the source file.\n"
             "      -- By default matrix declarations remain unexpanded.\n\n" +
             cyanHeading("Options:") + "\n  " + greenText("-o, --output <output.mq>") +
             "\n      Write expanded output to a file instead of stdout\n  " +
             greenText("--expanded, --matrix-expanded") +
             "\n      Emit final matrix-expanded task blocks and remove the matrix declaration\n\n" +
             cyanHeading("Examples:") + "\n  " + greenText(command + "task.mq") + "\n  " +
             greenText(command + "task.mq --expanded -o flattened.mq") + "\n");
}

int runExpand(int argc, char** argv) {
    FileCommandOptions options;
    if (const int status = readArguments(expandForm, argc, argv, options); status != 0) {
        return status;
    }
    if (!options.outputPath.empty() &&
        normalisedPath(options.inputPath) == normalisedPath(options.outputPath)) {
        return refuseTagged("expand never overwrites its input; choose a different --output path");
    }
    return convert(expandForm, options, false);
}

} // namespace morquill::views
