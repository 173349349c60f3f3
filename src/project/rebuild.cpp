#include "project/rebuild.h"

#include "console/messages.h"
#include "console/runtime_config.h"
#include "project/case_block.h"
#include "project/cases/selection.h"
#include "project/choice.h"
#include "project/phrases.h"
#include "project/regenerate.h"
#include "project/runner.h"
#include "project/status/status_file.h"
#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"
#include "system/prompt.h"

#include <optional>

#include <unistd.h>

namespace morquill::project {

namespace {

std::vector<std::string> listWorkMarkers(const std::string& blockDir) {
    std::vector<std::string> markers;
    for (const auto& name : listDirectoryEntries(blockDir, "*.mqwk")) {
        auto path = joinPath(blockDir, name);
        if (extensionOf(name) == ".mqwk" && lookUpRegularFile(path)) {
            markers.push_back(std::move(path));
        }
    }
    return markers;
}

/// Takes the selected records out of the status file of a case and returns how many; nothing after a message.
std::optional<std::size_t> cleanStatus(const std::string& caseDir, const std::vector<std::string>& selected,
                                       console::RunMode mode) {
    const bool dryRun = mode == console::RunMode::dryRun;
    const auto name = baseName(caseDir);
    const auto count = keptTasks(selected, readCompletedTasks(caseDir)).size();
    if (!dryRun && !removeTaskRecords(caseDir, selected)) {
        console::reportError("failed to clean mq.status: " + name);
        return std::nullopt;
    }
    if (count > 0) {
        console::printMessage(console::stepKind(mode), name + (dryRun ? " : would remove " : " : removed ") +
                                                           std::to_string(count) +
                                                           " completed record(s) from mq.status");
    }
    return count;
}

void cleanBlock(const CaseBlock& block, const RebuildOptions& options, RebuildSummary& summary) {
    if (!lookUpDirectory(block.directory)) {
        summary.blocksMissing += 1;
        const auto kind = options.dryRun ? console::MessageKind::dryRun : console::MessageKind::skip;
        console::printMessage(kind, missingBlock(block.label));
        return;
    }
    summary.blocksVisited += 1;
    const auto found = options.removeWorkMarkers ? countWorkMarkers(block.directory) : 0;
    if (found == 0) {
        return;
    }
    summary.workMarkers += found;
    const auto count = options.dryRun ? found : removeWorkMarkers(block.directory);
    console::printMessage(console::stepKind(console::runMode(options.dryRun)),
                          block.label + (options.dryRun ? " : would remove " : " : removed ") +
                              std::to_string(count) + " .mqwk file(s)");
}

/// Cleans all cases and counts what was removed; nothing after a message.
std::optional<RebuildSummary> cleanCases(const WorkPlace& place, const std::vector<std::string>& selected,
                                         const RebuildOptions& options) {
    RebuildSummary summary;
    for (const auto& caseDir : place.caseDirs) {
        summary.cases += 1;
        const auto records = cleanStatus(caseDir, selected, console::runMode(options.dryRun));
        if (!records) {
            return std::nullopt;
        }
        summary.statusTouched += *records > 0 ? 1 : 0;
        summary.recordsRemoved += static_cast<std::int32_t>(*records);
        for (const auto& task : selected) {
            cleanBlock(blockOf(caseDir, task), options, summary);
        }
    }
    console::printLine();
    console::printNote("summary: cases=" + std::to_string(summary.cases) +
                       ", mq.status touched=" + std::to_string(summary.statusTouched) +
                       ", records removed=" + std::to_string(summary.recordsRemoved) +
                       ", block directories visited=" + std::to_string(summary.blocksVisited) +
                       ", block directories missing=" + std::to_string(summary.blocksMissing) + ", " +
                       (options.dryRun ? "to remove" : "removed") +
                       " .mqwk=" + std::to_string(summary.workMarkers));
    return summary;
}

/// Starts the project runner at the end of a rebuild. True on success.
bool startRunner(const std::string& root, console::RunMode mode, RebuildSummary summary) {
    const auto runner = resolveRunner(root);
    if (!console::isRunnerAvailable(runner)) {
        console::reportError(noRunner(runner));
        return false;
    }
    console::printLine();
    printExecution(runnerCommand(runner, root), mode);
    const auto failure = mode == console::RunMode::dryRun ? std::nullopt : runRunner(runner, root);
    if (failure) {
        summary.runnerFailed += 1;
        console::reportError("failed to execute project runner: " + runner + inParentheses(*failure));
        return false;
    }
    summary.runnerSuccess += 1;
    console::printLine();
    console::printNote("project runner summary: success=" + std::to_string(summary.runnerSuccess) +
                       ", failed=" + std::to_string(summary.runnerFailed));
    return true;
}

/// Cleans the cases and runs the generator in full, or shows what would be done. Nothing after a message.
std::optional<RebuildSummary> regenerate(const WorkPlace& place, const std::vector<std::string>& selected,
                                         const RebuildOptions& options) {
    // An update at work would put back the records that go here.
    const auto locks = options.dryRun ? std::optional<StatusLocks>(StatusLocks()) : lockWork(place);
    if (!locks) {
        return std::nullopt;
    }
    const auto summary = cleanCases(place, selected, options);
    if (!summary) {
        return std::nullopt;
    }
    printGeneratorCommand(place, console::runMode(options.dryRun), rebuildWords);
    if (!options.dryRun) {
        if (const auto failure = runGenerator(place, rebuildWords)) {
            console::reportError("failed to re-run morquill" + inParentheses(*failure));
            return std::nullopt;
        }
        console::printNote("full morquill rebuild completed");
    }
    return summary;
}

bool rebuild(const std::optional<WorkPlace>& place, const std::vector<std::string>& selected,
             const RebuildOptions& options) {
    if (!place) {
        return false;
    }
    const auto mode = console::runMode(options.dryRun);
    printWorkHeader(*place, selected, mode, rebuildWords);
    const auto summary = regenerate(*place, selected, options);
    if (!summary) {
        return false;
    }
    const bool withRunner = options.runScript && place->kind == TargetKind::Project;
    return !withRunner || startRunner(place->directory, mode, *summary);
}

/// The options with `runScript` as it is settled before anything is touched: whether the runner is started at
/// the end. Nothing, after a message, when it was demanded and is not there.
std::optional<RebuildOptions> settleRunner(const std::string& root, RebuildOptions options) {
    const auto runner = resolveRunner(root);
    const bool available = console::isRunnerAvailable(runner);
    if (options.runScript) {
        if (!available) {
            console::reportError(noRunner(runner));
            return std::nullopt;
        }
        console::printNote("post-rebuild runner enabled: " + runnerCommand(runner, root));
    } else if (!available) {
        console::printMessage(console::MessageKind::warning, noRunner(runner));
        console::printNote("rebuild will finish without running mqrun kick");
    } else {
        console::printLine();
        console::printNote("execute the configured project runner afterwards? (y/n):");
        console::printLine("        " + runnerCommand(runner, root));
        options.runScript = system::askYesNo();
    }
    return options;
}

} // namespace

std::int32_t countWorkMarkers(const std::string& blockDir) {
    return static_cast<std::int32_t>(listWorkMarkers(blockDir).size());
}

std::int32_t removeWorkMarkers(const std::string& blockDir) {
    std::int32_t removed = 0;
    for (const auto& marker : listWorkMarkers(blockDir)) {
        if (::unlink(marker.c_str()) == 0) {
            removed += 1;
        } else {
            console::reportWarning("failed to remove work marker: " + marker);
        }
    }
    return removed;
}

bool rebuildCase(const std::string& caseDir, const std::string& caseFile,
                 const std::vector<std::string>& selected, const RebuildOptions& options) {
    return rebuild(openCase(caseDir, caseFile, selected, rebuildWords), selected, options);
}

bool rebuildProject(const std::string& root, const std::string& file,
                    const std::vector<std::string>& selected, const RebuildOptions& options) {
    return rebuild(openProject(root, file, selected, rebuildWords), selected, options);
}

bool runProjectRebuild(const std::string& path, const std::vector<std::string>& names,
                       const RebuildOptions& options) {
    const auto work = chooseWork(path, names, "select task blocks to rebuild:");
    if (!work) {
        return false;
    }
    const auto& [target, selected] = *work;
    if (selected.empty()) {
        return true;
    }
    console::printLine();
    console::printNote("selected: " + formatSelection(selected));
    console::printNote("rebuild mode re-runs full morquill and refreshes generated inputs/workflow.");
    bool rebuilt = false;
    if (target.kind == TargetKind::Case) {
        if (options.runScript) {
            console::reportError(
                "--run-script requires a project root or .projmq path. For a single "
                "case, rebuild the case first, then run the project runner from the project root.");
            return false;
        }
        rebuilt = rebuildCase(target.caseDir, target.caseFile, selected, options);
    } else {
        const auto settled = settleRunner(target.projectRoot, options);
        if (!settled) {
            return false;
        }
        rebuilt = rebuildProject(target.projectRoot, target.projectFile, selected, *settled);
    }
    if (!rebuilt) {
        console::reportError("rebuild failed.");
    }
    return rebuilt;
}

} // namespace morquill::project
