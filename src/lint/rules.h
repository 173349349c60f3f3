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

/// The rules of lint: the subjects that they check, and one table of all rules.
namespace morquill::lint {

/// A line of the file as written, before it is parsed.
struct RawLine {
    const SharedText& path;
    std::size_t number = 0;
    std::string_view text;        ///< without its line end
    std::string_view statement;   ///< trimmed and without comment
    std::string_view controlText; ///< the part inside `%control`; empty outside it
    std::string_view processText; ///< the part inside `%process` or `%preprocess`
};

/// The exception that ended the parse of the file.
struct ParseFault {
    std::string_view message;
    taskdsl::SourceSpan span;       ///< invalid when no place is known
    bool messageNamesPlace = false; ///< the message itself begins with the place
};

/// What all tasks of a file have in common.
struct LintedFile {
    std::string_view version;              ///< the text after `dsl_version:`, as written
    bool holdsBareEnergy = false;          ///< it contains "{{ energy }}" somewhere
    std::set<std::string_view> knownTasks; ///< the names of all tasks
};

/// A task as its rules see it.
struct LintedTask {
    const LintedFile& file;
    const taskdsl::TaskInfo& task;
    bool nameSeen = false;   ///< an earlier task has the same name
    std::string_view source; ///< the argument of its first `%source`, as written
};

/// A task name or pattern after `completed`, other than "allothers".
struct CompletedTarget {
    std::string_view text;
    bool matched = false; ///< there is such a task
    const taskdsl::SourceSpan& span;
};

/// The part of a placeholder before the first dot.
struct PlaceholderTarget {
    std::string_view text;
    bool known = false; ///< there is a task of that name
    const taskdsl::SourceSpan& span;
};

/// True for a property that would be taken for a task when the task before it is missing.
[[nodiscard]] bool isBareProperty(std::string_view target) noexcept;

/// A whole condition.
struct LintedCondition {
    const LintedFile& file;
    std::size_t referencedTasks = 0; ///< the number of tasks that it names
    const taskdsl::SourceSpan& span;
};

/// A condition that waits for all other tasks.
struct AllOthersUse {
    std::string_view task;
    taskdsl::SourceSpan span;
};
/// All such conditions of a file.
using AllOthersUses = std::vector<AllOthersUse>;

/// What a check has found: the place, and the texts for the message.
struct LintFinding {
    taskdsl::SourceSpan span = {};
    std::string value = {};         ///< replaces "<value>"
    std::string canonical = {};     ///< replaces "<canonical>"
    std::string file = {};          ///< the faulty file when that is not the linted one
    bool messageNamesPlace = false; ///< see `LintIssue`
};

/// Checks a subject; returns nothing when it is in order.
template <class Subject>
using LintCheck = std::optional<LintFinding> (*)(const Subject&);

/// One rule; a code with two meanings has a row for each.
struct LintRule {
    std::string_view code;
    LintSeverity severity;
    std::string_view message; ///< with "<value>" and "<canonical>" for the finding's texts
    std::variant<LintCheck<RawLine>, LintCheck<ParseFault>, LintCheck<LintedFile>, LintCheck<LintedTask>,
                 LintCheck<CompletedTarget>, LintCheck<PlaceholderTarget>, LintCheck<LintedCondition>,
                 LintCheck<AllOthersUses>>
        check;
};

/// Returns all rules. Those for the same kind of subject are tried in this order.
[[nodiscard]] std::span<const LintRule> lintRules() noexcept;

/// Returns the message of a rule with the finding's texts inserted.
[[nodiscard]] std::string lintMessage(const LintRule& rule, const LintFinding& finding);

/// Tries every rule for this kind of subject and calls `found(rule, finding)` for each that is broken.
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
