#include "project/project_options.h"

#include "console/command_line.h"
#include "console/console.h"
#include "project/cases/target.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>

namespace morquill::project {

namespace {

using console::ErrorTag;
using console::UsageError;
using console::Words;

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

void setPath(ProjectOptions& options, Words values) {
    if (!options.path.empty()) {
        throw UsageError(ErrorTag::none);
    }
    options.path = values.front();
}

void addNames(ProjectOptions& options, Words values) {
    appendNames(options, values.front());
}

void setDryRun(ProjectOptions& options, Words /*values*/) {
    options.dryRun = true;
}

void setRunComd(ProjectOptions& options, Words /*values*/) {
    options.runComd = true;
}

void setRunScript(ProjectOptions& options, Words /*values*/) {
    options.runScript = true;
}

void setCommand(ProjectOptions& options, Words values) {
    options.command = join({values.begin(), values.end()}, " ");
}

void chooseRebuild(ProjectOptions& options, Words /*values*/) {
    options.subCommand = ProjectSubCommand::Rebuild;
}

void chooseExec(ProjectOptions& options, Words values) {
    options.subCommand = ProjectSubCommand::Exec;
    setCommand(options, values);
}

void chooseCollect(ProjectOptions& options, Words values) {
    options.subCommand = ProjectSubCommand::Collect;
    for (const std::string_view value : values) {
        if (const std::string_view pattern = trim(value); !pattern.empty()) {
            options.patterns.emplace_back(pattern);
        }
    }
}

/// Everything after `--` is the command of `exec`, options and help words included.
void takeCommand(ProjectOptions& options, Words values) {
    if (options.subCommand != ProjectSubCommand::Exec) {
        throw UsageError(ErrorTag::none);
    }
    if (!values.empty()) {
        setCommand(options, values);
    }
}

template <ProjectSubCommand command>
bool isChosen(const ProjectOptions& options) noexcept {
    return options.subCommand == command;
}

void needUpdate(const ProjectOptions& options) {
    if (!isChosen<ProjectSubCommand::Update>(options)) {
        throw console::plainRefusal("--run-comd is only valid with project update.");
    }
}

void needRebuild(const ProjectOptions& options) {
    if (!isChosen<ProjectSubCommand::Rebuild>(options)) {
        throw console::plainRefusal("--run-script is only valid with project rebuild.");
    }
}

void needExec(const ProjectOptions& options) {
    if (!isChosen<ProjectSubCommand::Exec>(options)) {
        throw UsageError(ErrorTag::none);
    }
}

/// The older shape chooses its sub-command by an option, once.
template <ProjectSubCommand command>
void chooseOnce(const ProjectOptions& options) {
    if (isChosen<ProjectSubCommand::None>(options) || isChosen<command>(options)) {
        return;
    }
    switch (command) {
    case ProjectSubCommand::Rebuild:
        throw console::plainRefusal("--rebuild cannot be combined with --exec or --collect");
    case ProjectSubCommand::Exec:
        throw console::plainRefusal("--exec cannot be combined with --collect or --rebuild");
    default:
        throw console::plainRefusal("--collect cannot be combined with --exec or --rebuild");
    }
}

bool namesTemplate(std::string_view token) noexcept {
    return !token.starts_with('-') && token.ends_with(templateExtension);
}

/// Ends the values of an option that takes several.
bool endsList(std::string_view token) {
    static constexpr std::string_view stops[] = {"-n",           "--name",       "--exec",    "--collect",
                                                 "--path",       "--rebuild",    "--dry-run", "--run-comd",
                                                 "--run-script", "--run-runner", "-h",        "--help"};
    return isOneOf(token, stops) || namesTemplate(token);
}

/// At least one value, whatever it is, and the following ones up to the next option or template.
std::optional<std::size_t> severalValues(Words following) noexcept {
    if (following.empty()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(
        std::distance(following.begin(), std::find_if(following.begin() + 1, following.end(), endsList)));
}

using console::askHelp;
using console::noValue;
using console::oneValue;
using console::restOfLine;
using OptionRow = console::OptionRow<ProjectOptions>;

constexpr std::string_view nameWithoutValue = "-n/--name expects a value";

// clang-format off
constexpr OptionRow wordOptions[] = {
    {"-h",           noValue,    askHelp},
    {"help",         noValue,    askHelp},
    {"--help",       noValue,    askHelp},
    {"--",           restOfLine, takeCommand},
    {"--path",       oneValue,   setPath},
    {"-n",           oneValue,   addNames},
    {"--name",       oneValue,   addNames},
    {"--dry-run",    noValue,    setDryRun},
    {"--run-comd",   noValue,    setRunComd,   {}, ErrorTag::none, needUpdate},
    {"--run-script", noValue,    setRunScript, {}, ErrorTag::none, needRebuild},
    {"--run-runner", noValue,    setRunScript, {}, ErrorTag::none, needRebuild},
    {"--cmd",        oneValue,   setCommand,   {}, ErrorTag::none, needExec},
};

constexpr OptionRow compatibilityOptions[] = {
    {"-h",           noValue,       askHelp},
    {"help",         noValue,       askHelp},
    {"--help",       noValue,       askHelp},
    {"--dry-run",    noValue,       setDryRun},
    {"--rebuild",    noValue,       chooseRebuild, {}, ErrorTag::none, chooseOnce<ProjectSubCommand::Rebuild>},
    {"--run-script", noValue,       setRunScript},
    {"--run-runner", noValue,       setRunScript},
    {"--run-comd",   noValue,       setRunComd, {}, ErrorTag::none, needUpdate},
    {"-n",           oneValue,      addNames, nameWithoutValue},
    {"--name",       oneValue,      addNames, nameWithoutValue},
    {"--exec",       severalValues, chooseExec, "--exec expects a value", ErrorTag::plain,
     chooseOnce<ProjectSubCommand::Exec>},
    {"--collect",    severalValues, chooseCollect, "--collect expects at least one argument", ErrorTag::plain,
     chooseOnce<ProjectSubCommand::Collect>},
};

constexpr OptionRow updateOptions[] = {
    {"-h",         noValue,  askHelp},
    {"help",       noValue,  askHelp},
    {"--help",     noValue,  askHelp},
    {"--path",     oneValue, setPath},
    {"-n",         oneValue, addNames, nameWithoutValue},
    {"--name",     oneValue, addNames, nameWithoutValue},
    {"--dry-run",  noValue,  setDryRun},
    {"--run-comd", noValue,  setRunComd},
};
// clang-format on

/// True for an option of the compatibility form other than a help word.
bool isCompatibilityOption(std::string_view argument) noexcept {
    return !console::isHelpToken(argument) &&
           std::any_of(std::begin(compatibilityOptions), std::end(compatibilityOptions),
                       [argument](const OptionRow& row) { return row.word == argument; });
}

/// The sub-command that a word or its prefix names. Throws `UsageError`, with a message when it fits several.
ProjectSubCommand readSubCommand(std::string_view word) {
    const auto match = console::findByPrefix(subCommands, word);
    if (match.names.size() > 1) {
        throw console::plainRefusal(console::ambiguousPrefix("project command", word, match.names));
    }
    if (match.row == nullptr) {
        throw UsageError(ErrorTag::none);
    }
    return match.row->command;
}

/// Recognises paths of projects among other words. A list of a thousand files asks the disk
/// once per directory.
class ProjectPathTest {
  public:
    bool operator()(std::string_view token) {
        if (token.empty() || token.starts_with('-')) {
            return false;
        }
        if (token.ends_with(templateExtension)) {
            return true;
        }
        const std::string path = absoluteLocation(token);
        if (!lookUpRegularFile(path)) {
            return lookUpDirectory(path) && liesInProject(path);
        }
        if (extensionOf(path) == taskExtension) {
            return true;
        }
        const auto [known, isNew] = filesInProject_.try_emplace(parentPath(path));
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

/// Takes a word of the word form that is not a known option; returns how many words it consumed.
std::size_t takePositional(Words words, ProjectPathTest& namesProject, ProjectOptions& options) {
    const std::string_view word = words.front();
    if (word.empty() || word.starts_with('-')) {
        throw UsageError(ErrorTag::none);
    }
    if (options.path.empty() && namesProject(word)) {
        options.path = word;
        return 1;
    }
    switch (options.subCommand) {
    case ProjectSubCommand::Add:
        options.xyzFiles.emplace_back(word);
        return 1;
    case ProjectSubCommand::Collect:
        options.patterns.emplace_back(word);
        return 1;
    case ProjectSubCommand::Exec:
        setCommand(options, words);
        return words.size();
    default:
        throw UsageError(ErrorTag::none);
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

bool isProjectShape(Words arguments) noexcept {
    return std::any_of(arguments.begin(), arguments.end(), [](std::string_view argument) {
        return isCompatibilityOption(argument) || namesTemplate(argument);
    });
}

bool isUpdateShape(Words arguments) noexcept {
    return !arguments.empty() && isOneOf(arguments.front(), {"-b", "--batch", "-u", "--update"});
}

bool isProjectPathToken(std::string_view token) {
    return ProjectPathTest()(token);
}

ProjectOptions readProjectWords(int argc, const char* const* argv) {
    if (argc < 3) {
        throw UsageError(ErrorTag::none);
    }
    if (console::isHelpToken(argv[2])) {
        throw console::HelpRequest();
    }
    ProjectOptions options;
    options.subCommand = readSubCommand(argv[2]);
    if (options.subCommand == ProjectSubCommand::Init) {
        if (argc > 3) {
            throw UsageError(ErrorTag::none);
        }
        return options;
    }
    ProjectPathTest namesProject;
    console::readWords(console::wordsFrom(argc, argv, 3), wordOptions, options,
                       [&](Words words) { return takePositional(words, namesProject, options); });
    return options;
}

ProjectOptions readCompatibilityWords(int argc, const char* const* argv) {
    if (argc < 2) {
        throw UsageError(ErrorTag::none);
    }
    ProjectOptions options;
    console::readWords(console::wordsFrom(argc, argv, 1), compatibilityOptions, options,
                       [&options](Words words) {
                           if (!options.path.empty() || !isProjectPathToken(words.front())) {
                               throw console::unknownArgument(words.front());
                           }
                           options.path = words.front();
                           return std::size_t{1};
                       });
    if (options.runScript && options.subCommand != ProjectSubCommand::Rebuild) {
        throw console::plainRefusal("--run-script is only valid with rebuild.");
    }
    return options;
}

ProjectOptions readUpdateWords(int argc, const char* const* argv) {
    if (!isUpdateShape(console::wordsFrom(argc, argv, 1))) {
        throw UsageError(ErrorTag::none);
    }
    ProjectOptions options;
    options.subCommand = ProjectSubCommand::Update;
    console::readWords(console::wordsFrom(argc, argv, 2), updateOptions, options, [&options](Words words) {
        const std::string_view word = words.front();
        if (word.empty() || word.starts_with('-') || !options.path.empty()) {
            throw console::unknownArgument(word);
        }
        options.path = word;
        return std::size_t{1};
    });
    return options;
}

} // namespace morquill::project
