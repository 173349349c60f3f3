#pragma once

#include "support/word_table.h"
#include "taskdsl/derive/derive_spec.h"

/// The words of the enumerations. Not for use outside this room. "truthy", "leaf" and "none" are names only,
/// no words of the language.
namespace morquill::taskdsl::derive {

inline constexpr auto compareOpWords = wordTable<DeriveCompareOp>({
    {"truthy", DeriveCompareOp::truthy},
    {"==", DeriveCompareOp::equal},
    {"!=", DeriveCompareOp::notEqual},
    {"<", DeriveCompareOp::less},
    {"<=", DeriveCompareOp::lessEqual},
    {">", DeriveCompareOp::greater},
    {">=", DeriveCompareOp::greaterEqual},
    {"in", DeriveCompareOp::in},
    {"matches", DeriveCompareOp::matches},
});
inline constexpr auto conditionKindWords = wordTable<DeriveConditionKind>({
    {"leaf", DeriveConditionKind::leaf},
    {"and", DeriveConditionKind::conjunction},
    {"or", DeriveConditionKind::disjunction},
    {"not", DeriveConditionKind::negation},
});
inline constexpr auto valueKindWords = wordTable<DeriveValueKind>({
    {"number", DeriveValueKind::number},
    {"string", DeriveValueKind::string},
});
inline constexpr auto sortDirectionWords = wordTable<DeriveSortDirection>({
    {"asc", DeriveSortDirection::asc},
    {"desc", DeriveSortDirection::desc},
});
inline constexpr auto sinkFormatWords = wordTable<DeriveSinkFormat>({
    {"none", DeriveSinkFormat::none},
    {"csv", DeriveSinkFormat::csv},
    {"tsv", DeriveSinkFormat::tsv},
    {"jsonl", DeriveSinkFormat::jsonl},
});

} // namespace morquill::taskdsl::derive
