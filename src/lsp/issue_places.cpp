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

/// The name in the first pair of single quotes behind `label`.
std::string_view quotedBehind(std::string_view text, std::string_view label) noexcept {
    const auto at = text.find(label);
    if (at == std::string_view::npos) {
        return {};
    }
    text.remove_prefix(at + label.size());
    return text.substr(0, text.find('\''));
}

/// The file that an include line names; empty when it cannot be read.
std::string includedFile(std::string_view text, const OpenText& owner) {
    try {
        return taskdsl::resolveIncludePath(searchName(taskdsl::parseIncludeLine(text)), owner.path,
                                           console::findLibraryFile);
    } catch (const taskdsl::DiagnosticError&) {
        return {};
    }
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

IssuePlace IssuePlaces::of(const lint::LintIssue& issue) {
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
    if (!isHere(file)) {
        place.file = file;
        place.range = includeRange(file);
    } else if (isValidSpan(place.span)) {
        place.range = spanRange(place.span, text_.buffer);
    } else {
        const auto header = taskHeader(quotedBehind(issue.message, "task '"));
        place.range = header.value_or(lineRange(text_.buffer, 1));
    }
    return place;
}

ByteRange IssuePlaces::ofWarning(std::string_view warning) {
    if (const auto header = taskHeader(quotedBehind(warning, "task '"))) {
        return *header;
    }
    const auto path = warning.rfind(": ");
    if (path != std::string_view::npos) {
        if (auto line = includeLineOf(std::string(warning.substr(path + 2)))) {
            return *line;
        }
    }
    return lineRange(text_.buffer, 1);
}

/// True for a path that leads to the text's own file. A text that belongs to no file is called "<memory>".
bool IssuePlaces::isHere(const std::string& path) {
    if (path.empty() || path == "<memory>" || path == text_.path) {
        return true;
    }
    if (text_.path.empty()) {
        return false;
    }
    const auto [entry, isNew] = here_.try_emplace(path, false);
    if (isNew) {
        entry->second = normalisedPath(absolutePath(path)) == text_.canonicalPath;
    }
    return entry->second;
}

const IssuePlaces::NamingLines& IssuePlaces::lines() {
    if (lines_) {
        return *lines_;
    }
    lines_.emplace();
    std::int64_t number = 0;
    for (const auto whole : splitLines(skipByteOrderMark(text_.buffer.text()))) {
        ++number;
        const auto line = taskdsl::cleanLine(whole);
        if (const auto name = taskdsl::taskHeaderName(line); !name.empty()) {
            lines_->headers.try_emplace(std::string(name), lineRange(text_.buffer, number));
        } else if (line.starts_with("&INCLUDE")) {
            const auto range = lineRange(text_.buffer, number);
            lines_->firstInclude = lines_->firstInclude.value_or(range);
            if (const auto file = includedFile(line, text_); !file.empty()) {
                lines_->includes.try_emplace(normalisedPath(file), range);
            }
        }
    }
    return *lines_;
}

std::optional<ByteRange> IssuePlaces::taskHeader(std::string_view name) {
    if (name.empty()) {
        return std::nullopt;
    }
    const auto found = lines().headers.find(name);
    return found == lines().headers.end() ? std::nullopt : std::optional(found->second);
}

std::optional<ByteRange> IssuePlaces::includeLineOf(const std::string& file) {
    const auto [entry, isNew] = included_.try_emplace(file);
    if (isNew) {
        const auto found = lines().includes.find(normalisedPath(absolutePath(file)));
        entry->second = found == lines().includes.end() ? std::nullopt : std::optional(found->second);
    }
    return entry->second;
}

/// The line that leads to a file: the one that names it, or else the first that includes anything.
ByteRange IssuePlaces::includeRange(const std::string& file) {
    if (auto range = includeLineOf(file)) {
        return *range;
    }
    return lines().firstInclude.value_or(lineRange(text_.buffer, 1));
}

std::string_view warningMessage(std::string_view warning) noexcept {
    constexpr std::string_view tag = "Warning: ";
    return warning.starts_with(tag) ? warning.substr(tag.size()) : warning;
}

TextBuffer textOnDisk(const std::string& path) {
    return TextBuffer(readTextFile(path).value_or(""));
}

} // namespace morquill::lsp
