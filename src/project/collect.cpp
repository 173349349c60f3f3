#include "console/command_line.h"
#include "console/messages.h"
#include "project/case_block.h"
#include "project/cases/block_pattern.h"
#include "project/cases/selection.h"
#include "project/choice.h"
#include "project/phrases.h"
#include "project/workflows.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/copy_item.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace morquill::project {

namespace {

struct CollectSummary {
    std::int64_t items = 0;
    std::int64_t missing = 0;
    std::int64_t failed = 0;
};

/// One task block in one case and where its items go.
struct CollectPlace {
    CaseBlock block;
    std::string targetDir;
    bool intoItself = false; ///< the results would lie in the block directory, as items of the next collect
};

/// True when results below `targetDir` would lie in the block directory.
bool holdsResults(const std::string& blockDir, const std::string& targetDir) {
    const auto block = normalisedPath(blockDir);
    const auto target = normalisedPath(targetDir);
    return block == target || liesBelow(target, block);
}

bool makeDirectory(const std::string& dir) {
    std::error_code error;
    std::filesystem::create_directories(dir, error);
    return lookUpDirectory(dir);
}

/// The name of an item among those of other cases: its own name and the case name.
std::string targetName(const std::string& source, const std::string& caseName) {
    if (lookUpDirectory(source)) {
        return baseName(source) + "_" + caseName;
    }
    return stemOf(source) + "_" + caseName + std::string(extensionOf(source));
}

/// What a pattern matches in a block; nothing, after a message, when the block cannot be read.
std::optional<std::vector<std::string>> findItems(const CollectPlace& place, const std::string& pattern) {
    const bool directoriesOnly = pattern.ends_with('/') || pattern.ends_with('\\');
    try {
        return expandBlockPattern(place.block.directory, pattern,
                                  directoriesOnly ? MatchedKind::directories : MatchedKind::any);
    } catch (const std::system_error& failure) {
        console::reportWarning(failure.what());
        return std::nullopt;
    }
}

void collectPattern(const CollectPlace& place, const std::string& pattern, console::RunMode mode,
                    CollectSummary& summary) {
    const auto matches = findItems(place, pattern);
    if (!matches) {
        summary.failed += 1;
        return;
    }
    if (matches->empty()) {
        console::printSkip(place.block.label + " : " + pattern);
    }
    for (const auto& match : *matches) {
        const auto source = joinPath(place.block.directory, match);
        const auto target = joinPath(place.targetDir, targetName(source, place.block.caseName));
        console::printNote(std::string("copy: ").append(source).append(" -> ").append(target));
        summary.items += 1;
        if (place.intoItself || (mode == console::RunMode::apply && !system::copyItem(source, target))) {
            summary.failed += 1;
            console::reportWarning("copy failed: " + source);
        }
    }
}

void printCollectHeader(const ProjectOptions& options, const ChosenBlocks& chosen,
                        const std::string& results) {
    std::string text = "\n[Project Collect]\n  project template: " + chosen.file +
                       "\n  task blocks: " + formatSelection(chosen.selected) +
                       "\n  patterns : " + join(options.patterns, " ") +
                       (options.dryRun ? "  (dry-run)" : "") + "\n  results  : " + results + "\n";
    if (chosen.selected.size() > 1) {
        text += "  layout: multi-task mode writes to results/<task>/\n";
    }
    console::printLine(text);
}

int printCollectSummary(const CollectSummary& summary, const std::string& results) {
    console::printLine();
    console::printNote("finished: collected " + std::to_string(summary.items) + " item(s) into " + results);
    if (summary.missing > 0) {
        console::printNote("note: " + std::to_string(summary.missing) +
                           " case/task combinations are missing block directories.");
    }
    if (summary.failed > 0) {
        console::printNote("note: " + std::to_string(summary.failed) + " collected item(s) failed to copy.");
    }
    return summary.missing > 0 || summary.failed > 0 ? 2 : 0;
}

} // namespace

int runProjectCollect(const ProjectOptions& options) {
    const auto chosen = chooseBlocks(options);
    if (!chosen) {
        return 1;
    }
    const auto caseDirs = chooseCases(chosen->root);
    if (options.patterns.empty()) {
        throw console::plainRefusal("project collect requires at least one glob pattern.");
    }
    const auto results = joinPath(chosen->root, "results");
    if (!makeDirectory(results)) { // also in a dry run
        console::reportError("could not create results directory: " + results);
        return 1;
    }
    printCollectHeader(options, *chosen, results);
    CollectSummary summary;
    for (const auto& task : chosen->selected) {
        const auto targetDir = chosen->selected.size() > 1 ? joinPath(results, task) : results;
        if (!options.dryRun && !makeDirectory(targetDir)) {
            console::reportError("could not create result directory: " + targetDir);
            return 1;
        }
        if (!options.dryRun) {
            system::removeStaleCopies(targetDir);
        }
        for (const auto& caseDir : caseDirs) {
            auto block = blockOf(caseDir, task);
            if (!lookUpDirectory(block.directory)) {
                summary.missing += 1;
                console::printSkip(missingBlock(block.label));
                continue;
            }
            const bool intoItself = holdsResults(block.directory, targetDir);
            const CollectPlace place{std::move(block), targetDir, intoItself};
            for (const auto& pattern : options.patterns) {
                collectPattern(place, pattern, console::runMode(options.dryRun), summary);
            }
        }
    }
    return printCollectSummary(summary, results);
}

} // namespace morquill::project
