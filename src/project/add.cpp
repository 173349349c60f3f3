#include "console/command_line.h"
#include "console/messages.h"
#include "project/case_files.h"
#include "project/cases/target.h"
#include "project/workflows.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"

#include <unordered_set>

namespace morquill::project {

namespace {

enum class AddResult { added, skipped, failed };

AddResult failAdd(std::string_view reason, const std::string& subject) {
    console::reportWarning(std::string(reason) + ": " + subject);
    return AddResult::failed;
}

/// The project that cases are added to, and what was added in this call.
struct AddRun {
    std::string root;
    std::string file; ///< the project template
    bool dryRun = false;
    std::unordered_set<std::string> stems;
};

AddResult addCase(AddRun& run, const std::string& path) {
    if (toLower(extensionOf(path)) != ".xyz") {
        return failAdd("not an .xyz file", path);
    }
    if (!lookUpRegularFile(path)) {
        return failAdd("xyz file not found", path);
    }
    const std::string stem = stemOf(path);
    if (stem.empty()) {
        return failAdd("could not derive case name from xyz file", path);
    }
    if (!run.stems.insert(stem).second) {
        return failAdd("duplicate case name in arguments", stem);
    }
    const std::string caseDir = joinPath(run.root, stem);
    if (lookUpDirectory(caseDir)) {
        console::printSkip("case directory already exists: " + caseDir);
        return AddResult::skipped;
    }
    console::printNote("add case: " + stem + " <- " + path);
    return run.dryRun || createCase(path, run.root, run.file) ? AddResult::added : AddResult::failed;
}

} // namespace

int runProjectAdd(const ProjectOptions& options) {
    AddRun run;
    run.dryRun = options.dryRun;
    const auto project = resolveProjectTemplate(options.path);
    if (!project) {
        throw console::UsageError(console::ErrorTag::plain, project.error());
    }
    run.root = project->root;
    run.file = project->file;
    if (options.xyzFiles.empty()) {
        throw console::UsageError(console::ErrorTag::plain, "project add requires at least one .xyz file.");
    }
    console::printLine("\n[Project Add]");
    console::printLine("  project template: " + run.file);
    console::printLine("  case files      : " + join(options.xyzFiles, " ") +
                       (run.dryRun ? "  (dry-run)" : ""));

    int added = 0;
    int skipped = 0;
    int failed = 0;
    for (const std::string& file : options.xyzFiles) {
        switch (addCase(run, absoluteLocation(file))) {
        case AddResult::added:
            ++added;
            break;
        case AddResult::skipped:
            ++skipped;
            break;
        case AddResult::failed:
            ++failed;
            break;
        }
    }
    console::printLine();
    console::printNote("finished: added " + std::to_string(added) + " case(s).");
    if (skipped > 0) {
        console::printNote("note: " + std::to_string(skipped) + " case(s) already existed and were skipped.");
    }
    if (failed > 0) {
        console::printNote("note: " + std::to_string(failed) + " case(s) failed validation or creation.");
    }
    return failed > 0 ? 2 : 0;
}

} // namespace morquill::project
