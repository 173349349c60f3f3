#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/source_span.h"
#include "taskdsl/task/fragment_kind.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Fragments: named pieces of task text with parameters.
namespace morquill::taskdsl {

struct FragmentParameter {
    std::string name;
    std::string defaultValue;
    bool required = false; ///< declared without a default
};

struct FragmentDefinition {
    FragmentKind kind = FragmentKind::unknown;
    std::string kindText;                      ///< as written; empty without a header
    std::string name;                          ///< the file name in a standalone file
    std::vector<FragmentParameter> parameters; ///< in order of declaration
    std::vector<SourceLine> lines;             ///< the body
    SourceSpan span;                           ///< the header
    SharedText path;                           ///< its file
};

/// The fragments of one `.mqlib` file and the libraries that it names.
struct FragmentLibrary {
    SharedText path;
    std::map<std::string, FragmentDefinition, std::less<>> fragments;
    std::map<std::string, std::shared_ptr<const FragmentLibrary>, std::less<>> dependencies; ///< by alias
};

} // namespace morquill::taskdsl
