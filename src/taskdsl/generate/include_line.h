#pragma once

#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One `&INCLUDE` line: its target, arguments and alias.
namespace morquill::taskdsl {

/// What an include line leads to, judged by the form of its target.
enum class IncludeTarget {
    fragmentName, ///< a bare name: a fragment of the same library, or a file
    reference,    ///< `namespace.name`
    library,      ///< a `.mqlib` file
    fragmentFile, ///< a `.mqfrag` file
    taskFile,     ///< a `.mq` or `.projmq` file
    yamlFile,     ///< a `.yaml` or `.yml` file
    otherFile
};

/// What a file is by the ending of its path, in any case; nothing for an ending that the language does not
/// know.
[[nodiscard]] std::optional<IncludeTarget> kindOfPath(std::string_view path) noexcept;

/// The parse of one line.
struct IncludeDirective {
    bool isInclude = false;
    bool isLibraryReference = false; ///< the target is `namespace.name` or a `.mqlib` file
    bool isAngle = false;            ///< the target is written in `<` and `>`, which are not part of it
    bool hasArguments = false;       ///< the target is followed by parentheses
    IncludeTarget kind = IncludeTarget::otherFile;
    std::string target;
    ValueMap arguments;
    std::string argumentText; ///< the text between the parentheses
    std::string alias;        ///< the name after `as`
};

/// Reads a line; `isInclude` stays false when it is not an include line. Throws `DiagnosticError` for a line
/// that does not follow the grammar `&INCLUDE <target>[(<name>=<value>, ...)] [as <alias>]`.
[[nodiscard]] IncludeDirective parseIncludeLine(std::string_view text);

/// The include that a prelude follows itself: a YAML file, or a library that gets a namespace. Nothing for
/// any other line, one whose arguments go on over the next lines included: there the body begins. Throws as
/// `parseIncludeLine` does.
[[nodiscard]] std::optional<IncludeDirective> parsePreludeInclude(std::string_view text);

/// The target as the path search takes it: an angle target in its brackets.
[[nodiscard]] std::string searchName(const IncludeDirective& include);

/// True for `[A-Za-z_][A-Za-z0-9_-]*`.
[[nodiscard]] bool isFragmentName(std::string_view text) noexcept;

/// The trimmed, non-empty parts of a list, split at commas outside quotes and brackets of any kind.
[[nodiscard]] std::vector<std::string_view> splitArguments(std::string_view text);

/// Counts parentheses outside quotes over the pieces of one text.
class ParenthesisCount {
  public:
    /// Reads on; false when a parenthesis closes that was not opened.
    bool read(std::string_view text) noexcept;
    /// True when every opened parenthesis is closed.
    [[nodiscard]] bool balanced() const noexcept { return walk_.depth() == 0; }

  private:
    QuoteWalk walk_{quote_rules::includeLine};
};

/// How a list of parentheses that runs over several lines ended.
enum class GatherEnd { balanced, unterminated, unmatched };

/// Lines that were joined into one text.
struct GatheredLines {
    std::string text;
    std::size_t last = 0; ///< the last line taken
    GatherEnd end = GatherEnd::unterminated;
};

/// The cleaned line at `first` and those after it, joined with one blank until the parentheses balance.
[[nodiscard]] GatheredLines gatherParentheses(const std::vector<SourceLine>& lines, std::size_t first);

} // namespace morquill::taskdsl
