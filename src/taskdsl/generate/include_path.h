#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// Finds the file that a name in `<` and `>` means; the name is passed without them. A relative result is
/// taken from the directory of the including file, like any other name.
using LibraryFileFinder = std::function<std::string(const std::string& name)>;

/// The file that an include target names, as an absolute, normalised path; it need not exist. A name in `<`
/// and `>` goes through the finder, when there is one. Relative names are taken from the directory of
/// `baseFile`, or from the current directory when there is none. Empty for an empty name.
[[nodiscard]] std::string resolveIncludePath(std::string_view name, const std::string& baseFile,
                                             const LibraryFileFinder& findLibraryFile);

} // namespace morquill::taskdsl
