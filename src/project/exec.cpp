#include "console/command_line.h"
#include "console/messages.h"
#include "project/case_block.h"
#include "project/cases/selection.h"
#include "project/choice.h"
#include "project/phrases.h"
#include "project/workflows.h"
#include "support/file.h"
#include "support/text.h"
#include "system/process.h"

#include <cstdint>
#include <optional>

namespace morquill::project {

namespace {

struct ExecSummary {
    std::int64_t total = 0;
    std::int64_t success = 0;
    std::int64_t missing = 0;
    std::int64_t failed = 0;
};

/// The command for one block. One pass: a name that looks like a placeholder stays a name.
std::string resolveCommand(std::string_view command, const std::string& task, const std::string& caseName) {
    constexpr std::string_view taskName = "[taskname]";
    constexpr std::string_view inputName = "[inputname]";
    std::string resolved;
    std::size_t copied = 0;
    for (auto at = command.find('['); at != std::string_view::npos; at = command.find('[', at)) {
        const auto rest = command.substr(at);
        const bool isTask = rest.starts_with(taskName);
        if (!isTask && !rest.starts_with(inputName)) {
            ++at;
            continue;
        }
        resolved.append(command, copied, at - copied).append(task);
        if (!isTask) {
            resolved.append("_").append(caseName);
        }
        at += isTask ? taskName.size() : inputName.size();
        copied = at;
    }
    return resolved.append(command, copied);
}

void execInBlock(const ProjectOptions& options, const CaseBlock& block, ExecSummary& summary) {
    if (!lookUpDirectory(block.directory)) {
        summary.missing += 1;
        console::printSkip(missingBlock(block.label));
        return;
    }
    const auto command = resolveCommand(options.command, block.task, block.caseName);
    console::printLine("\n>>> [" + block.caseName + "] " + block.directory + "\n$ " + command);
    summary.total += 1;
    const auto failure = options.dryRun ? std::nullopt : system::runShellCommand(block.directory, command);
    if (!failure) {
        summary.success += 1;
        return;
    }
    summary.failed += 1;
    console::reportWarning("command failed: " + block.directory + inParentheses(*failure));
}

} // namespace

int runProjectExec(const ProjectOptions& options) {
    const auto chosen = chooseBlocks(options);
    if (!chosen) {
        return 1;
    }
    const auto caseDirs = chooseCases(chosen->root);
    if (trim(options.command).empty()) {
        throw console::plainRefusal("project exec requires a command via --cmd or -- <cmd...>.");
    }
    console::printLine("\n[Project Exec]\n  project template: " + chosen->file +
                       "\n  task blocks: " + formatSelection(chosen->selected) +
                       "\n  command: " + options.command + (options.dryRun ? "  (dry-run)\n" : "\n"));
    ExecSummary summary;
    forEachBlock(caseDirs, chosen->selected,
                 [&](const CaseBlock& block) { execInBlock(options, block, summary); });
    console::printLine();
    console::printNote("finished: executed " + std::to_string(summary.success) + "/" +
                       std::to_string(summary.total) + " block(s) successfully.");
    if (summary.missing > 0) {
        console::printNote("note: " + std::to_string(summary.missing) +
                           " block directory/directories are missing.");
    }
    if (summary.failed > 0) {
        console::printNote("note: " + std::to_string(summary.failed) + " block(s) failed.");
    }
    return summary.missing > 0 || summary.failed > 0 ? 2 : 0;
}

} // namespace morquill::project
