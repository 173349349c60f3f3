#include "console/help_text.h"
#include "project/project_command.h"

namespace morquill::project {

namespace {

constexpr std::string_view projectHelp = R"(# Usage:
  `@ project [command] <options>`
  Project commands accept unique prefixes, for example `@ proj co`.
# Commands:
  `init`
      -- Creates a project skeleton in the current directory.
  `add [--path <project_dir|xxx.projmq>] [--dry-run] <xyz...>`
      -- Imports one or more xyz files, creates case directories, and wires them into the main .projmq file.
  `update [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-comd] [--dry-run]`
      -- Refreshes only the selected task blocks' pre_comd / comd content, effectively using `morquill --comd-only`.
      -- If comd is not executed immediately, `mqkit_update_comd.sh` is written for later scheduler/direct execution.
      -- May enter interactive task selection when `-n` is omitted.
  `rebuild [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-script] [--dry-run]`
      -- Cleans and reruns selected task blocks completely, without `--comd-only`.
      -- When `--path` points to a case directory or `.mq`, only that one case is rebuilt.
      -- May enter interactive task selection when `-n` is omitted.
  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] -- <cmd...>`
      -- Runs one command in each selected task directory.
      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'opt*'` or `-n '*'`.
  `exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] --cmd "<cmd...>"`
      -- Same as the shell-separator form above, but passes the command as one quoted string.
  `collect [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] <glob...>`
      -- Gathers matching files from selected task directories.
      -- Requires explicit task names via `-n`; accepts wildcards such as `-n 'frag*'` or `-n '*'`.
# Options:
  `--path [project_dir|xxx.projmq|case_dir|case.mq]`
      For `update/rebuild`: accepts a project directory, explicit `.projmq`, case directory, or case `.mq` file
      For `add/exec/collect`: use a project directory or explicit `.projmq`
      If omitted, the unique `.projmq` in the current directory is preferred
  `-n, --name [task][,task...]`
      Task block names; may be repeated or comma-separated, e.g. `-n opt -n soc` or `-n opt,soc`
  `--dry-run`
      Show the planned actions without modifying files
  `--run-comd`
      For `update` only: execute comd after regenerating scripts; otherwise write `mqkit_update_comd.sh` for later use
  `--run-script`
      For `rebuild` only: run the configured `mqrun kick` command after the full rebuild
  `--cmd <command>`
      For `exec` only: pass the command as one quoted string
# Examples:
  `@ project init`
  `@ project add --path demo.projmq mol1.xyz mol2.xyz`
  `@ project update --path ./demo_project`
  `@ project update --path demo.projmq -n opt,soc --run-comd`
  `@ project update --path ./demo_project/mol1/mol1.mq -n opt`
  `@ project rebuild --path demo.projmq -n opt,soc --run-script`
  `@ project rebuild --path ./demo_project/mol1 -n opt`
  `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`
  `@ project exec -n 'opt*' -- 'echo [taskname]'`
  `@ project exec --path ./demo_project -n opt --cmd "grep Normal *.log"`
  `@ project collect --path ./demo_project -n soc 'plot/*.png' '*.txt'`
  `@ proj co --path ./demo_project -n soc '*.log'`
## Compatibility forms:
  `@ -u ./demo_project -n opt --run-comd`
      Equivalent to: `@ project update --path ./demo_project -n opt --run-comd`
  `@ demo.projmq -n opt --rebuild --run-script`
      Equivalent to: `@ project rebuild --path demo.projmq -n opt --run-script`
  `@ demo.projmq -n soc --exec 'cat soc*.log'`
      Equivalent to: `@ project exec --path demo.projmq -n soc -- 'cat soc*.log'`
)";

} // namespace

void printProjectHelp(std::string_view programPath) {
    console::printHelp(projectHelp, programPath);
}

} // namespace morquill::project
