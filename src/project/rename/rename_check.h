#pragma once

#include "project/rename/rename_files.h"

#include <optional>
#include <string>

/// What is looked at before a rename touches anything.
namespace morquill::project {

/// Why a text cannot be the name of a block, as one line; nothing when it can. A name is that of a directory,
/// and it has to read back as itself wherever the language or a command line lists names.
[[nodiscard]] std::optional<std::string> blockNameFault(const std::string& name);

/// The project template that a task file leads to when it is nothing but the include stub that stands where a
/// link to the template cannot be made; nothing for any other text. `path` is the file that holds the text.
[[nodiscard]] std::optional<std::string> stubTemplate(const std::string& text, const std::string& path);

/// Why the block cannot be renamed in a task file, as one or two lines without their prefix; nothing when it
/// can. The block has to be written in the file itself, its new name must be free, and the rewritten text has
/// to say the same under the new name. `caseName` is the one with which the file will be rewritten. Throws
/// `DiagnosticError` when the file cannot be read.
[[nodiscard]] std::optional<std::string> findObstacle(const std::string& file, const RenamedBlock& block,
                                                      const std::string& caseName);

} // namespace morquill::project
