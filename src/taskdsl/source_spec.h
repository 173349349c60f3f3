#pragma once

#include "taskdsl/source_span.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// `%source`: where a task takes its geometry from.
namespace morquill::taskdsl {

enum class BindingRole : std::int32_t { geometry = 0, auxiliary = 1 };
enum class BindingSource : std::int32_t { origin = 0, restart = 1, task = 2, xyz = 3 };

/// One line of a structured `%source`: `<binding-key> <source> [selector=value ...]`.
struct SourceBinding {
    std::string key;        ///< `geom`, `geom.<slot>` or a dotted identifier
    std::string sourceTask; ///< upstream task when `sourceKind` is task
    std::vector<std::pair<std::string, std::string>> selectors; ///< in their order of writing
    BindingRole role = BindingRole::geometry;
    std::string slot = "main"; ///< geometry slot
    BindingSource sourceKind = BindingSource::origin;
    std::string sourceValue;     ///< the task name or the file name
    std::int32_t frameIndex = 0; ///< frame of an xyz file, from 1
    bool hasFrame = false;

    friend bool operator==(const SourceBinding&, const SourceBinding&) = default;
};

} // namespace morquill::taskdsl
