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

} // namespace morquill::taskdsl
