#include "console/command_line.h"
#include "console/console.h"
#include "console/help_text.h"
#include "project/cases/target.h"
#include "project/rename/rename.h"
#include "support/fault.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <optional>

namespace morquill::project {

using console::ErrorTag;
using console::UsageError;

namespace {

constexpr std::string_view renameHelp = R"(# Usage:
  `@ rename <task.mq|task.projmq> <old_block> <new_block>`
      -- Renames one task block and updates derived artifacts that depend on that name.
      -- For `.mq`: updates the current case, `mq.status`, task directories, file prefixes, and related .morq metadata and Results artifacts.
      -- For `.projmq`: updates the project template plus matching task directories and derived artifacts across all cases.
      -- If the input `.mq` is actually a symlink to a `.projmq`, it is handled automatically in project mode.
      -- Existing derived SQLite databases are removed so that `mqdb` can rebuild them from renamed records on the next sync/rebuild.
# Examples:
  `@ rename caseA.mq opt opt2`
  `@ rename demo.projmq old_block new_block`
## Compatibility forms:
  `@ caseA.mq -r opt opt2`
      Equivalent to: `@ rename caseA.mq opt opt2`
  `@ demo.projmq --rename old_block new_block`
      Equivalent to: `@ rename demo.projmq old_block new_block`
)";

int runFrame(int argc, char** argv, RenameOptions (*read)(int argc, const char* const* argv)) {
    RenameOptions options;
    const auto run = [&] {
        options = console::readOrHelp(console::wordsFrom(argc, argv, 1), [&] { return read(argc, argv); });
        return renameBlock(options);
    };
    try {
        return console::runCommandLine(run, printRenameHelp, argv[0], console::HelpAfter::anyRefusal);
    } catch (const std::exception& failure) {
        console::reportError(ErrorTag::coloured, faultText(failure, options.file));
        return 1;
    }
}

void setNames(RenameOptions& options, console::Words values) {
    options.oldName = values[0];
    options.newName = values[1];
}

std::optional<std::size_t> twoValues(console::Words following) noexcept {
    return following.size() < 2 ? std::nullopt : std::optional<std::size_t>(2);
}

constexpr std::string_view namesMissing = "-r/--rename expects two values: <old_block> <new_block>";

constexpr console::OptionRow<RenameOptions> olderOptions[] = {
    {"-h", console::noValue, console::askHelp},      {"help", console::noValue, console::askHelp},
    {"--help", console::noValue, console::askHelp},  {"-r", twoValues, setNames, namesMissing},
    {"--rename", twoValues, setNames, namesMissing},
};

bool isRenameOption(std::string_view argument) noexcept {
    return std::any_of(std::begin(olderOptions), std::end(olderOptions),
                       [argument](const auto& row) { return row.apply == setNames && row.word == argument; });
}

} // namespace

int runRename(int argc, char** argv) {
    return runFrame(argc, argv, readRenameWords);
}

int runRenameCompatibility(int argc, char** argv) {
    return runFrame(argc, argv, readOlderRenameWords);
}

void printRenameHelp(std::string_view programPath) {
    console::printHelp(renameHelp, programPath);
}

bool hasTaskFileSuffix(std::string_view token) noexcept {
    return !token.starts_with('-') && (token.ends_with(taskExtension) || token.ends_with(templateExtension));
}

bool isRenameShape(console::Words arguments) noexcept {
    return std::any_of(arguments.begin(), arguments.end(), isRenameOption) &&
           std::any_of(arguments.begin(), arguments.end(), hasTaskFileSuffix);
}

RenameOptions readRenameWords(int argc, const char* const* argv) {
    if (argc != 5 || console::isHelpToken(argv[2])) {
        throw UsageError(ErrorTag::none);
    }
    RenameOptions options{argv[2], argv[3], argv[4]};
    if (options.file.empty() || options.oldName.empty() || options.newName.empty()) {
        throw UsageError(ErrorTag::none);
    }
    return options;
}

RenameOptions readOlderRenameWords(int argc, const char* const* argv) {
    RenameOptions options;
    console::readWords(console::wordsFrom(argc, argv, 1), olderOptions, options,
                       [&options](console::Words words) {
                           const std::string_view word = words.front();
                           if (!hasTaskFileSuffix(word)) {
                               throw console::unknownArgument(word);
                           }
                           if (!options.file.empty()) {
                               throw console::plainRefusal("specify only one .mq or .projmq file");
                           }
                           options.file = word;
                           return std::size_t{1};
                       });
    if (options.file.empty()) {
        throw console::plainRefusal("specify a .mq or .projmq file");
    }
    if (options.oldName.empty() || options.newName.empty()) {
        throw console::plainRefusal("provide the old and new block names via -r/--rename");
    }
    return options;
}

} // namespace morquill::project
