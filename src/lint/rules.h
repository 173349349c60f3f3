#pragma once

#include "lint/report.h"
#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The rules of lint: what each looks at, and one table of all of them.
namespace morquill::lint {

/// One line of the file as it was written, before the parser sees it.
struct RawLine {
    const SharedText& path;
    std::size_t number = 0;
    std::string_view text;        ///< without its line end
    std::string_view statement;   ///< trimmed and without comment
    std::string_view controlText; ///< what stands in `%control` here; empty outside it
    std::string_view processText; ///< likewise of `%process` and `%preprocess`
};

/// The exception that ended the reading of the file.
struct ParseFault {
    std::string_view message;
    taskdsl::SourceSpan span;       ///< invalid when no place is known
    bool messageNamesPlace = false; ///< the message begins with the place in words of its own
};

/// What all tasks of a file share.
struct LintedFile {
    std::string_view version;              ///< the text behind `dsl_version:`, raw
    bool holdsBareEnergy = false;          ///< "{{ energy }}" stands somewhere in it
    std::set<std::string_view> knownTasks; ///< the names of all tasks
};

struct LintedTask {
    const LintedFile& file;
    const taskdsl::TaskInfo& task;
    bool nameSeen = false;   ///< an earlier task has the same name
    std::string_view source; ///< the raw argument of its first `%source`
};

/// A task name or pattern behind `completed`, other than "allothers".
struct CompletedTarget {
    std::string_view text;
    bool matched = false; ///< some task is meant by it
    const taskdsl::SourceSpan& span;
};

/// The part of a placeholder in front of the first dot.
struct PlaceholderTarget {
    std::string_view text;
    bool known = false; ///< a task of that name exists
    const taskdsl::SourceSpan& span;
};

/// True for the properties that are no task but look like one when the task in front of them is missing.
[[nodiscard]] bool isBareProperty(std::string_view target) noexcept;

/// A whole condition.
struct LintedCondition {
    const LintedFile& file;
    std::size_t referencedTasks = 0; ///< how many tasks it names
    const taskdsl::SourceSpan& span;
};

/// A condition that waits for all other tasks.
struct AllOthersUse {
    std::string_view task;
    taskdsl::SourceSpan span;
};
using AllOthersUses = std::vector<AllOthersUse>; ///< of one file

/// What a check has found: the place and what goes into the message.
struct LintFinding {
    taskdsl::SourceSpan span;
    std::string value;              ///< for "<value>"
    std::string canonical;          ///< for "<canonical>"
    std::string file;               ///< where the fault lies when that is not the linted file
    bool messageNamesPlace = false; ///< see `LintIssue`
};

template <class Subject>
using LintCheck = std::optional<LintFinding> (*)(const Subject&);

/// One rule: a code that means two things has a row for each.
struct LintRule {
    std::string_view code;
    LintSeverity severity;
    std::string_view message; ///< with "<value>" and "<canonical>" where the finding's texts stand
    std::variant<LintCheck<RawLine>, LintCheck<ParseFault>, LintCheck<LintedFile>, LintCheck<LintedTask>,
                 LintCheck<CompletedTarget>, LintCheck<PlaceholderTarget>, LintCheck<LintedCondition>,
                 LintCheck<AllOthersUses>>
        check;
};

/// All rules. Those that look at the same kind of subject are tried in this order.
[[nodiscard]] std::span<const LintRule> lintRules() noexcept;

/// The message of a rule with the finding's texts put in.
[[nodiscard]] std::string lintMessage(const LintRule& rule, const LintFinding& finding);

/// Tries every rule that looks at such a subject; `found(rule, finding)` is called for those that are broken.
template <class Subject, class Found>
void applyRules(const Subject& subject, const Found& found) {
    struct Check {
        const LintRule* rule;
        LintCheck<Subject> test;
    };
    // Picked out once: lines are asked by the million.
    static const std::vector<Check> checks = [] {
        std::vector<Check> own;
        for (const LintRule& rule : lintRules()) {
            if (const auto* test = std::get_if<LintCheck<Subject>>(&rule.check)) {
                own.push_back({&rule, *test});
            }
        }
        return own;
    }();
    for (const Check& check : checks) {
        if (auto finding = check.test(subject)) {
            found(*check.rule, *std::move(finding));
        }
    }
}

} // namespace morquill::lint
