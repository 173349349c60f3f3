#pragma once

#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/parse_context.h"

#include <memory>
#include <optional>
#include <string>

namespace morquill::taskdsl {

/// The library file that `name` leads to from `baseFile`, with the libraries that it names; each file is read
/// once. Throws `DiagnosticError` when it is missing, names itself, or does not follow the form of a library.
std::shared_ptr<const FragmentLibrary> loadLibrary(const std::string& name, const std::string& baseFile,
                                                   DocumentContext& context);

/// Loads a library for the namespace `alias` of the file being read. Returns why it cannot be bound when the
/// alias is bound to another library already: the caller knows the place. Throws as `loadLibrary`.
[[nodiscard]] std::optional<std::string> bindLibrary(const std::string& alias, const std::string& name,
                                                     const std::string& baseFile, DocumentContext& context);

/// The fragment of a standalone file, included in `scope`. Without a header it is of the kind of the scope
/// and holds all lines. Throws `DiagnosticError` when the file is missing or cannot be read.
[[nodiscard]] FragmentDefinition loadFragmentFile(const std::string& name, const std::string& baseFile,
                                                  FragmentExpansionScope scope, DocumentContext& context);

} // namespace morquill::taskdsl
