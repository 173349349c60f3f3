#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The catalogue: every `.mq` file under the template directories. Name and category come from the file's
/// place, the variables from its text.
namespace morquill::templates {

/// One catalogue entry.
struct TaskTemplate {
    std::string name; ///< file stem
    std::string content;
    std::string category;               ///< directory that the file lies in, "General" at the root
    std::vector<std::string> variables; ///< placeholders that need a value, sorted
    std::map<std::string, std::vector<std::string>, std::less<>> blocks; ///< block name to its lines
};

/// One directory of the template path.
struct TemplateSource {
    std::string path;      ///< as configured
    std::string directory; ///< with `~` and `$NAME` expanded
};

struct TemplateLibrary {
    std::vector<TemplateSource> sources;
    std::vector<TaskTemplate> templates; ///< in order of discovery
};

/// The configured template path, a `:`-separated list of directories: the environment, else `morquill.conf`,
/// else a directory below the current one.
[[nodiscard]] std::string resolveTemplatePath();

/// The directories of a `:`-separated list, without the empty ones.
[[nodiscard]] std::vector<TemplateSource> splitTemplateSources(std::string_view pathList);

/// Walks the directories of the list in order. Missing ones and an empty list are reported on standard error;
/// files that cannot be read are left out.
[[nodiscard]] TemplateLibrary loadTemplateLibrary(std::string_view pathList);

/// The first template with exactly that name; null when there is none.
[[nodiscard]] const TaskTemplate* findTemplate(const TemplateLibrary& library, std::string_view name);

/// The name list and the view by category, as printed.
[[nodiscard]] std::string formatTemplateList(const TemplateLibrary& library);
[[nodiscard]] std::string formatTemplateCategories(const TemplateLibrary& library);

} // namespace morquill::templates
