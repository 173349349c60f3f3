#include "taskdsl/base/growth.h"

#include <string>

namespace morquill::taskdsl {

void GrowthBudget::fail() {
    throw DiagnosticError("expansion of @foreach blocks and fragments exceeds " +
                          std::to_string(limits::expandedLines) + " lines or " +
                          std::to_string(limits::expandedText >> 20) + " MiB of text");
}

} // namespace morquill::taskdsl
