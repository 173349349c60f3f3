#include "console/help_text.h"
#include "project/project_command.h"

namespace morquill::project {

namespace {

// clang-format off
constexpr console::HelpLine helpLines[] = {
    {console::HelpStyle::heading, "Usage:"},
    {console::HelpStyle::plain, "  `@ project [command] <options>`"},
    {console::HelpStyle::plain, "  Project commands accept unique prefixes, for example `@ proj co`."},
    {console::HelpStyle::heading, "Commands:"},
    {console::HelpStyle::plain, "  `init`"},
    {console::HelpStyle::plain, "      -- Creates a project skeleton in the current directory."},
    {console::HelpStyle::plain, "  `add [--path <project_dir|xxx.projmq>] [--dry-run] <xyz...>`"},
    {console::HelpStyle::plain, "      -- Imports one or more xyz files, creates case directories, and wires them into the main .projmq file."},
    {console::HelpStyle::plain, "  `update [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-comd] [--dry-run]`"},
    {console::HelpStyle::plain, "      -- Refreshes only the selected task blocks' pre_comd / comd content, effectively using `morquill --comd-only`."},
    {console::HelpStyle::plain, "      -- If comd is not executed immediately, `mqkit_update_comd.sh` is written for later scheduler/direct execution."},
    {console::HelpStyle::plain, "      -- May enter interactive task selection when `-n` is omitted."},
    {console::HelpStyle::plain, "  `rebuild [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-script] [--dry-run]`"},
    {console::HelpStyle::plain, "      -- Cleans and reruns selected task blocks completely, without `--comd-only`."},
    {console::HelpStyle::plain, "      -- When `--path` points to a case directory or `.mq`, only that one case is rebuilt."},
    {console::HelpStyle::plain, "      -- May enter interactive task selection when `-n` is omitted."},
    {console::HelpStyle::plain, "  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] -- <cmd...>`"},
    {console::HelpStyle::plain, "      -- Runs one command in each selected task directory."},
    {console::HelpStyle::plain, "      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'opt*'` or `-n '*'`."},
    {console::HelpStyle::plain, "  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] --cmd \"<cmd...>\"`"},
    {console::HelpStyle::plain, "      -- Same as the shell-separator form above, but passes the command as one quoted string."},
    {console::HelpStyle::plain, "  `collect [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] <glob...>`"},
    {console::HelpStyle::plain, "      -- Gathers matching files from selected task directories."},
    {console::HelpStyle::plain, "      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'frag*'` or `-n '*'`."},
    {console::HelpStyle::heading, "Options:"},
    {console::HelpStyle::plain, "  `--path [project_dir|xxx.projmq|case_dir|case.mq]`"},
    {console::HelpStyle::plain, "      For `update/rebuild`: accepts a project directory, explicit `.projmq`, case directory, or case `.mq` file"},
    {console::HelpStyle::plain, "      For `add/exec/collect`: use a project directory or explicit `.projmq`"},
    {console::HelpStyle::plain, "      If omitted, the unique `.projmq` in the current directory is preferred"},
    {console::HelpStyle::plain, "  `-n, --name [task][,task...]`"},
    {console::HelpStyle::plain, "      Task block names; may be repeated or comma-separated, e.g. `-n opt -n soc` or `-n opt,soc`"},
    {console::HelpStyle::plain, "  `--dry-run`"},
    {console::HelpStyle::plain, "      Show the planned actions without modifying files"},
    {console::HelpStyle::plain, "  `--run-comd`"},
    {console::HelpStyle::plain, "      For `update` only: execute comd after regenerating scripts; otherwise write `mqkit_update_comd.sh` for later use"},
    {console::HelpStyle::plain, "  `--run-script`"},
    {console::HelpStyle::plain, "      For `rebuild` only: run the configured `mqrun kick` command after the full rebuild"},
    {console::HelpStyle::plain, "  `--cmd <command>`"},
    {console::HelpStyle::plain, "      For `exec` only: pass the command as one quoted string"},
    {console::HelpStyle::heading, "Examples:"},
    {console::HelpStyle::plain, "  `@ project init`"},
    {console::HelpStyle::plain, "  `@ project add --path demo.projmq mol1.xyz mol2.xyz`"},
    {console::HelpStyle::plain, "  `@ project update --path ./demo_project`"},
    {console::HelpStyle::plain, "  `@ project update --path demo.projmq -n opt,soc --run-comd`"},
    {console::HelpStyle::plain, "  `@ project update --path ./demo_project/mol1/mol1.mq -n opt`"},
    {console::HelpStyle::plain, "  `@ project rebuild --path demo.projmq -n opt,soc --run-script`"},
    {console::HelpStyle::plain, "  `@ project rebuild --path ./demo_project/mol1 -n opt`"},
    {console::HelpStyle::plain, "  `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`"},
    {console::HelpStyle::plain, "  `@ project exec -n 'opt*' -- 'echo [taskname]'`"},
    {console::HelpStyle::plain, "  `@ project exec --path ./demo_project -n opt --cmd \"grep Normal *.log\"`"},
    {console::HelpStyle::plain, "  `@ project collect --path ./demo_project -n soc 'plot/*.png' '*.txt'`"},
    {console::HelpStyle::plain, "  `@ proj co --path ./demo_project -n soc '*.log'`"},
    {console::HelpStyle::olderHeading, "Compatibility forms:"},
    {console::HelpStyle::plain, "  `@ -u ./demo_project -n opt --run-comd`"},
    {console::HelpStyle::plain, "      Equivalent to: `@ project update --path ./demo_project -n opt --run-comd`"},
    {console::HelpStyle::plain, "  `@ demo.projmq -n opt --rebuild --run-script`"},
    {console::HelpStyle::plain, "      Equivalent to: `@ project rebuild --path demo.projmq -n opt --run-script`"},
    {console::HelpStyle::plain, "  `@ demo.projmq -n soc --exec 'cat soc*.log'`"},
    {console::HelpStyle::plain, "      Equivalent to: `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`"},
};
// clang-format on

} // namespace

void printProjectHelp(std::string_view programPath) {
    console::printHelpLines(helpLines, programPath);
}

} // namespace morquill::project
