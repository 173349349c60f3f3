#include "project/project_options.h"

#include "console/console.h"
#include "project/cases/target.h"
#include "support/file.h"
#include "support/text.h"
#include "system/prompt.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <span>

namespace morquill::project {

namespace {

using Tokens = std::span<const char* const>;

struct SubCommandRow {
    std::string_view name;
    ProjectSubCommand command;
};

constexpr std::array<SubCommandRow, 6> subCommands{{
    {"init", ProjectSubCommand::Init},
    {"add", ProjectSubCommand::Add},
    {"update", ProjectSubCommand::Update},
    {"rebuild", ProjectSubCommand::Rebuild},
    {"exec", ProjectSubCommand::Exec},
    {"collect", ProjectSubCommand::Collect},
}};

/// A set of sub-commands, one bit each.
using CommandSet = std::uint32_t;

constexpr CommandSet only(ProjectSubCommand command) {
    return CommandSet{1} << static_cast<unsigned>(command);
}
constexpr CommandSet noCommand = only(ProjectSubCommand::None);
constexpr CommandSet everyCommand = ~CommandSet{0};

enum class Values { none, one, list };

/// One option of one command-line shape.
struct OptionRow {
    std::string_view token;
    CommandSet validWith;    ///< what may be chosen when the option is met
    std::string_view misuse; ///< said with any other sub-command; empty for no message
    Values values;
    std::string_view missingValue; ///< said when no token follows; empty for no message
    bool (*apply)(ProjectOptions& options, Tokens values);
};

bool setPath(ProjectOptions& options, Tokens values) {
    if (!options.path.empty()) {
        return false;
    }
    options.path = values.front();
    return true;
}

bool addNames(ProjectOptions& options, Tokens values) {
    appendNames(options, values.front());
    return true;
}

bool setDryRun(ProjectOptions& options, Tokens /*values*/) {
    return options.dryRun = true;
}

bool setRunComd(ProjectOptions& options, Tokens /*values*/) {
    return options.runComd = true;
}

bool setRunScript(ProjectOptions& options, Tokens /*values*/) {
    return options.runScript = true;
}

std::string joinTokens(Tokens tokens) {
    return join({tokens.begin(), tokens.end()}, " ");
}

bool setCommand(ProjectOptions& options, Tokens values) {
    options.command = joinTokens(values);
    return true;
}

bool chooseRebuild(ProjectOptions& options, Tokens /*values*/) {
    options.subCommand = ProjectSubCommand::Rebuild;
    return true;
}

bool chooseExec(ProjectOptions& options, Tokens values) {
    options.subCommand = ProjectSubCommand::Exec;
    return setCommand(options, values);
}

bool chooseCollect(ProjectOptions& options, Tokens values) {
    options.subCommand = ProjectSubCommand::Collect;
    for (const std::string_view value : values) {
        if (const std::string_view pattern = trim(value); !pattern.empty()) {
            options.patterns.emplace_back(pattern);
        }
    }
    return true;
}

constexpr std::string_view runComdMisuse = "[mqkit][ERROR] --run-comd is only valid with project update.";
constexpr std::string_view runScriptMisuse =
    "[mqkit][ERROR] --run-script is only valid with project rebuild.";
constexpr std::string_view nameWithoutValue = "[mqkit][ERROR] -n/--name expects a value";

// clang-format off
constexpr OptionRow wordOptions[] = {
    {"--path",       everyCommand,                     {},              Values::one,  {}, setPath},
    {"-n",           everyCommand,                     {},              Values::one,  {}, addNames},
    {"--name",       everyCommand,                     {},              Values::one,  {}, addNames},
    {"--dry-run",    everyCommand,                     {},              Values::none, {}, setDryRun},
    {"--run-comd",   only(ProjectSubCommand::Update),  runComdMisuse,   Values::none, {}, setRunComd},
    {"--run-script", only(ProjectSubCommand::Rebuild), runScriptMisuse, Values::none, {}, setRunScript},
    {"--run-runner", only(ProjectSubCommand::Rebuild), runScriptMisuse, Values::none, {}, setRunScript},
    {"--cmd",        only(ProjectSubCommand::Exec),    {},              Values::one,  {}, setCommand},
};

constexpr OptionRow compatibilityOptions[] = {
    {"--dry-run",    everyCommand, {}, Values::none, {}, setDryRun},
    {"--rebuild",    noCommand | only(ProjectSubCommand::Rebuild),
     "[mqkit][ERROR] --rebuild cannot be combined with --exec or --collect", Values::none, {}, chooseRebuild},
    {"--run-script", everyCommand, {}, Values::none, {}, setRunScript},
    {"--run-runner", everyCommand, {}, Values::none, {}, setRunScript},
    {"--run-comd",   0, runComdMisuse, Values::none, {}, setRunComd},
    {"-n",           everyCommand, {}, Values::one, nameWithoutValue, addNames},
    {"--name",       everyCommand, {}, Values::one, nameWithoutValue, addNames},
    {"--exec",       noCommand | only(ProjectSubCommand::Exec),
     "[mqkit][ERROR] --exec cannot be combined with --collect or --rebuild", Values::list,
     "[mqkit][ERROR] --exec expects a value", chooseExec},
    {"--collect",    noCommand | only(ProjectSubCommand::Collect),
     "[mqkit][ERROR] --collect cannot be combined with --exec or --rebuild", Values::list,
     "[mqkit][ERROR] --collect expects at least one argument", chooseCollect},
};

constexpr OptionRow updateOptions[] = {
    {"--path",     everyCommand, {}, Values::one,  {},               setPath},
    {"-n",         everyCommand, {}, Values::one,  nameWithoutValue, addNames},
    {"--name",     everyCommand, {}, Values::one,  nameWithoutValue, addNames},
    {"--dry-run",  everyCommand, {}, Values::none, {},               setDryRun},
    {"--run-comd", everyCommand, {}, Values::none, {},               setRunComd},
};
// clang-format on

bool namesTemplate(std::string_view token) {
    return !token.starts_with('-') && token.ends_with(".projmq");
}

/// Ends the values of an option that takes several.
bool endsList(std::string_view token) {
    static constexpr std::array<std::string_view, 12> stops{
        "-n",        "--name",     "--exec",       "--collect",    "--path", "--rebuild",
        "--dry-run", "--run-comd", "--run-script", "--run-runner", "-h",     "--help"};
    return std::find(stops.begin(), stops.end(), token) != stops.end() || namesTemplate(token);
}

/// How many of the tokens behind an option are its values; nothing when too few are left. The first is taken
/// whatever it is.
std::optional<std::size_t> countValues(Values values, Tokens behind) {
    if (values == Values::none) {
        return 0;
    }
    if (behind.empty()) {
        return std::nullopt;
    }
    if (values == Values::one) {
        return 1;
    }
    return static_cast<std::size_t>(
        std::distance(behind.begin(), std::find_if(behind.begin() + 1, behind.end(), endsList)));
}

bool fail(std::string_view message) {
    if (!message.empty()) {
        system::printErrorLine(message);
    }
    return false;
}

bool failUnknown(std::string_view token) {
    return fail(console::errorTag() + " unknown argument: " + std::string(token));
}

enum class OptionMatch { none, taken, failed };

/// Looks the token at `index` up in a table and applies its row; `index` moves to its last value.
OptionMatch matchOption(std::span<const OptionRow> table, Tokens tokens, std::size_t& index,
                        ProjectOptions& options) {
    const auto row = std::find_if(table.begin(), table.end(), [&](const OptionRow& candidate) {
        return candidate.token == tokens[index];
    });
    if (row == table.end()) {
        return OptionMatch::none;
    }
    if ((row->validWith & only(options.subCommand)) == 0) {
        fail(row->misuse);
        return OptionMatch::failed;
    }
    const Tokens behind = tokens.subspan(index + 1);
    const std::optional<std::size_t> count = countValues(row->values, behind);
    if (!count) {
        fail(row->missingValue);
        return OptionMatch::failed;
    }
    index += *count;
    return row->apply(options, behind.first(*count)) ? OptionMatch::taken : OptionMatch::failed;
}

/// The sub-command that a word or its prefix stands for; a message when it stands for several.
bool readSubCommand(std::string_view word, ProjectSubCommand& command) {
    const std::string lowered = toLower(word);
    std::vector<std::string> candidates;
    for (const SubCommandRow& row : subCommands) {
        if (row.name == lowered) {
            command = row.command;
            return true;
        }
        if (row.name.starts_with(lowered)) {
            candidates.emplace_back(row.name);
            command = row.command;
        }
    }
    if (candidates.size() > 1) {
        return fail("[mqkit][ERROR] ambiguous project command prefix: " + std::string(word) +
                    " (matches: " + join(candidates, ", ") + ")");
    }
    return candidates.size() == 1;
}

/// Tells paths of projects from other words. A list of a thousand files asks the disk once per directory.
class ProjectPathTest {
  public:
    bool operator()(std::string_view token) {
        if (token.empty() || token.starts_with('-')) {
            return false;
        }
        if (token.ends_with(".projmq")) {
            return true;
        }
        const std::string path = absoluteLocation(token);
        if (!isRegularFile(path)) {
            return isDirectory(path) && liesInProject(path);
        }
        if (extensionOf(path) == ".mq") {
            return true;
        }
        const auto [known, isNew] = filesInProject_.try_emplace(parentPath(path), false);
        if (isNew) {
            known->second = liesInProject(path);
        }
        return known->second;
    }

  private:
    static bool liesInProject(const std::string& path) {
        return !listProjectTemplates(findProjectDirectory(path)).empty();
    }

    std::map<std::string, bool> filesInProject_; // by directory: whether its files lie in a project
};

/// What a positional argument of the word form is.
enum class Positional { taken, beginsCommand, wrong };

Positional takePositional(std::string_view token, ProjectPathTest& namesProject, ProjectOptions& options) {
    if (options.path.empty() && namesProject(token)) {
        options.path = token;
        return Positional::taken;
    }
    switch (options.subCommand) {
    case ProjectSubCommand::Add:
        options.xyzFiles.emplace_back(token);
        return Positional::taken;
    case ProjectSubCommand::Collect:
        options.patterns.emplace_back(token);
        return Positional::taken;
    case ProjectSubCommand::Exec:
        return Positional::beginsCommand;
    default:
        return Positional::wrong;
    }
}

} // namespace

void appendNames(ProjectOptions& options, std::string_view value) {
    for (std::string& name : splitTrimmed(value, ',')) {
        if (std::find(options.names.begin(), options.names.end(), name) == options.names.end()) {
            options.names.push_back(std::move(name));
        }
    }
}

bool isProjectPathToken(std::string_view token) {
    return ProjectPathTest()(token);
}

bool parseProjectArguments(int argc, const char* const* argv, ProjectOptions& options) {
    if (argc < 3 || console::isHelpToken(argv[2]) || !readSubCommand(argv[2], options.subCommand)) {
        return false;
    }
    if (options.subCommand == ProjectSubCommand::Init) {
        return argc == 3;
    }
    const bool exec = options.subCommand == ProjectSubCommand::Exec;
    ProjectPathTest namesProject;
    const Tokens tokens(argv + 3, argv + argc);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string_view token = tokens[i];
        if (console::isHelpToken(token)) {
            return false;
        }
        if (token == "--") {
            // Everything behind it is the command, options and help tokens included.
            if (exec && i + 1 < tokens.size()) {
                setCommand(options, tokens.subspan(i + 1));
            }
            return exec;
        }
        const OptionMatch option = matchOption(wordOptions, tokens, i, options);
        if (option == OptionMatch::taken) {
            continue;
        }
        if (option == OptionMatch::failed || token.empty() || token.starts_with('-')) {
            return false;
        }
        switch (takePositional(token, namesProject, options)) {
        case Positional::taken:
            break;
        case Positional::beginsCommand:
            return setCommand(options, tokens.subspan(i));
        case Positional::wrong:
            return false;
        }
    }
    return true;
}

bool parseCompatibilityArguments(int argc, const char* const* argv, ProjectOptions& options) {
    if (argc < 2) {
        return false;
    }
    const Tokens tokens(argv + 1, argv + argc);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string_view token = tokens[i];
        if (console::isHelpToken(token)) {
            return false;
        }
        if (options.path.empty() && isProjectPathToken(token)) {
            options.path = token;
            continue;
        }
        switch (matchOption(compatibilityOptions, tokens, i, options)) {
        case OptionMatch::taken:
            break;
        case OptionMatch::failed:
            return false;
        case OptionMatch::none:
            return failUnknown(token);
        }
    }
    if (options.runScript && options.subCommand != ProjectSubCommand::Rebuild) {
        return fail("[mqkit][ERROR] --run-script is only valid with rebuild.");
    }
    return true;
}

UpdateShape parseUpdateArguments(int argc, const char* const* argv, ProjectOptions& options) {
    static constexpr std::array<std::string_view, 4> openings{"-b", "--batch", "-u", "--update"};
    if (argc < 2 || std::find(openings.begin(), openings.end(), argv[1]) == openings.end()) {
        return UpdateShape::wrong;
    }
    options.subCommand = ProjectSubCommand::Update;
    const Tokens tokens(argv + 2, argv + argc);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string_view token = tokens[i];
        if (console::isHelpToken(token)) {
            return UpdateShape::help;
        }
        switch (matchOption(updateOptions, tokens, i, options)) {
        case OptionMatch::taken:
            continue;
        case OptionMatch::failed:
            return UpdateShape::wrong;
        case OptionMatch::none:
            break;
        }
        if (token.empty() || token.starts_with('-') || !options.path.empty()) {
            failUnknown(token);
            return UpdateShape::wrong;
        }
        options.path = token;
    }
    return UpdateShape::run;
}

} // namespace morquill::project
