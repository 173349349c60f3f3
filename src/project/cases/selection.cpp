#include "project/cases/selection.h"

#include "console/messages.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/prompt.h"

#include <utility>

#include <fnmatch.h>

namespace morquill::project {

namespace {

/// The list that the menu and the messages show.
const std::vector<std::string>& shownNames(const TaskCatalog& catalog) {
    return catalog.availableTasks.empty() ? catalog.expandedTasks : catalog.availableTasks;
}

/// One explicit or interactive choice and its messages.
struct Choice {
    const TaskCatalog& catalog;
    Wildcards wildcards;        ///< of the names; those of the menu are plain
    std::string noBlocks;       ///< the message for a catalog without blocks
    std::string missingMessage; ///< precedes the names that are not known
};

std::vector<std::string> askForNames(const TaskCatalog& catalog, std::string_view title) {
    if (!title.empty()) {
        console::printLine();
        console::printNote(title);
    }
    console::printLine();
    console::printNote("available task blocks:");
    const std::vector<std::string>& names = shownNames(catalog);
    for (std::size_t i = 0; i < names.size(); ++i) {
        console::printLine("  " + std::to_string(i + 1) + ". " + names[i]);
    }
    std::vector<std::string> chosen;
    for (const std::size_t index : system::promptIndexSelection({}, names.size())) {
        chosen.push_back(names[index]);
    }
    return chosen;
}

std::optional<std::vector<std::string>> choose(const Choice& choice, const std::vector<std::string>& names,
                                               std::string_view title) {
    if (shownNames(choice.catalog).empty()) {
        console::reportError(choice.noBlocks);
        return std::nullopt;
    }
    auto [selected, missing] =
        names.empty() ? selectTaskBlocks(choice.catalog, askForNames(choice.catalog, title), Wildcards::plain)
                      : selectTaskBlocks(choice.catalog, names, choice.wildcards);
    if (!missing.empty()) {
        console::reportError(choice.missingMessage + join(missing, ", ") + knownBlockLines(choice.catalog));
        return std::nullopt;
    }
    return std::move(selected);
}

/// The blocks that a name means: those whose name it matches as a pattern, or the one that has it. None when
/// it is not known.
std::vector<std::string> namedBlocks(const TaskCatalog& catalog, const std::string& name,
                                     Wildcards wildcards) {
    if (wildcards == Wildcards::plain || !hasWildcard(name)) {
        return catalog.expansionsByName.contains(name) ? std::vector<std::string>{name}
                                                       : std::vector<std::string>();
    }
    std::vector<std::string> matching;
    for (const std::string& logical : catalog.logicalNames) {
        if (::fnmatch(name.c_str(), logical.c_str(), 0) == 0) {
            matching.push_back(logical);
        }
    }
    return matching;
}

/// What a block becomes when it is expanded.
std::vector<std::string> expansionsOf(const TaskCatalog& catalog, const std::string& block) {
    const auto row = catalog.expansionsByName.find(block);
    return row == catalog.expansionsByName.end() ? std::vector<std::string>() : row->second;
}

} // namespace

BlockSelection selectTaskBlocks(const TaskCatalog& catalog, const std::vector<std::string>& names,
                                Wildcards wildcards) {
    NameList chosen;
    std::vector<std::string> missing;
    for (const std::string& name : names) {
        const std::vector<std::string> blocks = namedBlocks(catalog, name, wildcards);
        if (blocks.empty() && !name.empty()) {
            missing.push_back(name);
        }
        for (const std::string& block : blocks) {
            for (const std::string& expansion : expansionsOf(catalog, block)) {
                chosen.add(expansion);
            }
        }
    }
    return {chosen.names(), std::move(missing)};
}

std::optional<std::vector<std::string>> selectFromFile(const std::string& file, std::string_view label,
                                                       const std::vector<std::string>& names,
                                                       std::string_view title) {
    if (file.empty()) {
        console::reportError("task file is empty");
        return std::nullopt;
    }
    const std::string base = baseName(file);
    console::printNote(std::string(label) + " found: " + base);
    const auto catalog = scanTaskFile(file);
    if (!catalog) {
        console::reportError(catalog.error());
        return std::nullopt;
    }
    const Choice choice{*catalog, Wildcards::plain, "no task blocks were found in: " + base,
                        "task block not found in " + std::string(label) + ": "};
    return choose(choice, names, title);
}

std::optional<std::vector<std::string>> selectFromProject(const std::string& root, const std::string& file,
                                                          const std::vector<std::string>& names,
                                                          std::string_view title) {
    if (file.empty()) {
        console::reportError(".projmq project template not found: " + root);
        return std::nullopt;
    }
    const std::string base = baseName(file);
    console::printNote("project template found: " + base);
    const auto catalog = loadCatalog(root, file);
    if (!catalog) {
        console::reportError(catalog.error());
        return std::nullopt;
    }
    const Choice choice{*catalog, Wildcards::matched,
                        "no task blocks were found in project template or case files: " + base,
                        "task block not found in project template/case context: "};
    return choose(choice, names, title);
}

std::string knownBlockLines(const TaskCatalog& catalog) {
    const std::vector<std::string>& shown = shownNames(catalog);
    std::string lines;
    if (!shown.empty()) {
        lines += "\navailable task blocks: " + join(shown, ", ");
    }
    if (catalog.expandedTasks != shown) {
        lines += "\nexpanded task blocks: " + join(catalog.expandedTasks, ", ");
    }
    return lines;
}

std::string formatSelection(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += text.empty() ? "$" : ", $";
        text += name;
    }
    return text;
}

} // namespace morquill::project
