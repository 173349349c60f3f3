#include "lsp/formatting.h"

#include "console/library_file.h"
#include "lsp/base/line_diff.h"
#include "support/text.h"
#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace morquill::lsp {

namespace {

void addOnce(std::vector<std::string>& list, std::string text) {
    if (std::find(list.begin(), list.end(), text) == list.end()) {
        list.push_back(std::move(text));
    }
}

bool holdsKind(const FileIndex& index, NameKind kind, NameRole role) noexcept {
    return std::any_of(index.occurrences.begin(), index.occurrences.end(),
                       [=](const Occurrence& o) { return o.kind == kind && o.role == role; });
}

Json editsJson(const std::vector<LineEdit>& edits, const OpenText& text, PositionUnit unit) {
    PositionWalk walk(text.buffer, unit);
    Json list = Json::array();
    for (const auto& edit : edits) {
        list.push_back({{"range", rangeJson(walk, edit.range)}, {"newText", edit.text}});
    }
    return list;
}

/// The document that `fmt` would print.
taskdsl::TaskDocument printedDocument(const Analysis& analysis) {
    taskdsl::TaskDocument document = *analysis.document;
    document.tasks = document.templateTasks; // the source view prints no other
    return taskdsl::withoutImplicitContent(std::move(document));
}

/// A file that says it is of version 1 was read with tolerance; `fmt` has none.
void requireStrictReading(const OpenText& text, const Analysis& analysis) {
    const auto version = analysis.document->settings.find("dsl_version");
    if (version != analysis.document->settings.end() && version->second == "1") {
        const taskdsl::TaskParser parser({.findLibraryFile = console::findLibraryFile});
        try {
            (void)parser.parseText(text.buffer.text(), text.path);
        } catch (const taskdsl::DiagnosticError& fault) {
            throw ResponseError(ErrorCode::requestFailed, fault.message());
        }
    }
}

std::string joinedList(const std::vector<std::string>& parts) {
    return join(parts, ", ");
}

/// The blanks before a line of a task: 2 before a directive, 4 before a line of its block; nothing for a line
/// whose blanks count or are not the task's own.
std::optional<std::size_t> indentOf(const SourceFile& file, std::size_t lineBegin, std::string_view text) {
    const auto block = blockAt(file.index, lineBegin + static_cast<std::size_t>(text.size()));
    const auto& at = file.index.blocks[block];
    if (at.kind == BlockKind::task) {
        return text.starts_with('$') ? std::optional<std::size_t>(0) : std::nullopt;
    }
    if (at.kind != BlockKind::directive) {
        return std::nullopt;
    }
    if (text.starts_with('%')) {
        return 2;
    }
    constexpr std::array<std::string_view, 10> aligned{"source", "control", "batch",      "when",  "mod",
                                                       "meta",   "process", "preprocess", "param", "args"};
    const auto directive = file.blockName(block);
    const bool aligns = std::find(aligned.begin(), aligned.end(), directive) != aligned.end();
    return aligns && enclosing(file.index, block, BlockKind::fragment) == noIndex
               ? std::optional<std::size_t>(4)
               : std::nullopt;
}

/// The lines from `first` to `last` with their blanks set, and no two blank lines in a row between tasks.
std::string alignedLines(const SourceFile& file, std::size_t first, std::size_t last) {
    const auto& buffer = *file.buffer;
    std::string aligned;
    bool blankBefore =
        first > 0 &&
        trim(file.text().substr(buffer.line(first - 1).begin, buffer.line(first - 1).size())).empty();
    for (auto number = first; number <= last; ++number) {
        const auto range = buffer.line(number);
        const auto end = number + 1 < buffer.lineCount() ? buffer.line(number + 1).begin : file.text().size();
        const auto line = file.text().substr(range.begin, range.size());
        const auto text = trimLeft(line);
        const auto block = file.index.blocks[blockAt(file.index, range.begin)].kind;
        if (text.empty() && block != BlockKind::heredoc && block != BlockKind::directive) {
            if (!blankBefore) {
                aligned += file.text().substr(range.end, end - range.end);
            }
            blankBefore = true;
            continue;
        }
        blankBefore = false;
        const auto indent =
            text.empty() ? std::nullopt : indentOf(file, range.begin + (line.size() - text.size()), text);
        aligned += indent ? std::string(*indent, ' ') + std::string(text) : std::string(line);
        aligned += file.text().substr(range.end, end - range.end);
    }
    return aligned;
}

/// The names of a text in their order: what a change of blanks must not touch.
std::vector<std::string> namesOf(std::string_view text) {
    std::vector<std::string> names;
    for (const auto& o : indexFile(text, FileForm::tasks).occurrences) {
        names.emplace_back(nameOf(text, o));
    }
    return names;
}

} // namespace

std::vector<std::string> lostByRewrite(const SourceFile& file) {
    std::vector<std::string> lost;
    const FileIndex& index = file.index;
    if (holdsKind(index, NameKind::comment, NameRole::word)) {
        lost.emplace_back("comments");
    }
    if (std::any_of(index.blocks.begin(), index.blocks.end(),
                    [](const Block& block) { return block.kind == BlockKind::loop; })) {
        lost.emplace_back("@foreach loops");
    }
    if (holdsKind(index, NameKind::collection, NameRole::definition)) {
        lost.emplace_back("collections");
    }
    const auto& all = index.occurrences;
    if (std::any_of(all.begin(), all.end(), [&file](const Occurrence& o) {
            return o.kind == NameKind::statement && file.name(o) == "&INCLUDE";
        })) {
        lost.emplace_back("includes");
    }
    return lost;
}

Json formatDocument(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const Analysis& analysis = session.analyses.of(text);
    if (!analysis.document) {
        const auto& issues = analysis.report.issues;
        throw ResponseError(ErrorCode::requestFailed, issues.empty() || fileKind(text.path) != FileKind::tasks
                                                          ? "only task files are formatted"
                                                          : issues.back().message);
    }
    requireStrictReading(text, analysis);
    auto lost = lostByRewrite(session.sources.of(text));
    const auto canonical =
        views::renderCanonicalDocument(printedDocument(analysis), views::CanonicalView::sourceView,
                                       [&lost](const std::string& warning) { addOnce(lost, warning); });
    if (!lost.empty()) {
        throw ResponseError(ErrorCode::requestFailed, "formatting would lose: " + joinedList(lost));
    }
    return editsJson(lineEdits(text.buffer.text(), canonical), text, session.client.unit);
}

Json formatRange(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto range = readRange(member(params, "range"), text.buffer, session.client.unit);
    if (!range) {
        throw ResponseError(ErrorCode::invalidParams, "range expected");
    }
    const SourceFile& file = session.sources.of(text);
    if (file.kind != FileKind::tasks) {
        return Json::array();
    }
    const auto first = text.buffer.lineOf(range->begin);
    auto last = text.buffer.lineOf(range->end);
    if (last > first && text.buffer.line(last).begin == range->end) {
        --last; // a selection of whole lines ends at the begin of the next
    }
    const auto begin = text.buffer.line(first).begin;
    const auto end =
        last + 1 < text.buffer.lineCount() ? text.buffer.line(last + 1).begin : text.buffer.text().size();
    const std::string old = text.buffer.text();
    const std::string made = old.substr(0, begin) + alignedLines(file, first, last) + old.substr(end);
    if (namesOf(old) != namesOf(made)) {
        return Json::array(); // blanks that mean something
    }
    return editsJson(lineEdits(old, made), text, session.client.unit);
}

} // namespace morquill::lsp
