#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The catalogue: every `.mq` file below the template directories. Its name and category come from its path,
/// its variables from its text.
namespace morquill::templates {

/// An entry of the catalogue.
struct TaskTemplate {
    std::string name; ///< file stem
    std::string content;
    std::string category;               ///< name of the file's directory, "General" at the root
    std::vector<std::string> variables; ///< placeholders that need a value, sorted

    /// Block name to the lines of the block. Split when asked, as no list shows them.
    [[nodiscard]] std::map<std::string, std::vector<std::string>, std::less<>> blocks() const;
};

/// A directory of the template path.
struct TemplateSource {
    std::string path;      ///< as configured
    std::string directory; ///< with `~` and `$NAME` expanded
};

/// The templates of all directories.
struct TemplateLibrary {
    std::vector<TemplateSource> sources;
    std::vector<TaskTemplate> templates; ///< in order of discovery
};

/// Returns the configured template path, a `:`-separated list of directories: that of the environment,
/// otherwise that of `morquill.conf`, otherwise a directory below the current one.
[[nodiscard]] std::string resolveTemplatePath();

/// Returns the directories of a `:`-separated list; empty entries are dropped.
[[nodiscard]] std::vector<TemplateSource> splitTemplateSources(std::string_view pathList);

/// Loads the templates of the directories in the list, in order. Missing directories and an empty list are
/// reported on standard error; files that cannot be read are left out.
[[nodiscard]] TemplateLibrary loadTemplateLibrary(std::string_view pathList);

/// Returns the first template with exactly that name; null when there is none.
[[nodiscard]] const TaskTemplate* findTemplate(const TemplateLibrary& library, std::string_view name);

/// Returns the list of names, as printed.
[[nodiscard]] std::string formatTemplateList(const TemplateLibrary& library);
/// Returns the view by category, as printed.
[[nodiscard]] std::string formatTemplateCategories(const TemplateLibrary& library);

} // namespace morquill::templates
