#pragma once

#include <string>
#include <string_view>

/// What older files of `%program other` keep in `%keywords`: `job=<template> key=value ...`.
namespace morquill::taskdsl {

/// The value of `job`, in any letter case, at the start or behind white space; without one pair of matching
/// quotes; empty when there is none.
[[nodiscard]] std::string legacyTemplateName(std::string_view keywords);

/// Every other `key=value` pair, in order, joined with one blank, each value in canonical form.
[[nodiscard]] std::string legacyParamValues(std::string_view keywords);

/// True when the text is nothing but `key=value` pairs of which the two functions above lose none: one `job`
/// at most, and none unless `withJob`; other pairs only `withOthers`.
[[nodiscard]] bool isLegacyPairList(std::string_view keywords, bool withJob, bool withOthers);

} // namespace morquill::taskdsl
