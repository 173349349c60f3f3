#include "taskdsl/generate/matrix_combinations.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"
#include "taskdsl/generate/matrix.h"

#include <algorithm>
#include <map>
#include <set>

namespace morquill::taskdsl {

namespace {

/// An axis without values has one selection, the empty value.
std::size_t selectionCount(const MatrixAxis& axis) noexcept {
    return std::max<std::size_t>(axis.values.size(), 1);
}

using AxisIndex = std::map<std::string_view, std::size_t>;

AxisIndex indexAxes(const std::vector<MatrixAxis>& axes) {
    AxisIndex index;
    for (std::size_t i = 0; i < axes.size(); ++i) {
        index.emplace(axes[i].key, i);
    }
    return index;
}

void checkNames(const MatrixAxis& axis) {
    if (axis.names.empty()) {
        return;
    }
    if (axis.names.size() != selectionCount(axis)) {
        failAxis(axis, "has name count " + std::to_string(axis.names.size()) + " but value count is " +
                           std::to_string(selectionCount(axis)));
    }
    std::set<std::string> seen;
    for (const auto& name : axis.names) {
        if (!seen.insert(cleanVariantText(name)).second) {
            failAxis(axis, "has duplicate variant name '" + name + "'");
        }
    }
}

void checkMap(const MatrixAxis& axis, const std::vector<MatrixAxis>& axes, const AxisIndex& index) {
    if (axis.map == axis.key) {
        failAxis(axis, "cannot map to itself");
    }
    const auto found = index.find(axis.map);
    if (found == index.end()) {
        failAxis(axis, "maps to unknown axis '" + axis.map + "'");
    }
    const MatrixAxis& target = axes[found->second];
    if (!target.map.empty()) {
        failAxis(axis,
                 "cannot map to axis '" + axis.map + "' because chained matrix mappings are not supported");
    }
    if (selectionCount(axis) != selectionCount(target)) {
        failAxis(axis, "has value count " + std::to_string(selectionCount(axis)) + " but mapped axis '" +
                           axis.map + "' has value count " + std::to_string(selectionCount(target)));
    }
}

const std::string& valueAt(const MatrixAxis& axis, std::size_t index) noexcept {
    static const std::string none;
    return index < axis.values.size() ? axis.values[index] : none;
}

std::vector<std::string> piecesOf(const MatrixAxis& axis) {
    std::vector<std::string> pieces;
    pieces.reserve(selectionCount(axis));
    for (std::size_t i = 0; i < selectionCount(axis); ++i) {
        pieces.push_back(i < axis.names.size()
                             ? cleanVariantText(axis.names[i])
                             : cleanVariantText(axis.key) + "_" + cleanVariantText(valueAt(axis, i)));
    }
    return pieces;
}

} // namespace

std::string cleanVariantText(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool kept = isLetter(c) || isDigit(c) || c == '-' || c == '.';
        if (kept) {
            result += c;
        } else if (!result.empty() && result.back() != '_') {
            result += '_';
        }
    }
    if (!result.empty() && result.back() == '_') {
        result.pop_back();
    }
    return result.empty() ? "value" : result;
}

void validateMatrix(const std::vector<MatrixAxis>& axes) {
    std::set<std::string_view> keys;
    for (const auto& axis : axes) {
        if (axis.key.empty()) {
            throw DiagnosticError("matrix axis key cannot be empty");
        }
        if (!keys.insert(axis.key).second) {
            throw DiagnosticError("duplicate matrix axis '" + axis.key + "'");
        }
    }
    for (const auto& axis : axes) {
        checkNames(axis);
    }
    const auto index = indexAxes(axes);
    bool anyIndependent = false;
    for (const auto& axis : axes) {
        if (axis.map.empty()) {
            anyIndependent = true;
        } else {
            checkMap(axis, axes, index);
        }
    }
    if (!anyIndependent) {
        throw DiagnosticError("matrix requires at least one independent axis without 'map'");
    }
}

MatrixWalk::MatrixWalk(const std::vector<MatrixAxis>& axes) {
    const auto index = indexAxes(axes);
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const MatrixAxis& axis = axes[i];
        const auto target = axis.map.empty() ? index.end() : index.find(axis.map);
        if (!axis.map.empty() && (target == index.end() || !axes[target->second].map.empty())) {
            throw DiagnosticError("matrix internal error: missing selection for axis '" + axis.key + "'");
        }
        tracks_.push_back({&axis, piecesOf(axis), axis.map.empty() ? i : target->second, 0});
        if (axis.map.empty()) {
            independent_.push_back(i);
            if (selectionCount(axis) > limits::matrixVariants / count_) {
                throw DiagnosticError("matrix yields more than " + std::to_string(limits::matrixVariants) +
                                      " combinations");
            }
            count_ *= selectionCount(axis);
        }
    }
}

bool MatrixWalk::advance() noexcept {
    for (auto i = independent_.rbegin(); i != independent_.rend(); ++i) {
        Track& track = tracks_[*i];
        if (++track.index < selectionCount(*track.axis)) {
            return true;
        }
        track.index = 0;
    }
    return false;
}

const std::string& MatrixWalk::value(std::size_t axis) const noexcept {
    return valueAt(*tracks_[axis].axis, tracks_[tracks_[axis].selector].index);
}

const std::string& MatrixWalk::piece(std::size_t axis) const noexcept {
    const auto& pieces = tracks_[axis].pieces;
    return pieces[std::min(tracks_[tracks_[axis].selector].index, pieces.size() - 1)];
}

std::vector<MatrixCombination> buildMatrixCombinations(const std::vector<MatrixAxis>& axes) {
    std::vector<MatrixCombination> combinations;
    MatrixWalk walk(axes);
    combinations.reserve(walk.size());
    do {
        MatrixCombination combination;
        for (std::size_t i = 0; i < axes.size(); ++i) {
            combination.values.insert_or_assign(axes[i].key, walk.value(i));
            combination.pairs.emplace_back(axes[i].key, walk.value(i));
            combination.pieces.push_back(walk.piece(i));
        }
        combinations.push_back(std::move(combination));
    } while (walk.advance());
    return combinations;
}

} // namespace morquill::taskdsl
