#include "lsp/hover.h"

#include "catalog/property_catalog.h"
#include "lsp/help_table.h"
#include "lsp/issue_places.h"
#include "lsp/sources/resolve.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/matrix_combinations.h"
#include "taskdsl/task/when_expr.h"
#include "views/canonical_writer.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace morquill::lsp {

namespace {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

std::string code(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string codeBlock(std::string_view text) {
    while (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
    }
    // A fence must be longer than any in the text.
    return "````mq\n" + std::string(text) + "\n````";
}

std::string helpText(const HelpRow* row) {
    if (row == nullptr) {
        return {};
    }
    return (row->form.empty() ? "" : code(row->form) + "\n\n") + std::string(row->text);
}

/// A hover that is being made.
struct HoverContext {
    Session& session;
    const OpenText& text;
    const SourceFile& file;
    Place at;

    [[nodiscard]] std::uint32_t block() const noexcept { return blockAt(file.index, at.get().begin); }
    [[nodiscard]] std::string_view directive() const noexcept { return file.directiveOf(block()); }
    [[nodiscard]] bool isIn(BlockKind kind) const noexcept {
        return enclosing(file.index, block(), kind) != noIndex;
    }
};

/// The text of the line on which an occurrence stands, without comment.
std::string_view lineOf(const Place& place) {
    const auto& buffer = *place.file->buffer;
    const auto range = buffer.line(buffer.lineOf(place.get().begin));
    return taskdsl::cleanLine(place.file->text().substr(range.begin, range.size()));
}

std::string canonicalTask(const TaskInfo& task) {
    TaskDocument one;
    one.templateTasks = std::vector<TaskInfo>{task};
    one.tasks = one.templateTasks;
    const auto text = views::renderCanonicalDocument(one, views::CanonicalView::sourceView);
    return text.substr(text.find('$')); // without the head of the file
}

std::string taskHover(const HoverContext& context) {
    const auto& document = context.session.analyses.of(context.text).document;
    const auto name = context.at.name();
    if (!document) {
        return {};
    }
    const auto& tasks = document->templateTasks.get();
    const auto task =
        std::find_if(tasks.begin(), tasks.end(), [name](const TaskInfo& t) { return t.name == name; });
    if (task == tasks.end()) {
        return {};
    }
    std::string text = codeBlock(canonicalTask(*task));
    if (const auto count = variantCount(*document); count > 1) {
        text += "\n\nThe matrix makes " + std::to_string(count) + " variants.";
    }
    return text;
}

std::string keyHover(const HoverContext& context) {
    std::string text;
    for (const Place& place : Resolver(context.session.sources, context.file).definitions(context.at)) {
        const auto line = lineOf(place);
        const auto value = trim(line.substr(std::min(line.size(), line.find(':') + 1)));
        text += text.empty() ? "" : "\n\n";
        text += place.get().kind == NameKind::axis ? "Axis " : "Define ";
        text += code(context.at.name()) + ": " + code(value);
    }
    return text;
}

/// The line that gives the name.
std::string definitionHover(const HoverContext& context) {
    std::string lines;
    for (const Place& place : Resolver(context.session.sources, context.file).definitions(context.at)) {
        lines += std::string(lineOf(place)) + "\n";
    }
    return lines.empty() ? std::string() : codeBlock(lines);
}

/// Words whose meaning depends on the block.
std::string wordHover(const HoverContext& context) {
    const auto name = context.at.name();
    std::string text;
    if (context.directive() == "when") {
        text = helpText(findHelp(HelpTopic::condition, name));
        const auto line = lineOf(context.at);
        const auto condition = line.starts_with("%when") ? trim(line.substr(5)) : line;
        try {
            text += "\n\nUnderstood as " + code(taskdsl::formatWhenExpr(taskdsl::parseWhenExpr(condition)));
        } catch (const taskdsl::DiagnosticError&) {
            return text;
        }
        return text;
    }
    constexpr std::array topics{HelpTopic::source, HelpTopic::plotKind, HelpTopic::fragmentKind,
                                HelpTopic::condition};
    for (const auto topic : topics) {
        if (const auto* row = findHelp(topic, name)) {
            return helpText(row);
        }
    }
    return text;
}

/// The first word of a line below a directive; a slot stands behind its dot.
std::string lineHover(const HoverContext& context) {
    const auto topic = lineTopic(context.directive());
    const auto name = context.at.name();
    return topic ? helpText(findHelp(*topic, name.substr(0, name.find('.')))) : std::string();
}

std::string statementHover(const HoverContext& context) {
    const auto name = context.at.name();
    const auto topic =
        context.isIn(BlockKind::derive) ? HelpTopic::deriveStatement : HelpTopic::plotStatement;
    const auto* row = findHelp(HelpTopic::block, name);
    return helpText(row != nullptr ? row : findHelp(topic, name));
}

std::string describe(const HoverContext& context) {
    const auto name = context.at.name();
    switch (context.at.get().kind) {
    case NameKind::directive:
        return helpText(findHelp(HelpTopic::directive, name == "extrainputs" ? "extrainput" : name));
    case NameKind::controlKey:
        return lineHover(context);
    case NameKind::program:
        return helpText(findHelp(HelpTopic::program, name));
    case NameKind::statement:
        return statementHover(context);
    case NameKind::word:
        return wordHover(context);
    case NameKind::function:
        return helpText(findHelp(HelpTopic::function, name));
    case NameKind::property:
        return propertyHelp(name);
    case NameKind::task:
        return taskHover(context);
    case NameKind::define:
    case NameKind::axis:
    case NameKind::key:
        return keyHover(context);
    case NameKind::comment:
    case NameKind::string:
    case NameKind::number:
    case NameKind::argument:
        return {};
    default:
        return definitionHover(context);
    }
}

/// What the codes of the issues at an offset mean.
std::string issueHover(Session& session, const OpenText& text, const SourceFile& file, std::size_t offset) {
    std::string shown;
    IssuePlaces places(text);
    for (const auto& issue : session.analyses.of(text).report.issues) {
        const auto place = places.of(issue);
        const auto range = narrowedRange(issue, place.range, file);
        const auto* row = findHelp(HelpTopic::lintCode, issue.code);
        if (row != nullptr && range.begin <= offset && offset <= range.end) {
            shown += (shown.empty() ? "" : "\n\n") + code(issue.code) + ": " + std::string(row->text);
        }
    }
    return shown;
}

} // namespace

std::string propertyHelp(std::string_view name) {
    const auto* row = findProperty(name);
    if (row == nullptr) {
        return {};
    }
    std::string text = code(row->canonical) + ": " + std::string(row->description) + "\n\n" +
                       std::string(propertyValueKindName(row->valueKind));
    if (row->recordType != PropertyRecordType::none) {
        text += " per " + std::string(propertyRecordTypeName(row->recordType));
    }
    if (!row->unit.empty()) {
        text += ", in " + std::string(row->unit);
    }
    std::string aliases;
    for (const auto alias : row->aliases) {
        aliases += (aliases.empty() ? "" : ", ") + code(alias);
    }
    return aliases.empty() ? text : text + "\n\nAlso " + aliases;
}

std::size_t variantCount(const TaskDocument& document) {
    if (document.matrixAxes.empty()) {
        return 1;
    }
    try {
        return taskdsl::MatrixWalk(document.matrixAxes).size();
    } catch (const taskdsl::DiagnosticError&) {
        return 0;
    }
}

Json hover(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto offset = requireOffset(session, text, params);
    const SourceFile& file = session.sources.of(text);
    const auto place = placeAt(file, offset);
    std::string shown = issueHover(session, text, file, offset);
    if (place) {
        if (const auto meaning = describe({session, text, file, *place}); !meaning.empty()) {
            shown = meaning + (shown.empty() ? "" : "\n\n" + shown);
        }
    }
    if (shown.empty()) {
        return nullptr;
    }
    Json answer{{"contents", {{"kind", "markdown"}, {"value", shown}}}};
    if (place) {
        PositionWalk walk(text.buffer, session.client.unit);
        answer["range"] = rangeJson(walk, {place->get().begin, place->get().end()});
    }
    return answer;
}

} // namespace morquill::lsp
