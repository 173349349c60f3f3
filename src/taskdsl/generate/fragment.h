#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/source_span.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Fragments: named pieces of task text with parameters.
namespace morquill::taskdsl {

/// What a fragment may hold; also the context in which an `&INCLUDE` stands.
enum class FragmentKind : std::int32_t {
    unknown = 0,
    document,
    task_body,
    process,
    preprocess,
    control,
    mod,
    when,
    meta,
    param,
    args,
    batch,
    text
};

/// The context of an `&INCLUDE`: `document` at file level.
using FragmentExpansionScope = FragmentKind;

/// The name of a kind; "unknown" for a value outside the enumeration.
[[nodiscard]] std::string_view fragmentKindName(FragmentKind kind) noexcept;
/// Reads a spelling (trimmed, any case, `-` as `_`); `unknown` for any other text.
[[nodiscard]] FragmentKind parseFragmentKind(std::string_view text);
/// True when a fragment of that kind may stand in that scope.
[[nodiscard]] bool kindFits(FragmentKind kind, FragmentExpansionScope scope) noexcept;

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
