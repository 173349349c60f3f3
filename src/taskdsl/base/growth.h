#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <cstddef>

namespace morquill::taskdsl {

/// Counts the lines that an expansion makes, so that endless repetition is an error before memory runs out.
class GrowthBudget {
  public:
    /// Counts one line of `bytes` bytes. Throws `DiagnosticError` beyond the bounds.
    void takeLine(std::size_t bytes) { take(1, bytes); }
    /// Counts the work of one loop item, which may make no line at all. Throws as `takeLine`.
    void takeRepetition() { take(limits::linesPerRepetition, 0); }
    /// The same for one fragment.
    void takeFragment() { take(limits::linesPerFragment, 0); }

  private:
    void take(std::size_t count, std::size_t bytes) {
        lines_ += count;
        text_ += bytes;
        if (lines_ > limits::expandedLines || text_ > limits::expandedText) {
            fail();
        }
    }
    [[noreturn]] static void fail();

    std::size_t lines_ = 0;
    std::size_t text_ = 0;
};

} // namespace morquill::taskdsl
