#pragma once

#include "project/rename/rename_files.h"

#include <optional>
#include <string>
#include <vector>

/// The checks before a rename touches anything.
namespace morquill::project {

/// A case directory and the names under which the generator knows it, one per task file.
struct RenamedCase {
    std::string dir;
    std::vector<std::string> names;
};

/// All that a rename rewrites.
struct RenameScope {
    std::string file;               ///< the task file or the project template
    std::string caseName;           ///< the one with which `file` is rewritten; empty for a template
    std::vector<RenamedCase> cases; ///< everything below them is rewritten
    std::string linkRoot;           ///< and what links in them lead to below it; empty: nothing more
};

/// Why the block cannot be renamed, as one or two lines without their prefix; nothing when it can.
/// The block has to be written in the file itself and its new name must be free there and in the
/// other task files of the cases; the rewritten texts have to say the same under the new name,
/// and no name of another block, no remaining reference and no file name may be in the way.
/// Throws `DiagnosticError` when the file cannot be read.
[[nodiscard]] std::optional<std::string> findObstacle(const RenameScope& scope, const RenamedBlock& block);

} // namespace morquill::project
