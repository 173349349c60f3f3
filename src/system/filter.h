#pragma once

#include "system/process.h"

#include <string>
#include <string_view>
#include <vector>

namespace morquill::system {

/// How a filter ended and what it wrote.
struct FilterResult {
    ProcessResult process;
    std::string output; ///< all of its standard output, also of one that failed
};

/// Runs `argv[0]`, looked up along `PATH`, with the text as its standard input, and waits for its end. Its
/// standard error is that of this process. Both texts are held in memory, so that neither side can wait for
/// the other. Throws nothing but a lack of memory.
[[nodiscard]] FilterResult runFilter(const std::vector<std::string>& argv, std::string_view input);

} // namespace morquill::system
