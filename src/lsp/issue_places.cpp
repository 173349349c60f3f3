#include "lsp/issue_places.h"

#include "console/library_file.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/include_path.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace morquill::lsp {

using taskdsl::SourceSpan;

namespace {

/// The bytes of a line of the parser from its first byte that is no white space to its last.
ByteRange lineRange(const TextBuffer& buffer, std::int64_t line) {
    ByteRange range{buffer.sourceOffset(line, 1),
                    buffer.sourceOffset(line, static_cast<std::int64_t>(buffer.text().size()) + 1)};
    const auto text = std::string_view(buffer.text()).substr(range.begin, range.size());
    const auto trimmed = trim(text);
    if (!trimmed.empty()) {
        range.begin += static_cast<std::size_t>(trimmed.data() - text.data());
        range.end = range.begin + trimmed.size();
    }
    return range;
}

/// The end of a span that is a line without its blanks, of which the length is not known.
constexpr std::int32_t wholeLine = 1 << 30;

/// A message that begins with "<file>:<line>: ", taken apart.
struct PlacedMessage {
    std::string_view file;
    std::int64_t line = 0;
    std::string_view message;
};

std::optional<PlacedMessage> splitPlacedMessage(std::string_view text) noexcept {
    for (auto colon = text.find(':'); colon != std::string_view::npos; colon = text.find(':', colon + 1)) {
        const auto rest = text.substr(colon + 1);
        PlacedMessage placed{text.substr(0, colon), 0, {}};
        const auto [stop, error] = std::from_chars(rest.data(), rest.data() + rest.size(), placed.line);
        const auto digits = static_cast<std::size_t>(stop - rest.data());
        if (error == std::errc{} && digits > 0 && rest.substr(digits).starts_with(": ")) {
            placed.message = rest.substr(digits + 2);
            return placed;
        }
    }
    return std::nullopt;
}

/// True when both paths lead to one file. A text that belongs to no file is called "<memory>".
bool isSameFile(const std::string& path, const OpenText& text) {
    if (path.empty() || path == "<memory>" || path == text.path) {
        return true;
    }
    return !text.path.empty() && normalisedPath(absolutePath(path)) == text.canonicalPath;
}

/// The name in the first pair of single quotes behind `label`.
std::string_view quotedBehind(std::string_view text, std::string_view label) noexcept {
    const auto at = text.find(label);
    if (at == std::string_view::npos) {
        return {};
    }
    text.remove_prefix(at + label.size());
    return text.substr(0, text.find('\''));
}

/// The line that `accept` takes first; nothing when there is none.
template <class Accept>
std::optional<ByteRange> findLine(const TextBuffer& buffer, const Accept& accept) {
    std::int64_t number = 0;
    for (const auto line : splitLines(skipByteOrderMark(buffer.text()))) {
        ++number;
        if (accept(taskdsl::cleanLine(line))) {
            return lineRange(buffer, number);
        }
    }
    return std::nullopt;
}

std::optional<ByteRange> taskHeader(const TextBuffer& buffer, std::string_view name) {
    if (name.empty()) {
        return std::nullopt;
    }
    return findLine(buffer, [name](std::string_view text) { return taskdsl::taskHeaderName(text) == name; });
}

/// The file that an include line names; empty for another line.
std::string includedFile(std::string_view text, const OpenText& owner) {
    if (!text.starts_with("&INCLUDE")) {
        return {};
    }
    try {
        return taskdsl::resolveIncludePath(searchName(taskdsl::parseIncludeLine(text)), owner.path,
                                           console::findLibraryFile);
    } catch (const taskdsl::DiagnosticError&) {
        return {};
    }
}

std::optional<ByteRange> includeLineOf(const OpenText& text, const std::string& file) {
    const auto wanted = normalisedPath(absolutePath(file));
    return findLine(text.buffer, [&](std::string_view line) {
        const auto target = includedFile(line, text);
        return !target.empty() && normalisedPath(target) == wanted;
    });
}

/// The line that leads to a file: the one that names it, or else the first that includes anything.
ByteRange includeRange(const OpenText& text, const std::string& file) {
    if (auto range = includeLineOf(text, file)) {
        return *range;
    }
    const auto first =
        findLine(text.buffer, [](std::string_view line) { return line.starts_with("&INCLUDE"); });
    return first.value_or(lineRange(text.buffer, 1));
}

/// The kind of name that an issue is about, and where its message has it.
struct NamedIssueRow {
    std::string_view code;
    NameKind kind;
    std::string_view before; ///< what stands before the name in the message
};
constexpr std::array<NamedIssueRow, 6> namedIssues{{
    {"missing-source-task", NameKind::task, "does not exist: "},
    {"missing-guess-task", NameKind::task, "does not exist: "},
    {"missing-completed-target", NameKind::task, "does not exist: "},
    {"missing-placeholder-task", NameKind::task, "does not exist: "},
    {"ambiguous-placeholder", NameKind::task, "placeholder '{{ "},
    {"parse-error", NameKind::directive, "unknown directive '%"},
}};

/// The name in the message; empty when the issue is about none.
std::string_view issueName(const NamedIssueRow& row, std::string_view message) noexcept {
    const auto at = message.find(row.before);
    if (at == std::string_view::npos) {
        return {};
    }
    const auto rest = message.substr(at + row.before.size());
    const bool quoted = row.before.find('\'') != std::string_view::npos;
    return quoted ? rest.substr(0, rest.find_first_of(" '")) : rest;
}

} // namespace

ByteRange narrowedRange(const lint::LintIssue& issue, ByteRange range, const SourceFile& file) {
    const auto row = std::find_if(namedIssues.begin(), namedIssues.end(),
                                  [&](const NamedIssueRow& r) { return r.code == issue.code; });
    const auto name = row == namedIssues.end() ? std::string_view{} : issueName(*row, issue.message);
    if (name.empty()) {
        return range;
    }
    const auto block = blockAt(file.index, range.begin);
    const auto& bounds = file.index.blocks[block];
    const std::size_t end = block == 0 ? range.end : std::max<std::size_t>(range.end, bounds.end);
    const auto& all = file.index.occurrences;
    auto at = std::lower_bound(all.begin(), all.end(), range.begin,
                               [](const Occurrence& o, std::size_t offset) { return o.begin < offset; });
    for (; at != all.end() && at->begin < end; ++at) {
        if (at->kind == row->kind && file.name(*at) == name) {
            return {at->begin, at->end()};
        }
    }
    return range;
}

ByteRange spanRange(const SourceSpan& span, const TextBuffer& buffer) {
    if (!isValidSpan(span)) {
        return lineRange(buffer, 1);
    }
    ByteRange range{buffer.sourceOffset(span.line, span.column),
                    buffer.sourceOffset(span.endLine, span.endColumn)};
    range.end = std::max(range.begin, range.end);
    return span.endColumn == wholeLine ? lineRange(buffer, span.line) : range;
}

IssuePlace placeOfIssue(const lint::LintIssue& issue, const OpenText& text) {
    IssuePlace place{{}, {}, issue.span, issue.message};
    std::string file = issue.file;
    if (isValidSpan(issue.span)) {
        // What a fragment or an included file brought is at fault where it is written.
        file = issue.span.path.empty() ? file : issue.span.path.str();
        if (const auto placed = splitPlacedMessage(issue.message); placed && issue.messageNamesPlace) {
            place.message = placed->message; // the editor shows the place by itself
        }
    } else if (const auto placed = splitPlacedMessage(issue.message)) {
        file = placed->file;
        const auto line = static_cast<std::int32_t>(placed->line);
        place.span = {SharedText(file), line, 1, line, wholeLine};
        place.message = placed->message;
    }
    if (!isSameFile(file, text)) {
        place.file = file;
        place.range = includeRange(text, file);
    } else if (isValidSpan(place.span)) {
        place.range = spanRange(place.span, text.buffer);
    } else {
        const auto header = taskHeader(text.buffer, quotedBehind(issue.message, "task '"));
        place.range = header.value_or(lineRange(text.buffer, 1));
    }
    return place;
}

ByteRange placeOfWarning(std::string_view warning, const OpenText& text) {
    if (const auto header = taskHeader(text.buffer, quotedBehind(warning, "task '"))) {
        return *header;
    }
    const auto path = warning.rfind(": ");
    if (path != std::string_view::npos) {
        if (auto line = includeLineOf(text, std::string(warning.substr(path + 2)))) {
            return *line;
        }
    }
    return lineRange(text.buffer, 1);
}

std::string_view warningMessage(std::string_view warning) noexcept {
    constexpr std::string_view tag = "Warning: ";
    return warning.starts_with(tag) ? warning.substr(tag.size()) : warning;
}

TextBuffer textOnDisk(const std::string& path) {
    return TextBuffer(readTextFile(path).value_or(""));
}

} // namespace morquill::lsp
