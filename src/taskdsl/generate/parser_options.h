#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/file_overlay.h"
#include "taskdsl/generate/include_path.h"

#include <functional>
#include <string>

namespace morquill::taskdsl {

/// Answers whether a path leads to a regular file.
using FileTest = std::function<bool(const std::string&)>;

/// The options of a parser run. The language itself reads neither the environment nor a log.
struct ParserOptions {
    bool legacyMultiSource = false;      ///< `%source a,b` is read
    LibraryFileFinder findLibraryFile{}; ///< without one, `<name>` is looked for beside the including file
    WarningSink warnings{};              ///< receives doubtful forms; without one they pass in silence
    FileTest isFile{};                   ///< whether a file is there; without one the disk is asked
    FileOverlay overlay{};               ///< texts of files that count instead of the disk
};

} // namespace morquill::taskdsl
