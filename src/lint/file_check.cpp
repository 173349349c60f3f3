#include "lint/file_check.h"

#include "console/library_file.h"
#include "lint/rules.h"
#include "lint/source_scan.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/text.h"
#include "taskdsl/parser/task_parser.h"
#include "taskdsl/task/when_expr.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include <fnmatch.h>

namespace morquill::lint {

using taskdsl::SourceSpan;
using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

namespace {

/// Adds to the report all that the rules find in a subject.
template <class Subject>
void check(const Subject& subject, LintFileReport& report) {
    applyRules(subject, [&report](const LintRule& rule, LintFinding finding) {
        std::string message = lintMessage(rule, finding);
        report.issues.push_back({rule.severity, finding.file.empty() ? report.path : std::move(finding.file),
                                 std::move(finding.span), rule.code, std::move(message),
                                 finding.messageNamesPlace});
    });
}

using TaskNames = std::set<std::string_view>;

/// The tasks that a target of `completed` means; at most two of those that match a pattern, as callers only
/// ask whether there are several.
TaskNames matchingTasks(const std::string& target, const TaskNames& known) {
    if (!hasWildcard(target)) {
        const auto name = known.find(target);
        return name == known.end() ? TaskNames{} : TaskNames{*name};
    }
    TaskNames matches;
    // Only names that share the pattern's plain beginning are compared.
    const auto prefix = std::string_view(target).substr(0, target.find_first_of("*?[\\"));
    for (auto name = known.lower_bound(prefix);
         name != known.end() && name->starts_with(prefix) && matches.size() < 2; ++name) {
        if (::fnmatch(target.c_str(), std::string(*name).c_str(), 0) == 0) {
            matches.insert(*name);
        }
    }
    return matches;
}

/// Checks one condition of a task.
void checkCondition(const LintedFile& file, const TaskInfo& task, const taskdsl::TaskWhenEntry& entry,
                    AllOthersUses& uses, LintFileReport& report) {
    const SourceSpan& span = entry.span;
    const auto condition = taskdsl::parseWhenExpr(entry.text);
    TaskNames referenced;
    for (const auto& target : taskdsl::collectCompletedTargets(condition)) {
        if (!equalsNoCase(target, "allothers")) {
            auto matches = matchingTasks(target, file.knownTasks);
            check(CompletedTarget{target, !matches.empty(), span}, report);
            referenced.merge(matches);
        }
    }
    if (taskdsl::hasAllOthers(condition)) {
        uses.push_back({task.name, span});
    }
    for (const auto& placeholder : taskdsl::collectPlaceholders(condition)) {
        const auto target = trim(std::string_view(placeholder).substr(0, placeholder.find('.')));
        const auto known = file.knownTasks.find(target);
        check(PlaceholderTarget{target, known != file.knownTasks.end(), span}, report);
        if (known != file.knownTasks.end() && !isBareProperty(target)) {
            referenced.insert(*known);
        }
    }
    check(LintedCondition{file, referenced.size(), span}, report);
}

/// The raw argument of the task's first `%source`.
std::string_view rawSource(const TaskInfo& task) {
    const auto* directive = firstDirective(task, "source");
    return directive == nullptr ? std::string_view() : std::string_view(directive->value);
}

void checkDocument(const TaskDocument& document, LintedFile& file, LintFileReport& report) {
    const auto& tasks = declaredTasks(document);
    for (const TaskInfo& task : tasks) {
        file.knownTasks.insert(task.name);
    }
    check(file, report);
    TaskNames seen;
    AllOthersUses uses;
    for (const TaskInfo& task : tasks) {
        check(LintedTask{file, task, !seen.insert(task.name).second, rawSource(task)}, report);
        for (const auto& condition : task.whenEntries) {
            checkCondition(file, task, condition, uses, report);
        }
    }
    check(uses, report);
}

/// The result of scanning the lines: issues for the report, and facts for later stages.
LintedFile scanLines(std::string_view text, LintFileReport& report) {
    const auto lines = splitLines(text);
    for (auto& pending : scanRawLines(lines, SharedText(report.path))) {
        report.issues.push_back({LintSeverity::warning, report.path, std::move(pending.span), pending.code,
                                 std::move(pending.message)});
    }
    return {rawDslVersion(lines), text.find("{{ energy }}") != std::string_view::npos, {}};
}

/// What a check of one file takes from its caller.
struct LintSetting {
    const taskdsl::WarningSink& warnings;
    const taskdsl::FileTest& isFile;
    const taskdsl::FileOverlay& overlay;
};

/// Checks a file by its text, or reports without one why it cannot be read.
LintedText lintSource(const std::optional<std::string_view>& text, const std::string& path,
                      const LintSetting& setting) {
    LintedText linted{{.path = path, .issues = {}, .parsed = false}, std::nullopt};
    LintFileReport& report = linted.report;
    try {
        LintedFile file = scanLines(skipByteOrderMark(text.value_or("")), report);
        // Only a file that declares the old version is read with its tolerance.
        const taskdsl::TaskParser parser({.legacyMultiSource = file.version == "1",
                                          .findLibraryFile = console::findLibraryFile,
                                          .warnings = setting.warnings,
                                          .isFile = setting.isFile,
                                          .overlay = setting.overlay});
        linted.document = text ? parser.parseText(*text, path) : parser.parseFile(path);
        report.parsed = true;
        checkDocument(*linted.document, file, report);
    } catch (const std::exception& fault) {
        addParseFault(fault, report);
    }
    return linted;
}

} // namespace

LintFileReport lintText(std::string_view text, const std::string& path,
                        const taskdsl::WarningSink& warnings) {
    return lintSource(text, path, {warnings, {}, {}}).report;
}

LintFileReport lintFile(const std::string& path, const taskdsl::WarningSink& warnings,
                        const taskdsl::FileTest& isFile) {
    return lintSource(readTextFile(path), path, {warnings, isFile, {}}).report;
}

LintedText lintAndKeep(std::string_view text, const std::string& path, const taskdsl::WarningSink& warnings,
                       const taskdsl::FileOverlay& overlay) {
    return lintSource(text, path, {warnings, {}, overlay});
}

void addParseFault(const std::exception& fault, LintFileReport& report) {
    if (const auto* placed = dynamic_cast<const taskdsl::DiagnosticError*>(&fault)) {
        check(ParseFault{placed->message(), placed->span(), placed->messageNamesPlace()}, report);
        return;
    }
    const std::string message = faultText(fault, report.path);
    check(ParseFault{message, {}}, report);
}

} // namespace morquill::lint
