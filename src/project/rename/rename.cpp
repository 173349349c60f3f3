#include "project/rename/rename.h"

#include "project/cases/target.h"
#include "project/cases/task_catalog.h"
#include "project/rename/rename_files.h"
#include "support/file.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/prompt.h"
#include "taskdsl/parser/task_parser.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace morquill::project {

namespace {

/// What the given file stands for.
struct RenamePlace {
    bool project = false;
    std::string file;    ///< the file to be rewritten: the task file or the project template
    std::string caseDir; ///< the directory of the given task file; empty when the template itself was given
};

/// A task file that is a link to a project template stands for the whole project.
RenamePlace findPlace(const std::string& path) {
    if (path.ends_with(".projmq")) {
        return {true, path, ""};
    }
    std::error_code error;
    if (path.ends_with(".mq") && std::filesystem::is_symlink(path, error)) {
        if (auto target = normalisedPath(path); target.ends_with(".projmq")) {
            return {true, std::move(target), parentPath(path)};
        }
    }
    return {false, path, parentPath(path)};
}

/// The blocks of a file under the names that are written in it.
std::vector<std::string> listBlocks(const std::string& file) {
    NameList names;
    for (const auto& task : taskdsl::TaskParser().parseFile(file).templateTasks) {
        names.add(writtenName(task));
    }
    return names.names();
}

bool checkNames(const std::string& file, const RenamedBlock& block) {
    // A block's name is the name of its directory: with a slash, renaming would move things out of the case.
    if (block.newName.find('/') != std::string::npos) {
        system::printErrorLine("[mqkit][ERROR] a block name cannot hold '/': $" + block.newName);
        return false;
    }
    const auto blocks = listBlocks(file);
    const auto has = [&](const std::string& name) {
        return std::find(blocks.begin(), blocks.end(), name) != blocks.end();
    };
    if (!has(block.oldName)) {
        system::printErrorLine("[mqkit][ERROR] block not found in task file: $" + block.oldName);
        system::printErrorLine("[mqkit] available blocks: " + join(blocks, ", "));
        return false;
    }
    if (has(block.newName)) {
        system::printErrorLine("[mqkit][ERROR] target block already exists: $" + block.newName);
        return false;
    }
    return true;
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

bool rewriteTaskFile(const std::string& file, const RenamedBlock& block, RenameReport& report) {
    if (rewriteTextFile(file, block, "", report)) {
        return true;
    }
    system::printErrorLine("[mqkit][ERROR] failed to update project template: " + file);
    return false;
}

bool renameInProject(const RenamePlace& place, const RenamedBlock& block, RenameReport& report) {
    if (!rewriteTaskFile(place.file, block, report)) {
        return false;
    }
    const auto root = parentPath(place.file);
    report.linkRoot = normalisedPath(root);
    auto caseDirs = listCaseDirectories(root);
    // A case that lies elsewhere and only links to the template was asked for by name.
    const bool listed = place.caseDir.empty() ||
                        std::any_of(caseDirs.begin(), caseDirs.end(), [&](const std::string& caseDir) {
                            return normalisedPath(caseDir) == normalisedPath(place.caseDir);
                        });
    if (!listed) {
        caseDirs.push_back(place.caseDir);
    }
    for (const auto& caseDir : caseDirs) {
        for (const auto& name : caseNames(caseDir)) {
            renameInCase(caseDir, name, block, report);
        }
    }
    invalidateDatabases(root, "project(" + baseName(root) + ")", report);
    return true;
}

void printReport(const RenamedBlock& block, const RenameReport& report) {
    system::printLine("[mqkit] rename finished: $" + block.oldName + " -> $" + block.newName +
                      "\n  cases processed: " + std::to_string(report.casesProcessed) +
                      "\n  directories renamed: " + std::to_string(report.directoriesRenamed) +
                      "\n  files renamed: " + std::to_string(report.filesRenamed) +
                      "\n  text files updated: " + std::to_string(report.textFilesUpdated) +
                      "\n  databases invalidated: " + std::to_string(report.databasesInvalidated));
    if (report.databasesInvalidated > 0) {
        system::printLine(
            "  note: rerun mqdb case/project sync or rebuild before querying database results.");
    }
    if (!report.warnings.empty()) {
        system::printLine("\n[mqkit][WARN] warnings:\n  - " + join(report.warnings, "\n  - "));
    }
    if (!report.errors.empty()) {
        system::printErrorLine("\n[mqkit][ERROR] errors:\n  - " + join(report.errors, "\n  - "));
    }
}

} // namespace

int renameBlock(const RenameOptions& options) {
    const auto path = absoluteLocation(options.file);
    if (!isRegularFile(path)) {
        system::printErrorLine("[mqkit][ERROR] file does not exist: " + path);
        return 1;
    }
    const RenamedBlock block{options.oldName, options.newName};
    if (block.oldName == block.newName) {
        system::printErrorLine("[mqkit][ERROR] old and new block names are identical; nothing to rename");
        return 1;
    }
    const auto place = findPlace(path);
    if (!checkNames(place.file, block)) {
        return 1;
    }
    RenameReport report;
    if (place.project) {
        if (!renameInProject(place, block, report)) {
            return 1;
        }
    } else {
        renameInCase(place.caseDir, stemOf(place.file), block, report);
        if (!rewriteTaskFile(place.file, block, report)) {
            return 1;
        }
    }
    printReport(block, report);
    return report.errors.empty() ? 0 : 1;
}

} // namespace morquill::project
