#include "lint/lint.h"

#include "console/console.h"
#include "console/logger.h"
#include "lint/discovery.h"
#include "lint/file_check.h"
#include "lint/report.h"
#include "support/text.h"

#include <optional>
#include <string>
#include <vector>

namespace morquill::lint {

using console::writeErr;
using console::writeOut;

namespace {

struct LintOptions {
    bool strict = false;
    bool quiet = false;
    std::string format = "text";
    std::vector<std::string> paths;
};

constexpr std::string_view optionsUsage = " [--strict] [--quiet] [--format text|json] ";

/// True when the log must stay silent, so that no line of it mixes into the JSON. Here, and only here, the
/// one-word form counts: the option itself is refused.
bool asksForJson(int argc, char** argv) {
    for (int i = 2; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--format=json" ||
            (argument == "--format" && i + 1 < argc && std::string_view(argv[i + 1]) == "json")) {
            return true;
        }
    }
    return false;
}

/// `program` is the program and the command word.
void printDriverHelp(const std::string& program) {
    writeOut("Usage:\n  " + program + std::string(optionsUsage) +
             "<path>...\n"
             "\n"
             "Notes:\n"
             "  - paths can be .mq files or directories; directories are scanned recursively\n"
             "  - lint parses task files with shared parser AST and source spans\n");
}

int refuse(const std::string& text, const std::string& program) {
    writeErr(text + "\n");
    printDriverHelp(program);
    return 1;
}

/// Reads the arguments behind the program; the exit status when the command ends here.
std::optional<int> readArguments(const std::vector<std::string>& arguments, LintOptions& options) {
    const std::string& program = arguments.front();
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-h" || argument == "--help") {
            printDriverHelp(program);
            return 0;
        }
        if (argument == "--strict") {
            options.strict = true;
        } else if (argument == "--quiet") {
            options.quiet = true;
        } else if (argument == "--format") {
            if (i + 1 == arguments.size()) {
                return refuse("--format expects a value", program);
            }
            options.format = toLower(arguments[++i]);
            if (options.format != "text" && options.format != "json") {
                return refuse("unsupported format: " + options.format, program);
            }
        } else if (argument.starts_with('-')) {
            return refuse("unknown argument: " + argument, program);
        } else {
            options.paths.push_back(argument);
        }
    }
    if (options.paths.empty()) {
        options.paths.emplace_back(".");
    }
    return std::nullopt;
}

int runDriver(const std::vector<std::string>& arguments) {
    LintOptions options;
    if (const auto status = readArguments(arguments, options)) {
        return *status;
    }
    const auto files = findTaskFiles(options.paths);
    if (files.empty()) {
        writeErr("no .mq files found\n");
        return 1;
    }
    std::vector<LintFileReport> reports;
    reports.reserve(files.size());
    for (const auto& file : files) {
        reports.push_back(lintFile(file));
    }
    const LintSummary summary = summariseLint(reports, options.strict);
    writeOut(options.format == "json" ? renderLintJson(reports, summary)
                                      : renderLintText(reports, summary, options.quiet));
    return summary.errors == 0 ? 0 : 1;
}

} // namespace

int runLint(int argc, char** argv) {
    if (argc > 2 && console::isHelpToken(argv[2])) {
        printLintHelp(argv[0]);
        return 0;
    }
    if (asksForJson(argc, argv)) {
        console::Logger::instance().openSession({}, console::LogLevel::Skip, console::LogLevel::Error,
                                                console::decideColor(argc, argv));
    }
    std::vector<std::string> arguments{console::toolBaseName(argv[0]) + " lint"};
    for (int i = 2; i < argc; ++i) {
        arguments.emplace_back(argv[i]);
    }
    return runDriver(arguments);
}

void printLintHelp(std::string_view programPath) {
    const std::string command = console::toolBaseName(programPath) + " lint";
    writeOut("  Lint .mq files and directories.\n\n" + console::cyanHeading("Usage:") + "\n  " +
             console::greenText(command + std::string(optionsUsage) + "<file-or-dir>...") + "\n\n" +
             console::cyanHeading("Examples:") + "\n  " + console::greenText(command + " task.mq") + "\n  " +
             console::greenText(command + " --strict ./cases") + "\n");
}

} // namespace morquill::lint
