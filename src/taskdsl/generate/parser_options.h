#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/include_path.h"

namespace morquill::taskdsl {

/// What whoever runs the parser decides. The language itself reads neither the environment nor a log.
struct ParserOptions {
    bool legacyMultiSource = false;      ///< `%source a,b` is read
    LibraryFileFinder findLibraryFile{}; ///< without one, `<name>` is looked for beside the including file
    WarningSink warnings{};              ///< hears of doubtful forms; without one nobody does
};

} // namespace morquill::taskdsl
