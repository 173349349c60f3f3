#pragma once

#include "support/outcome.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// From a path that the user typed to a project or a case. All returned paths are absolute and lexically
/// normal, without a trailing slash; links are not resolved, so that a case file that links to the template
/// stays a case file.
namespace morquill::project {

/// The extension of task files.
inline constexpr std::string_view taskExtension = ".mq";
/// The extension of project templates.
inline constexpr std::string_view templateExtension = ".projmq";
/// The name of the status file in a case.
inline constexpr std::string_view statusFileName = "mq.status";

enum class TargetKind : std::int32_t { Project = 0, Case = 1 };

/// What `update` and `rebuild` work on.
struct ProjectTarget {
    TargetKind kind = TargetKind::Project;
    std::string projectRoot; ///< set for a project
    std::string projectFile; ///< its template
    std::string caseDir;     ///< set for a case
    std::string caseFile;    ///< its task file
};

/// A project and its template.
struct ProjectTemplate {
    std::string root;
    std::string file;
};

/// The regular files in `dir` with the extension `.projmq`, sorted.
[[nodiscard]] std::vector<std::string> listProjectTemplates(const std::string& dir);

/// The case directories of a project in name order: directories without a leading dot that hold an entry with
/// the extension `.mq`.
[[nodiscard]] std::vector<std::string> listCaseDirectories(const std::string& root);

/// The names in a directory with the extension `.mq`, of whatever kind, in ascending byte order.
[[nodiscard]] std::vector<std::string> listTaskFiles(const std::string& dir);

/// The project that a path lies in: the nearest directory with a template, at most six levels up, the path
/// itself being the first; the directory of the path when there is none.
[[nodiscard]] std::string findProjectDirectory(std::string_view path);

/// The case that a path lies in, at most four levels up; the directory of the path when there is none.
[[nodiscard]] std::string findCaseDirectory(std::string_view path);

/// The one template of the project that `path` (empty: the current directory) lies in.
Outcome<ProjectTemplate> resolveProjectTemplate(std::string_view path);

/// The project or case that `path` names; a case is looked for first.
Outcome<ProjectTarget> resolveTarget(std::string_view path);

} // namespace morquill::project
