#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/include_line.h"

namespace morquill::taskdsl {

/// The value of every parameter of a fragment for one include line: the argument or the default, with
/// `[other]` resolved among the parameters. Throws `DiagnosticError` with the place of the include line for
/// an unknown or missing argument and for parameters that need one another.
[[nodiscard]] ValueMap bindArguments(const FragmentDefinition& definition, const IncludeDirective& include,
                                     const SourceLine& includeLine);

} // namespace morquill::taskdsl
