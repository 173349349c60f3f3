#pragma once

#include <string>

namespace morquill::console {

/// Finds a file that an include names between `<` and `>`: a leading `~` is the home directory, and a
/// relative name is looked for in the directories of `MORQUILL_MQLIB_PATH`. Returns the absolute path of the
/// regular file found, otherwise the name with `~` expanded, which may be relative or name no file.
[[nodiscard]] std::string findLibraryFile(const std::string& name);

} // namespace morquill::console
