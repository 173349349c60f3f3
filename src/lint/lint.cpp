#include "lint/lint.h"

#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "console/logger.h"
#include "console/messages.h"
#include "lint/discovery.h"
#include "lint/file_check.h"
#include "lint/report.h"
#include "support/file.h"
#include "support/text.h"

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace morquill::lint {

using console::writeOut;

namespace {

struct LintOptions {
    Strictness strictness = Strictness::lenient;
    TextDetail detail = TextDetail::issues;
    console::ReportFormat format = console::ReportFormat::text;
    bool dropsWarnings = false; ///< the parser's, as no line of the log may get into the JSON
    std::vector<std::string> paths;
};

/// The help for -h in the middle of the line and after a refusal.
constexpr std::string_view driverHelp = R"(Usage:
  @ lint [--strict] [--quiet] [--format text|json] <path>...

Notes:
  - paths can be .mq files or directories; directories are scanned recursively
  - lint parses task files with shared parser AST and source spans
)";

constexpr std::string_view lintHelp = R"(  Lint .mq files and directories.

# Usage:
  `@ lint [--strict] [--quiet] [--format text|json] <file-or-dir>...`

# Examples:
  `@ lint task.mq`
  `@ lint --strict ./cases`
)";

void setStrict(LintOptions& options, console::Words /*values*/) {
    options.strictness = Strictness::strict;
}
void setQuiet(LintOptions& options, console::Words /*values*/) {
    options.detail = TextDetail::summaryOnly;
}
void setFormat(LintOptions& options, console::Words values) {
    // Only this spelling keeps the log silent, even when a later --format overrides it.
    options.dropsWarnings = options.dropsWarnings || std::string_view(values.front()) == "json";
    const auto format = console::reportFormats.find(values.front());
    if (!format) {
        throw console::bareRefusal("unsupported format: " + toLower(values.front()));
    }
    options.format = *format;
}

// clang-format off
constexpr console::OptionRow<LintOptions> optionRows[] = {
    {"-h",       console::noValue,    console::askHelp},
    {"--help",   console::noValue,    console::askHelp},
    {"--strict", console::noValue,    setStrict},
    {"--quiet",  console::noValue,    setQuiet},
    {"--format", console::oneValue,   setFormat, "--format expects a value", console::ErrorTag::none},
};
// clang-format on

/// Reads the words after the command word. Throws `UsageError`.
LintOptions readCommandLine(int argc, char** argv) {
    LintOptions options;
    console::readWords(console::wordsFrom(argc, argv, 2), optionRows, options, [&](console::Words words) {
        const std::string_view word = words.front();
        if (word.starts_with('-')) {
            throw console::bareRefusal("unknown argument: " + std::string(word));
        }
        options.paths.emplace_back(word);
        return std::size_t{1};
    });
    if (options.paths.empty()) {
        options.paths.emplace_back(".");
    }
    return options;
}

int lintFiles(const LintOptions& options) {
    const auto files = findTaskFiles(options.paths);
    if (files.empty()) {
        console::printErrorLine("no .mq files found");
        return 1;
    }
    taskdsl::WarningSink warnings;
    if (!options.dropsWarnings) {
        warnings = console::logWarning;
    }
    // Every file of a directory asks for the same extra files.
    std::unordered_map<std::string, bool> known;
    const taskdsl::FileTest isFile = [&known](const std::string& path) {
        const auto [entry, isNew] = known.try_emplace(path, false);
        if (isNew) {
            entry->second = lookUpRegularFile(path);
        }
        return entry->second;
    };
    std::vector<LintFileReport> reports;
    reports.reserve(files.size());
    for (const auto& file : files) {
        reports.push_back(lintFile(file, warnings, isFile));
    }
    const LintSummary summary = summariseLint(reports, options.strictness);
    writeOut(options.format == console::ReportFormat::json
                 ? renderLintJson(reports, summary)
                 : renderLintText(reports, summary, options.detail));
    return summary.errors == 0 ? 0 : 1;
}

void printDriverHelp(std::string_view programPath) {
    console::printHelp(driverHelp, programPath);
}

} // namespace

int runLint(int argc, char** argv) {
    if (argc > 2 && console::isHelpToken(argv[2])) {
        printLintHelp(argv[0]);
        return 0;
    }
    return console::runCommandLine([&] { return lintFiles(readCommandLine(argc, argv)); }, printDriverHelp,
                                   argv[0], console::HelpAfter::anyRefusal);
}

void printLintHelp(std::string_view programPath) {
    console::printHelp(lintHelp, programPath);
}

} // namespace morquill::lint
