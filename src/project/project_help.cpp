#include "project/help_text.h"
#include "project/project_command.h"

namespace morquill::project {

namespace {

// clang-format off
constexpr HelpLine helpLines[] = {
    {HelpStyle::heading, "Usage:"},
    {HelpStyle::plain, "  `@ project [command] <options>`"},
    {HelpStyle::plain, "  Project commands accept unique prefixes, for example `@ proj co`."},
    {HelpStyle::heading, "Commands:"},
    {HelpStyle::plain, "  `init`"},
    {HelpStyle::plain, "      -- Creates a project skeleton in the current directory."},
    {HelpStyle::plain, "  `add [--path <project_dir|xxx.projmq>] [--dry-run] <xyz...>`"},
    {HelpStyle::plain, "      -- Imports one or more xyz files, creates case directories, and wires them into the main .projmq file."},
    {HelpStyle::plain, "  `update [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-comd] [--dry-run]`"},
    {HelpStyle::plain, "      -- Refreshes only the selected task blocks' pre_comd / comd content, effectively using `morquill --comd-only`."},
    {HelpStyle::plain, "      -- If comd is not executed immediately, `mqkit_update_comd.sh` is written for later scheduler/direct execution."},
    {HelpStyle::plain, "      -- May enter interactive task selection when `-n` is omitted."},
    {HelpStyle::plain, "  `rebuild [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-script] [--dry-run]`"},
    {HelpStyle::plain, "      -- Cleans and reruns selected task blocks completely, without `--comd-only`."},
    {HelpStyle::plain, "      -- When `--path` points to a case directory or `.mq`, only that one case is rebuilt."},
    {HelpStyle::plain, "      -- May enter interactive task selection when `-n` is omitted."},
    {HelpStyle::plain, "  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] -- <cmd...>`"},
    {HelpStyle::plain, "      -- Runs one command in each selected task directory."},
    {HelpStyle::plain, "      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'opt*'` or `-n '*'`."},
    {HelpStyle::plain, "  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] --cmd \"<cmd...>\"`"},
    {HelpStyle::plain, "      -- Same as the shell-separator form above, but passes the command as one quoted string."},
    {HelpStyle::plain, "  `collect [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] <glob...>`"},
    {HelpStyle::plain, "      -- Gathers matching files from selected task directories."},
    {HelpStyle::plain, "      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'frag*'` or `-n '*'`."},
    {HelpStyle::heading, "Options:"},
    {HelpStyle::plain, "  `--path [project_dir|xxx.projmq|case_dir|case.mq]`"},
    {HelpStyle::plain, "      For `update/rebuild`: accepts a project directory, explicit `.projmq`, case directory, or case `.mq` file"},
    {HelpStyle::plain, "      For `add/exec/collect`: use a project directory or explicit `.projmq`"},
    {HelpStyle::plain, "      If omitted, the unique `.projmq` in the current directory is preferred"},
    {HelpStyle::plain, "  `-n, --name [task][,task...]`"},
    {HelpStyle::plain, "      Task block names; may be repeated or comma-separated, e.g. `-n opt -n soc` or `-n opt,soc`"},
    {HelpStyle::plain, "  `--dry-run`"},
    {HelpStyle::plain, "      Show the planned actions without modifying files"},
    {HelpStyle::plain, "  `--run-comd`"},
    {HelpStyle::plain, "      For `update` only: execute comd after regenerating scripts; otherwise write `mqkit_update_comd.sh` for later use"},
    {HelpStyle::plain, "  `--run-script`"},
    {HelpStyle::plain, "      For `rebuild` only: run the configured `mqrun kick` command after the full rebuild"},
    {HelpStyle::plain, "  `--cmd <command>`"},
    {HelpStyle::plain, "      For `exec` only: pass the command as one quoted string"},
    {HelpStyle::heading, "Examples:"},
    {HelpStyle::plain, "  `@ project init`"},
    {HelpStyle::plain, "  `@ project add --path demo.projmq mol1.xyz mol2.xyz`"},
    {HelpStyle::plain, "  `@ project update --path ./demo_project`"},
    {HelpStyle::plain, "  `@ project update --path demo.projmq -n opt,soc --run-comd`"},
    {HelpStyle::plain, "  `@ project update --path ./demo_project/mol1/mol1.mq -n opt`"},
    {HelpStyle::plain, "  `@ project rebuild --path demo.projmq -n opt,soc --run-script`"},
    {HelpStyle::plain, "  `@ project rebuild --path ./demo_project/mol1 -n opt`"},
    {HelpStyle::plain, "  `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`"},
    {HelpStyle::plain, "  `@ project exec -n 'opt*' -- 'echo [taskname]'`"},
    {HelpStyle::plain, "  `@ project exec --path ./demo_project -n opt --cmd \"grep Normal *.log\"`"},
    {HelpStyle::plain, "  `@ project collect --path ./demo_project -n soc 'plot/*.png' '*.txt'`"},
    {HelpStyle::plain, "  `@ proj co --path ./demo_project -n soc '*.log'`"},
    {HelpStyle::olderHeading, "Compatibility forms:"},
    {HelpStyle::plain, "  `@ -u ./demo_project -n opt --run-comd`"},
    {HelpStyle::plain, "      Equivalent to: `@ project update --path ./demo_project -n opt --run-comd`"},
    {HelpStyle::plain, "  `@ demo.projmq -n opt --rebuild --run-script`"},
    {HelpStyle::plain, "      Equivalent to: `@ project rebuild --path demo.projmq -n opt --run-script`"},
    {HelpStyle::plain, "  `@ demo.projmq -n soc --exec 'cat soc*.log'`"},
    {HelpStyle::plain, "      Equivalent to: `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`"},
};
// clang-format on

} // namespace

void printProjectHelp(std::string_view programPath) {
    printHelpLines(helpLines, programPath);
}

} // namespace morquill::project
