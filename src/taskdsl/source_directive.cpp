// %source: one inline source, or a block of named bindings.

#include "taskdsl/directive_reader.h"
#include "taskdsl/scan.h"
#include "taskdsl/source_spec.h"

#include "support/text.h"

#include <algorithm>
#include <string>
#include <utility>

namespace morquill::taskdsl {

namespace {

void addCompletedCondition(DirectiveReader& reader, const std::string& name) {
    TaskInfo& task = reader.task;
    std::string condition = "completed " + name;
    if (std::find(task.whenConditions.begin(), task.whenConditions.end(), condition) != task.whenConditions.end()) {
        return;
    }
    task.whenEntries.push_back({condition, reader.headerSpan()});
    task.whenConditions.push_back(std::move(condition));
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
    reader.warn("uses deprecated '%source ... guess' syntax; move guess into '%control' as 'guess true' or 'guess "
                "<task>'.");
}

void readInlineSource(DirectiveReader& reader) {
    TaskInfo& task = reader.task;
    std::string value(reader.value);
    if (std::string decoded; decodeCanonicalScalar(value, decoded)) {
        value = trim(decoded);
    }
    task.guessEnabled = false;
    task.guessSourceTask.clear();
    takeGuessWord(reader, value);
    task.sourceBindings.clear();
    task.sourceTasks.clear();
    task.source = value;
    if (value.empty() || value == "origin" || value == "restart" || value.starts_with("xyz=")) {
        // The frame of an xyz source is checked here, where the task's name and place are known.
        (void)parseSourceText(value);
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
            reader.failHere("uses removed multi-dependency '%source a,b,...' syntax; keep the first task in %source "
                            "and move the rest into '%when completed ...'");
        }
        reader.warn("uses deprecated multi-dependency '%source a,b,...' syntax; use the first upstream as "
                    "'%source' and express extra dependencies with '%when' completed <task> conditions.");
        std::for_each(names.begin() + 1, names.end(),
                      [&reader](const std::string& name) { addCompletedCondition(reader, name); });
    }
    task.sourceTasks = std::move(names);
}

void readStructuredSource(DirectiveReader& reader) {
    std::vector<SourceBinding> bindings;
    while (const auto line = reader.nextFilledLine()) {
        try {
            bindings.push_back(parseSourceBinding(*line));
        } catch (const DiagnosticError& error) {
            reader.failHere("has invalid structured %source entry: " + error.message());
        }
    }
    const SourceSpan place = reader.headerSpan();
    const std::string who = "task '" + reader.task.name + "' ";
    if (bindings.empty()) {
        throw DiagnosticError(
            place, who + "has empty %source; provide an inline source or one or more structured bindings");
    }
    try {
        // Frames may still hold placeholders; they are checked after the last substitution.
        validateStructuredSource(bindings, false);
    } catch (const DiagnosticError& error) {
        throw DiagnosticError(place, who + "has invalid structured %source: " + error.message());
    }
    applySource(reader.task, SourceSpec(std::move(bindings)));
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
