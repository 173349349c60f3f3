#include "frontend/console.h"
#include "project/help_text.h"
#include "project/prompt.h"
#include "project/rename.h"
#include "support/whole_text.h"

#include <exception>

namespace morquill::project {

namespace {

// clang-format off
constexpr HelpLine helpLines[] = {
    {HelpStyle::heading, "Usage:"},
    {HelpStyle::plain, "  `@ rename <task.mq|task.projmq> <old_block> <new_block>`"},
    {HelpStyle::plain, "      -- Renames one task block and updates derived artifacts that depend on that name."},
    {HelpStyle::plain, "      -- For `.mq`: updates the current case, `mq.status`, task directories, file prefixes, and related .morq metadata and Results artifacts."},
    {HelpStyle::plain, "      -- For `.projmq`: updates the project template plus matching task directories and derived artifacts across all cases."},
    {HelpStyle::plain, "      -- If the input `.mq` is actually a symlink to a `.projmq`, it is handled automatically in project mode."},
    {HelpStyle::plain, "      -- Existing derived SQLite databases are removed so that `mqdb` can rebuild them from renamed records on the next sync/rebuild."},
    {HelpStyle::heading, "Examples:"},
    {HelpStyle::plain, "  `@ rename caseA.mq opt opt2`"},
    {HelpStyle::plain, "  `@ rename demo.projmq old_block new_block`"},
    {HelpStyle::olderHeading, "Compatibility forms:"},
    {HelpStyle::plain, "  `@ caseA.mq -r opt opt2`"},
    {HelpStyle::plain, "      Equivalent to: `@ rename caseA.mq opt opt2`"},
    {HelpStyle::plain, "  `@ demo.projmq --rename old_block new_block`"},
    {HelpStyle::plain, "      Equivalent to: `@ rename demo.projmq old_block new_block`"},
};
// clang-format on

using ParseOperation = bool (*)(int argc, const char* const* argv, RenameOptions& options);

int runFrame(int argc, char** argv, ParseOperation parse) {
    RenameOptions options;
    if (!parse(argc, argv, options)) {
        printRenameHelp(argv[0]);
        for (int i = 1; i < argc; ++i) {
            if (frontend::isHelpToken(argv[i])) {
                return 0;
            }
        }
        return 1;
    }
    try {
        return renameBlock(options);
    } catch (const std::exception& failure) {
        printErrorLine(frontend::errorTag() + " " + wholeText(failure));
        return 1;
    }
}

/// A usage error of the older shape.
bool refuse(std::string_view message) {
    printErrorLine("[mqkit][ERROR] " + std::string(message));
    return false;
}

} // namespace

int runRename(int argc, char** argv) {
    return runFrame(argc, argv, parseRenameArguments);
}

int runRenameCompatibility(int argc, char** argv) {
    return runFrame(argc, argv, parseRenameCompatibility);
}

void printRenameHelp(std::string_view programPath) {
    printHelpLines(helpLines, programPath);
}

bool hasTaskFileSuffix(std::string_view token) noexcept {
    return !token.starts_with('-') && (token.ends_with(".mq") || token.ends_with(".projmq"));
}

bool parseRenameArguments(int argc, const char* const* argv, RenameOptions& options) {
    if (argc != 5 || frontend::isHelpToken(argv[2])) {
        return false;
    }
    options = {argv[2], argv[3], argv[4]};
    return !options.file.empty() && !options.oldName.empty() && !options.newName.empty();
}

bool parseRenameCompatibility(int argc, const char* const* argv, RenameOptions& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view token = argv[i];
        if (frontend::isHelpToken(token)) {
            return false;
        }
        if (token == "-r" || token == "--rename") {
            if (argc - i < 3) {
                return refuse("-r/--rename expects two values: <old_block> <new_block>");
            }
            options.oldName = argv[++i];
            options.newName = argv[++i];
        } else if (!hasTaskFileSuffix(token)) {
            printErrorLine(frontend::errorTag() + " unknown argument: " + std::string(token));
            return false;
        } else if (!options.file.empty()) {
            return refuse("specify only one .mq or .projmq file");
        } else {
            options.file = token;
        }
    }
    if (options.file.empty()) {
        return refuse("specify a .mq or .projmq file");
    }
    if (options.oldName.empty() || options.newName.empty()) {
        return refuse("provide the old and new block names via -r/--rename");
    }
    return true;
}

} // namespace morquill::project
