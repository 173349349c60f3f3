#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

/// Narrowing the status files of cases for the time of a comd-only update: while the generator runs, only the
/// selected and completed tasks look finished.
namespace morquill::project {

/// What stood at the path of one case's status file before it was touched.
struct StatusBackup {
    std::string path;
    bool existed = false;
    std::string content; ///< every byte, when it existed
    mode_t mode = 0644;  ///< its permissions
    std::string link;    ///< where it led to, when it was a symbolic link
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
/// there are none. `backups` grows by one entry per case before the case is touched, so that it serves also
/// after a failure. A dry run only tells. False after a message.
[[nodiscard]] bool scopeStatusFiles(const std::vector<std::string>& caseDirs,
                                    const std::vector<std::string>& selected, bool dryRun,
                                    std::vector<StatusBackup>& backups, UpdateSummary& summary);

/// Puts back what the backups hold, the last one first; a file that has appeared since is removed. Reports
/// every failure, is stopped by none; false when there was one.
[[nodiscard]] bool restoreStatusFiles(const std::vector<StatusBackup>& backups);

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
    [[nodiscard]] bool restore();

  private:
    std::vector<StatusBackup> backups_;
};

} // namespace morquill::project
