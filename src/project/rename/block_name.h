#pragma once

#include <optional>
#include <string>

namespace morquill::project {

/// Why a text cannot be the name of a block, as one line; nothing when it can. A name is that of a directory,
/// and it has to read back as itself wherever the language or a command line lists names.
[[nodiscard]] std::optional<std::string> blockNameFault(const std::string& name);

} // namespace morquill::project
