#include "taskdsl/derive/derive_spec.h"

#include <cstddef>
#include <utility>

namespace morquill::taskdsl::derive {

namespace {

constexpr std::string_view compareOpNames[] = {"truthy", "==", "!=", "<", "<=", ">", ">=", "in", "matches"};
constexpr std::string_view conditionKindNames[] = {"leaf", "and", "or", "not"};
constexpr std::string_view valueKindNames[] = {"number", "string"};
constexpr std::string_view sortDirectionNames[] = {"asc", "desc"};
constexpr std::string_view sinkFormatNames[] = {"none", "csv", "tsv", "jsonl"};

template <class Enum, std::size_t N>
std::string_view nameOf(const std::string_view (&names)[N], Enum value) noexcept {
    const auto index = static_cast<std::size_t>(value);
    return index < N ? names[index] : names[0];
}

} // namespace

std::string_view deriveCompareOpName(DeriveCompareOp op) noexcept {
    return nameOf(compareOpNames, op);
}

std::string_view deriveConditionKindName(DeriveConditionKind kind) noexcept {
    return nameOf(conditionKindNames, kind);
}

std::string_view deriveValueKindName(DeriveValueKind kind) noexcept {
    return nameOf(valueKindNames, kind);
}

std::string_view deriveSortDirectionName(DeriveSortDirection direction) noexcept {
    return nameOf(sortDirectionNames, direction);
}

std::string_view deriveSinkFormatName(DeriveSinkFormat format) noexcept {
    return nameOf(sinkFormatNames, format);
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
    left.swap(other.left);
    right.swap(other.right);
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

} // namespace morquill::taskdsl::derive
