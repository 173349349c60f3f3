#pragma once

#include "taskdsl/base/source_span.h"
#include "taskdsl/expr/expression.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The derive language: values computed from task results, as named scalars, tables and per-atom vectors, and
/// where they go. The records here hold a parsed block; formulas, profiles and binds are gone from it.
namespace morquill::taskdsl::derive {

using plot::ExprRef;

/// How the leaf of a condition compares.
enum class DeriveCompareOp : std::int32_t {
    truthy = 0,
    equal = 1,
    notEqual = 2,
    less = 3,
    lessEqual = 4,
    greater = 5,
    greaterEqual = 6,
    in = 7,
    matches = 8,
};
enum class DeriveConditionKind : std::int32_t { leaf = 0, conjunction = 1, disjunction = 2, negation = 3 };
/// Kinds of value that the language knows; no record holds one.
enum class DeriveValueKind : std::int32_t { number = 0, string = 1 };
enum class DeriveSortDirection : std::int32_t { asc = 0, desc = 1 };
enum class DeriveSinkFormat : std::int32_t { none = 0, csv = 1, tsv = 2, jsonl = 3 };

/// The texts of the enumerations, such as "<=", "and", "desc", "csv"; the text of value 0 for a value
/// out of range.
[[nodiscard]] std::string_view deriveCompareOpName(DeriveCompareOp op) noexcept;
[[nodiscard]] std::string_view deriveConditionKindName(DeriveConditionKind kind) noexcept;
[[nodiscard]] std::string_view deriveValueKindName(DeriveValueKind kind) noexcept;
[[nodiscard]] std::string_view deriveSortDirectionName(DeriveSortDirection direction) noexcept;
[[nodiscard]] std::string_view deriveSinkFormatName(DeriveSinkFormat format) noexcept;

/// A condition: a comparison, or conditions joined by "and", "or", "not".
///
/// A chain `a or b or c` leans to the right with one level per word, and its length is not bounded. Whoever
/// walks a condition therefore goes down the last child in a loop and recurses only into the first; copying
/// and destruction are written out for the same reason.
struct DeriveCondition {
    DeriveConditionKind kind = DeriveConditionKind::leaf;
    ExprRef left;                                 ///< leaf: the left side, or the whole truthy expression
    DeriveCompareOp op = DeriveCompareOp::truthy; ///< of a leaf
    ExprRef right;                                ///< leaf with a binary operator
    std::vector<ExprRef> list;                    ///< operator "in": the values
    std::vector<DeriveCondition> children;        ///< "and", "or": left and right; "not": one

    DeriveCondition() = default;
    DeriveCondition(const DeriveCondition& other);
    DeriveCondition(DeriveCondition&& other) noexcept = default;
    DeriveCondition& operator=(DeriveCondition other) noexcept;
    ~DeriveCondition();

    friend bool operator==(const DeriveCondition& left, const DeriveCondition& right);
};

/// `let name = value`.
struct LetStatement {
    std::string name;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const LetStatement& left, const LetStatement& right);
};
/// `require condition else message`.
struct RequireStatement {
    DeriveCondition condition;
    std::string message; ///< may be empty
    SourceSpan span;

    friend bool operator==(const RequireStatement&, const RequireStatement&) = default;
};
/// `emit name = value unit unit`.
struct EmitScalarStatement {
    std::string name;
    ExprRef value;
    std::string unit; ///< may be empty
    SourceSpan span;

    friend bool operator==(const EmitScalarStatement& left, const EmitScalarStatement& right);
};
/// `report label = value`.
struct ReportStatement {
    std::string label;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const ReportStatement& left, const ReportStatement& right);
};
/// Rows are tasks.
struct TasksSource {
    std::vector<std::string> patterns; ///< "*" if none was written
    std::string program;
    std::string templateName; ///< template task

    friend bool operator==(const TasksSource&, const TasksSource&) = default;
};
/// Rows are the atoms of one task.
struct AtomsSource {
    std::string task;
    std::string alias;

    friend bool operator==(const AtomsSource&, const AtomsSource&) = default;
};
/// Rows are those of a table that another derive emits.
struct DerivedTableSource {
    std::string derive;
    std::string table;

    friend bool operator==(const DerivedTableSource&, const DerivedTableSource&) = default;
};
/// `from source`: opens the table pipeline.
struct FromStatement {
    std::variant<TasksSource, AtomsSource, DerivedTableSource> source;
    SourceSpan span;

    friend bool operator==(const FromStatement&, const FromStatement&) = default;
};
/// `join atoms(task) as alias on key`.
struct JoinStatement {
    std::string task;
    std::string alias;
    std::string key; ///< always "atom.id"
    SourceSpan span;

    friend bool operator==(const JoinStatement&, const JoinStatement&) = default;
};
/// `where condition`.
struct WhereStatement {
    DeriveCondition condition;
    SourceSpan span;

    friend bool operator==(const WhereStatement&, const WhereStatement&) = default;
};
/// One column; a list of columns is several statements.
struct SelectStatement {
    std::string name;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const SelectStatement& left, const SelectStatement& right);
};
/// One sort key.
struct SortStatement {
    ExprRef key;
    DeriveSortDirection direction = DeriveSortDirection::asc;
    SourceSpan span;

    friend bool operator==(const SortStatement& left, const SortStatement& right);
};
/// `limit count`.
struct LimitStatement {
    std::uint64_t count = 1; ///< rows, at least 1
    SourceSpan span;

    friend bool operator==(const LimitStatement&, const LimitStatement&) = default;
};
struct DeriveGroupKey {
    std::string name;
    ExprRef expression;

    friend bool operator==(const DeriveGroupKey& left, const DeriveGroupKey& right);
};
/// `group by key as name, ...`.
struct GroupByStatement {
    std::vector<DeriveGroupKey> keys;
    SourceSpan span;

    friend bool operator==(const GroupByStatement&, const GroupByStatement&) = default;
};
/// One aggregated column.
struct AggregateStatement {
    std::string name;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const AggregateStatement& left, const AggregateStatement& right);
};
/// `emit table name to sink path`.
struct EmitTableStatement {
    std::string name;
    DeriveSinkFormat sink = DeriveSinkFormat::none;
    std::string path; ///< empty without a sink
    SourceSpan span;

    friend bool operator==(const EmitTableStatement&, const EmitTableStatement&) = default;
};
/// `emit value name to kv path`.
struct EmitValueStatement {
    std::string name;
    std::string path;
    SourceSpan span;

    friend bool operator==(const EmitValueStatement&, const EmitValueStatement&) = default;
};
/// `emit report to root path`.
struct EmitReportStatement {
    std::string path; ///< may be empty
    SourceSpan span;

    friend bool operator==(const EmitReportStatement&, const EmitReportStatement&) = default;
};
/// `emit atomvec property = value`.
struct EmitAtomVectorStatement {
    std::string property;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const EmitAtomVectorStatement& left, const EmitAtomVectorStatement& right);
};
/// `emit artifact target from value as property`.
struct EmitArtifactStatement {
    std::string target;
    std::string property;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const EmitArtifactStatement& left, const EmitArtifactStatement& right);
};
/// `emit kv target from value as property`.
struct EmitKvStatement {
    std::string target;
    std::string property;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const EmitKvStatement& left, const EmitKvStatement& right);
};

/// One statement. The order of the alternatives is fixed.
using DeriveStatement =
    std::variant<LetStatement, RequireStatement, EmitScalarStatement, ReportStatement, FromStatement,
                 JoinStatement, WhereStatement, SelectStatement, SortStatement, LimitStatement,
                 GroupByStatement, AggregateStatement, EmitTableStatement, EmitValueStatement,
                 EmitReportStatement, EmitAtomVectorStatement, EmitArtifactStatement, EmitKvStatement>;

/// One `@derive` block, parsed.
struct DeriveSpec {
    SourceSpan span; ///< the header line
    std::string name;
    std::vector<DeriveStatement> statements; ///< in source order, lists taken apart, binds lowered to lets

    friend bool operator==(const DeriveSpec&, const DeriveSpec&) = default;
};

} // namespace morquill::taskdsl::derive
