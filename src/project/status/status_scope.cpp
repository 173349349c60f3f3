#include "project/status/status_scope.h"

#include "project/cases/selection.h"
#include "project/status/status_file.h"
#include "support/file.h"
#include "support/paths.h"
#include "system/prompt.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace morquill::project {

namespace fs = std::filesystem;

namespace {

/// Fills in what stands at the backup's path; false when it cannot be read.
bool takeBackup(StatusBackup& backup) {
    struct stat info {};
    if (::stat(backup.path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return true;
    }
    auto text = readTextFile(backup.path);
    if (!text) {
        return false;
    }
    backup.existed = true;
    backup.content = std::move(*text);
    backup.mode = info.st_mode & 07777;
    std::error_code noLink;
    backup.link = fs::read_symlink(backup.path, noLink).string();
    return true;
}

bool scopeCase(const std::string& caseDir, const std::vector<std::string>& selected, bool dryRun,
               std::vector<StatusBackup>& backups, UpdateSummary& summary) {
    const auto path = statusFilePath(caseDir);
    const auto name = baseName(caseDir);
    StatusBackup backup;
    backup.path = path;
    if (!takeBackup(backup)) {
        system::printErrorLine("[mqkit][ERROR] failed to read mq.status: " + path);
        return false;
    }
    const bool existed = backup.existed;
    const auto kept = keptTasks(selected, parseCompletedTasks(backup.content));
    backups.push_back(std::move(backup));
    summary.selectedCompletedRecords += static_cast<std::int32_t>(kept.size());
    if (!existed) {
        return true;
    }
    const auto prefix = (dryRun ? "[mqkit][DRY-RUN] " : "[mqkit] ") + name + " : ";
    if (kept.empty()) {
        summary.statusHidden += 1;
        std::error_code error;
        if (!dryRun) {
            fs::remove(path, error);
        }
        if (error) {
            system::printErrorLine("[mqkit][ERROR] failed to prepare mq.status for comd-only update: " +
                                   name);
            return false;
        }
        system::printLine(prefix + (dryRun ? "would temporarily hide" : "temporarily hid") +
                          " mq.status because no selected task is marked completed");
        return true;
    }
    summary.statusScoped += 1;
    if (!dryRun && !overwriteTextFile(path, formatStatusNames(kept))) {
        system::printErrorLine("[mqkit][ERROR] failed to prepare mq.status for comd-only update: " + name);
        return false;
    }
    system::printLine(prefix + (dryRun ? "would scope" : "scoped") +
                      " mq.status to selected completed task(s): " + formatSelection(kept));
    return true;
}

/// Puts the text back; a file that had to be made anew gets its old kind and permissions, too.
bool restoreText(const StatusBackup& backup) {
    std::error_code error;
    const bool gone = fs::symlink_status(backup.path, error).type() == fs::file_type::not_found;
    if (gone && !backup.link.empty()) {
        fs::create_symlink(backup.link, backup.path, error);
    }
    if (!overwriteTextFile(backup.path, backup.content)) {
        return false;
    }
    if (gone) {
        (void)::chmod(backup.path.c_str(), backup.mode);
    }
    return true;
}

bool restoreOne(const StatusBackup& backup) {
    const auto message = "[mqkit][ERROR] failed to restore mq.status: " + backup.path;
    if (backup.existed) {
        if (!restoreText(backup)) {
            system::printErrorLine(message);
            return false;
        }
        return true;
    }
    std::error_code error;
    if (fs::symlink_status(backup.path, error).type() != fs::file_type::directory) {
        fs::remove(backup.path, error);
        if (error) {
            system::printErrorLine(message + " (" + error.message() + ")");
            return false;
        }
    }
    return true;
}

} // namespace

bool scopeStatusFiles(const std::vector<std::string>& caseDirs, const std::vector<std::string>& selected,
                      bool dryRun, std::vector<StatusBackup>& backups, UpdateSummary& summary) {
    for (const auto& caseDir : caseDirs) {
        summary.cases += 1;
        if (!scopeCase(caseDir, selected, dryRun, backups, summary)) {
            return false;
        }
    }
    return true;
}

bool restoreStatusFiles(const std::vector<StatusBackup>& backups) {
    bool allRestored = true;
    for (auto backup = backups.rbegin(); backup != backups.rend(); ++backup) {
        allRestored = restoreOne(*backup) && allRestored;
    }
    return allRestored;
}

StatusRestorer::~StatusRestorer() {
    (void)restore();
}

bool StatusRestorer::restore() {
    return restoreStatusFiles(std::exchange(backups_, {}));
}

} // namespace morquill::project
