#pragma once

#include "project/cases/task_catalog.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// From the names of `-n`, or from a numbered menu, to the expanded task blocks that a workflow acts on.
namespace morquill::project {

/// How a name with `*`, `?` or `[` is read: as it is, or as a pattern for the logical names.
enum class Wildcards : std::uint8_t { plain, matched };

/// What a list of names selects.
struct BlockSelection {
    std::vector<std::string> selected; ///< expanded blocks in order of mention, each once
    std::vector<std::string> missing;  ///< the names that select no block
};

/// The blocks that the names select.
[[nodiscard]] BlockSelection selectTaskBlocks(const TaskCatalog& catalog,
                                              const std::vector<std::string>& names, Wildcards wildcards);

/// The blocks chosen for a case: its file is scanned, without wildcards. `label` names the file in
/// messages ("task file"). With no names the menu is shown under `title`. Nothing after a message;
/// a choice may be empty.
[[nodiscard]] std::optional<std::vector<std::string>> selectFromFile(const std::string& file,
                                                                     std::string_view label,
                                                                     const std::vector<std::string>& names,
                                                                     std::string_view title);

/// The blocks chosen for a project: its template and all cases are scanned, names may hold wildcards.
[[nodiscard]] std::optional<std::vector<std::string>> selectFromProject(const std::string& root,
                                                                        const std::string& file,
                                                                        const std::vector<std::string>& names,
                                                                        std::string_view title);

/// The lists of known blocks as they follow the message about a missing name, each after a line end.
[[nodiscard]] std::string knownBlockLines(const TaskCatalog& catalog);

/// A selection as messages show it: "$a, $b".
[[nodiscard]] std::string formatSelection(const std::vector<std::string>& names);

} // namespace morquill::project
