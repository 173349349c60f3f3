#pragma once

#include "taskdsl/task/task_document.h"

#include <string>
#include <string_view>

/// What older files of `%program other` keep in `%keywords`: `job=<template> key=value ...`.
namespace morquill::taskdsl {

/// The value of `job`, in any letter case, at the start or behind white space; without one pair of matching
/// quotes; empty when there is none.
[[nodiscard]] std::string legacyTemplateName(std::string_view keywords);

/// Every other `key=value` pair, in order, joined with one blank, each value in canonical form.
[[nodiscard]] std::string legacyParamValues(std::string_view keywords);

/// The template of a task of `%program other`: its `%template`, else the job that older files keep in
/// `%keywords`; may be empty.
[[nodiscard]] std::string resolvedTemplateName(const TaskInfo& task);

/// The runner of a script task: its `%runner`, else what older files keep in `%keywords`; may be empty.
[[nodiscard]] const std::string& resolvedRunner(const TaskInfo& task) noexcept;

} // namespace morquill::taskdsl
