#include "views/read_back.h"

#include "support/byte_set.h"
#include "support/text.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/line_kind.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/parser/task_parser.h"
#include "taskdsl/task/mod_operation.h"
#include "taskdsl/task/resolved_task.h"
#include "taskdsl/task/source_spec.h"
#include "taskdsl/task/task_substitution.h"
#include "views/dropped_fields.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace morquill::views {

using taskdsl::DiagnosticError;
using taskdsl::Placeholders;
using taskdsl::TaskDocument;
using taskdsl::TaskInfo;
using taskdsl::ValueMap;

namespace {

using Texts = std::vector<std::string>;

/// A text as messages show it.
std::string shown(std::string_view text) {
    return singleQuoted(oneLine(text));
}

// What passes without being read. A test may refuse a text that would read back, but never the reverse.

/// True for a word that every reader of this language takes
/// literally: no white space, quote, `#` or backslash.
bool isPlainWord(std::string_view text) noexcept {
    constexpr static ByteSet unusual(
        [](char c) { return (c >= '\0' && c <= ' ') || c == '"' || c == '\'' || c == '#' || c == '\\'; });
    return !text.empty() && !unusual.meets(text);
}

/// True for a line of a block that neither ends the block nor loses anything to trimming or a comment.
bool isPlainLine(std::string_view text) noexcept {
    constexpr std::string_view marks = "%$&@";
    constexpr static ByteSet endsOrComments(std::string_view("#\n"));
    return !text.empty() && !isTrimmed(text.front()) && !isTrimmed(text.back()) &&
           marks.find(text.front()) == std::string_view::npos && !endsOrComments.meets(text);
}

bool isPlainCommand(std::string_view text) noexcept {
    return isPlainLine(text) && text.back() != '\\';
}

/// True for a heredoc without a line that ends it or looks like a loop or a block.
bool isPlainHeredoc(std::string_view text) noexcept {
    if (text.find(taskdsl::heredocEnd) != std::string_view::npos) {
        return false;
    }
    for (auto at = text.find('@'); at != std::string_view::npos; at = text.find('@', at + 1)) {
        auto begin = at;
        while (begin > 0 && isTrimmed(text[begin - 1]) && text[begin - 1] != '\n') {
            --begin;
        }
        if (begin == 0 || text[begin - 1] == '\n') {
            return false;
        }
    }
    return true;
}

bool isPlainBinding(const taskdsl::SourceBinding& binding) noexcept {
    const bool isNamed = binding.sourceKind == taskdsl::BindingSource::task ||
                         binding.sourceKind == taskdsl::BindingSource::xyz;
    return isPlainWord(binding.key) && (!isNamed || isPlainWord(binding.sourceValue)) &&
           std::all_of(binding.selectors.begin(), binding.selectors.end(),
                       [](const auto& selector) { return isPlainWord(selector.second); });
}

/// The words that a source reads as more than the name of a task.
bool isSourceWord(std::string_view text) noexcept {
    return text == "origin" || text == "restart" || text == "guess" || text == "gues" ||
           text.starts_with("xyz=") || text.find(',') != std::string_view::npos;
}

bool hasPlainSource(const TaskInfo& task) noexcept {
    if (taskdsl::hasStructuredSource(task)) {
        const auto& bindings = sourceBindings(task);
        return std::all_of(bindings.begin(), bindings.end(), isPlainBinding);
    }
    if (const auto& names = sourceTasks(task); !names.empty()) {
        return names.size() == 1 && isPlainWord(names.front()) && !isSourceWord(names.front());
    }
    const auto* xyz = std::get_if<taskdsl::SourceXyz>(&task.source);
    return xyz == nullptr ? hasSimpleSource(task) : isPlainWord(xyz->file) && xyz->furtherWords.empty();
}

bool hasPlainBatch(const TaskInfo& task) noexcept {
    return !task.batchCluster->present &&
           std::all_of(task.batchCollect.begin(), task.batchCollect.end(), [](const auto& entry) {
               return isPlainWord(entry.pattern) &&
                      (entry.destination.empty() || isPlainWord(entry.destination));
           });
}

bool hasPlainControl(const TaskInfo& task) noexcept {
    const auto plainOrEmpty = [](std::string_view text) { return text.empty() || isPlainWord(text); };
    return plainOrEmpty(task.gpuType) && plainOrEmpty(task.guessSourceTask) &&
           !equalsNoCase(task.guessSourceTask, "true") && plainOrEmpty(task.guessConverter) &&
           plainOrEmpty(task.finalGeom);
}

/// True for a `%mod` line `<name> <words>` without an operation. Any other line has to be read.
bool isPlainMod(const taskdsl::ModEntry& entry) {
    const auto words = splitBlank(entry.value);
    return isPlainLine(entry.key) && isPlainWord(entry.key) && !words.empty() &&
           entry.key.find(':') == std::string::npos && std::all_of(words.begin(), words.end(), isPlainWord) &&
           !taskdsl::isModOperation(words.front());
}

bool hasPlainMods(const TaskInfo& task) {
    return std::all_of(task.modEntries.begin(), task.modEntries.end(), isPlainMod);
}

bool hasPlainKeywords(const TaskInfo& task) noexcept {
    const std::string_view text = task.keywords;
    if (text.empty()) {
        return true;
    }
    // A pair of quotes around the whole value would be removed.
    const bool isUnquoted =
        text.front() != '"' && text.front() != '\'' && !isTrimmed(text.front()) && !isTrimmed(text.back());
    return isUnquoted && (!taskdsl::lineEnds.meets(text) || isPlainHeredoc(text));
}

bool hasPlainPayload(const TaskInfo& task) {
    switch (task.program) {
    case taskdsl::TaskProgram::xtb:
        return isPlainHeredoc(task.extraKeywords);
    case taskdsl::TaskProgram::other:
        return task.keywords.empty() && (task.paramValues.empty() || isPlainLine(task.paramValues));
    case taskdsl::TaskProgram::script:
        return isPlainHeredoc(task.body);
    default:
        return hasPlainKeywords(task) && isPlainHeredoc(task.extraKeywords) && isPlainHeredoc(task.orcaBlock);
    }
}

bool isPlainTask(const TaskInfo& task) {
    return isPlainWord(task.name) && hasPlainSource(task) && hasPlainBatch(task) && hasPlainControl(task) &&
           std::all_of(task.whenEntries.begin(), task.whenEntries.end(),
                       [](const auto& condition) { return isPlainLine(condition.text); }) &&
           hasPlainPayload(task) &&
           std::all_of(task.preProcessCommands.begin(), task.preProcessCommands.end(), isPlainCommand) &&
           std::all_of(task.processCommands.begin(), task.processCommands.end(), isPlainCommand) &&
           hasPlainMods(task) && (task.strucId.empty() || isPlainWord(task.strucId));
}

// What a task that was read has in common with the one that was printed.

/// The key and the words of every `%mod` operation; it does not matter which blanks and tabs separate words.
std::vector<Texts> modsOf(const TaskInfo& task) {
    std::vector<Texts> operations;
    for (const auto& entry : task.modEntries) {
        const auto operation = taskdsl::normalizeMod(entry.key, entry.value, Placeholders::allowed);
        const std::string value = taskdsl::formatModValue(operation);
        const auto words = splitBlank(value);
        Texts& key = operations.emplace_back(Texts{taskdsl::formatModKey(operation)});
        key.insert(key.end(), words.begin(), words.end());
    }
    return operations;
}

bool sameBatch(const TaskInfo& a, const TaskInfo& b) {
    return a.batchLanes == b.batchLanes && a.batchCollect == b.batchCollect &&
           a.batchCluster == b.batchCluster;
}

bool sameFlags(const TaskInfo& a, const TaskInfo& b) {
    return std::max(a.totalCores, 0) == b.totalCores && std::max(a.totalMemory, 0) == b.totalMemory &&
           a.gpuCount == b.gpuCount && a.gpuMemory == b.gpuMemory && a.waitFreq == b.waitFreq &&
           a.localFirst == b.localFirst && a.externalInput == b.externalInput && a.verbosity == b.verbosity;
}

bool sameGuess(const TaskInfo& a, const TaskInfo& b) {
    return a.guessEnabled == b.guessEnabled && a.guessSourceTask == b.guessSourceTask &&
           a.guessConverter == b.guessConverter;
}

bool sameParams(const TaskInfo& a, const TaskInfo& b) {
    return trim(taskdsl::resolvedParams(a).view()) == trim(b.paramValues.view());
}

/// A part of a task: its name in messages, when it is printed, and
/// whether the part that was read equals the one that was printed.
struct PartRow {
    std::string_view what;
    Payload payload; ///< the payload that it is; `none` for what every task prints
    bool (*same)(const TaskInfo& printed, const TaskInfo& read);
};

constexpr std::array<PartRow, 18> parts{{
    {"%source", Payload::none, [](const TaskInfo& a, const TaskInfo& b) { return a.source == b.source; }},
    {"%program", Payload::none, [](const TaskInfo& a, const TaskInfo& b) { return a.program == b.program; }},
    {"%batch", Payload::none, sameBatch},
    {"%control gpu_type", Payload::none,
     [](const TaskInfo& a, const TaskInfo& b) { return a.gpuType == b.gpuType; }},
    {"%control guess", Payload::none, sameGuess},
    {"%control finalgeom", Payload::none,
     [](const TaskInfo& a, const TaskInfo& b) { return a.finalGeom == b.finalGeom; }},
    {"%control", Payload::none, sameFlags},
    {"%when", Payload::none,
     [](const TaskInfo& a, const TaskInfo& b) { return whenConditions(a) == whenConditions(b); }},
    {"%keywords", Payload::keywords,
     [](const TaskInfo& a, const TaskInfo& b) { return a.keywords == b.keywords; }},
    {"%args", Payload::args, [](const TaskInfo& a, const TaskInfo& b) { return a.args == b.args; }},
    {"%extrainput", Payload::extraInput,
     [](const TaskInfo& a, const TaskInfo& b) { return taskdsl::resolvedExtraInput(a) == b.extraKeywords; }},
    {"%template", Payload::templateName,
     [](const TaskInfo& a, const TaskInfo& b) { return taskdsl::resolvedTemplateName(a) == b.templateName; }},
    {"%param", Payload::params, sameParams},
    {"%runner", Payload::runner,
     [](const TaskInfo& a, const TaskInfo& b) { return taskdsl::resolvedRunner(a) == b.runner; }},
    {"%body", Payload::body, [](const TaskInfo& a, const TaskInfo& b) { return a.body == b.body; }},
    {"%preprocess", Payload::none,
     [](const TaskInfo& a, const TaskInfo& b) { return a.preProcessCommands == b.preProcessCommands; }},
    {"%process", Payload::none,
     [](const TaskInfo& a, const TaskInfo& b) { return a.processCommands == b.processCommands; }},
    {"%mod", Payload::none, [](const TaskInfo& a, const TaskInfo& b) { return modsOf(a) == modsOf(b); }},
}};

Texts changedParts(const TaskInfo& printed, const TaskInfo& read) {
    Texts reasons;
    if (read.name != printed.name) {
        reasons.push_back("the name reads back as " + shown(read.name));
    }
    for (const auto& part : parts) {
        if (printsPayload(printed.program, part.payload) && !part.same(printed, read)) {
            reasons.push_back(std::string(part.what) + " reads back as something else");
        }
    }
    if (read.strucId != printed.strucId) {
        reasons.push_back("%meta strucid reads back as " + shown(read.strucId));
    }
    return reasons;
}

/// A long text of a task and its name in messages.
struct LongText {
    std::string_view what;
    Payload payload;
    SharedText TaskInfo::*text;
};

constexpr std::array<LongText, 3> longTexts{{{"%keywords", Payload::keywords, &TaskInfo::keywords},
                                             {"%extrainput", Payload::extraInput, &TaskInfo::extraKeywords},
                                             {"%body", Payload::body, &TaskInfo::body}}};

bool endsHeredoc(std::string_view line) noexcept {
    return trim(line) == taskdsl::heredocEnd;
}

/// True for a line that the loop pass, which does not know heredocs, takes for one of its own.
bool beginsLoopOrBlock(std::string_view line) {
    const auto kind = taskdsl::kindOfCleanLine(taskdsl::cleanLine(line));
    return opensBlock(kind) || kind == taskdsl::LineKind::end || kind == taskdsl::LineKind::loop;
}

/// The text of a row where the task prints it as a heredoc; empty otherwise.
std::string heredocOf(const TaskInfo& task, const LongText& row) {
    if (!printsPayload(task.program, row.payload)) {
        return {};
    }
    const SharedText text =
        row.payload == Payload::extraInput ? taskdsl::resolvedExtraInput(task) : task.*row.text;
    const bool isHeredoc = row.payload != Payload::keywords || taskdsl::lineEnds.meets(text);
    return isHeredoc ? text.str() : std::string();
}

/// Describes the first line of the row's heredoc for which `test` holds.
std::optional<std::string> findHeredocLine(const TaskInfo& task, const LongText& row,
                                           bool (*test)(std::string_view)) {
    const std::string text = heredocOf(task, row);
    for (const auto line : splitLines(text)) {
        if (test(line)) {
            return std::string(row.what) + " holds a line " + shown(trim(line));
        }
    }
    return std::nullopt;
}

/// Removes the texts that end their own heredoc from the task and from its printed block, so that the rest
/// can be read; returns what is wrong with them.
Texts takeOutEndedTexts(TaskInfo& task, std::string& block) {
    const std::string end(taskdsl::heredocEnd);
    Texts reasons;
    for (const auto& row : longTexts) {
        auto ended = findHeredocLine(task, row, endsHeredoc);
        if (!ended) {
            continue;
        }
        reasons.push_back(*std::move(ended));
        auto heredoc = std::string("  ").append(row.what).append(" << ").append(end).append("\n");
        heredoc.append(heredocOf(task, row)).append("\n").append(end).append("\n");
        if (const auto at = block.find(heredoc); at != std::string::npos) {
            block.erase(at, heredoc.size());
        }
        (task.*row.text).clear();
        if (row.payload == Payload::extraInput) {
            task.orcaBlock.clear();
        }
    }
    return reasons;
}

/// Reads a printed task back and returns what is lost.
Texts readBackFaults(TaskInfo task, std::string_view printed) {
    std::string block(printed);
    Texts reasons = takeOutEndedTexts(task, block);
    const auto add = [&reasons](std::string reason) { reasons.push_back(std::move(reason)); };
    try {
        const TaskDocument read = taskdsl::TaskParser().parseDeclaredTasks(block);
        if (read.tasks.size() == 1 && read.plots.empty() && read.derives.empty()) {
            std::ranges::for_each(changedParts(task, read.tasks.front()), add);
        } else {
            add("its block reads back as something else");
        }
    } catch (const DiagnosticError& fault) {
        const auto* row =
            std::find_if(longTexts.begin(), longTexts.end(), [&task](const LongText& candidate) {
                return findHeredocLine(task, candidate, beginsLoopOrBlock).has_value();
            });
        add(row != longTexts.end() ? *findHeredocLine(task, *row, beginsLoopOrBlock)
                                   : "what is printed is refused: " + oneLine(fault.message()));
    }
    return reasons;
}

std::optional<std::string> firstDefinedKey(std::string_view text, const ValueMap& values) {
    if (values.empty() || text.find('[') == std::string_view::npos) {
        return std::nullopt;
    }
    for (auto& key : taskdsl::bracketKeys(text)) {
        if (values.contains(key)) {
            return std::move(key);
        }
    }
    return std::nullopt;
}

std::string replacedKey(std::string_view what, const std::string& key) {
    return std::string(what) + " holds '[" + key + "]', which is a define";
}

/// The defines that are inserted into task names when the text is read; an axis of the same name wins.
ValueMap nameValues(const ReadBackContext& context) {
    ValueMap values = context.document.defines;
    if (context.view == CanonicalView::sourceView) {
        for (const auto& axis : context.document.matrixAxes) {
            values.erase(axis.key);
        }
    }
    return values;
}

/// True when the defines would change an expanded task again.
bool isChangedByDefines(const TaskInfo& task, const ValueMap& defines) {
    TaskInfo again = task;
    try {
        substituteTask(again, defines);
    } catch (const DiagnosticError&) {
        return true;
    }
    return !changedParts(task, again).empty();
}

/// Expanded tasks are printed with the defines that they were made with, so a `[key]` that came from a value
/// would be replaced as well. In declared tasks, that concerns the name only.
void addReplacedKeys(const ReadBackContext& context, const TaskInfo& task, std::string_view printed,
                     Texts& reasons) {
    const ValueMap& defines = context.document.defines;
    if (!firstDefinedKey(printed, defines)) {
        return;
    }
    const ValueMap values = nameValues(context);
    if (const auto key = firstDefinedKey(task.name, values);
        key && taskdsl::substituteBrackets(task.name, values) != task.name) {
        reasons.push_back(replacedKey("the name", *key));
    } else if (context.view == CanonicalView::matrixExpandedView && isChangedByDefines(task, defines)) {
        reasons.push_back(replacedKey("its text", *firstDefinedKey(printed, defines)));
    }
}

} // namespace

void reportLostOfTask(const ReadBackContext& context, const TaskInfo& task, std::string_view printed) {
    Texts reasons;
    if (const Texts dropped = droppedFields(task); !dropped.empty()) {
        reasons.push_back("it is written without " + join(dropped, ", "));
    }
    if (!isPlainTask(task)) {
        Texts faults = readBackFaults(task, printed);
        std::move(faults.begin(), faults.end(), std::back_inserter(reasons));
    }
    addReplacedKeys(context, task, printed, reasons);
    if (!reasons.empty()) {
        context.warnings("task " + shown(task.name) + " does not read back: " + join(reasons, "; "));
    }
}

void reportReplacedKey(const ReadBackContext& context, std::string_view what, std::string_view name,
                       std::string_view printed) {
    const ValueMap& defines = context.document.defines;
    const auto key = firstDefinedKey(printed, defines);
    if (key && taskdsl::substituteBrackets(printed, defines) != printed) {
        context.warnings(std::string(what) + " " + shown(name) +
                         " does not read back: " + replacedKey("it", *key));
    }
}

} // namespace morquill::views
