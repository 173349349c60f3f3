#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/derive/derive_spec.h"

namespace morquill::taskdsl::derive {

/// Reads one captured `@derive` block. Lists are taken apart, formulas, profiles and binds are expanded.
/// Throws `DiagnosticError` with the span of the statement at fault.
[[nodiscard]] DeriveSpec parseDerive(const CapturedBlock& block);

} // namespace morquill::taskdsl::derive
