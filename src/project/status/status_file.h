#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// The task status file `mq.status` of a case: which task blocks the generator has rendered. The sibling
/// `morquill` writes it as well.
namespace morquill::project {

enum class TaskStatus : std::int32_t { Rendered = 0, Failed = 1 };

/// "RENDERED" or "FAILED"; "RENDERED" for a value outside the enumeration.
[[nodiscard]] std::string_view taskStatusName(TaskStatus status) noexcept;

/// One row of a status file.
struct TaskStatusRecord {
    std::string name;
    TaskStatus status = TaskStatus::Rendered;
    std::string updatedAt = "-"; ///< UTC as "%Y-%m-%dT%H:%M:%SZ", "-" when unknown
    std::string reason = "-";    ///< one word, "-" when there is none

    friend bool operator==(const TaskStatusRecord&, const TaskStatusRecord&) = default;
};

/// Records by task name; of two rows with one name the later counts.
using StatusRecords = std::map<std::string, TaskStatusRecord, std::less<>>;
using TaskNameSet = std::set<std::string, std::less<>>;

/// `<caseDir>/mq.status`
[[nodiscard]] std::string statusFilePath(const std::string& caseDir);

/// The names of the completed tasks. A line that is not a status row counts as the name of a completed task,
/// as a whole: old files list plain names. A name once completed stays so, whatever a later row says.
[[nodiscard]] TaskNameSet parseCompletedTasks(std::string_view text);
/// The same from the file of a case; empty when it is missing or unreadable.
[[nodiscard]] TaskNameSet readCompletedTasks(const std::string& caseDir);
/// The `names` that are in `completed`, in the order of `names`.
[[nodiscard]] std::vector<std::string> keptTasks(const std::vector<std::string>& names,
                                                 const TaskNameSet& completed);

/// The records of a status text. A line without a status word is a rendered task of that name; a name that
/// ran into its status word (16 bytes and longer) is taken apart again.
[[nodiscard]] StatusRecords parseStatusRecords(std::string_view text);
/// The records of a file; empty when it is missing or unreadable.
[[nodiscard]] StatusRecords readStatusRecords(const std::string& path);

/// The header and one row per record, each with a line end. Line feeds in a reason are left out.
[[nodiscard]] std::string formatStatusRecords(const StatusRecords& records);

/// The header and one row per name, in the order of the names, each with the values of a fresh record.
[[nodiscard]] std::string formatStatusNames(const std::vector<std::string>& names);
/// Replaces the file by the records in one write. Without records a regular file at the path is removed.
/// True on success.
[[nodiscard]] bool writeStatusRecords(const std::string& path, const StatusRecords& records);

/// Takes the names out of the status file of a case; a file without records left is removed. No file is a
/// success. When the rest cannot be written the old text is put back, as far as the disk allows, and the
/// result is false.
[[nodiscard]] bool removeTaskRecords(const std::string& caseDir, const std::vector<std::string>& names);

} // namespace morquill::project
