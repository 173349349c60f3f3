#pragma once

#include <string>

namespace morquill::console {

/// Where an include looks for a name that is written in `<` and `>`: a leading `~` is the home directory, a
/// relative name is looked for in the directories of `MORQUILL_MQLIB_PATH`. Returns the absolute path of the
/// regular file found there, else the name with its home expanded: it may be relative, or name no file.
[[nodiscard]] std::string findLibraryFile(const std::string& name);

} // namespace morquill::console
