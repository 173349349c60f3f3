// The directive table and the handlers of all directives but %control, %batch and %source.

#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/shell_words.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/mod_operation.h"

#include "support/text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace morquill::taskdsl {

namespace {

std::string missingTerminator(const DirectiveReader& reader, std::string_view keyword) {
    return "heredoc %" + std::string(keyword) + " block is missing terminator '" +
           reader.heredocTerminator() + "'.";
}

std::string emptyText(std::string_view keyword) {
    const std::string name(keyword);
    return "has empty %" + name +
           "; use inline content, an indented text/include block, or heredoc syntax: '%" + name + " << EOF'.";
}

/// The text of `%body` or `%extrainput` that is not inline: a heredoc, whose missing terminator is only
/// doubtful, or an indented block, which must have a line.
std::string readLongText(DirectiveReader& reader, std::string_view keyword) {
    if (reader.opensHeredoc()) {
        auto heredoc = reader.readHeredoc();
        if (!heredoc.isClosed) {
            reader.warn(missingTerminator(reader, keyword));
        }
        return std::move(heredoc.text);
    }
    auto text = reader.readTextBlock();
    if (!text) {
        reader.fail(emptyText(keyword));
    }
    return *std::move(text);
}

/// Appends a part, with `separator` in front unless it is the first; an empty part changes nothing.
void appendPart(std::string& text, char separator, std::string_view part) {
    if (!text.empty() && !part.empty()) {
        text += separator;
    }
    text += part;
}

/// The value and the filled lines of the block, with `separator` between them.
std::string readJoinedEntries(DirectiveReader& reader, char separator) {
    std::string text(reader.value);
    while (const auto line = reader.nextFilledLine()) {
        appendPart(text, separator, *line);
    }
    return text;
}

void readProgram(DirectiveReader& reader) {
    reader.task.program = requireProgram(reader.value, "task '" + reader.task.name + "'");
}

void readKeywords(DirectiveReader& reader) {
    if (!reader.opensHeredoc()) {
        reader.task.keywords = readScalar(reader.value);
        return;
    }
    auto heredoc = reader.readHeredoc();
    if (!heredoc.isClosed) {
        reader.fail(missingTerminator(reader, "keywords"));
    }
    reader.task.keywords = heredoc.text;
}

void readExtraInput(DirectiveReader& reader) {
    const bool isInline = !reader.value.empty() && !reader.opensHeredoc();
    const std::string text = isInline ? std::string(reader.value) : readLongText(reader, "extrainput");
    std::string all = reader.task.extraKeywords.str();
    if (!all.empty() && all.back() != '\n') {
        all += '\n';
    }
    reader.task.extraKeywords = all.append(text);
}

void readBody(DirectiveReader& reader) {
    const bool isInline = !reader.value.empty() && !reader.opensHeredoc();
    reader.task.body = isInline ? SharedText(reader.value) : SharedText(readLongText(reader, "body"));
}

void readTemplate(DirectiveReader& reader) {
    reader.task.templateName = reader.value;
}

void readRunner(DirectiveReader& reader) {
    reader.task.runner = reader.value;
}

void readParam(DirectiveReader& reader) {
    reader.task.paramValues = readJoinedEntries(reader, '\n');
}

void readArgs(DirectiveReader& reader) {
    const std::string text = readJoinedEntries(reader, ' ');
    const auto value = decodeCanonicalScalar(text);
    reader.task.args = value ? *value : text;
}

/// Moves to the next line that holds text, whatever its kind; nothing where a boundary or the
/// end comes first.
std::optional<std::string_view> nextFilledLineOfAnyKind(DirectiveReader& reader) {
    auto piece = reader.nextLineOfAnyKind();
    while (piece && piece->empty()) {
        piece = reader.nextLineOfAnyKind();
    }
    return piece;
}

/// The command that begins with this line, continuation lines included.
std::string readCommand(DirectiveReader& reader, std::string_view line, std::string_view keyword) {
    std::string command;
    while (isContinuedCommand(line)) {
        appendPart(command, ' ', trim(line.substr(0, line.size() - 1)));
        const auto next = nextFilledLineOfAnyKind(reader);
        if (!next) {
            reader.warn("has a continued %" + std::string(keyword) +
                        " command without a following non-empty line; using the command parsed so far.");
            return command;
        }
        line = *next;
    }
    appendPart(command, ' ', line);
    return command;
}

std::vector<std::string> readCommands(DirectiveReader& reader, std::string_view keyword) {
    std::vector<std::string> commands;
    while (const auto line = reader.nextFilledLine()) {
        auto command = readCommand(reader, *line, keyword);
        if (!command.empty()) {
            commands.push_back(std::move(command));
        }
    }
    return commands;
}

void append(std::vector<std::string>& list, std::vector<std::string> more) {
    std::move(more.begin(), more.end(), std::back_inserter(list));
}

void readPreProcess(DirectiveReader& reader) {
    append(reader.task.preProcessCommands.edit(), readCommands(reader, "preprocess"));
}

void readProcess(DirectiveReader& reader) {
    append(reader.task.processCommands.edit(), readCommands(reader, "process"));
}

void readInterface(DirectiveReader& reader) {
    TaskInfo& task = reader.task;
    const auto words = splitShellWords(reader.value);
    if (words.empty()) {
        reader.failHere("has empty %interface directive; expected 'provider' or 'consume <provider-task>'");
    }
    if (equalsNoCase(words[0], "provider")) {
        if (words.size() != 1) {
            reader.failHere("has invalid %interface provider directive; expected '%interface provider'");
        }
        task.interfaceMode = TaskInterfaceMode::provider;
        task.interfaceProvider.clear();
    } else if (equalsNoCase(words[0], "consume")) {
        if (words.size() != 2 || trim(words[1]).empty()) {
            reader.failHere(
                "has invalid %interface consume directive; expected '%interface consume <provider-task>'");
        }
        task.interfaceMode = TaskInterfaceMode::consume;
        task.interfaceProvider = trim(words[1]);
    } else {
        reader.failHere("has unknown %interface mode '" + words[0] + "'; expected 'provider' or 'consume'");
    }
}

void readMeta(DirectiveReader& reader) {
    while (const auto line = reader.nextFilledLine()) {
        const auto fields = splitOn(*line, ' ');
        if (!line->starts_with("strucid")) {
            reader.fail("has unknown %meta field '" + fields[0] + "'.");
        }
        if (fields.size() > 1) {
            reader.task.strucId = fields[1];
        }
    }
}

void readMod(DirectiveReader& reader) {
    if (!reader.value.empty()) {
        addModLine(reader.task, reader.value);
    }
    while (const auto line = reader.nextFilledLine()) {
        addModLine(reader.task, *line);
    }
}

/// The conditions that a tolerated `%source a,b` before this directive has added.
std::unordered_set<std::string> conditionsOfSource(const TaskInfo& task) {
    std::unordered_set<std::string> conditions;
    const auto& names = sourceTasks(task);
    for (std::size_t i = 1; i < names.size(); ++i) {
        conditions.insert("completed " + names[i]);
    }
    return conditions;
}

/// Of the conditions that a source implies, those that are also in `written` take their place there, once:
/// migrating a file twice must change neither the order nor the number of the conditions.
void placeImpliedConditions(TaskInfo& task, std::vector<TaskWhenEntry>& written) {
    const auto implied = conditionsOfSource(task);
    if (implied.empty()) {
        return;
    }
    std::unordered_set<std::string> placed;
    std::erase_if(written, [&](const TaskWhenEntry& entry) {
        return implied.contains(entry.text) && !placed.insert(entry.text).second;
    });
    std::erase_if(task.whenEntries.edit(),
                  [&](const TaskWhenEntry& entry) { return placed.contains(entry.text); });
}

void readWhen(DirectiveReader& reader) {
    std::vector<TaskWhenEntry> written;
    if (!reader.value.empty()) {
        written.push_back({std::string(reader.value), reader.conditionSpan()});
    }
    while (const auto line = reader.nextFilledLine()) {
        written.push_back({std::string(*line), reader.conditionSpan()});
    }
    TaskInfo& task = reader.task;
    placeImpliedConditions(task, written);
    if (task.whenEntries.empty()) {
        task.whenEntries = std::move(written);
        return;
    }
    auto& all = task.whenEntries.edit();
    std::move(written.begin(), written.end(), std::back_inserter(all));
}

void readPlot(DirectiveReader& reader) {
    plot::PlotBlock block;
    block.scope = plot::PlotScope::task;
    block.ownerTask = reader.task.name;
    block.captured.header = reader.value;
    block.captured.span = reader.headerSpan();
    while (reader.nextLine()) {
        block.captured.lines.push_back(reader.currentLine());
    }
    reader.task.plots.edit().push_back(plot::parsePlot(block));
}

// Keywords are compared exactly; "extrainputs" is the one alias.
constexpr std::array<DirectiveRow, 19> directiveTable{{
    {"source", "source", readSourceDirective},
    {"program", "program", readProgram},
    {"interface", "interface", readInterface},
    {"batch", "batch", readBatchDirective, FragmentKind::batch},
    {"control", "control", readControlDirective, FragmentKind::control},
    {"when", "when", readWhen, FragmentKind::when},
    {"keywords", "keywords", readKeywords, FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"extrainput", "extrainput", readExtraInput, FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"extrainputs", "extrainput", readExtraInput, FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"template", "template", readTemplate},
    {"param", "param", readParam, FragmentKind::param},
    {"args", "args", readArgs, FragmentKind::args},
    {"runner", "runner", readRunner},
    {"body", "body", readBody, FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"preprocess", "preprocess", readPreProcess, FragmentKind::preprocess},
    {"process", "process", readProcess, FragmentKind::process},
    {"mod", "mod", readMod, FragmentKind::mod, ScopeRule::emptyValue},
    {"meta", "meta", readMeta, FragmentKind::meta},
    {"plot", "plot", readPlot},
}};

} // namespace

const DirectiveRow* findDirective(std::string_view keyword) noexcept {
    const auto* row = std::find_if(directiveTable.begin(), directiveTable.end(),
                                   [keyword](const DirectiveRow& r) { return r.keyword == keyword; });
    return row == directiveTable.end() ? nullptr : row;
}

FragmentKind scopeAfter(const WrittenDirective& directive) noexcept {
    const DirectiveRow* row = findDirective(directive.keyword);
    if (row == nullptr) {
        return FragmentKind::task_body;
    }
    const bool opens = row->rule == ScopeRule::always || directive.value.empty() ||
                       (row->rule == ScopeRule::emptyValueOrHeredoc && opensHeredoc(directive.value));
    return opens ? row->scope : FragmentKind::task_body;
}

bool isKnownDirective(std::string_view clean) noexcept {
    return findDirective(splitDirective(clean).keyword) != nullptr;
}

} // namespace morquill::taskdsl
