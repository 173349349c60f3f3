#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/task/matrix_axis.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// From declared axes to the combinations of their values.
namespace morquill::taskdsl {

/// One selection of values, one per axis.
struct MatrixCombination {
    ValueMap values;                                        ///< axis key to value
    std::vector<std::pair<std::string, std::string>> pairs; ///< the same in axis order
    std::vector<std::string> pieces;                        ///< one piece of the suffix per axis
};

/// The text as a piece of a task name: letters, digits, `-` and `.` stay, every other run of bytes becomes
/// one `_`, and `_` at both ends is dropped; "value" when nothing is left.
[[nodiscard]] std::string cleanVariantText(std::string_view text);

/// Throws `DiagnosticError` when keys repeat, names do not fit the values, a `map` is wrong,
/// or no axis is independent.
void validateMatrix(const std::vector<MatrixAxis>& axes);

/// Walks the combinations of the axes: the independent axes in declared order, the last one fastest. An axis
/// with a `map` follows its target; an axis without values has one empty value.
class MatrixWalk {
  public:
    /// Throws `DiagnosticError` when a `map` names no independent axis, or when there are more
    /// combinations than `limits::matrixVariants`.
    explicit MatrixWalk(const std::vector<MatrixAxis>& axes);

    /// The number of combinations.
    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    /// Moves to the next combination; false after the last one.
    bool advance() noexcept;
    /// The value of an axis in the current combination, one text for all combinations that have it.
    [[nodiscard]] const SharedText& value(std::size_t axis) const noexcept;
    /// The piece of an axis in the suffix of the current combination.
    [[nodiscard]] const std::string& piece(std::size_t axis) const noexcept;

  private:
    /// One axis with its values and pieces made once.
    struct Track {
        const MatrixAxis* axis = nullptr;
        std::vector<SharedText> values; ///< at least one
        std::vector<std::string> pieces;
        std::size_t selector = 0; ///< the track whose index this one follows; itself when independent
        std::size_t index = 0;    ///< current selection of an independent axis
    };
    std::vector<Track> tracks_;
    std::vector<std::size_t> independent_;
    std::size_t count_ = 1;
};

/// All combinations, in the order of the walk.
[[nodiscard]] std::vector<MatrixCombination> buildMatrixCombinations(const std::vector<MatrixAxis>& axes);

} // namespace morquill::taskdsl
