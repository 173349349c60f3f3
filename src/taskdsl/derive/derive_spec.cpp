#include "taskdsl/derive/derive_spec.h"

#include "taskdsl/derive/derive_words.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace morquill::taskdsl::derive {

namespace {

// Everything but the expression.
auto plainFields(const LetStatement& s) {
    return std::tie(s.name, s.span);
}
auto plainFields(const EmitScalarStatement& s) {
    return std::tie(s.name, s.unit, s.span);
}
auto plainFields(const ReportStatement& s) {
    return std::tie(s.label, s.span);
}
auto plainFields(const SelectStatement& s) {
    return std::tie(s.name, s.span);
}
auto plainFields(const SortStatement& s) {
    return std::tie(s.direction, s.span);
}
auto plainFields(const DeriveGroupKey& key) {
    return std::tie(key.name);
}
auto plainFields(const AggregateStatement& s) {
    return std::tie(s.name, s.span);
}
auto plainFields(const EmitAtomVectorStatement& s) {
    return std::tie(s.property, s.span);
}
auto plainFields(const EmitArtifactStatement& s) {
    return std::tie(s.target, s.property, s.span);
}
auto plainFields(const EmitKvStatement& s) {
    return std::tie(s.target, s.property, s.span);
}

template <class Record>
bool equalRecords(const Record& left, const Record& right, ExprRef Record::*expression) {
    return plainFields(left) == plainFields(right) &&
           plot::equalExpressions(left.*expression, right.*expression);
}

/// Without the children.
bool equalHeads(const DeriveCondition& left, const DeriveCondition& right) {
    return left.kind == right.kind && left.op == right.op && left.children.size() == right.children.size() &&
           plot::equalExpressions(left.left, right.left) && plot::equalExpressions(left.right, right.right) &&
           std::equal(left.list.begin(), left.list.end(), right.list.begin(), right.list.end(),
                      plot::equalExpressions);
}

} // namespace

std::string_view deriveCompareOpName(DeriveCompareOp op) noexcept {
    return compareOpWords.nameOf(op);
}

std::string_view deriveConditionKindName(DeriveConditionKind kind) noexcept {
    return conditionKindWords.nameOf(kind);
}

std::string_view deriveValueKindName(DeriveValueKind kind) noexcept {
    return valueKindWords.nameOf(kind);
}

std::string_view deriveSortDirectionName(DeriveSortDirection direction) noexcept {
    return sortDirectionWords.nameOf(direction);
}

std::string_view deriveSinkFormatName(DeriveSinkFormat format) noexcept {
    return sinkFormatWords.nameOf(format);
}

DeriveCondition::DeriveCondition(const DeriveCondition& other) {
    DeriveCondition* to = this;
    const DeriveCondition* from = &other;
    for (;;) {
        to->kind = from->kind;
        to->left = from->left;
        to->op = from->op;
        to->right = from->right;
        to->list = from->list;
        if (from->children.empty()) {
            return;
        }
        to->children.reserve(from->children.size());
        to->children.assign(from->children.begin(), from->children.end() - 1);
        from = &from->children.back();
        to = &to->children.emplace_back();
    }
}

DeriveCondition& DeriveCondition::operator=(DeriveCondition other) noexcept {
    kind = other.kind;
    op = other.op;
    std::swap(left, other.left);
    std::swap(right, other.right);
    list.swap(other.list);
    children.swap(other.children);
    return *this;
}

DeriveCondition::~DeriveCondition() {
    // Each round frees one level with its last child taken out, so no destructor runs inside another.
    std::vector<DeriveCondition> level = std::move(children);
    while (!level.empty()) {
        std::vector<DeriveCondition> below = std::move(level.back().children);
        level = std::move(below);
    }
}

bool operator==(const DeriveCondition& left, const DeriveCondition& right) {
    const DeriveCondition* a = &left;
    const DeriveCondition* b = &right;
    for (;;) {
        if (!equalHeads(*a, *b)) {
            return false;
        }
        if (a->children.empty()) {
            return true;
        }
        if (!std::equal(a->children.begin(), a->children.end() - 1, b->children.begin())) {
            return false;
        }
        a = &a->children.back();
        b = &b->children.back();
    }
}

bool operator==(const LetStatement& left, const LetStatement& right) {
    return equalRecords(left, right, &LetStatement::value);
}
bool operator==(const EmitScalarStatement& left, const EmitScalarStatement& right) {
    return equalRecords(left, right, &EmitScalarStatement::value);
}
bool operator==(const ReportStatement& left, const ReportStatement& right) {
    return equalRecords(left, right, &ReportStatement::value);
}
bool operator==(const SelectStatement& left, const SelectStatement& right) {
    return equalRecords(left, right, &SelectStatement::value);
}
bool operator==(const SortStatement& left, const SortStatement& right) {
    return equalRecords(left, right, &SortStatement::key);
}
bool operator==(const DeriveGroupKey& left, const DeriveGroupKey& right) {
    return equalRecords(left, right, &DeriveGroupKey::expression);
}
bool operator==(const AggregateStatement& left, const AggregateStatement& right) {
    return equalRecords(left, right, &AggregateStatement::value);
}
bool operator==(const EmitAtomVectorStatement& left, const EmitAtomVectorStatement& right) {
    return equalRecords(left, right, &EmitAtomVectorStatement::value);
}
bool operator==(const EmitArtifactStatement& left, const EmitArtifactStatement& right) {
    return equalRecords(left, right, &EmitArtifactStatement::value);
}
bool operator==(const EmitKvStatement& left, const EmitKvStatement& right) {
    return equalRecords(left, right, &EmitKvStatement::value);
}

} // namespace morquill::taskdsl::derive
