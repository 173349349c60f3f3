#include "app/command_table.h"

#include "console/command_line.h"
#include "console/console.h"
#include "lint/lint.h"
#include "project/project_command.h"
#include "project/rename/rename.h"
#include "templates/template_command.h"
#include "views/explain.h"
#include "views/file_commands.h"

#include <utility>

namespace morquill::app {

namespace {

/// The run operation of a command on one task file, whose help token follows the command word.
template <HelpOperation help, RunOperation run>
int fileCommand(int argc, char** argv) {
    return runFileCommand(argc, argv, 2, help, run);
}

/// Makes a row whose display name is the command word, as in all rows.
constexpr CommandEntry row(std::string_view name, std::string_view description, HelpOperation help,
                           RunOperation run) {
    return {name, name, help, run, description};
}

} // namespace

std::span<const CommandEntry> commandTable() noexcept {
    static constexpr CommandEntry table[] = {
        row("template", "Manage templates: list, group by category, merge, or generate variable templates",
            templates::printTemplateHelp, templates::runTemplate),
        row("project",
            "Manage projects: initialize, add structures, update, rebuild, batch exec, batch collect",
            project::printProjectHelp, project::runProject),
        row("rename", "Rename task blocks in .mq / .projmq files and synchronize derived artifacts",
            project::printRenameHelp, project::runRename),
        row("fmt", "Reformat a task file into canonical DSL v2 layout", views::printFmtHelp,
            fileCommand<views::printFmtHelp, views::runFmt>),
        row("migrate", "Convert legacy task syntax into canonical DSL v2 output", views::printMigrateHelp,
            fileCommand<views::printMigrateHelp, views::runMigrate>),
        row("expand",
            "Flatten includes, fragments, libraries, and optional matrix variants into canonical DSL",
            views::printExpandHelp, fileCommand<views::printExpandHelp, views::runExpand>),
        row("explain", "Parse a .mq file and explain task blocks, directives, and source spans",
            views::printExplainHelp, fileCommand<views::printExplainHelp, views::runExplain>),
        row("lint", "Run static checks for .mq files and directories", lint::printLintHelp, lint::runLint),
    };
    return table;
}

const CommandEntry* findCommand(std::span<const CommandEntry> table, std::string_view token,
                                std::vector<std::string>& matches) {
    auto match = token.empty() ? console::PrefixMatch<CommandEntry>() : console::findByPrefix(table, token);
    matches = std::move(match.names);
    return match.row;
}

int runFileCommand(int argc, char** argv, int helpIndex, HelpOperation help, RunOperation run) {
    if (help != nullptr && argc > helpIndex && console::isHelpToken(argv[helpIndex])) {
        help(argv[0]);
        return 0;
    }
    return run == nullptr ? 1 : run(argc, argv);
}

} // namespace morquill::app
