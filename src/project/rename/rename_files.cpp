#include "project/rename/rename_files.h"

#include "project/rename/word_replace.h"
#include "support/descriptor.h"
#include "support/directory.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill::project {

namespace {

/// Extensions of files that hold no text, in byte order.
constexpr std::array<std::string_view, 30> binaryExtensions{
    ".7z",  ".a",  ".bmp",    ".chk",     ".class", ".db",  ".dll", ".dylib", ".exe", ".gbw",
    ".gif", ".gz", ".jpeg",   ".jpg",     ".lib",   ".o",   ".obj", ".pdf",   ".png", ".pyc",
    ".rwf", ".so", ".sqlite", ".sqlite3", ".tar",   ".tgz", ".tif", ".tiff",  ".xz",  ".zip"};
static_assert(std::is_sorted(binaryExtensions.begin(), binaryExtensions.end()));

/// A larger file is never taken into memory, so its text is never rewritten.
constexpr off_t largestText = off_t{2} << 30;

/// The derived trees in which files carry the block and case in their names; only the last of each is deep.
struct DerivedDirectory {
    const char* path;
    Depth depth;
};
constexpr DerivedDirectory derivedDirectories[] = {
    {".morq/cache/snapshots", Depth::one}, {".morq/store/records", Depth::one},
    {".morq/run/db-queue", Depth::one},    {".morq/store/revisions", Depth::any},
    {"Results/DB/snapshots", Depth::one},  {"Results/DB/records", Depth::one},
    {"Results/DB/queue", Depth::one},      {"Results/DB/revisions", Depth::any},
};

/// Content stores, addressed by checksum: a changed file would no longer be what its name says.
constexpr std::string_view closedTrees[] = {"/.morq/store/objects", "/Results/DB/repository"};

struct DerivedDatabase {
    const char* path;
    const char* label;
};
constexpr DerivedDatabase derivedDatabases[] = {
    {".morq/cache/project.db", " cache DB"},
    {"Results/DB/project.db", " legacy DB"},
};

bool existsUnfollowed(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

/// Renames unless the new name is taken; 0 or the error number.
int renameWithoutReplacing(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // A file system that cannot promise it in one step.
    if (existsUnfollowed(to)) {
        return EEXIST;
    }
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

bool isBinaryName(std::string_view name) {
    const auto lowered = toLower(name);
    return lowered.ends_with("-wal") || lowered.ends_with("-shm") ||
           std::binary_search(binaryExtensions.begin(), binaryExtensions.end(), extensionOf(lowered));
}

/// True when a file that is too large to be looked at whole shows by its first bytes that it is no text.
bool beginsBinary(const std::string& path) {
    std::array<char, 1 << 16> buffer{};
    const Descriptor file = openFile(path, O_RDONLY | O_NONBLOCK);
    const ssize_t got = readFull(file.get(), buffer.data(), buffer.size());
    return got > 0 && std::memchr(buffer.data(), '\0', static_cast<std::size_t>(got)) != nullptr;
}

bool isClosedTree(std::string_view dir) {
    return std::any_of(std::begin(closedTrees), std::end(closedTrees),
                       [&](std::string_view end) { return dir.ends_with(end); });
}

/// True for a link target that a rename may change: below one of the two trees and in no content store.
bool isOpenTarget(const std::string& target, const std::string& caseTree, const std::string& linkRoot) {
    if (!liesBelow(target, caseTree) && !liesBelow(target, linkRoot)) {
        return false;
    }
    return std::none_of(std::begin(closedTrees), std::end(closedTrees), [&](std::string_view tree) {
        return target.find(std::string(tree) + "/") != std::string::npos;
    });
}

/// `rewriteTextFile` for a file whose canonical path is known.
bool rewriteFile(const std::string& path, std::string canonical, const RenamedBlock& block,
                 const std::string& caseName, RenameReport& report) {
    if (isBinaryName(baseName(path)) || !report.visitedFiles.insert(std::move(canonical)).second) {
        return true;
    }
    struct stat info {};
    const bool tooLarge = ::stat(path.c_str(), &info) == 0 && info.st_size > largestText;
    if (tooLarge && beginsBinary(path)) {
        return true;
    }
    const auto text = tooLarge ? std::nullopt : readTextFile(path);
    if (!text) {
        report.warnings.push_back("could not read text file; skipped: " + path);
        return true;
    }
    if (text->find('\0') != std::string::npos) {
        return true;
    }
    const auto renamed = renamedText(*text, block, caseName);
    if (!renamed) {
        return true;
    }
    if (!writeTextFile(path, *renamed)) {
        report.errors.push_back("could not write file back: " + path);
        return false;
    }
    report.textFilesUpdated += 1;
    return true;
}

/// The same for a link in a case, when it leads to a file that the rename may change.
void rewriteLinkedFile(const std::string& path, const std::string& caseTree, const RenamedBlock& block,
                       const std::string& caseName, RenameReport& report) {
    if (!lookUpRegularFile(path)) {
        return;
    }
    const auto target = normalisedPath(path);
    if (isOpenTarget(target, caseTree, report.linkRoot)) {
        (void)rewriteFile(path, target, block, caseName, report);
    }
}

/// The block directory of a case and the prefixed files in it.
void renameBlockDirectory(const std::string& caseDir, const RenamedBlock& block, RenameReport& report) {
    const auto oldDir = joinPath(caseDir, block.oldName);
    const auto newDir = joinPath(caseDir, block.newName);
    if (lookUpDirectory(oldDir)) {
        const int error = renameWithoutReplacing(oldDir, newDir);
        if (error == 0) {
            report.directoriesRenamed += 1;
        } else if (error == EEXIST) {
            report.errors.push_back("target block directory already exists: " + newDir);
        } else {
            report.errors.push_back("failed to rename block directory: " + oldDir + " -> " + newDir + ": " +
                                    systemErrorText(error));
        }
    }
    const auto workingDir = lookUpDirectory(newDir) ? newDir : oldDir;
    renamePrefixedFiles(workingDir, block.oldName + "_", block.newName + "_", Depth::any, report);
}

} // namespace

std::optional<std::string> renamedText(const std::string& text, const RenamedBlock& block,
                                       const std::string& caseName) {
    // Every form begins with the old name: most files end here.
    if (!containsText(text, block.oldName)) {
        return std::nullopt;
    }
    RewrittenText renamed(text);
    if (!caseName.empty()) {
        renamed.replaceText(block.oldName + "_" + caseName, block.newName + "_" + caseName);
    }
    renamed.replaceText(block.oldName + "_[", block.newName + "_[");
    renamed.replaceWord(block.oldName, block.newName);
    return renamed.text() == text ? std::nullopt : std::optional(std::move(renamed).take());
}

void renameBlockArtifacts(const std::string& caseDir, const std::string& caseName, const RenamedBlock& block,
                          RenameReport& report) {
    // A case has one block directory, whatever the number of its names: `opt_a`, once it is `opt_x_a`, would
    // begin with `opt_` again.
    if (report.visitedCases.insert(normalisedPath(caseDir)).second) {
        renameBlockDirectory(caseDir, block, report);
    }
    if (caseName.empty()) {
        return;
    }
    for (const auto& derived : derivedDirectories) {
        renamePrefixedFiles(joinPath(caseDir, derived.path), block.oldName + "_" + caseName,
                            block.newName + "_" + caseName, derived.depth, report);
    }
}

std::optional<std::string> findOverlongName(const std::string& caseDir, const std::string& caseName,
                                            const RenamedBlock& block) {
    if (block.newName.size() <= block.oldName.size()) {
        return std::nullopt;
    }
    const std::size_t growth = block.newName.size() - block.oldName.size();
    std::optional<std::string> found;
    const auto look = [&](const std::string& dir, const std::string& prefix, Depth reach) {
        if (found || !lookUpDirectory(dir)) {
            return;
        }
        walkTree(dir, WalkOrder::byName, [&](const std::string& path, EntryKind) {
            const auto name = std::string_view(path).substr(path.rfind('/') + 1);
            if (!found && name.starts_with(prefix) && name.size() + growth > NAME_MAX) {
                found = path;
            }
            return reach == Depth::any && !found;
        });
    };
    // The files of a block lie in its directory, or in that of the new name where one is there already.
    look(joinPath(caseDir, block.oldName), block.oldName + "_", Depth::any);
    look(joinPath(caseDir, block.newName), block.oldName + "_", Depth::any);
    for (const auto& derived : derivedDirectories) {
        look(joinPath(caseDir, derived.path), block.oldName + "_" + caseName, derived.depth);
    }
    return found;
}

void renamePrefixedFiles(const std::string& dir, const std::string& oldPrefix, const std::string& newPrefix,
                         Depth reach, RenameReport& report) {
    if (oldPrefix == newPrefix || !lookUpDirectory(dir)) {
        return;
    }
    struct Entry {
        std::ptrdiff_t depth; ///< separators in the path
        std::string path;
    };
    std::vector<Entry> entries;
    walkTree(dir, WalkOrder::byName, [&](const std::string& path, EntryKind kind) {
        if (kind == EntryKind::unreadable) {
            report.errors.push_back("failed to read directory: " + path);
        } else if (std::string_view(path).substr(path.rfind('/') + 1).starts_with(oldPrefix)) {
            entries.push_back(
                {std::count_if(path.begin(), path.end(), [](char c) { return c == '/' || c == '\\'; }),
                 path});
        }
        return reach == Depth::any;
    });
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return std::tuple(b.depth, b.path.size(), std::string_view(a.path)) <
               std::tuple(a.depth, a.path.size(), std::string_view(b.path));
    });
    for (const auto& [depth, path] : entries) {
        const auto nameStart = path.rfind('/') + 1;
        const auto target = path.substr(0, nameStart) + newPrefix + path.substr(nameStart + oldPrefix.size());
        const int error = renameWithoutReplacing(path, target);
        if (error == 0) {
            report.filesRenamed += 1;
        } else if (error == EEXIST) {
            report.errors.push_back("target already exists; cannot rename: " + target);
        } else {
            report.errors.push_back(std::string("failed to rename: ")
                                        .append(path)
                                        .append(" -> ")
                                        .append(target)
                                        .append(": ")
                                        .append(systemErrorText(error)));
        }
    }
}

bool rewriteTextFile(const std::string& path, const RenamedBlock& block, const std::string& caseName,
                     RenameReport& report) {
    return rewriteFile(path, normalisedPath(path), block, caseName, report);
}

void rewriteCaseTree(const std::string& caseDir, const RenamedBlock& block, const std::string& caseName,
                     RenameReport& report) {
    // Links below are not entered, so the canonical path of a file is that of the case and the rest
    // of its path.
    const auto canonicalCase = normalisedPath(caseDir);
    walkTree(caseDir, WalkOrder::byName, [&](const std::string& path, EntryKind kind) {
        switch (kind) {
        case EntryKind::directory:
            return !isClosedTree(path);
        case EntryKind::file:
            (void)rewriteFile(path, canonicalCase + path.substr(caseDir.size()), block, caseName, report);
            break;
        case EntryKind::link:
            rewriteLinkedFile(path, canonicalCase, block, caseName, report);
            break;
        case EntryKind::unreadable:
            report.warnings.push_back("could not read directory; skipped: " + path);
            break;
        case EntryKind::other:
            break;
        }
        return false;
    });
}

void invalidateDatabases(const std::string& dir, const std::string& label, RenameReport& report) {
    for (const auto& database : derivedDatabases) {
        bool removed = false;
        for (const char* companion : {"", "-wal", "-shm"}) {
            if (::unlink((joinPath(dir, database.path) + companion).c_str()) == 0) {
                removed = true;
            } else if (errno != ENOENT && errno != ENOTDIR) {
                report.warnings.push_back(label + database.label +
                                          " failed to remove stale database: " + systemErrorText(errno));
            }
        }
        report.databasesInvalidated += removed ? 1 : 0;
    }
}

} // namespace morquill::project
