#pragma once

#include "console/messages.h"
#include "system/held_bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

/// Narrowing the status files of cases for the time of a comd-only update: while the generator runs, only the
/// selected and completed tasks look finished.
namespace morquill::project {

/// What lies at a path itself, by which it is known again later.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    mode_t kind = 0; ///< the type bits: a number given up by one file may soon be another's

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// What was at the path of one case's status file before it was touched.
struct StatusBackup {
    std::string path;
    bool existed = false;              ///< a regular file, or a link to one
    std::string content;               ///< every byte, when it existed
    mode_t mode = 0644;                ///< its permissions
    std::string file;                  ///< where the bytes lie: the path, links resolved
    std::string link;                  ///< target of the path when it was a symbolic link
    std::optional<FileIdentity> entry; ///< what lay at the path itself, of whatever kind
    system::HeldBytes held;            ///< the content on its disk, from just before it was touched
};

/// What an update did, for its summary lines.
struct UpdateSummary {
    std::int32_t cases = 0;
    std::int32_t statusScoped = 0;
    std::int32_t statusHidden = 0;
    std::int32_t selectedCompletedRecords = 0;
    std::int32_t comdSuccess = 0;
    std::int32_t comdFailed = 0;
};

/// Narrows the status file of each case to those selected tasks that are completed, or takes it away when
/// there are none, and counts what it did; nothing after a message. `backups` grows by one entry per case
/// before the case is touched, so that it serves also after a failure. A dry run only shows its steps.
[[nodiscard]] std::optional<UpdateSummary> scopeStatusFiles(const std::vector<std::string>& caseDirs,
                                                            const std::vector<std::string>& selected,
                                                            console::RunMode mode,
                                                            std::vector<StatusBackup>& backups);

/// Puts back what the backups hold, the last one first; a file that has come since is removed;
/// what was there before without being a status file (a directory, a FIFO, a link that leads to none) stays.
/// What cannot go back is left beside its place, or where its directory has been moved to.
/// Reports every failure, is stopped by none, not even by a lack of memory; false when there was one.
[[nodiscard]] bool restoreStatusFiles(const std::vector<StatusBackup>& backups) noexcept;

/// Restores on every way out of the scope, once.
class StatusRestorer {
  public:
    StatusRestorer() = default;
    StatusRestorer(const StatusRestorer&) = delete;
    StatusRestorer& operator=(const StatusRestorer&) = delete;
    ~StatusRestorer();

    /// The list that `scopeStatusFiles` fills.
    [[nodiscard]] std::vector<StatusBackup>& backups() noexcept { return backups_; }
    /// Restores now and forgets the backups; false when a file could not be restored.
    [[nodiscard]] bool restore() noexcept;

  private:
    std::vector<StatusBackup> backups_;
};

} // namespace morquill::project
