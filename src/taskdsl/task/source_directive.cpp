// %source: one inline source, or a block of named bindings.

#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/source_spec.h"

#include "support/text.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

/// Makes every name after the first a condition, unless the task has it already.
void addCompletedConditions(DirectiveReader& reader, const std::vector<std::string>& names) {
    TaskInfo& task = reader.task;
    std::unordered_set<std::string> known;
    for (const auto& entry : task.whenEntries) {
        known.insert(entry.text);
    }
    for (auto name = names.begin() + 1; name != names.end(); ++name) {
        std::string condition = "completed " + *name;
        if (known.insert(condition).second) {
            task.whenEntries.edit().push_back({std::move(condition), reader.conditionSpan()});
        }
    }
}

/// The value without a last word `guess`, which is taken in; the spelling `gues` is accepted as such.
std::string takeGuessWord(DirectiveReader& reader, std::string value) {
    if (!trim(value).ends_with("guess") && !trim(value).ends_with("gues")) {
        return value;
    }
    std::vector<std::string> words = splitTrimmed(value, ' ');
    if (words.empty() || (words.back() != "guess" && words.back() != "gues")) {
        return value;
    }
    words.pop_back();
    reader.task.guessEnabled = true;
    reader.warn(
        "uses deprecated '%source ... guess' syntax; move guess into '%control' as 'guess true' or 'guess "
        "<task>'.");
    return join(words, " ");
}

/// True for commas alone.
bool namesNothing(std::string_view value) noexcept {
    return std::all_of(value.begin(), value.end(), [](char c) { return c == ',' || isTrimmed(c); });
}

/// Several upstream tasks: an error, or conditions for those who tolerate the old form.
void takeFurtherTasks(DirectiveReader& reader, const std::vector<std::string>& names) {
    if (!reader.options.legacyMultiSource) {
        reader.failHere(
            "uses removed multi-dependency '%source a,b,...' syntax; keep the first task in %source "
            "and move the rest into '%when completed ...'");
    }
    reader.warn("uses deprecated multi-dependency '%source a,b,...' syntax; use the first upstream as "
                "'%source' and express extra dependencies with '%when' completed <task> conditions.");
    addCompletedConditions(reader, names);
}

void readInlineForm(DirectiveReader& reader) {
    TaskInfo& task = reader.task;
    std::string value(reader.value);
    if (const auto decoded = decodeCanonicalScalar(value)) {
        value = trim(*decoded);
    }
    task.guessEnabled = false;
    task.guessSourceTask.clear();
    value = takeGuessWord(reader, std::move(value));
    auto source = parseInlineSource(value);
    const auto* list = std::get_if<SourceTaskList>(&source);
    if (list != nullptr && namesNothing(value)) {
        source = SourceNone{}; // commas alone name nothing
    } else if (list != nullptr && list->names.size() > 1) {
        takeFurtherTasks(reader, list->names);
    }
    applySource(task, std::move(source));
}

void readBlockForm(DirectiveReader& reader) {
    const SourceSpan place = reader.headerSpan();
    std::vector<SourceEntryLine> lines;
    while (const auto line = reader.nextFilledLine()) {
        lines.push_back({std::string(*line), reader.span()});
    }
    applySource(reader.task, SourceStructured{parseSourceBlock(lines, reader.task.name, place)});
}

} // namespace

void readSourceDirective(DirectiveReader& reader) {
    if (reader.value.empty()) {
        readBlockForm(reader);
    } else {
        readInlineForm(reader);
    }
}

} // namespace morquill::taskdsl
