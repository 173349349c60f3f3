#include "project/update.h"

#include "console/messages.h"
#include "project/cases/selection.h"
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

/// Narrows the status files and tells what was, or would be, done and run.
bool prepareRun(const WorkPlace& place, const std::vector<std::string>& selected, bool dryRun,
                std::vector<StatusBackup>& backups, UpdateSummary& summary) {
    if (!scopeStatusFiles(place.caseDirs, selected, dryRun, backups, summary)) {
        return false;
    }
    console::printLine();
    console::printNote("summary: cases=" + std::to_string(summary.cases) +
                       ", mq.status scoped=" + std::to_string(summary.statusScoped) +
                       ", mq.status hidden=" + std::to_string(summary.statusHidden) +
                       ", selected completed records=" + std::to_string(summary.selectedCompletedRecords));
    printGeneratorCommand(place, dryRun, updateWords);
    return true;
}

/// Runs the generator on narrowed status files, which are back when this returns, throws or is ended by a
/// signal.
bool refreshComd(const WorkPlace& place, const std::vector<std::string>& selected, UpdateSummary& summary) {
    // Another update would take narrowed files for whole ones and put those back.
    const auto locks = lockWork(place);
    if (!locks) {
        return false;
    }
    const system::SignalGuard
        signals; // goes last: the status files are back before a signal ends the program
    StatusRestorer statusFiles;
    if (!prepareRun(place, selected, false, statusFiles.backups(), summary)) {
        return false;
    }
    std::string failure;
    const bool refreshed = signals.noted() == 0 && runGenerator(place, updateWords, failure);
    if (!statusFiles.restore() || signals.noted() != 0) {
        return false;
    }
    console::printNote("mq.status restored after comd-only update");
    if (!refreshed) {
        console::reportError("failed to re-run morquill in --comd-only mode" + inParentheses(failure));
        return false;
    }
    console::printNote("morquill --comd-only update completed");
    return true;
}

bool leaveScript(const WorkPlace& place, const std::vector<std::string>& selected, bool dryRun) {
    std::string path;
    if (!writeComdRunnerScript(place.directory, place.caseDirs, selected, dryRun, path)) {
        console::reportError("failed to write comd runner script: " + path);
        return false;
    }
    console::printLine();
    console::printMessage(console::stepKind(dryRun),
                          (dryRun ? "would generate " : "generated ") + ("comd runner script: " + path));
    console::printNote("this script replays the same per-task 'bash comd' flow as immediate execution");
    return true;
}

bool update(const std::optional<WorkPlace>& place, const std::vector<std::string>& selected,
            const UpdateOptions& options) {
    if (!place) {
        return false;
    }
    printWorkHeader(*place, selected, options.dryRun, updateWords);
    UpdateSummary summary;
    std::vector<StatusBackup> untouched;
    const bool refreshed = options.dryRun ? prepareRun(*place, selected, true, untouched, summary)
                                          : refreshComd(*place, selected, summary);
    if (!refreshed) {
        return false;
    }
    if (!options.runComd) {
        return leaveScript(*place, selected, options.dryRun);
    }
    const bool allRan = runComdForCases(place->caseDirs, selected, options.dryRun, summary);
    console::printLine();
    console::printNote("comd summary: success=" + std::to_string(summary.comdSuccess) +
                       ", failed=" + std::to_string(summary.comdFailed));
    return allRan;
}

bool runComd(const std::string& blockDir, const std::string& label, bool dryRun, UpdateSummary& summary) {
    if (!isDirectory(blockDir)) {
        console::printSkip(label + " : block directory is missing");
        return true;
    }
    if (!isRegularFile(joinPath(blockDir, "comd"))) {
        console::printSkip(label + " : comd is missing");
        return true;
    }
    printExecution(label + " -> bash comd", dryRun);
    std::string failure;
    if (!dryRun && !system::runProgram(blockDir, "bash", {"comd"}, &failure)) {
        summary.comdFailed += 1;
        console::reportWarning("comd execution failed: " + blockDir + inParentheses(failure));
        return false;
    }
    summary.comdSuccess += 1;
    return true;
}

} // namespace

bool runComdForCases(const std::vector<std::string>& caseDirs, const std::vector<std::string>& selected,
                     bool dryRun, UpdateSummary& summary) {
    console::printLine();
    console::printNote("comd execution for selected task blocks");
    bool allRan = true;
    for (const auto& caseDir : caseDirs) {
        for (const auto& task : selected) {
            const auto label = baseName(caseDir) + " / $" + task;
            allRan = runComd(joinPath(caseDir, task), label, dryRun, summary) && allRan;
        }
    }
    return allRan;
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
    ProjectTarget target;
    std::vector<std::string> selected;
    if (!chooseWork(path, names, "select task blocks to update comd:", target, selected)) {
        return false;
    }
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
