#include "frontend/console.h"
#include "project/project_command.h"

#include <string>

namespace morquill::project {

namespace {

enum class Style { plain, heading, olderHeading };

/// One line of the help. In plain lines the text between backticks is green and "@" stands for the program.
struct HelpLine {
    Style style;
    std::string_view text;
};

// clang-format off
constexpr HelpLine helpLines[] = {
    {Style::heading, "Usage:"},
    {Style::plain, "  `@ project [command] <options>`"},
    {Style::plain, "  Project commands accept unique prefixes, for example `@ proj co`."},
    {Style::heading, "Commands:"},
    {Style::plain, "  `init`"},
    {Style::plain, "      -- Creates a project skeleton in the current directory."},
    {Style::plain, "  `add [--path <project_dir|xxx.projmq>] [--dry-run] <xyz...>`"},
    {Style::plain, "      -- Imports one or more xyz files, creates case directories, and wires them into the main .projmq file."},
    {Style::plain, "  `update [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-comd] [--dry-run]`"},
    {Style::plain, "      -- Refreshes only the selected task blocks' pre_comd / comd content, effectively using `morquill --comd-only`."},
    {Style::plain, "      -- If comd is not executed immediately, `mqkit_update_comd.sh` is written for later scheduler/direct execution."},
    {Style::plain, "      -- May enter interactive task selection when `-n` is omitted."},
    {Style::plain, "  `rebuild [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-script] [--dry-run]`"},
    {Style::plain, "      -- Cleans and reruns selected task blocks completely, without `--comd-only`."},
    {Style::plain, "      -- When `--path` points to a case directory or `.mq`, only that one case is rebuilt."},
    {Style::plain, "      -- May enter interactive task selection when `-n` is omitted."},
    {Style::plain, "  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] -- <cmd...>`"},
    {Style::plain, "      -- Runs one command in each selected task directory."},
    {Style::plain, "      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'opt*'` or `-n '*'`."},
    {Style::plain, "  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] --cmd \"<cmd...>\"`"},
    {Style::plain, "      -- Same as the shell-separator form above, but passes the command as one quoted string."},
    {Style::plain, "  `collect [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] <glob...>`"},
    {Style::plain, "      -- Gathers matching files from selected task directories."},
    {Style::plain, "      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'frag*'` or `-n '*'`."},
    {Style::heading, "Options:"},
    {Style::plain, "  `--path [project_dir|xxx.projmq|case_dir|case.mq]`"},
    {Style::plain, "      For `update/rebuild`: accepts a project directory, explicit `.projmq`, case directory, or case `.mq` file"},
    {Style::plain, "      For `add/exec/collect`: use a project directory or explicit `.projmq`"},
    {Style::plain, "      If omitted, the unique `.projmq` in the current directory is preferred"},
    {Style::plain, "  `-n, --name [task][,task...]`"},
    {Style::plain, "      Task block names; may be repeated or comma-separated, e.g. `-n opt -n soc` or `-n opt,soc`"},
    {Style::plain, "  `--dry-run`"},
    {Style::plain, "      Show the planned actions without modifying files"},
    {Style::plain, "  `--run-comd`"},
    {Style::plain, "      For `update` only: execute comd after regenerating scripts; otherwise write `mqkit_update_comd.sh` for later use"},
    {Style::plain, "  `--run-script`"},
    {Style::plain, "      For `rebuild` only: run the configured `mqrun kick` command after the full rebuild"},
    {Style::plain, "  `--cmd <command>`"},
    {Style::plain, "      For `exec` only: pass the command as one quoted string"},
    {Style::heading, "Examples:"},
    {Style::plain, "  `@ project init`"},
    {Style::plain, "  `@ project add --path demo.projmq mol1.xyz mol2.xyz`"},
    {Style::plain, "  `@ project update --path ./demo_project`"},
    {Style::plain, "  `@ project update --path demo.projmq -n opt,soc --run-comd`"},
    {Style::plain, "  `@ project update --path ./demo_project/mol1/mol1.mq -n opt`"},
    {Style::plain, "  `@ project rebuild --path demo.projmq -n opt,soc --run-script`"},
    {Style::plain, "  `@ project rebuild --path ./demo_project/mol1 -n opt`"},
    {Style::plain, "  `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`"},
    {Style::plain, "  `@ project exec -n 'opt*' -- 'echo [taskname]'`"},
    {Style::plain, "  `@ project exec --path ./demo_project -n opt --cmd \"grep Normal *.log\"`"},
    {Style::plain, "  `@ project collect --path ./demo_project -n soc 'plot/*.png' '*.txt'`"},
    {Style::plain, "  `@ proj co --path ./demo_project -n soc '*.log'`"},
    {Style::olderHeading, "Compatibility forms:"},
    {Style::plain, "  `@ -u ./demo_project -n opt --run-comd`"},
    {Style::plain, "      Equivalent to: `@ project update --path ./demo_project -n opt --run-comd`"},
    {Style::plain, "  `@ demo.projmq -n opt --rebuild --run-script`"},
    {Style::plain, "      Equivalent to: `@ project rebuild --path demo.projmq -n opt --run-script`"},
    {Style::plain, "  `@ demo.projmq -n soc --exec 'cat soc*.log'`"},
    {Style::plain, "      Equivalent to: `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`"},
};
// clang-format on

std::string plainLine(std::string_view text, const std::string& program) {
    std::string line;
    bool green = false;
    while (true) {
        const auto mark = text.find('`');
        std::string piece(text.substr(0, mark));
        if (const auto place = piece.find('@'); place != std::string::npos) {
            piece.replace(place, 1, program);
        }
        line += green ? frontend::greenText(piece) : piece;
        if (mark == std::string_view::npos) {
            return line;
        }
        text.remove_prefix(mark + 1);
        green = !green;
    }
}

} // namespace

void printProjectHelp(std::string_view programPath) {
    const std::string program = frontend::toolBaseName(programPath);
    std::string help;
    for (const HelpLine& line : helpLines) {
        switch (line.style) {
        case Style::plain:
            help += plainLine(line.text, program);
            break;
        case Style::heading:
            help += frontend::cyanHeading(line.text);
            break;
        case Style::olderHeading:
            help += frontend::yellowHeading(line.text);
            break;
        }
        help += '\n';
    }
    frontend::writeOut(help);
}

} // namespace morquill::project
