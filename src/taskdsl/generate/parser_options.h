#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/include_path.h"

namespace morquill::taskdsl {

/// The options of a parser run. The language itself reads neither the environment nor a log.
struct ParserOptions {
    bool legacyMultiSource = false;      ///< `%source a,b` is read
    LibraryFileFinder findLibraryFile{}; ///< without one, `<name>` is looked for beside the including file
    WarningSink warnings{};              ///< receives doubtful forms; without one they pass in silence
};

} // namespace morquill::taskdsl
