#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/foreach.h"

#include <cstddef>
#include <string>

namespace morquill::taskdsl {

/// What one YAML section of a prelude holds.
struct YamlSection {
    ValueMap settings;
    Collections collections;
};

/// Reads one YAML mapping of a prelude: scalars are settings, inner mappings too, under keys joined
/// with dots; a sequence becomes a collection. Null values and sequences inside mappings are ignored.
/// `firstLine` is the number of the text's first line in the file `path`, for messages.
/// Throws `DiagnosticError` for text that is not a YAML mapping or does not end with it, and for an indented
/// directive: its task header is missing, and YAML takes it for more of the value above.
[[nodiscard]] YamlSection readYamlSection(const std::string& text, const std::string& path,
                                          std::size_t firstLine);

} // namespace morquill::taskdsl
