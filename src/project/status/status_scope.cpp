#include "project/status/status_scope.h"

#include "project/cases/selection.h"
#include "project/status/status_file.h"
#include "support/descriptor.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/paths.h"
#include "system/new_file.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill::project {

namespace fs = std::filesystem;

namespace {

std::optional<FileIdentity> identityAt(const std::string& path) noexcept {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    return FileIdentity{info.st_dev, info.st_ino, info.st_mode & S_IFMT};
}

/// What is at the path of a status file; nothing when it cannot be read.
std::optional<StatusBackup> takeBackup(const std::string& path) {
    StatusBackup backup;
    backup.path = path;
    backup.entry = identityAt(backup.path);
    if (!backup.entry && !isAbsence(errno)) {
        return std::nullopt;
    }
    std::error_code error;
    if (backup.entry && S_ISLNK(backup.entry->kind)) {
        backup.link = fs::read_symlink(backup.path, error).string();
        if (error) {
            return std::nullopt;
        }
    }
    struct stat info {};
    if (::stat(backup.path.c_str(), &info) != 0) {
        return isAbsence(errno) ? std::optional(std::move(backup)) : std::nullopt;
    }
    if (!S_ISREG(info.st_mode)) {
        return backup;
    }
    auto text = readTextFile(backup.path);
    if (!text) {
        return std::nullopt;
    }
    backup.existed = true;
    backup.content = std::move(*text);
    backup.mode = info.st_mode & 07777;
    backup.file = backup.link.empty() ? backup.path : fs::canonical(backup.path, error).string();
    return error ? std::nullopt : std::optional(std::move(backup));
}

/// Takes the status file away or, with names to keep, narrows it to them.
bool changeStatusFile(StatusBackup& backup, const std::vector<std::string>& kept) {
    if (kept.empty() && !backup.link.empty()) {
        return ::unlink(backup.path.c_str()) == 0; // the bytes stay where the link leads
    }
    auto held = system::holdBytes(backup.file, backup.content);
    if (!held) {
        return false;
    }
    backup.held = std::move(*held);
    return kept.empty() ? ::unlink(backup.path.c_str()) == 0
                        : writeTextFile(backup.path, formatStatusNames(kept));
}

/// What narrowing one case's status file found; nothing after a message.
std::optional<UpdateSummary> scopeCase(const std::string& caseDir, const std::vector<std::string>& selected,
                                       console::RunMode mode, std::vector<StatusBackup>& backups) {
    const auto path = statusFilePath(caseDir);
    const auto name = baseName(caseDir);
    auto backup = takeBackup(path);
    if (!backup) {
        console::reportError("failed to read mq.status: " + path);
        return std::nullopt;
    }
    const auto kept = keptTasks(selected, parseCompletedTasks(backup->content));
    backups.push_back(*std::move(backup));
    UpdateSummary counts;
    counts.cases = 1;
    counts.selectedCompletedRecords = static_cast<std::int32_t>(kept.size());
    if (!backups.back().existed) {
        return counts;
    }
    (kept.empty() ? counts.statusHidden : counts.statusScoped) = 1;
    const bool dryRun = mode == console::RunMode::dryRun;
    if (!dryRun && !changeStatusFile(backups.back(), kept)) {
        console::reportError("failed to prepare mq.status for comd-only update: " + name);
        return std::nullopt;
    }
    const auto step = kept.empty()
                          ? (dryRun ? "would temporarily hide" : "temporarily hid") +
                                std::string(" mq.status because no selected task is marked completed")
                          : (dryRun ? "would scope" : "scoped") +
                                (" mq.status to selected completed task(s): " + formatSelection(kept));
    console::printMessage(console::stepKind(mode), name + " : " + step);
    return counts;
}

// What follows runs when memory may have run out, too: nothing in it but the write itself may allocate.

/// True when the path is a symbolic link with exactly this target.
bool isLinkTo(const std::string& path, std::string_view target) noexcept {
    std::array<char, PATH_MAX> text{};
    const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
    return size >= 0 && std::string_view(text.data(), static_cast<std::size_t>(size)) == target;
}

/// True when a file holds exactly these bytes.
bool holdsText(const std::string& path, std::string_view text) noexcept {
    const Descriptor file = openFile(path, O_RDONLY | O_NONBLOCK);
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = readSome(file.get(), buffer.data(), buffer.size());
        if (got <= 0) {
            return got == 0 && text.empty();
        }
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(got));
        if (!text.starts_with(piece)) {
            return false;
        }
        text.remove_prefix(piece.size());
    }
}

/// Makes the path what it was, a link or a place for a plain file; what came there instead goes,
/// a directory excepted.
bool restoreEntry(const StatusBackup& backup) noexcept {
    const auto now = identityAt(backup.path);
    if (now && S_ISDIR(now->kind)) {
        return false;
    }
    const bool asBefore =
        !backup.link.empty() ? isLinkTo(backup.path, backup.link) : !now || S_ISREG(now->kind);
    if (asBefore) {
        return true;
    }
    return (!now || ::unlink(backup.path.c_str()) == 0) &&
           (backup.link.empty() || ::symlink(backup.link.c_str(), backup.path.c_str()) == 0);
}

/// Puts the held copy in the place of a file that does not take its old bytes any more.
bool replaceByHeld(const StatusBackup& backup) noexcept {
    return backup.held.canReplace() && (::unlink(backup.file.c_str()) == 0 || errno == ENOENT) &&
           backup.held.linkTo(backup.file);
}

/// Writes the old bytes into the file or, where the disk is full, puts the held copy there.
bool writeBack(const StatusBackup& backup) {
    try {
        if (writeTextFile(backup.file, backup.content)) {
            return true;
        }
    } catch (const std::exception&) {
        if (!replaceByHeld(backup)) {
            throw;
        }
        return true;
    }
    return replaceByHeld(backup);
}

bool restoreText(const StatusBackup& backup) {
    const bool entryRestored = restoreEntry(backup);
    struct stat info {};
    const bool gone = ::stat(backup.file.c_str(), &info) != 0;
    if ((!entryRestored && backup.link.empty()) || (!gone && !S_ISREG(info.st_mode))) {
        return false;
    }
    // The target of a link goes back even where the link cannot.
    const bool linked = gone && backup.held.linkTo(backup.file);
    if (!linked && (gone || !holdsText(backup.file, backup.content)) && !writeBack(backup)) {
        return false;
    }
    if (gone || (info.st_mode & 07777) != backup.mode) {
        (void)::chmod(backup.file.c_str(), backup.mode);
    }
    return entryRestored;
}

/// Removes a file that came while the generator ran, at the path or at the end of a link that led nowhere
/// before. Returns 0 or the error number.
int removeArrival(const StatusBackup& backup) noexcept {
    const auto now = identityAt(backup.path);
    if (!now || S_ISDIR(now->kind)) {
        return 0;
    }
    if (now != backup.entry) {
        if (::unlink(backup.path.c_str()) != 0) {
            return errno;
        }
        const bool linked = backup.link.empty() || ::symlink(backup.link.c_str(), backup.path.c_str()) == 0;
        return linked ? 0 : errno;
    }
    struct stat info {};
    std::array<char, PATH_MAX> target{};
    if (!S_ISLNK(now->kind) || ::stat(backup.path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return 0;
    }
    const bool removed =
        ::realpath(backup.path.c_str(), target.data()) != nullptr && ::unlink(target.data()) == 0;
    return removed ? 0 : errno;
}

/// Saves the old bytes under a free name where they belong, or where that directory has been moved to.
/// Returns the path of the file, empty when they could not be saved anywhere.
std::string saveBeside(const StatusBackup& backup) {
    constexpr int mostNames = 100;
    const auto name = baseName(backup.file);
    for (const auto& dir : {parentPath(backup.file), backup.held.directory()}) {
        for (int i = 0; i < mostNames && lookUpDirectory(dir); ++i) {
            auto path = joinPath(dir, i == 0   ? name
                                      : i == 1 ? name + ".saved"
                                               : name + ".saved-" + std::to_string(i));
            if (!identityAt(path) &&
                (backup.held.linkTo(path) || !system::writeNewFile(path, backup.content))) {
                return path;
            }
        }
    }
    return {};
}

/// Why a status file could not be put back.
const char* restoreObstacle(const StatusBackup& backup) {
    const auto now = identityAt(backup.path);
    if (now && S_ISDIR(now->kind)) {
        return "a directory is in its place";
    }
    return lookUpDirectory(parentPath(backup.path)) ? "it cannot be written" : "its directory is gone";
}

void reportRestoreFailure(const StatusBackup& backup, std::string_view reason,
                          std::string_view saved) noexcept {
    console::reportErrorInPieces({"failed to restore mq.status: ", backup.path, " (", reason,
                                  saved.empty() ? "" : "; what it held is in ", saved, ")"});
}

/// Keeps what could not be put back and reports where it is and why.
void keepUnrestored(const StatusBackup& backup, std::string_view reason) noexcept {
    try {
        const auto saved = holdsText(backup.file, backup.content) ? backup.file : saveBeside(backup);
        reportRestoreFailure(backup, reason, saved);
    } catch (const std::exception&) {
        reportRestoreFailure(backup, reason, "");
    }
}

bool restoreOne(const StatusBackup& backup) noexcept {
    try {
        if (!backup.existed) {
            const int error = removeArrival(backup);
            if (error != 0) {
                reportRestoreFailure(backup, systemErrorText(error), "");
            }
            return error == 0;
        }
        if (!restoreText(backup)) {
            keepUnrestored(backup, restoreObstacle(backup));
            return false;
        }
        return true;
    } catch (const std::exception& failure) {
        keepUnrestored(backup, failure.what());
        return false;
    }
}

} // namespace

std::optional<UpdateSummary> scopeStatusFiles(const std::vector<std::string>& caseDirs,
                                              const std::vector<std::string>& selected, console::RunMode mode,
                                              std::vector<StatusBackup>& backups) {
    UpdateSummary sum;
    for (const auto& caseDir : caseDirs) {
        const auto counts = scopeCase(caseDir, selected, mode, backups);
        if (!counts) {
            return std::nullopt;
        }
        sum.cases += counts->cases;
        sum.statusScoped += counts->statusScoped;
        sum.statusHidden += counts->statusHidden;
        sum.selectedCompletedRecords += counts->selectedCompletedRecords;
    }
    return sum;
}

bool restoreStatusFiles(const std::vector<StatusBackup>& backups) noexcept {
    bool allRestored = true;
    for (auto backup = backups.rbegin(); backup != backups.rend(); ++backup) {
        allRestored = restoreOne(*backup) && allRestored;
    }
    return allRestored;
}

StatusRestorer::~StatusRestorer() {
    (void)restore();
}

bool StatusRestorer::restore() noexcept {
    return restoreStatusFiles(std::exchange(backups_, {}));
}

} // namespace morquill::project
