#include "project/rebuild.h"

#include "console/messages.h"
#include "console/runtime_config.h"
#include "project/cases/selection.h"
#include "project/regenerate.h"
#include "project/status/status_file.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/process.h"
#include "system/prompt.h"

#include <fcntl.h>
#include <unistd.h>

namespace morquill::project {

namespace {

/// Stands in another directory for the time of a scope; stays where it is when that directory cannot be
/// entered.
class WorkingDirectory {
  public:
    explicit WorkingDirectory(const std::string& dir)
        : old_(::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
          moved_(old_ >= 0 && ::chdir(dir.c_str()) == 0) {}
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
    ~WorkingDirectory() {
        if (moved_) {
            (void)!::fchdir(old_);
        }
        if (old_ >= 0) {
            ::close(old_);
        }
    }

  private:
    int old_;
    bool moved_;
};

std::vector<std::string> listWorkMarkers(const std::string& blockDir) {
    std::vector<std::string> markers;
    for (const auto& name : listDirectoryEntries(blockDir, "*")) {
        auto path = joinPath(blockDir, name);
        if (extensionOf(name) == ".mqwk" && isRegularFile(path)) {
            markers.push_back(std::move(path));
        }
    }
    return markers;
}

/// Takes the selected records out of the status file of a case.
bool cleanStatus(const std::string& caseDir, const std::vector<std::string>& selected, bool dryRun,
                 RebuildSummary& summary) {
    const auto name = baseName(caseDir);
    const auto count = keptTasks(selected, readCompletedTasks(caseDir)).size();
    const auto what = std::to_string(count) + " completed record(s) from mq.status";
    if (count > 0) {
        summary.statusTouched += 1;
        summary.recordsRemoved += static_cast<std::int32_t>(count);
    }
    if (!dryRun && !removeTaskRecords(caseDir, selected)) {
        console::reportError("failed to clean mq.status: " + name);
        return false;
    }
    if (count > 0) {
        console::printMessage(console::stepKind(dryRun),
                              name + (dryRun ? " : would remove " : " : removed ") + what);
    }
    return true;
}

void cleanBlock(const std::string& blockDir, const std::string& label, const RebuildOptions& options,
                RebuildSummary& summary) {
    if (!isDirectory(blockDir)) {
        summary.blocksMissing += 1;
        const auto kind = options.dryRun ? console::MessageKind::dryRun : console::MessageKind::skip;
        console::printMessage(kind, label + " : block directory is missing");
        return;
    }
    summary.blocksVisited += 1;
    const auto found = options.removeWorkMarkers ? countWorkMarkers(blockDir) : 0;
    if (found == 0) {
        return;
    }
    summary.workMarkers += found;
    const auto count = options.dryRun ? found : removeWorkMarkers(blockDir);
    console::printMessage(console::stepKind(options.dryRun),
                          label + (options.dryRun ? " : would remove " : " : removed ") +
                              std::to_string(count) + " .mqwk file(s)");
}

bool cleanCases(const WorkPlace& place, const std::vector<std::string>& selected,
                const RebuildOptions& options, RebuildSummary& summary) {
    for (const auto& caseDir : place.caseDirs) {
        summary.cases += 1;
        if (!cleanStatus(caseDir, selected, options.dryRun, summary)) {
            return false;
        }
        for (const auto& task : selected) {
            cleanBlock(joinPath(caseDir, task), baseName(caseDir) + " / $" + task, options, summary);
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
    return true;
}

std::string runnerCommand(const std::string& runner, const std::string& root) {
    return shellQuote(runner) + " kick --path " + shellQuote(root);
}

bool startRunner(const std::string& root, bool dryRun, RebuildSummary& summary) {
    const auto runner = resolveRunner(root);
    if (!console::isRunnerAvailable(runner)) {
        console::reportError("configured project runner not found: " + runner);
        return false;
    }
    console::printLine();
    printExecution(runnerCommand(runner, root), dryRun);
    std::string failure;
    if (!dryRun && !system::runProgram(root, runner, {"kick", "--path", root}, &failure)) {
        summary.runnerFailed += 1;
        console::reportError("failed to execute project runner: " + runner + inParentheses(failure));
        return false;
    }
    summary.runnerSuccess += 1;
    console::printLine();
    console::printNote("project runner summary: success=" + std::to_string(summary.runnerSuccess) +
                       ", failed=" + std::to_string(summary.runnerFailed));
    return true;
}

/// Cleans the cases and runs the generator in full, or tells what would be done.
bool regenerate(const WorkPlace& place, const std::vector<std::string>& selected,
                const RebuildOptions& options, RebuildSummary& summary) {
    // An update at work would put back the records that go here.
    const auto locks = options.dryRun ? std::optional<WorkLocks>(WorkLocks()) : lockWork(place);
    if (!locks || !cleanCases(place, selected, options, summary)) {
        return false;
    }
    printGeneratorCommand(place, options.dryRun, rebuildWords);
    if (!options.dryRun) {
        if (std::string failure; !runGenerator(place, rebuildWords, failure)) {
            console::reportError("failed to re-run morquill" + inParentheses(failure));
            return false;
        }
        console::printNote("full morquill rebuild completed");
    }
    return true;
}

bool rebuild(const std::optional<WorkPlace>& place, const std::vector<std::string>& selected,
             const RebuildOptions& options) {
    if (!place) {
        return false;
    }
    printWorkHeader(*place, selected, options.dryRun, rebuildWords);
    RebuildSummary summary;
    if (!regenerate(*place, selected, options, summary)) {
        return false;
    }
    const bool withRunner = options.runScript && place->kind == TargetKind::Project;
    return !withRunner || startRunner(place->directory, options.dryRun, summary);
}

/// Settles, before anything is touched, whether the runner is started at the end. False after a message when
/// it was demanded and is not there.
bool settleRunner(const std::string& root, bool& runScript) {
    const auto runner = resolveRunner(root);
    const bool available = console::isRunnerAvailable(runner);
    if (runScript) {
        if (!available) {
            console::reportError("configured project runner not found: " + runner);
            return false;
        }
        console::printNote("post-rebuild runner enabled: " + runnerCommand(runner, root));
    } else if (!available) {
        console::printMessage(console::MessageKind::warning,
                              "configured project runner not found: " + runner);
        console::printNote("rebuild will finish without running mqrun kick");
    } else {
        console::printLine();
        console::printNote("execute the configured project runner afterwards? (y/n):");
        console::printLine("        " + runnerCommand(runner, root));
        runScript = system::askYesNo();
    }
    return true;
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

std::string resolveRunner(const std::string& root) {
    const WorkingDirectory inRoot(root);
    const auto runner = console::findRunnerProgram(console::loadConfig("morquill.conf"));
    // A path relative to the root means nothing once this returns; a bare name is looked up along PATH.
    return runner.find('/') == std::string::npos ? runner : absoluteLocation(runner);
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
    ProjectTarget target;
    std::vector<std::string> selected;
    if (!chooseWork(path, names, "select task blocks to rebuild:", target, selected)) {
        return false;
    }
    if (selected.empty()) {
        return true;
    }
    console::printLine();
    console::printNote("selected: " + formatSelection(selected));
    console::printNote("rebuild mode re-runs full morquill and refreshes generated inputs/workflow.");
    RebuildOptions chosen = options;
    bool rebuilt = false;
    if (target.kind == TargetKind::Case) {
        if (chosen.runScript) {
            console::reportError(
                "--run-script requires a project root or .projmq path. For a single "
                "case, rebuild the case first, then run the project runner from the project root.");
            return false;
        }
        rebuilt = rebuildCase(target.caseDir, target.caseFile, selected, chosen);
    } else {
        if (!settleRunner(target.projectRoot, chosen.runScript)) {
            return false;
        }
        rebuilt = rebuildProject(target.projectRoot, target.projectFile, selected, chosen);
    }
    if (!rebuilt) {
        console::reportError("rebuild failed.");
    }
    return rebuilt;
}

} // namespace morquill::project
