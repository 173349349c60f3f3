#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/define_block.h"
#include "taskdsl/generate/foreach.h"
#include "taskdsl/generate/name_clash.h"
#include "taskdsl/generate/parse_context.h"
#include "taskdsl/task/matrix_axis.h"
#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The head of a task file: settings, `define:`, `matrix:`, collections, imports.
namespace morquill::taskdsl {

struct PreludeResult {
    ValueMap settings; ///< scalar keys; those of inner mappings joined with dots
    ValueMap defines;
    std::map<std::string, std::vector<std::string>, std::less<>> matrixValues;
    std::vector<MatrixAxis> matrixAxes;
    Collections collections;
};

/// Reads the prelude off the front of a file's lines. YAML files and libraries that it names are read
/// relative to `path`. Throws `DiagnosticError` for a section that cannot be read.
[[nodiscard]] TakenLines<PreludeResult> parsePrelude(const std::vector<SourceLine>& lines,
                                                     const std::string& path, DocumentContext& context);

/// Refuses a YAML document marker (`---`, `...`) that ends the prelude of a file when entries follow it:
/// what is between the prelude and the first block is skipped in silence. Throws `DiagnosticError`.
void requireWholePrelude(const std::vector<SourceLine>& lines, std::size_t next, std::string_view path);

/// Reads a YAML file as a prelude. `target` is resolved from the file `base`. A missing file is a warning and
/// an empty result.
[[nodiscard]] PreludeResult parseYamlInclude(const std::string& target, const std::string& base,
                                             DocumentContext& context);

/// Adds the settings, defines and axes of a prelude to the document. Throws `DiagnosticError` for
/// a reserved name.
void mergePrelude(TaskDocument& document, const PreludeResult& prelude, NameClash clash);

} // namespace morquill::taskdsl
