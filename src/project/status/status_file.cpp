#include "project/status/status_file.h"

#include "project/cases/target.h"
#include "support/file.h"
#include "support/text.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <system_error>

namespace morquill::project {

namespace fs = std::filesystem;

namespace {

// The leading "# " shifts the titles by two against the rows; readers split at blanks and never notice.
constexpr std::string_view header = "# TASK            STATUS           UPDATED_AT              REASON\n";
constexpr std::size_t nameWidth = 16;
constexpr std::size_t statusWidth = 17;
constexpr std::size_t timeWidth = 24;

std::optional<TaskStatus> readStatusWord(std::string_view word) {
    for (const auto status : {TaskStatus::Rendered, TaskStatus::Failed}) {
        if (equalsNoCase(word, taskStatusName(status))) {
            return status;
        }
    }
    return std::nullopt;
}

/// Calls `take` with each trimmed line that is neither empty nor a comment.
template <class Take>
void forEachRow(std::string_view text, Take take) {
    for (const auto line : splitLines(text)) {
        const auto row = trim(line);
        if (!row.empty() && row.front() != '#') {
            take(row);
        }
    }
}

/// A token of a row, "-" when the row has fewer.
std::string tokenOrDash(const std::vector<std::string_view>& tokens, std::size_t index) {
    return index < tokens.size() ? std::string(tokens[index]) : "-";
}

TaskStatusRecord readRow(const std::vector<std::string_view>& tokens) {
    if (tokens.size() > 1) {
        if (const auto status = readStatusWord(tokens[1])) {
            return {std::string(tokens[0]), *status, tokenOrDash(tokens, 2), tokenOrDash(tokens, 3)};
        }
    }
    // Only the writer makes a name touch its status, and it writes capitals: a plain name of an old file such
    // as "prerendered" stays whole.
    for (const auto status : {TaskStatus::Rendered, TaskStatus::Failed}) {
        const auto word = taskStatusName(status);
        if (tokens[0].size() > word.size() && tokens[0].ends_with(word)) {
            const auto name = tokens[0].substr(0, tokens[0].size() - word.size());
            return {std::string(name), status, tokenOrDash(tokens, 1), tokenOrDash(tokens, 2)};
        }
    }
    return {std::string(tokens[0]), TaskStatus::Rendered, "-", "-"};
}

void appendField(std::string& text, std::string_view value, std::size_t width) {
    text += value;
    text.append(width - std::min(width, value.size()), ' ');
}

void appendRow(std::string& text, const std::string& name, const TaskStatusRecord& record) {
    appendField(text, name, nameWidth);
    appendField(text, taskStatusName(record.status), statusWidth);
    const std::string_view time = record.updatedAt.empty() ? std::string_view("-") : record.updatedAt;
    appendField(text, time, timeWidth);
    text.append(time.size() < timeWidth ? 0 : 1, ' '); // or the reason would become a part of the time
    text += record.reason.empty() ? "-" : replaceAll(record.reason, "\n", "");
    text += '\n';
}

} // namespace

std::string_view taskStatusName(TaskStatus status) noexcept {
    return status == TaskStatus::Failed ? "FAILED" : "RENDERED";
}

std::string statusFilePath(const std::string& caseDir) {
    return std::string(caseDir).append("/").append(statusFileName);
}

TaskNameSet parseCompletedTasks(std::string_view text) {
    TaskNameSet completed;
    forEachRow(text, [&](std::string_view row) {
        const auto tokens = splitBlank(row);
        const auto status = tokens.size() > 1 ? readStatusWord(tokens[1]) : std::nullopt;
        if (!status) {
            completed.emplace(row);
        } else if (*status == TaskStatus::Rendered) {
            completed.emplace(tokens[0]);
        }
    });
    return completed;
}

TaskNameSet readCompletedTasks(const std::string& caseDir) {
    const auto text = readTextFile(statusFilePath(caseDir));
    return text ? parseCompletedTasks(*text) : TaskNameSet();
}

std::vector<std::string> keptTasks(const std::vector<std::string>& names, const TaskNameSet& completed) {
    std::vector<std::string> kept;
    std::copy_if(names.begin(), names.end(), std::back_inserter(kept),
                 [&](const std::string& name) { return completed.contains(name); });
    return kept;
}

StatusRecords parseStatusRecords(std::string_view text) {
    StatusRecords records;
    forEachRow(text, [&](std::string_view row) {
        const auto tokens = splitBlank(row);
        // A vertical tab or form feed is white space that trimming leaves: alone, or before a comment.
        if (tokens.empty() || tokens.front().starts_with('#')) {
            return;
        }
        auto record = readRow(tokens);
        auto name = record.name;
        records.insert_or_assign(std::move(name), std::move(record));
    });
    return records;
}

StatusRecords readStatusRecords(const std::string& path) {
    const auto text = readTextFile(path);
    return text ? parseStatusRecords(*text) : StatusRecords();
}

std::string formatStatusRecords(const StatusRecords& records) {
    std::string text(header);
    for (const auto& [name, record] : records) {
        appendRow(text, name, record);
    }
    return text;
}

std::string formatStatusNames(const std::vector<std::string>& names) {
    std::string text(header);
    for (const auto& name : names) {
        appendRow(text, name, {});
    }
    return text;
}

bool writeStatusRecords(const std::string& path, const StatusRecords& records) {
    if (!records.empty()) {
        return writeTextFile(path, formatStatusRecords(records));
    }
    std::error_code error;
    const auto kind = fs::status(path, error).type();
    if (kind == fs::file_type::regular) {
        fs::remove(path, error);
        return !error;
    }
    return kind != fs::file_type::none; // none: the file system does not know
}

bool removeTaskRecords(const std::string& caseDir, const std::vector<std::string>& names) {
    const auto path = statusFilePath(caseDir);
    std::error_code error;
    const auto kind = fs::status(path, error).type();
    if (kind != fs::file_type::regular) {
        return kind != fs::file_type::none;
    }
    // An unreadable file must not count as one without records: it would be removed.
    const auto text = readTextFile(path);
    if (!text) {
        return false;
    }
    auto records = parseStatusRecords(*text);
    for (const auto& name : names) {
        records.erase(name);
    }
    return writeStatusRecords(path, records);
}

} // namespace morquill::project
