#include "lint/rules.h"

#include "support/text.h"
#include "taskdsl/base/shell_words.h"
#include "taskdsl/task/resolved_task.h"

#include <algorithm>
#include <array>
#include <utility>

namespace morquill::lint {

using taskdsl::SourceSpan;
using taskdsl::TaskDirective;
using taskdsl::TaskInfo;
using taskdsl::TaskProgram;

namespace {

using Found = std::optional<LintFinding>;

bool holds(std::string_view text, std::string_view part) noexcept {
    return text.find(part) != std::string_view::npos;
}

// Lines.

struct Alias {
    std::string_view word;
    std::string_view canonical;
};

constexpr std::array<Alias, 8> fragmentKinds{{{"doc", "document"},
                                              {"taskbody", "task_body"},
                                              {"task", "task_body"},
                                              {"command", "process"},
                                              {"commands", "process"},
                                              {"cmd", "process"},
                                              {"body", "text"},
                                              {"extrainput", "text"}}};
constexpr std::array<Alias, 3> controlWords{
    {{"totgpu", "gpus"}, {"gputype", "gpu_type"}, {"gpumem", "gpu_mem"}}};
constexpr std::array<Alias, 3> processWords{{{"scripts", "run"}, {"mkdirp", "mkdir"}, {"mwfn", "multiwfn"}}};

SourceSpan partOfLine(const RawLine& line, std::size_t begin, std::size_t length) {
    return {line.path, taskdsl::toCoordinate(line.number), taskdsl::toCoordinate(begin + 1),
            taskdsl::toCoordinate(line.number), taskdsl::toCoordinate(begin + 1 + length)};
}

/// A finding when the word is an older name, placed at its first occurrence in the line.
template <std::size_t N>
Found findAlias(const RawLine& line, std::string_view word, const std::array<Alias, N>& aliases) {
    if (word.empty()) {
        return std::nullopt; // as on most lines
    }
    const auto alias = std::find_if(aliases.begin(), aliases.end(),
                                    [word](const Alias& row) { return equalsNoCase(row.word, word); });
    if (alias == aliases.end()) {
        return std::nullopt;
    }
    const auto at = line.text.find(word);
    return LintFinding{.span = partOfLine(line, at == std::string_view::npos ? 0 : at, word.size()),
                       .value = std::string(word),
                       .canonical = std::string(alias->canonical)};
}

std::string_view firstWord(std::string_view text) noexcept {
    const auto begin = std::find_if_not(text.begin(), text.end(), isSpace);
    return {begin, std::find_if(begin, text.end(), isSpace)};
}

Found hashInclude(const RawLine& line) {
    constexpr std::string_view keyword = "#include";
    const auto begin = line.text.size() - trimLeft(line.text).size();
    if (!line.text.substr(begin).starts_with('#') ||
        !equalsNoCase(line.text.substr(begin, keyword.size()), keyword)) {
        return std::nullopt;
    }
    return LintFinding{.span = partOfLine(line, begin, keyword.size())};
}

Found fragmentKindAlias(const RawLine& line) {
    constexpr std::string_view keyword = "@fragment";
    if (!equalsNoCase(line.statement.substr(0, keyword.size()), keyword)) {
        return std::nullopt;
    }
    const auto rest = line.statement.substr(keyword.size());
    if (rest.empty() || !isSpace(rest.front())) {
        return std::nullopt;
    }
    const auto words = taskdsl::splitShellWords(rest);
    if (words.empty()) {
        return std::nullopt;
    }
    const std::string_view last = words.back();
    return findAlias(line, last.substr(0, last.find(':')), fragmentKinds);
}

Found controlAlias(const RawLine& line) {
    return findAlias(line, firstWord(line.controlText), controlWords);
}

Found processAlias(const RawLine& line) {
    return findAlias(line, firstWord(line.processText), processWords);
}

// Files.

Found parseError(const ParseFault& fault) {
    const bool placed = isValidSpan(fault.span) && !fault.messageNamesPlace;
    return LintFinding{.span = fault.span,
                       .value = std::string(fault.message),
                       .file = placed ? fault.span.path.str() : std::string(),
                       .messageNamesPlace = fault.messageNamesPlace};
}

Found unknownVersion(const LintedFile& file) {
    if (file.version.empty() || file.version == "1" || file.version == "2") {
        return std::nullopt;
    }
    return LintFinding{.value = std::string(file.version)};
}

// Tasks.

bool hasDirective(const LintedTask& linted, std::string_view name) {
    return firstDirective(linted.task, name) != nullptr;
}

/// A finding at the task's header.
Found atHeader(bool broken, const LintedTask& linted, std::string_view value = {}) {
    return broken ? Found(LintFinding{.span = linted.task.headerSpan, .value = std::string(value)})
                  : std::nullopt;
}

/// A finding at the task's first directive of that name; at its header when it has none.
Found atDirective(std::string_view name, bool broken, const LintedTask& linted, std::string_view value = {}) {
    if (!broken) {
        return std::nullopt;
    }
    const TaskDirective* directive = firstDirective(linted.task, name);
    return LintFinding{.span = directive == nullptr ? linted.task.headerSpan : directive->span,
                       .value = std::string(value)};
}

bool isKnown(const LintedTask& linted, std::string_view name) {
    return linted.file.knownTasks.count(name) != 0;
}

constexpr std::string_view guessMark = " guess";
constexpr std::string_view falseTask = "false";

Found duplicateTask(const LintedTask& linted) {
    return atHeader(linted.nameSeen, linted, linted.task.name);
}

Found multiSource(const LintedTask& linted) {
    return atDirective("source", linted.file.version == "1" && holds(linted.source, ","), linted);
}

Found guessSuffix(const LintedTask& linted) {
    return atDirective("source", linted.source.ends_with(guessMark) || linted.source.ends_with(" gues"),
                       linted);
}

Found guessInSource(const LintedTask& linted) {
    return atDirective("source", holds(linted.source, guessMark), linted);
}

Found guessInSourceOfFalse(const LintedTask& linted) {
    return atDirective("control", holds(linted.source, guessMark) && linted.task.guessSourceTask == falseTask,
                       linted);
}

Found guessInSourceUnderControl(const LintedTask& linted) {
    return atDirective("control", holds(linted.source, guessMark) && linted.task.controlDeclared, linted);
}

Found otherKeywords(const LintedTask& linted) {
    const TaskInfo& task = linted.task;
    return atDirective("keywords", task.program == TaskProgram::other && !task.keywords.empty(), linted);
}

Found runnerInKeywords(const LintedTask& linted) {
    const TaskInfo& task = linted.task;
    return atDirective("keywords",
                       task.program == TaskProgram::script && task.runner.empty() && !task.keywords.empty(),
                       linted);
}

Found guessFalse(const LintedTask& linted) {
    return atDirective("control", linted.task.guessEnabled && linted.task.guessSourceTask == falseTask,
                       linted);
}

Found guessTwice(const LintedTask& linted) {
    const TaskInfo& task = linted.task;
    return atDirective("control",
                       task.guessEnabled && !task.guessSourceTask.empty() &&
                           task.guessSourceTask != falseTask && holds(linted.source, guessMark),
                       linted);
}

Found xtbKeywords(const LintedTask& linted) {
    return atDirective("keywords",
                       linted.task.program == TaskProgram::xtb && hasDirective(linted, "keywords") &&
                           !hasDirective(linted, "args"),
                       linted);
}

Found implicitXtb(const LintedTask& linted) {
    return atDirective("args",
                       linted.task.program == TaskProgram::xtb && hasDirective(linted, "args") &&
                           !hasDirective(linted, "program"),
                       linted);
}

Found argsOfOthers(const LintedTask& linted) {
    return atDirective("args", linted.task.program != TaskProgram::xtb && hasDirective(linted, "args"),
                       linted);
}

/// True when there is a comma between a `{` and the next `}`. Further braces that open before that `}` need
/// no look of their own, as any comma in them is in the first one, too.
bool hasBraceList(std::string_view text) noexcept {
    for (auto open = text.find('{'); open != std::string_view::npos;) {
        const auto close = text.find('}', open);
        if (close == std::string_view::npos) {
            return false;
        }
        if (holds(text.substr(open, close - open), ",")) {
            return true;
        }
        open = text.find('{', close);
    }
    return false;
}

Found keywordBraces(const LintedTask& linted) {
    const TaskProgram program = linted.task.program;
    if (program != TaskProgram::gaussian && program != TaskProgram::orca) {
        return std::nullopt;
    }
    const TaskDirective* keywords = firstDirective(linted.task, "keywords");
    return atDirective("keywords", keywords != nullptr && hasBraceList(keywords->value), linted);
}

/// True when the task says what its program is to compute.
bool hasPayload(const TaskInfo& task) {
    switch (task.program) {
    case TaskProgram::xtb:
        return !task.args.empty() || !task.extraKeywords.empty() || !task.modEntries.empty();
    case TaskProgram::mrcc:
    case TaskProgram::maple:
    case TaskProgram::amesp:
    case TaskProgram::bdf:
    case TaskProgram::mopac:
    case TaskProgram::fcclasses:
        return !task.keywords.empty() || !task.extraKeywords.empty();
    case TaskProgram::gaussian:
    case TaskProgram::orca:
    case TaskProgram::gamess:
        return !task.keywords.empty();
    case TaskProgram::other:
    case TaskProgram::script:
        break;
    }
    return true; // `other` and `script` have rules of their own
}

Found missingKeywords(const LintedTask& linted) {
    return atHeader(!linted.task.externalInput && !hasPayload(linted.task), linted);
}

Found missingTemplate(const LintedTask& linted) {
    const TaskInfo& task = linted.task;
    return atHeader(task.program == TaskProgram::other && taskdsl::resolvedTemplateName(task).empty(),
                    linted);
}

Found missingRunner(const LintedTask& linted) {
    const TaskInfo& task = linted.task;
    return atHeader(task.program == TaskProgram::script && taskdsl::resolvedRunner(task).empty(), linted);
}

Found missingBody(const LintedTask& linted) {
    return atHeader(linted.task.program == TaskProgram::script && linted.task.body.empty(), linted);
}

Found missingSource(const LintedTask& linted) {
    const std::string_view source = upstreamTask(linted.task);
    const bool namesTask =
        !source.empty() && source != "origin" && source != "restart" && !source.starts_with("xyz=");
    return atDirective("source", namesTask && !isKnown(linted, source), linted, source);
}

Found missingGuess(const LintedTask& linted) {
    const std::string_view guess = linted.task.guessSourceTask;
    return atDirective("control", !guess.empty() && !isKnown(linted, guess), linted, guess);
}

// Conditions.

Found at(const SourceSpan& span, bool broken, std::string_view value = {}) {
    return broken ? Found(LintFinding{.span = span, .value = std::string(value)}) : std::nullopt;
}

Found missingCompleted(const CompletedTarget& target) {
    return at(target.span, !target.matched, target.text);
}

Found bareProperty(const PlaceholderTarget& target) {
    return at(target.span, isBareProperty(target.text), target.text);
}

Found missingPlaceholder(const PlaceholderTarget& target) {
    return at(target.span, !isBareProperty(target.text) && !target.known, target.text);
}

Found bareEnergyOfMany(const LintedCondition& condition) {
    return at(condition.span, condition.referencedTasks > 1 && condition.file.holdsBareEnergy);
}

Found deadlock(const AllOthersUses& uses) {
    if (uses.size() < 2) {
        return std::nullopt;
    }
    std::string names;
    for (const auto& use : uses) {
        names += names.empty() ? "" : ", ";
        names += use.task;
    }
    return LintFinding{.span = uses.front().span, .value = std::move(names)};
}

constexpr auto W = LintSeverity::warning;
constexpr auto E = LintSeverity::error;

// clang-format off
constexpr LintRule rules[] = {
    // the lines as written
    {"legacy-hash-include", W, "#INCLUDE is legacy; use &INCLUDE", hashInclude},
    {"legacy-fragment-kind-alias", W, "fragment kind alias '<value>' is legacy; use '<canonical>'", fragmentKindAlias},
    {"legacy-control-gpu-alias", W, "%control <value> is legacy; use <canonical>", controlAlias},
    {"legacy-process-alias", W, "process command alias '<value>' is legacy; use '<canonical>'", processAlias},
    // the file
    {"parse-error", E, "<value>", parseError},
    {"unknown-dsl-version", W, "unexpected dsl_version '<value>'", unknownVersion},
    // each task
    {"duplicate-task", E, "duplicate task block: <value>", duplicateTask},
    {"legacy-multi-source", W, "deprecated multi-source syntax should be migrated for DSL2", multiSource},
    {"legacy-source-guess", W, "deprecated '%source ... guess' syntax should move into %control", guessSuffix},
    {"legacy-source-guess", W, "move source guess syntax to %control guess", guessInSource},
    {"guess-false-is-task", W, "control guess false is parsed as task name under current DSL", guessInSourceOfFalse},
    {"ignored-guess", W, "explicit %control guess overrides legacy source guess suffix", guessInSourceUnderControl},
    {"legacy-other-keywords", W, "other task template parameters should be written with %template/%param", otherKeywords},
    {"legacy-script-runner", W, "script task runner should be written with %runner", runnerInKeywords},
    {"guess-false-is-task", W, "'guess false' is parsed as a task name; use 'guess true' or a real task name", guessFalse},
    {"ignored-guess", W, "legacy source-guess marker and explicit control guess are both present; source marker is ignored", guessTwice},
    {"legacy-xtb-keywords", W, "%program xtb with %keywords is legacy; use %args", xtbKeywords},
    {"legacy-implicit-xtb-args", W, "implicit XTB from %args is legacy; add %program xtb", implicitXtb},
    {"ignored-non-xtb-args", W, "%args is only canonical for XTB tasks", argsOfOthers},
    {"legacy-keyword-brace-expansion", W, "Gaussian/ORCA keyword brace expansion is legacy; use matrix:", keywordBraces},
    {"missing-keywords", E, "keywords are not set", missingKeywords},
    {"missing-template", E, "template is not set for other task", missingTemplate},
    {"missing-script-runner", E, "runner is not set for script task", missingRunner},
    {"missing-script-body", E, "body is not set for script task", missingBody},
    {"missing-source-task", E, "source task does not exist: <value>", missingSource},
    {"missing-guess-task", E, "guess source task does not exist: <value>", missingGuess},
    // its conditions
    {"missing-completed-target", E, "completed target does not exist: <value>", missingCompleted},
    {"ambiguous-placeholder", W, "placeholder '{{ <value> }}' should be qualified with a task name", bareProperty},
    {"missing-placeholder-task", E, "placeholder task does not exist: <value>", missingPlaceholder},
    {"ambiguous-placeholder", W, "unqualified placeholder '{{ energy }}' is ambiguous in multi-task conditions", bareEnergyOfMany},
    // all tasks together
    {"allothers-deadlock", W, "multiple tasks use 'completed allothers'; potential deadlock: <value>", deadlock},
};
// clang-format on

} // namespace

bool isBareProperty(std::string_view target) noexcept {
    return target == "energy" || target == "status" || target == "value";
}

std::span<const LintRule> lintRules() noexcept {
    return rules;
}

std::string lintMessage(const LintRule& rule, const LintFinding& finding) {
    constexpr std::string_view valueMark = "<value>";
    constexpr std::string_view canonicalMark = "<canonical>";
    std::string message;
    auto rest = rule.message;
    for (auto mark = rest.find('<'); mark != std::string_view::npos; mark = rest.find('<')) {
        message += rest.substr(0, mark);
        const bool isValue = rest.substr(mark).starts_with(valueMark);
        message += isValue ? finding.value : finding.canonical;
        rest.remove_prefix(mark + (isValue ? valueMark : canonicalMark).size());
    }
    message += rest;
    return message;
}

} // namespace morquill::lint
