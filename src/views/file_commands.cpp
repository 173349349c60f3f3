#include "views/file_commands.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/library_file.h"
#include "console/logger.h"
#include "console/messages.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/large_memory.h"
#include "support/paths.h"
#include "taskdsl/base/extra_files.h"
#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <exception>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace morquill::views {

using console::ErrorTag;
using console::writeOut;

namespace {

struct FileCommandOptions {
    std::string inputPath;
    std::string outputPath;
    bool inPlace = false;
    bool expanded = false;
};

using OptionRow = console::OptionRow<FileCommandOptions>;

void setOutputPath(FileCommandOptions& options, console::Words values) {
    options.outputPath = values.front();
}
void setInPlace(FileCommandOptions& options, console::Words /*values*/) {
    options.inPlace = true;
}
void setExpanded(FileCommandOptions& options, console::Words /*values*/) {
    options.expanded = true;
}

// clang-format off
constexpr OptionRow rewriteOptions[] = {
    {"-o",         console::oneValue, setOutputPath, "-o expects a value"},
    {"--out",      console::oneValue, setOutputPath, "--out expects a value"},
    {"--output",   console::oneValue, setOutputPath, "--output expects a value"},
    {"-i",         console::noValue,  setInPlace},
    {"--in-place", console::noValue,  setInPlace},
};

constexpr OptionRow expandOptions[] = {
    {"-o",                console::oneValue, setOutputPath, "-o expects a value", ErrorTag::coloured},
    {"--out",             console::oneValue, setOutputPath, "--out expects a value", ErrorTag::coloured},
    {"--output",          console::oneValue, setOutputPath, "--output expects a value", ErrorTag::coloured},
    {"--expanded",        console::noValue,  setExpanded},
    {"--matrix-expanded", console::noValue,  setExpanded},
};
// clang-format on

/// How the three commands differ while their words are read.
struct CommandForm {
    std::string_view name;
    std::span<const OptionRow> options;
    void (*help)(std::string_view programPath);
    ErrorTag tag;                   ///< of a refusal; every command reports an unknown word in colour
    bool keepsInput = false;        ///< the result may not be written over the input
    bool leavesExtraFiles = false;  ///< the content of extra files beside the result is not written into it
    bool legacyMultiSource = false; ///< the removed form `%source a,b` is read and converted
};

constexpr CommandForm fmtForm{.name = "fmt",
                              .options = rewriteOptions,
                              .help = printFmtHelp,
                              .tag = ErrorTag::plain,
                              .leavesExtraFiles = true};
constexpr CommandForm migrateForm{.name = "migrate",
                                  .options = rewriteOptions,
                                  .help = printMigrateHelp,
                                  .tag = ErrorTag::plain,
                                  .leavesExtraFiles = true,
                                  .legacyMultiSource = true};
constexpr CommandForm expandForm{.name = "expand",
                                 .options = expandOptions,
                                 .help = printExpandHelp,
                                 .tag = ErrorTag::coloured,
                                 .keepsInput = true};

/// Reads the words after the command word. Throws `UsageError`.
FileCommandOptions readCommandLine(const CommandForm& form, int argc, char** argv) {
    FileCommandOptions options;
    const auto refuse = [&form](const std::string& text) { return console::UsageError(form.tag, text); };
    std::optional<std::string> path;
    console::readWords(console::wordsFrom(argc, argv, 2), form.options, options, [&](console::Words words) {
        const std::string_view word = words.front();
        if (word.empty() || word.front() == '-') {
            throw console::unknownArgument(word);
        }
        return console::takeOnePath(path, words, form.tag, "unexpected extra path: ");
    });
    if (!path) {
        throw refuse(std::string(form.name) + " expects a <task.mq> path");
    }
    options.inputPath = *std::move(path);
    if (options.inPlace && !options.outputPath.empty()) {
        throw refuse("use either --in-place or --out, not both");
    }
    if (form.keepsInput && !options.outputPath.empty() &&
        normalisedPath(options.inputPath) == normalisedPath(options.outputPath)) {
        throw refuse(std::string(form.name) +
                     " never overwrites its input; choose a different --output path");
    }
    return options;
}

int reportWritten(const std::string& path) {
    console::printNote("wrote task file: " + path);
    return 0;
}

int deliverCanonicalText(std::string text, const FileCommandOptions& options) {
    if (options.inPlace) {
        if (!writeTextFile(options.inputPath, text)) {
            console::reportError("could not write file: " + options.inputPath);
            return 1;
        }
        return reportWritten(options.inputPath);
    }
    if (!options.outputPath.empty()) {
        if (!writeTextFile(options.outputPath, text)) {
            console::reportError(ErrorTag::coloured, "could not write output file: " + options.outputPath);
            return 1;
        }
        return reportWritten(options.outputPath);
    }
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    writeOut(text);
    return 0;
}

/// True when a reader of the result finds the extra files of the input beside it. A result that replaces one
/// of them has to contain what that one contained.
bool isWrittenBesideInput(const FileCommandOptions& options) {
    const std::filesystem::path output(options.inPlace ? options.inputPath : options.outputPath);
    const auto directory = [](const std::filesystem::path& file) {
        return normalisedPath(file.has_parent_path() ? file.parent_path().string() : ".");
    };
    return options.inPlace || (!output.empty() && output.filename() != taskdsl::extraTasksName &&
                               output.filename() != taskdsl::extraValuesName &&
                               directory(output) == directory(options.inputPath));
}

/// Reads the input, which must be a regular file when it is
/// written in place, and may otherwise be a pipe or a terminal.
taskdsl::TaskDocument readDocument(const CommandForm& form, const FileCommandOptions& options) {
    const taskdsl::TaskParser parser({.legacyMultiSource = form.legacyMultiSource,
                                      .findLibraryFile = console::findLibraryFile,
                                      .warnings = console::logWarning});
    return options.inPlace ? parser.parseFile(options.inputPath) : parser.parseInput(options.inputPath);
}

/// True for a pipe, a terminal or another device.
bool isStream(const std::string& path) {
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    return type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character ||
           type == std::filesystem::file_type::socket;
}

int convert(const CommandForm& form, const FileCommandOptions& options) {
    if (options.inPlace && isStream(options.inputPath)) {
        console::reportError(ErrorTag::coloured, "--in-place needs a regular file to write to, " +
                                                     options.inputPath + " is none");
        return 1;
    }
    try {
        auto& document = keepUntilExit(readDocument(form, options));
        if (form.leavesExtraFiles && isWrittenBesideInput(options)) {
            document = taskdsl::withoutImplicitContent(std::move(document));
        }
        const auto view = options.expanded ? CanonicalView::matrixExpandedView : CanonicalView::sourceView;
        return deliverCanonicalText(renderCanonicalDocument(document, view, console::logWarning), options);
    } catch (const std::exception& error) {
        console::reportError(ErrorTag::coloured, faultText(error, options.inputPath));
        return 1;
    }
}

int runRewriteCommand(int argc, char** argv, const CommandForm& form) {
    return console::runCommandLine([&] { return convert(form, readCommandLine(form, argc, argv)); },
                                   form.help, argv[0], console::HelpAfter::emptyRefusal);
}

constexpr std::string_view fmtHelp = R"(# Usage:
  `@ fmt <task.mq> [-o <output.mq> | --in-place]`
      -- Reformats a task file into canonical DSL v2 layout.
      -- Formatting only; task semantics are preserved.
      -- Choose exactly one output mode: `-o` for a new file, or `--in-place` to overwrite the source file.

# Options:
  `-o, --output <output.mq>`
      Write formatted output to a new file
  `--in-place`
      Overwrite the source task file

# Examples:
  `@ fmt task.mq -o formatted.mq`
  `@ fmt task.mq --in-place`
)";

constexpr std::string_view migrateHelp = R"(# Usage:
  `@ migrate <task.mq> [-o <output.mq> | --in-place]`
      -- Converts legacy task syntax into canonical DSL v2 output.
      -- Intended for historical files, compatibility forms, or task files that need a unified modern layout.
      -- Choose exactly one output mode: `-o` for a new file, or `--in-place` to overwrite the source file.

# Options:
  `-o, --output <output.mq>`
      Write migrated output to a new file
  `--in-place`
      Overwrite the source task file

# Examples:
  `@ migrate legacy.mq -o migrated.mq`
  `@ migrate legacy.mq --in-place`
)";

constexpr std::string_view expandHelp = R"(# Usage:
  `@ expand <task.mq> [-o <output.mq>] [--expanded]`
      -- Resolves task/YAML includes, contextual fragments, libraries, and @foreach blocks.
      -- Emits canonical DSL v2 without modifying the source file.
      -- By default matrix declarations remain unexpanded.

# Options:
  `-o, --output <output.mq>`
      Write expanded output to a file instead of stdout
  `--expanded, --matrix-expanded`
      Emit final matrix-expanded task blocks and remove the matrix declaration

# Examples:
  `@ expand task.mq`
  `@ expand task.mq --expanded -o flattened.mq`
)";

} // namespace

void printFmtHelp(std::string_view programPath) {
    console::printHelp(fmtHelp, programPath);
}

int runFmt(int argc, char** argv) {
    return runRewriteCommand(argc, argv, fmtForm);
}

void printMigrateHelp(std::string_view programPath) {
    console::printHelp(migrateHelp, programPath);
}

int runMigrate(int argc, char** argv) {
    return runRewriteCommand(argc, argv, migrateForm);
}

void printExpandHelp(std::string_view programPath) {
    console::printHelp(expandHelp, programPath);
}

int runExpand(int argc, char** argv) {
    return runRewriteCommand(argc, argv, expandForm);
}

} // namespace morquill::views
