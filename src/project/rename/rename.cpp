#include "project/rename/rename.h"

#include "console/messages.h"
#include "project/cases/target.h"
#include "project/rename/block_name.h"
#include "project/rename/rename_check.h"
#include "project/rename/rename_files.h"
#include "project/rename/template_stub.h"
#include "project/status/status_lock.h"
#include "support/directory.h"
#include "support/file.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace morquill::project {

namespace {

/// What the file on the command line leads to.
struct RenamePlace {
    TargetKind kind = TargetKind::Case;
    std::string file;    ///< the file to be rewritten: the task file or the project template
    std::string caseDir; ///< the directory of the given task file; empty when the template itself was given
};

/// A task file that is a link to a project template, or the stub in place of such a link,
/// means the whole project.
RenamePlace findPlace(const std::string& path) {
    if (path.ends_with(templateExtension)) {
        return {TargetKind::Project, path, ""};
    }
    std::error_code error;
    if (path.ends_with(taskExtension) && std::filesystem::is_symlink(path, error)) {
        if (auto target = normalisedPath(path); target.ends_with(templateExtension)) {
            return {TargetKind::Project, std::move(target), parentPath(path)};
        }
    }
    if (const auto text = readTextFile(path); path.ends_with(taskExtension) && text) {
        if (auto target = stubTemplate(*text, path)) {
            return {TargetKind::Project, *std::move(target), parentPath(path)};
        }
    }
    return {TargetKind::Case, path, parentPath(path)};
}

/// Reports why nothing is renamed; always false.
bool refuse(const std::string& message) {
    console::reportError(message);
    return false;
}

/// The case name with which the task file of a case is rewritten: none when the file lies elsewhere.
std::string caseNameOf(const RenamePlace& place) {
    const bool inside = liesBelow(normalisedPath(place.file), normalisedPath(place.caseDir));
    return place.kind == TargetKind::Case && inside ? stemOf(place.file) : "";
}

/// False, after a message, when a case would lose the way to its template: the name of a block may be part of
/// the name of the template file.
bool checkStubs(const std::vector<RenamedCase>& cases, const RenamedBlock& block) {
    for (const auto& [caseDir, names] : cases) {
        for (const auto& name : listDirectoryEntries(caseDir, "*.mq")) {
            const auto file = joinPath(caseDir, name);
            const auto text = readTextFile(file);
            const auto target = text ? stubTemplate(*text, file) : std::nullopt;
            const auto renamed = target ? renamedText(*text, block, names.front()) : std::nullopt;
            if (renamed && stubTemplate(*renamed, file) != target) {
                return refuse("renaming $" + block.oldName + " would change the include of the template in " +
                              file);
            }
        }
    }
    return true;
}

/// True for a name that leads out of the case when it is taken as that of a directory.
bool leavesCase(std::string_view name) {
    const auto parts = splitOn(name, '/');
    return std::any_of(parts.begin(), parts.end(),
                       [](const std::string& part) { return part == "." || part == ".."; });
}

/// False after a message. Nothing has been touched by then.
bool checkRename(const RenameScope& scope, const RenamedBlock& block) {
    if (const auto fault = blockNameFault(block.newName)) {
        return refuse(*fault);
    }
    if (const auto obstacle = findObstacle(scope, block)) {
        return refuse(*obstacle);
    }
    if (leavesCase(block.oldName)) {
        return refuse("the directory of $" + block.oldName + " would not lie in its case");
    }
    return checkStubs(scope.cases, block);
}

void renameInCase(const std::string& caseDir, const std::string& name, const RenamedBlock& block,
                  RenameReport& report) {
    report.casesProcessed += 1;
    renameBlockArtifacts(caseDir, name, block, report);
    rewriteCaseTree(caseDir, block, name, report);
    invalidateDatabases(caseDir, "case(" + name + ")", report);
}

/// The names under which the generator knows a case: one per task file.
std::vector<std::string> caseNames(const std::string& caseDir) {
    std::vector<std::string> names;
    for (const auto& file : listDirectoryEntries(caseDir, "*.mq")) {
        names.push_back(stemOf(file));
    }
    if (names.empty()) {
        names.push_back(baseName(caseDir));
    }
    return names;
}

/// The directories of the cases that are touched. One that lies elsewhere and only leads to the template was
/// asked for by name.
std::vector<std::string> listCases(const RenamePlace& place) {
    auto caseDirs = listCaseDirectories(parentPath(place.file));
    const bool listed = place.caseDir.empty() ||
                        std::any_of(caseDirs.begin(), caseDirs.end(), [&](const std::string& caseDir) {
                            return normalisedPath(caseDir) == normalisedPath(place.caseDir);
                        });
    if (!listed) {
        caseDirs.push_back(place.caseDir);
    }
    return caseDirs;
}

RenameScope findScope(const RenamePlace& place) {
    RenameScope scope{place.file, caseNameOf(place), {}, {}};
    if (place.kind == TargetKind::Case) {
        scope.cases.push_back({place.caseDir, {stemOf(place.file)}});
        return scope;
    }
    for (const auto& caseDir : listCases(place)) {
        scope.cases.push_back({caseDir, caseNames(caseDir)});
    }
    scope.linkRoot = normalisedPath(parentPath(place.file));
    return scope;
}

void renameCases(const RenameScope& scope, const RenamedBlock& block, RenameReport& report) {
    for (const auto& [caseDir, names] : scope.cases) {
        for (const auto& name : names) {
            renameInCase(caseDir, name, block, report);
        }
    }
}

void printReport(const RenamedBlock& block, const RenameReport& report) {
    console::printNote("rename finished: $" + block.oldName + " -> $" + block.newName +
                       "\n  cases processed: " + std::to_string(report.casesProcessed) +
                       "\n  directories renamed: " + std::to_string(report.directoriesRenamed) +
                       "\n  files renamed: " + std::to_string(report.filesRenamed) +
                       "\n  text files updated: " + std::to_string(report.textFilesUpdated) +
                       "\n  databases invalidated: " + std::to_string(report.databasesInvalidated));
    if (report.databasesInvalidated > 0) {
        console::printLine(
            "  note: rerun mqdb case/project sync or rebuild before querying database results.");
    }
    if (!report.warnings.empty()) {
        console::printLine();
        console::printMessage(console::MessageKind::warning,
                              "warnings:\n  - " + join(report.warnings, "\n  - "));
    }
    if (!report.errors.empty()) {
        console::printErrorLine();
        console::reportError("errors:\n  - " + join(report.errors, "\n  - "));
    }
}

} // namespace

int renameBlock(const RenameOptions& options) {
    const auto path = absoluteLocation(options.file);
    if (!lookUpRegularFile(path)) {
        console::reportError("file does not exist: " + path);
        return 1;
    }
    const RenamedBlock block{options.oldName, options.newName};
    if (block.oldName == block.newName) {
        console::reportError("old and new block names are identical; nothing to rename");
        return 1;
    }
    const auto place = findPlace(path);
    // An update that runs would put its own texts back over the renamed ones.
    const auto locks = lockStatusFiles(
        place.kind, place.kind == TargetKind::Case ? place.caseDir : parentPath(place.file), place.file);
    if (!locks) {
        return 1;
    }
    const auto scope = findScope(place);
    if (!checkRename(scope, block)) {
        return 1;
    }
    RenameReport report;
    // The task file comes first: while it has the old name, nothing else may have the new one.
    if (!rewriteTextFile(scope.file, block, scope.caseName, report)) {
        console::reportError("failed to update project template: " + scope.file);
        return 1;
    }
    report.linkRoot = scope.linkRoot;
    renameCases(scope, block, report);
    if (place.kind == TargetKind::Project) {
        const auto root = parentPath(place.file);
        invalidateDatabases(root, "project(" + baseName(root) + ")", report);
    }
    printReport(block, report);
    return report.errors.empty() ? 0 : 1;
}

} // namespace morquill::project
