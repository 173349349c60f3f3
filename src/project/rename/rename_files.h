#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

/// What a renamed block left on disk: directories, file name prefixes, text, derived databases. Nothing
/// throws for a file system error; what went wrong is in the report.
namespace morquill::project {

/// The two names of a rename.
struct RenamedBlock {
    std::string oldName;
    std::string newName;
};

struct RenameReport {
    std::int64_t casesProcessed = 0;
    std::int64_t directoriesRenamed = 0;
    std::int64_t filesRenamed = 0;
    std::int64_t textFilesUpdated = 0;
    std::int64_t databasesInvalidated = 0;
    std::vector<std::string> warnings;
    std::vector<std::string> errors;
    /// Canonical paths of the files that were looked at: a file reached twice is rewritten once.
    std::unordered_set<std::string> visitedFiles;
    /// Canonical paths of the cases whose block directory was looked at.
    std::unordered_set<std::string> visitedCases;
    /// Canonical path of the project root in a project-wide rename: links from a case to files below it are
    /// followed, all others leave the tree and are not. Empty for the rename in one case.
    std::string linkRoot;
};

/// The text with the new name in it; nothing when it does not change. With a case name
/// `<old>_<case>` is replaced first, then `<old>_[`, then the old name as a word of its own;
/// replacements are not replaced again.
[[nodiscard]] std::optional<std::string> renamedText(const std::string& text, const RenamedBlock& block,
                                                     const std::string& caseName);

/// Renames the block directory of a case and the prefixed files in it, once for every case, and the files of
/// that block and case in the derived trees below `.morq` and `Results`.
void renameBlockArtifacts(const std::string& caseDir, const std::string& caseName, const RenamedBlock& block,
                          RenameReport& report);

/// The first file or directory of a case whose name would become longer than `NAME_MAX` bytes, by its path of
/// today; nothing when all fit. Looked for in the places that `renameBlockArtifacts` renames in.
[[nodiscard]] std::optional<std::string>
findOverlongName(const std::string& caseDir, const std::string& caseName, const RenamedBlock& block);

/// How far below a directory something is done.
enum class Depth : std::uint8_t { one, any };

/// Renames what begins with `oldPrefix` in a directory, the deepest first. An existing target is an error and
/// nothing is replaced.
void renamePrefixedFiles(const std::string& dir, const std::string& oldPrefix, const std::string& newPrefix,
                         Depth depth, RenameReport& report);

/// Puts the new name into one text file, see `renamedText`; files of binary kinds, files with NUL
/// bytes and files that were visited are left alone. False only when the file could not be written;
/// it then has its old text, as far as the disk allows.
[[nodiscard]] bool rewriteTextFile(const std::string& path, const RenamedBlock& block,
                                   const std::string& caseName, RenameReport& report);

/// The same for all files of a case, without the stores of results.
void rewriteCaseTree(const std::string& caseDir, const RenamedBlock& block, const std::string& caseName,
                     RenameReport& report);

/// Removes the derived databases below a case or project directory, so that they are built anew. `label`
/// names their owner in warnings.
void invalidateDatabases(const std::string& dir, const std::string& label, RenameReport& report);

} // namespace morquill::project
