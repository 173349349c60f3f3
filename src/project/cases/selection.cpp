#include "project/cases/selection.h"

#include "console/messages.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/prompt.h"

#include <fnmatch.h>

namespace morquill::project {

namespace {

/// The list that the menu and the messages show.
const std::vector<std::string>& shownNames(const TaskCatalog& catalog) {
    return catalog.availableTasks.empty() ? catalog.expandedTasks : catalog.availableTasks;
}

/// One explicit or interactive choice and its words.
struct Choice {
    const TaskCatalog& catalog;
    bool allowWildcards;
    std::string noBlocks;       ///< the message for a catalog without blocks
    std::string missingMessage; ///< stands before the names that are not known
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

bool choose(const Choice& choice, const std::vector<std::string>& names, std::string_view title,
            std::vector<std::string>& selected) {
    if (shownNames(choice.catalog).empty()) {
        console::reportError(choice.noBlocks);
        return false;
    }
    std::vector<std::string> missing;
    const bool found =
        names.empty()
            ? selectTaskBlocks(choice.catalog, askForNames(choice.catalog, title), false, selected, missing)
            : selectTaskBlocks(choice.catalog, names, choice.allowWildcards, selected, missing);
    if (!found) {
        console::reportError(choice.missingMessage + join(missing, ", ") + knownBlockLines(choice.catalog));
    }
    return found;
}

} // namespace

bool selectTaskBlocks(const TaskCatalog& catalog, const std::vector<std::string>& names, bool allowWildcards,
                      std::vector<std::string>& selected, std::vector<std::string>& missing) {
    NameList chosen;
    missing.clear();
    const auto take = [&](const std::string& name) {
        const auto expansions = catalog.expansionsByName.find(name);
        if (expansions == catalog.expansionsByName.end()) {
            return false;
        }
        for (const std::string& expansion : expansions->second) {
            chosen.add(expansion);
        }
        return true;
    };
    for (const std::string& name : names) {
        bool hit = false;
        if (allowWildcards && name.find_first_of("*?[") != std::string::npos) {
            for (const std::string& logical : catalog.logicalNames) {
                if (::fnmatch(name.c_str(), logical.c_str(), 0) == 0) {
                    hit = true;
                    take(logical);
                }
            }
        } else {
            hit = take(name);
        }
        if (!hit && !name.empty()) {
            missing.push_back(name);
        }
    }
    selected = chosen.names();
    return missing.empty();
}

bool selectFromFile(const std::string& file, std::string_view label, const std::vector<std::string>& names,
                    std::string_view title, std::vector<std::string>& selected) {
    if (file.empty()) {
        console::reportError("task file is empty");
        return false;
    }
    const std::string base = baseName(file);
    console::printNote(std::string(label) + " found: " + base);
    TaskCatalog catalog;
    if (std::string error; !scanTaskFile(file, catalog, error)) {
        console::reportError(error);
        return false;
    }
    const Choice choice{catalog, false, "no task blocks were found in: " + base,
                        "task block not found in " + std::string(label) + ": "};
    return choose(choice, names, title, selected);
}

bool selectFromProject(const std::string& root, const std::string& file,
                       const std::vector<std::string>& names, std::string_view title,
                       std::vector<std::string>& selected) {
    if (file.empty()) {
        console::reportError(".projmq project template not found: " + root);
        return false;
    }
    const std::string base = baseName(file);
    console::printNote("project template found: " + base);
    TaskCatalog catalog;
    if (std::string error; !loadCatalog(root, file, catalog, error)) {
        console::reportError(error);
        return false;
    }
    const Choice choice{catalog, true, "no task blocks were found in project template or case files: " + base,
                        "task block not found in project template/case context: "};
    return choose(choice, names, title, selected);
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
