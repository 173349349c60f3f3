#include "project/cases/target.h"

#include "console/messages.h"
#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace morquill::project {

namespace {

constexpr int projectLevels = 6; // the start and five above it
constexpr int caseLevels = 4;

bool isForbidden(const std::system_error& failure) noexcept {
    return failure.code() == std::errc::permission_denied;
}

/// As `anyDirectoryEntry`; a directory that this user may not read has nothing: the way up may lead through
/// one.
bool anyVisibleEntry(const std::string& dir, const std::function<bool(const std::string&)>& accept) {
    try {
        return anyDirectoryEntry(dir, accept);
    } catch (const std::system_error& failure) {
        if (!isForbidden(failure)) {
            throw;
        }
        return false;
    }
}

/// The names in a directory in ascending byte order, none in one that this user may not read.
std::vector<std::string> visibleNames(const std::string& dir) {
    std::vector<std::string> names;
    (void)anyVisibleEntry(dir, [&](const std::string& name) {
        names.push_back(name);
        return false; // on to the next
    });
    std::sort(names.begin(), names.end());
    return names;
}

/// Reports, once for each directory, why its cases are left out.
void reportLeftOut(const std::string& dir, std::string_view reason) {
    static std::unordered_set<std::string>
        reported; // the cases of a project are listed more than once in a run
    if (reported.insert(dir).second) {
        console::reportWarning(std::string(reason) + "; no case is looked for there");
    }
}

/// The names in a project; none, after a warning, in one that this user may not read.
std::vector<std::string> namesIn(const std::string& root) {
    try {
        return listDirectoryEntries(root);
    } catch (const std::system_error& failure) {
        if (!isForbidden(failure)) {
            throw;
        }
        reportLeftOut(root, failure.what());
        return {};
    }
}

/// True for a directory of a project that holds a task file. One that this user may not read is none, which
/// is reported: it may be somebody's case.
bool isCaseDirectory(const std::string& dir) {
    try {
        return anyDirectoryEntry(
            dir, [](const std::string& entry) { return extensionOf(entry) == taskExtension; });
    } catch (const std::system_error& failure) {
        if (!isForbidden(failure)) {
            throw;
        }
        reportLeftOut(dir, failure.what());
        return false;
    }
}

bool hasProjectTemplate(const std::string& dir) {
    return anyVisibleEntry(dir, [&](const std::string& name) {
        return extensionOf(name) == templateExtension && lookUpRegularFile(joinPath(dir, name));
    });
}

// A link counts wherever it leads: a case whose link dangles is still a case, with a file that
// cannot be read.
bool hasTaskFile(const std::string& dir) {
    return anyVisibleEntry(dir, [&](const std::string& name) {
        return extensionOf(name) == taskExtension && !lookUpDirectory(joinPath(dir, name));
    });
}

bool looksLikeCase(const std::string& dir) {
    return hasTaskFile(dir) || lookUpRegularFile(joinPath(dir, statusFileName)) ||
           lookUpDirectory(joinPath(dir, ".morq/store")) || lookUpDirectory(joinPath(dir, "Results"));
}

bool looksLikeBlock(const std::string& dir) {
    return lookUpRegularFile(joinPath(dir, "comd")) || lookUpRegularFile(joinPath(dir, "pre_comd")) ||
           lookUpRegularFile(joinPath(dir, ".morq.result.kv"));
}

/// The directory one level up; nothing at the top of the path.
std::optional<std::string> directoryAbove(const std::string& dir) {
    std::string parent = parentPath(dir);
    const bool atTop = parent.empty() || parent == "." || parent == dir;
    return atTop ? std::nullopt : std::optional(std::move(parent));
}

std::string startDirectory(std::string_view path) {
    std::string start = absoluteLocation(path);
    return lookUpRegularFile(start) ? parentPath(start) : start;
}

Failure severalTemplates(std::string_view place) {
    return {"multiple .projmq files were found in the " + std::string(place)};
}

Failure severalTemplatesIn(std::string_view place, const std::string& dir) {
    return severalTemplates(std::string(place) + "; specify one explicitly: " + dir);
}

Outcome<ProjectTemplate> resolveFromCurrentDirectory() {
    const std::string current = absoluteLocation({});
    const auto here = listProjectTemplates(current);
    if (here.size() > 1) {
        return severalTemplates("current directory; specify one explicitly.");
    }
    if (here.size() == 1) {
        return ProjectTemplate{current, here.front()};
    }
    const std::string enclosing = findProjectDirectory({});
    const auto above = listProjectTemplates(enclosing);
    if (above.size() > 1) {
        return severalTemplatesIn("enclosing project directory", enclosing);
    }
    if (above.empty()) {
        return Failure{
            "no .projmq file was found in the current directory or enclosing project; use --path or "
            "<xxx.projmq>."};
    }
    return ProjectTemplate{enclosing, above.front()};
}

/// The enclosing project of an absolute path; `unresolved` is the message, without the path,
/// when there is none.
Outcome<ProjectTemplate> resolveEnclosingProject(const std::string& path, std::string_view unresolved) {
    const std::string dir = findProjectDirectory(path);
    const auto templates = listProjectTemplates(dir);
    if (templates.empty()) {
        return Failure{std::string(unresolved) + path};
    }
    if (templates.size() > 1) {
        return severalTemplatesIn("project directory", dir);
    }
    return ProjectTemplate{dir, templates.front()};
}

/// The project as a target, or the failure to find it.
Outcome<ProjectTarget> asTarget(const Outcome<ProjectTemplate>& project) {
    if (!project) {
        return project.failure();
    }
    return ProjectTarget{TargetKind::Project, project->root, project->file, {}, {}};
}

ProjectTarget caseTarget(std::string dir, std::string file) {
    return {TargetKind::Case, {}, {}, std::move(dir), std::move(file)};
}

} // namespace

std::vector<std::string> listProjectTemplates(const std::string& dir) {
    std::vector<std::string> templates;
    for (const std::string& name : visibleNames(dir)) {
        std::string path = joinPath(dir, name);
        if (extensionOf(name) == templateExtension && lookUpRegularFile(path)) {
            templates.push_back(std::move(path));
        }
    }
    return templates;
}

std::vector<std::string> listTaskFiles(const std::string& dir) {
    std::vector<std::string> names = visibleNames(dir);
    std::erase_if(names, [](const std::string& name) { return extensionOf(name) != taskExtension; });
    return names;
}

std::vector<std::string> listCaseDirectories(const std::string& root) {
    std::vector<std::string> cases;
    for (const std::string& name : namesIn(root)) {
        std::string path = joinPath(root, name);
        if (name.front() != '.' && isCaseDirectory(path)) {
            cases.push_back(std::move(path));
        }
    }
    return cases;
}

std::string findProjectDirectory(std::string_view path) {
    const std::string absolute = absoluteLocation(path);
    std::string start = absolute;
    if (lookUpRegularFile(absolute)) {
        start = parentPath(absolute);
        if (absolute.ends_with(templateExtension)) {
            return start;
        }
        std::string above = parentPath(start);
        if (hasTaskFile(start) && hasProjectTemplate(above)) {
            return above;
        }
    }
    std::string dir = start;
    for (int level = 0; level < projectLevels; ++level) {
        if (hasProjectTemplate(dir)) {
            return dir;
        }
        auto above = directoryAbove(dir);
        if (!above) {
            break;
        }
        dir = *std::move(above);
    }
    return start;
}

std::string findCaseDirectory(std::string_view path) {
    std::string start = startDirectory(path);
    std::string dir = start;
    for (int level = 0; level < caseLevels; ++level) {
        if (looksLikeCase(dir)) {
            return dir;
        }
        auto above = directoryAbove(dir);
        if (!above) {
            break;
        }
        if (looksLikeBlock(dir) && looksLikeCase(*above)) {
            return *above;
        }
        dir = *std::move(above);
    }
    return start;
}

Outcome<ProjectTemplate> resolveProjectTemplate(std::string_view path) {
    if (path.empty()) {
        return resolveFromCurrentDirectory();
    }
    const std::string absolute = absoluteLocation(path);
    if (absolute.ends_with(templateExtension) && lookUpRegularFile(absolute)) {
        return ProjectTemplate{parentPath(absolute), absolute};
    }
    return resolveEnclosingProject(absolute, "could not resolve a .projmq project template from path: ");
}

Outcome<ProjectTarget> resolveTarget(std::string_view path) {
    if (path.empty()) {
        return asTarget(resolveFromCurrentDirectory());
    }
    const std::string absolute = absoluteLocation(path);
    const bool regular = lookUpRegularFile(absolute);
    if (regular && absolute.ends_with(templateExtension)) {
        return asTarget(ProjectTemplate{parentPath(absolute), absolute});
    }
    if (regular && absolute.ends_with(taskExtension)) {
        return caseTarget(parentPath(absolute), absolute);
    }
    const std::string caseDir = findCaseDirectory(absolute);
    const std::vector<std::string> taskFiles = listTaskFiles(caseDir);
    if (taskFiles.size() > 1) {
        return Failure{"multiple .mq files were found in the case directory; specify one explicitly: " +
                       caseDir};
    }
    if (taskFiles.size() == 1) {
        return caseTarget(caseDir, joinPath(caseDir, taskFiles.front()));
    }
    return asTarget(resolveEnclosingProject(
        absolute, "could not resolve a .projmq project template or case .mq file from path: "));
}

} // namespace morquill::project
