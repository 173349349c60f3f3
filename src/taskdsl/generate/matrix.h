#pragma once

#include "taskdsl/generate/define_block.h"
#include "taskdsl/task/matrix_axis.h"
#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// `matrix:` sections as they are declared.
namespace morquill::taskdsl {

/// Reads the body of a `matrix:` section from line `start`, in mapping syntax (`  key: values`) or list
/// syntax (`  - key: values` with `name:` and `map:` lines below). Throws `DiagnosticError` when the syntaxes
/// are mixed or a line does not fit.
[[nodiscard]] TakenLines<std::vector<MatrixAxis>> parseMatrixBlock(const std::vector<SourceLine>& lines,
                                                                   std::size_t start);

/// Declared axes in order, and their value lists by key.
struct MatrixAxes {
    std::vector<MatrixAxis>& axes;
    std::map<std::string, std::vector<std::string>, std::less<>>& values;
};

/// Throws `DiagnosticError` with what is wrong with an axis: "matrix axis '<key>' <text>".
[[noreturn]] void failAxis(const MatrixAxis& axis, std::string_view text);

/// Appends axes to those that are there; an axis of the same key is replaced in its place or kept.
/// Throws `DiagnosticError` for a reserved key.
void mergeMatrixAxes(MatrixAxes target, const std::vector<MatrixAxis>& axes, NameClash clash);
void mergeMatrixAxes(TaskDocument& document, const std::vector<MatrixAxis>& axes, NameClash clash);

} // namespace morquill::taskdsl
