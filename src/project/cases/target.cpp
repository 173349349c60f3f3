#include "project/cases/target.h"

#include "support/file.h"

#include <algorithm>

namespace morquill::project {

namespace {

constexpr std::string_view taskExtension = ".mq";
constexpr std::string_view templateExtension = ".projmq";
constexpr int projectLevels = 6; // the start and five above it
constexpr int caseLevels = 4;

bool hasProjectTemplate(const std::string& dir) {
    return anyDirectoryEntry(dir, [&](const std::string& name) {
        return extensionOf(name) == templateExtension && isRegularFile(joinPath(dir, name));
    });
}

// A link counts wherever it leads: a case whose link dangles is still a case, with a file that cannot be
// read.
bool hasTaskFile(const std::string& dir) {
    return anyDirectoryEntry(dir, [&](const std::string& name) {
        return extensionOf(name) == taskExtension && !isDirectory(joinPath(dir, name));
    });
}

bool looksLikeCase(const std::string& dir) {
    return hasTaskFile(dir) || isRegularFile(joinPath(dir, "mq.status")) ||
           isDirectory(joinPath(dir, ".morq/store")) || isDirectory(joinPath(dir, "Results"));
}

bool looksLikeBlock(const std::string& dir) {
    return isRegularFile(joinPath(dir, "comd")) || isRegularFile(joinPath(dir, "pre_comd")) ||
           isRegularFile(joinPath(dir, ".morq.result.kv"));
}

/// Moves `dir` one level up; false at the top of the path.
bool climb(std::string& dir) {
    std::string parent = parentPath(dir);
    if (parent.empty() || parent == "." || parent == dir) {
        return false;
    }
    dir = std::move(parent);
    return true;
}

std::string startDirectory(std::string_view path) {
    std::string start = absoluteLocation(path);
    return isRegularFile(start) ? parentPath(start) : start;
}

/// The one template of a directory, or why there is none to take.
enum class TemplateCount { none, one, many };

TemplateCount takeTemplate(const std::string& dir, std::string& root, std::string& file) {
    const std::vector<std::string> templates = listProjectTemplates(dir);
    if (templates.size() != 1) {
        return templates.empty() ? TemplateCount::none : TemplateCount::many;
    }
    root = dir;
    file = templates.front();
    return TemplateCount::one;
}

constexpr std::string_view severalTemplates = "multiple .projmq files were found in the ";

std::string severalTemplatesIn(std::string_view place, const std::string& dir) {
    return std::string(severalTemplates) + std::string(place) + "; specify one explicitly: " + dir;
}

bool resolveFromCurrentDirectory(std::string& root, std::string& file, std::string& error) {
    const std::string current = absoluteLocation({});
    TemplateCount count = takeTemplate(current, root, file);
    if (count == TemplateCount::many) {
        error = std::string(severalTemplates) + "current directory; specify one explicitly.";
        return false;
    }
    if (count == TemplateCount::none) {
        const std::string enclosing = findProjectDirectory({});
        count = takeTemplate(enclosing, root, file);
        if (count == TemplateCount::many) {
            error = severalTemplatesIn("enclosing project directory", enclosing);
            return false;
        }
    }
    if (count == TemplateCount::none) {
        error = "no .projmq file was found in the current directory or enclosing project; use "
                "--path or <xxx.projmq>.";
        return false;
    }
    return true;
}

/// The enclosing project of an absolute path; `unresolved` is the message when there is none.
bool resolveEnclosingProject(const std::string& path, std::string_view unresolved, std::string& root,
                             std::string& file, std::string& error) {
    const std::string dir = findProjectDirectory(path);
    switch (takeTemplate(dir, root, file)) {
    case TemplateCount::one:
        return true;
    case TemplateCount::many:
        error = severalTemplatesIn("project directory", dir);
        return false;
    case TemplateCount::none:
        error = std::string(unresolved) + path;
        return false;
    }
    return false;
}

} // namespace

std::vector<std::string> listProjectTemplates(const std::string& dir) {
    std::vector<std::string> templates;
    for (const std::string& name : listDirectoryEntries(dir, "*")) {
        std::string path = joinPath(dir, name);
        if (extensionOf(name) == templateExtension && isRegularFile(path)) {
            templates.push_back(std::move(path));
        }
    }
    return templates;
}

std::vector<std::string> listTaskFiles(const std::string& dir) {
    std::vector<std::string> names = listDirectoryEntries(dir, "*");
    std::erase_if(names, [](const std::string& name) { return extensionOf(name) != taskExtension; });
    return names;
}

std::vector<std::string> listCaseDirectories(const std::string& root) {
    std::vector<std::string> cases;
    for (const std::string& name : listDirectoryEntries(root, "*")) {
        std::string path = joinPath(root, name);
        if (name.front() != '.' && anyDirectoryEntry(path, [](const std::string& entry) {
                return extensionOf(entry) == taskExtension;
            })) {
            cases.push_back(std::move(path));
        }
    }
    return cases;
}

std::string findProjectDirectory(std::string_view path) {
    const std::string absolute = absoluteLocation(path);
    std::string start = absolute;
    if (isRegularFile(absolute)) {
        start = parentPath(absolute);
        if (absolute.ends_with(templateExtension)) {
            return start;
        }
        const std::string above = parentPath(start);
        if (hasTaskFile(start) && hasProjectTemplate(above)) {
            return above;
        }
    }
    std::string dir = start;
    for (int level = 0; level < projectLevels; ++level) {
        if (hasProjectTemplate(dir)) {
            return dir;
        }
        if (!climb(dir)) {
            break;
        }
    }
    return start;
}

std::string findCaseDirectory(std::string_view path) {
    const std::string start = startDirectory(path);
    std::string dir = start;
    for (int level = 0; level < caseLevels; ++level) {
        if (looksLikeCase(dir)) {
            return dir;
        }
        if (std::string above = dir; looksLikeBlock(dir) && climb(above) && looksLikeCase(above)) {
            return above;
        }
        if (!climb(dir)) {
            break;
        }
    }
    return start;
}

bool resolveProjectTemplate(std::string_view path, std::string& root, std::string& file, std::string& error) {
    if (path.empty()) {
        return resolveFromCurrentDirectory(root, file, error);
    }
    const std::string absolute = absoluteLocation(path);
    if (absolute.ends_with(templateExtension) && isRegularFile(absolute)) {
        root = parentPath(absolute);
        file = absolute;
        return true;
    }
    return resolveEnclosingProject(absolute, "could not resolve a .projmq project template from path: ", root,
                                   file, error);
}

bool resolveTarget(std::string_view path, ProjectTarget& target, std::string& error) {
    target = ProjectTarget{};
    if (path.empty()) {
        return resolveProjectTemplate(path, target.projectRoot, target.projectFile, error);
    }
    const std::string absolute = absoluteLocation(path);
    const bool regular = isRegularFile(absolute);
    if (regular && absolute.ends_with(templateExtension)) {
        target.projectRoot = parentPath(absolute);
        target.projectFile = absolute;
        return true;
    }
    if (regular && absolute.ends_with(taskExtension)) {
        target.kind = TargetKind::Case;
        target.caseDir = parentPath(absolute);
        target.caseFile = absolute;
        return true;
    }
    const std::string caseDir = findCaseDirectory(absolute);
    const std::vector<std::string> taskFiles = listTaskFiles(caseDir);
    if (taskFiles.size() > 1) {
        error = "multiple .mq files were found in the case directory; specify one explicitly: " + caseDir;
        return false;
    }
    if (taskFiles.size() == 1) {
        target.kind = TargetKind::Case;
        target.caseDir = caseDir;
        target.caseFile = joinPath(caseDir, taskFiles.front());
        return true;
    }
    return resolveEnclosingProject(
        absolute,
        "could not resolve a .projmq project template or case .mq file from path: ", target.projectRoot,
        target.projectFile, error);
}

} // namespace morquill::project
