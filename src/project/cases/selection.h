#pragma once

#include "project/cases/task_catalog.h"

#include <string>
#include <string_view>
#include <vector>

/// From the names of `-n`, or from a numbered menu, to the expanded task blocks that a workflow acts on.
namespace morquill::project {

/// Replaces `selected` by the blocks that the names stand for and `missing` by the names that stand for none.
/// With `allowWildcards` a name with `*`, `?` or `[` is matched against the logical names. True when nothing
/// is missing.
[[nodiscard]] bool selectTaskBlocks(const TaskCatalog& catalog, const std::vector<std::string>& names,
                                    bool allowWildcards, std::vector<std::string>& selected,
                                    std::vector<std::string>& missing);

/// The choice for a case: its file is scanned, without wildcards. `label` names the file in messages ("task
/// file"). With no names the menu is shown under `title`. False after a message; an empty choice is a
/// success.
[[nodiscard]] bool selectFromFile(const std::string& file, std::string_view label,
                                  const std::vector<std::string>& names, std::string_view title,
                                  std::vector<std::string>& selected);

/// The choice for a project: its template and all cases are scanned, names may hold wildcards.
[[nodiscard]] bool selectFromProject(const std::string& root, const std::string& file,
                                     const std::vector<std::string>& names, std::string_view title,
                                     std::vector<std::string>& selected);

/// The lists of known blocks as they follow the message about a missing name, each behind a line end.
[[nodiscard]] std::string knownBlockLines(const TaskCatalog& catalog);

/// A selection as messages show it: "$a, $b".
[[nodiscard]] std::string formatSelection(const std::vector<std::string>& names);

} // namespace morquill::project
