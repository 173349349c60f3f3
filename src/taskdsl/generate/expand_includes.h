#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/parse_context.h"

#include <string>
#include <vector>

/// The pass that puts fragments in the place of `&INCLUDE` lines. Every line keeps the file and the number
/// that it has where it was written.
namespace morquill::taskdsl {

/// What one pass works on: the file that the lines belong to, the library it is, and what it may hold.
struct IncludeFrame {
    SharedText baseFile;                      ///< for lines that have no origin path
    const FragmentLibrary* library = nullptr; ///< null outside a library
    FragmentExpansionScope scope = FragmentKind::document;
};

/// Expands the include lines of a file or of a fragment's body. Includes of task and YAML files at file scope
/// stay as lines. The text of heredocs is marked verbatim. Throws `DiagnosticError` for an include that does
/// not fit its place, a directive outside a task, an open heredoc or argument list, and cycles.
[[nodiscard]] std::vector<SourceLine> expandIncludes(std::vector<SourceLine> lines, const IncludeFrame& frame,
                                                     DocumentContext& context);

/// The lines that replace one include of a fragment: its body with the arguments put in and its own includes
/// expanded. `library` is the fragment's own, null for a standalone file.
[[nodiscard]] std::vector<SourceLine>
instantiateFragment(const FragmentDefinition& definition, const IncludeDirective& include,
                    const SourceLine& includeLine, const FragmentLibrary* library,
                    FragmentExpansionScope scope, DocumentContext& context);

} // namespace morquill::taskdsl
