#include "project/update.h"
#include "project/case_block.h"

#include "project/cases/selection.h"
#include "project/choice.h"
#include "project/phrases.h"
#include "project/regenerate.h"
#include "project/update_script.h"
#include "support/file.h"
#include "support/paths.h"
#include "system/process.h"
#include "system/prompt.h"
#include "system/signal_guard.h"

#include <optional>

namespace morquill::project {

namespace {

/// Narrows the status files and reports what was, or would be, done and run; nothing after a message.
std::optional<UpdateSummary> prepareRun(const WorkPlace& place, const std::vector<std::string>& selected,
                                        console::RunMode mode, std::vector<StatusBackup>& backups) {
    const auto summary = scopeStatusFiles(place.caseDirs, selected, mode, backups);
    if (!summary) {
        return std::nullopt;
    }
    console::printLine();
    console::printNote("summary: cases=" + std::to_string(summary->cases) +
                       ", mq.status scoped=" + std::to_string(summary->statusScoped) +
                       ", mq.status hidden=" + std::to_string(summary->statusHidden) +
                       ", selected completed records=" + std::to_string(summary->selectedCompletedRecords));
    printGeneratorCommand(place, mode, updateWords);
    return summary;
}

/// Runs the generator on narrowed status files, which are back when this returns, throws or is ended by a
/// signal. Nothing after a message.
std::optional<UpdateSummary> refreshComd(const WorkPlace& place, const std::vector<std::string>& selected) {
    // Another update would take narrowed files for whole ones and put those back.
    const auto locks = lockWork(place);
    if (!locks) {
        return std::nullopt;
    }
    // Goes last: the status files are back before a signal ends the program.
    const system::SignalGuard signals;
    StatusRestorer statusFiles;
    const auto summary = prepareRun(place, selected, console::RunMode::apply, statusFiles.backups());
    if (!summary) {
        return std::nullopt;
    }
    const auto failure = signals.noted() == 0 ? runGenerator(place, updateWords) : std::nullopt;
    if (!statusFiles.restore() || signals.noted() != 0) {
        return std::nullopt;
    }
    console::printNote("mq.status restored after comd-only update");
    if (failure) {
        console::reportError("failed to re-run morquill in --comd-only mode" + inParentheses(*failure));
        return std::nullopt;
    }
    console::printNote("morquill --comd-only update completed");
    return summary;
}

bool leaveScript(const WorkPlace& place, const std::vector<std::string>& selected, console::RunMode mode) {
    const bool dryRun = mode == console::RunMode::dryRun;
    const auto path = comdRunnerScriptPath(place.directory);
    if (!dryRun && !writeComdRunnerScript(place.directory, place.caseDirs, selected)) {
        console::reportError("failed to write comd runner script: " + path);
        return false;
    }
    console::printLine();
    console::printMessage(console::stepKind(mode),
                          (dryRun ? "would generate " : "generated ") + ("comd runner script: " + path));
    console::printNote("this script replays the same per-task 'bash comd' flow as immediate execution");
    return true;
}

bool update(const std::optional<WorkPlace>& place, const std::vector<std::string>& selected,
            const UpdateOptions& options) {
    if (!place) {
        return false;
    }
    const auto mode = console::runMode(options.dryRun);
    printWorkHeader(*place, selected, mode, updateWords);
    std::vector<StatusBackup> untouched;
    auto summary =
        options.dryRun ? prepareRun(*place, selected, mode, untouched) : refreshComd(*place, selected);
    if (!summary) {
        return false;
    }
    if (!options.runComd) {
        return leaveScript(*place, selected, mode);
    }
    runComdForCases(place->caseDirs, selected, mode, *summary);
    console::printLine();
    console::printNote("comd summary: success=" + std::to_string(summary->comdSuccess) +
                       ", failed=" + std::to_string(summary->comdFailed));
    return summary->comdFailed == 0;
}

void runComd(const CaseBlock& block, console::RunMode mode, UpdateSummary& summary) {
    if (!lookUpDirectory(block.directory)) {
        console::printSkip(missingBlock(block.label));
        return;
    }
    if (!lookUpRegularFile(joinPath(block.directory, "comd"))) {
        console::printSkip(block.label + " : comd is missing");
        return;
    }
    printExecution(block.label + " -> bash comd", mode);
    const auto failure = mode == console::RunMode::dryRun
                             ? std::nullopt
                             : system::runProgram(block.directory, "bash", {"comd"});
    if (!failure) {
        summary.comdSuccess += 1;
        return;
    }
    summary.comdFailed += 1;
    console::reportWarning("comd execution failed: " + block.directory + inParentheses(*failure));
}

} // namespace

void runComdForCases(const std::vector<std::string>& caseDirs, const std::vector<std::string>& selected,
                     console::RunMode mode, UpdateSummary& summary) {
    console::printLine();
    console::printNote("comd execution for selected task blocks");
    forEachBlock(caseDirs, selected, [&](const CaseBlock& block) { runComd(block, mode, summary); });
}

bool updateCase(const std::string& caseDir, const std::string& caseFile,
                const std::vector<std::string>& selected, const UpdateOptions& options) {
    return update(openCase(caseDir, caseFile, selected, updateWords), selected, options);
}

bool updateProject(const std::string& root, const std::string& file, const std::vector<std::string>& selected,
                   const UpdateOptions& options) {
    return update(openProject(root, file, selected, updateWords), selected, options);
}

bool runProjectUpdate(const std::string& path, const std::vector<std::string>& names,
                      const UpdateOptions& options) {
    const auto work = chooseWork(path, names, "select task blocks to update comd:");
    if (!work) {
        return false;
    }
    const auto& [target, selected] = *work;
    if (selected.empty()) {
        return true;
    }
    console::printLine();
    console::printNote("selected: " + formatSelection(selected));
    console::printNote("update mode always calls morquill with --comd-only to refresh command scripts only.");
    UpdateOptions chosen = options;
    if (!chosen.runComd) {
        console::printLine();
        console::printQuestion("execute comd in the selected task directories afterwards? (y/n; n writes "
                               "mqkit_update_comd.sh): ");
        chosen.runComd = system::askYesNo();
        if (!chosen.runComd) {
            console::printNote("mqkit_update_comd.sh will be written after the update for later execution.");
        }
    }
    const bool updated = target.kind == TargetKind::Case
                             ? updateCase(target.caseDir, target.caseFile, selected, chosen)
                             : updateProject(target.projectRoot, target.projectFile, selected, chosen);
    if (!updated) {
        console::reportError("update failed.");
    }
    return updated;
}

} // namespace morquill::project
