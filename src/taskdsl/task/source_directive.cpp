// %source: one inline source, or a block of named bindings.

#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/source_spec.h"

#include "support/text.h"

#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

/// Makes a condition of every name behind the first, unless the task has it already.
void addCompletedConditions(DirectiveReader& reader, const std::vector<std::string>& names) {
    TaskInfo& task = reader.task;
    std::unordered_set<std::string> known(task.whenConditions.begin(), task.whenConditions.end());
    for (auto name = names.begin() + 1; name != names.end(); ++name) {
        std::string condition = "completed " + *name;
        if (known.insert(condition).second) {
            task.whenEntries.push_back({condition, reader.conditionSpan()});
            task.whenConditions.push_back(std::move(condition));
        }
    }
}

/// Takes a last word `guess` off the value; the spelling `gues` is accepted as such.
void takeGuessWord(DirectiveReader& reader, std::string& value) {
    std::vector<std::string> words = splitTrimmed(value, ' ');
    if (words.empty() || (words.back() != "guess" && words.back() != "gues")) {
        return;
    }
    words.pop_back();
    value = join(words, " ");
    reader.task.guessEnabled = true;
    reader.warn(
        "uses deprecated '%source ... guess' syntax; move guess into '%control' as 'guess true' or 'guess "
        "<task>'.");
}

void readInlineSource(DirectiveReader& reader) {
    TaskInfo& task = reader.task;
    std::string value(reader.value);
    if (const auto decoded = decodeCanonicalScalar(value)) {
        value = trim(*decoded);
    }
    task.guessEnabled = false;
    task.guessSourceTask.clear();
    takeGuessWord(reader, value);
    task.sourceBindings.clear();
    task.sourceTasks.clear();
    task.source = value;
    if (value.empty() || value == "origin" || value == "restart" || value.starts_with("xyz=")) {
        // A faulty frame is told while the file is read, not by whoever looks at the source first.
        (void)parseInlineSource(value);
        return;
    }
    std::vector<std::string> names = splitTrimmed(value, ',');
    if (names.empty()) {
        task.source.clear();
        return;
    }
    task.source = names.front();
    if (names.size() > 1) {
        if (!reader.legacyMultiSource) {
            reader.failHere(
                "uses removed multi-dependency '%source a,b,...' syntax; keep the first task in %source "
                "and move the rest into '%when completed ...'");
        }
        reader.warn("uses deprecated multi-dependency '%source a,b,...' syntax; use the first upstream as "
                    "'%source' and express extra dependencies with '%when' completed <task> conditions.");
        addCompletedConditions(reader, names);
    }
    task.sourceTasks = std::move(names);
}

void readStructuredSource(DirectiveReader& reader) {
    const SourceSpan place = reader.headerSpan();
    std::vector<SourceEntryLine> lines;
    while (const auto line = reader.nextFilledLine()) {
        lines.push_back({std::string(*line), reader.span()});
    }
    applySource(reader.task, SourceStructured{parseSourceBlock(lines, reader.task.name, place)}, false);
}

} // namespace

void readSourceDirective(DirectiveReader& reader) {
    if (reader.value.empty()) {
        readStructuredSource(reader);
    } else {
        readInlineSource(reader);
    }
}

} // namespace morquill::taskdsl
