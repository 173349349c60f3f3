#pragma once

#include "taskdsl/diagnostic.h"
#include "taskdsl/limits.h"

#include <cstddef>

namespace morquill::taskdsl {

/// Counts the lines that an expansion makes, so that repetition without end is an error and not the end of
/// memory.
class GrowthBudget {
  public:
    /// Takes one line of `bytes` bytes, or one empty repetition. Throws `DiagnosticError` beyond the bounds.
    void take(std::size_t bytes) {
        ++lines;
        text += bytes;
        if (lines > limits::expandedLines || text > limits::expandedText) {
            fail();
        }
    }

  private:
    [[noreturn]] static void fail();

    std::size_t lines = 0;
    std::size_t text = 0;
};

} // namespace morquill::taskdsl
