#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/derive/derive_spec.h"

namespace morquill::taskdsl::derive {

/// Replaces the `[key]` references in every text of the block and in every name, string and snapshot
/// of its expressions.
void substituteDerive(DeriveSpec& spec, const ValueMap& values);

} // namespace morquill::taskdsl::derive
