#pragma once

#include "taskdsl/task/task_document.h"

#include <string>
#include <string_view>

/// What older files of `%program other` keep in `%keywords`: `job=<template> key=value ...`.
namespace morquill::taskdsl {

/// The value of `job`, in any letter case, at the start or after white space, without one pair of matching
/// quotes; empty when there is none.
[[nodiscard]] std::string legacyTemplateName(std::string_view keywords);

/// Every other `key=value` pair, in order, joined with one blank, each value in canonical form.
[[nodiscard]] std::string legacyParamValues(std::string_view keywords);

/// True when `%keywords` of the task is nothing but `key=value` pairs and none is lost when the two
/// functions above fill in what the task lacks: one `job` at most, and none beside a template name;
/// no other pair beside parameters.
[[nodiscard]] bool isLegacyPairList(const TaskInfo& task);

} // namespace morquill::taskdsl
