#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/source_span.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/task/geometry_slot.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// `%source`: where a task takes its geometry from.
namespace morquill::taskdsl {

struct TaskInfo;

enum class BindingRole : std::int32_t { geometry = 0, auxiliary = 1 };
enum class BindingSource : std::int32_t { origin = 0, restart = 1, task = 2, xyz = 3 };

/// One line of a structured `%source`: `<binding-key> <source> [selector=value ...]`.
struct SourceBinding {
    std::string key;        ///< `geom`, `geom.<slot>` or a dotted identifier
    std::string sourceTask; ///< upstream task when `sourceKind` is task
    std::vector<std::pair<std::string, std::string>> selectors; ///< in their order of writing
    BindingRole role = BindingRole::geometry;
    std::string slot{mainSlot}; ///< geometry slot
    BindingSource sourceKind = BindingSource::origin;
    std::string sourceValue;     ///< the task name or the file name
    std::int32_t frameIndex = 0; ///< frame of an xyz file, from 1
    bool hasFrame = false;

    friend bool operator==(const SourceBinding&, const SourceBinding&) = default;
};

/// No source.
struct SourceNone {
    friend bool operator==(const SourceNone&, const SourceNone&) = default;
};
/// The molecule's own input.
struct SourceOrigin {
    friend bool operator==(const SourceOrigin&, const SourceOrigin&) = default;
};
/// The task's own restart data.
struct SourceRestart {
    friend bool operator==(const SourceRestart&, const SourceRestart&) = default;
};
/// One or more upstream tasks.
struct SourceTaskList {
    std::vector<std::string> names;

    friend bool operator==(const SourceTaskList&, const SourceTaskList&) = default;
};
/// One frame of an xyz file.
struct SourceXyz {
    std::string file;
    std::int32_t frameIndex = 0; ///< from 1
    bool hasFrame = false;
    std::vector<std::string> furtherWords; ///< words that are not a frame, none of them empty

    friend bool operator==(const SourceXyz&, const SourceXyz&) = default;
};
/// Named bindings, one per line.
struct SourceStructured {
    std::vector<SourceBinding> bindings;

    friend bool operator==(const SourceStructured&, const SourceStructured&) = default;
};

/// The value of a `%source`. The index of an alternative is the number of its kind.
using SourceSpec =
    std::variant<SourceNone, SourceOrigin, SourceRestart, SourceTaskList, SourceXyz, SourceStructured>;

/// Reads a source text: a structured one (checked strictly) when the trimmed text has a line end, otherwise
/// an inline one. Throws `DiagnosticError` with the bare message.
[[nodiscard]] SourceSpec parseSourceText(std::string_view text);

/// Reads an inline source: nothing, "origin", "restart", `xyz=<file> [frame=<n>]` or names with commas
/// between. A line end is ordinary white space here. The first `frame=` counts; all other words after the
/// file are kept. Throws "%source xyz frame selector must be a positive integer".
[[nodiscard]] SourceSpec parseInlineSource(std::string_view text);

/// The same without the check: a `frame=` that is not a positive integer stays among the further words.
[[nodiscard]] SourceSpec readInlineSource(std::string_view text);

/// Refuses a file whose `frame=` is not a positive integer. Throws as `parseInlineSource`.
void requireNumericFrame(const SourceSpec& source);

/// Reads one line of a structured source. A frame that holds a `[` is kept as a selector, for a later
/// substitution. Throws `DiagnosticError` with the bare message.
[[nodiscard]] SourceBinding parseSourceBinding(std::string_view line);

/// Checks the bindings of one task against each other. Without placeholders, a `frame` selector that no
/// substitution has made a number is refused. Throws `DiagnosticError` with the bare message.
void validateStructuredSource(const std::vector<SourceBinding>& bindings, Placeholders placeholders);

/// Looks again at a binding whose texts a substitution has changed: a task name may have become "origin",
/// "restart" or a file, a `frame` selector of a file a positive integer and so its frame.
/// What has become empty or is not a number is left for `validateStructuredSource` to refuse.
void rereadBinding(SourceBinding& binding);

/// The same for an inline file: words that have become empty go, quotes around the file name as well, and the
/// first `frame=` counts when the file has no frame yet and it is a positive integer. Any other is left for
/// `requireNumericFrame` to refuse.
void rereadXyz(SourceXyz& xyz);

/// One line of a `%source` block.
struct SourceEntryLine {
    std::string text; ///< comment removed, trimmed
    SourceSpan span;
};

/// The bindings of the `%source` block of task `taskName`, checked with lenient frames; empty lines are
/// passed over. Every fault is a finished diagnostic: with the span of its line as "task '<name>' has invalid
/// structured %source entry: <reason>", or with the span of the directive as "task '<name>' has invalid
/// structured %source: <reason>" and, for a block without an entry, "task '<name>' has empty %source; ...".
[[nodiscard]] std::vector<SourceBinding> parseSourceBlock(const std::vector<SourceEntryLine>& lines,
                                                          std::string_view taskName,
                                                          const SourceSpan& directiveSpan);

/// The fault of a whole `%source` block: "task '<name>' has invalid structured %source: <reason>" with the
/// span of the directive.
[[nodiscard]] DiagnosticError structuredSourceFault(const SourceSpan& directiveSpan,
                                                    std::string_view taskName, const DiagnosticError& reason);

/// The text of one binding: `<key> <source>` and each selector as ` <selector>=<value>`.
[[nodiscard]] std::string formatSourceBinding(const SourceBinding& binding);

/// The text of a source: one line, or one line per binding (no line end after the last); empty for none.
[[nodiscard]] std::string formatSourceSpec(const SourceSpec& spec);

/// Stores a source in a task; a list without names or a block without bindings counts as no source.
void applySource(TaskInfo& task, SourceSpec source);

/// The simple source of a task: "origin", "restart", `xyz=...` or the first task of a list; empty for none
/// and for a structured one.
[[nodiscard]] std::string sourceText(const TaskInfo& task);
/// The upstream tasks that an inline source names; none for any other source.
[[nodiscard]] const std::vector<std::string>& sourceTasks(const TaskInfo& task) noexcept;
/// The lines of a structured source; none for any other source.
[[nodiscard]] const std::vector<SourceBinding>& sourceBindings(const TaskInfo& task) noexcept;

[[nodiscard]] bool hasStructuredSource(const TaskInfo& task) noexcept;
/// True for a source with a text in `sourceText`.
[[nodiscard]] bool hasSimpleSource(const TaskInfo& task) noexcept;
/// The name of the task that a simple source takes from; empty when it takes from the molecule, the restart
/// data or a file.
[[nodiscard]] std::string_view upstreamTask(const TaskInfo& task) noexcept;

} // namespace morquill::taskdsl
