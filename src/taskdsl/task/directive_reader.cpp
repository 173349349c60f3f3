#include "taskdsl/task/directive_reader.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

bool isIncludeLine(std::string_view text) noexcept {
    return beginsBlock(text, "&INCLUDE");
}

bool isStructureLine(std::string_view text) noexcept {
    if (text.empty()) {
        return false;
    }
    switch (text.front()) {
    case '%':
        return !directiveName(text).empty();
    case '$':
        return !taskHeaderName(text).empty();
    case '&':
        return isIncludeLine(text);
    case '@':
        return isBlockKeyword(text);
    default:
        return false;
    }
}

bool isContinuedCommand(std::string_view text) noexcept {
    return text.ends_with('\\') && !text.ends_with("\\\\");
}

std::string_view heredocTerminator(std::string_view value) noexcept {
    const auto terminator = trim(value.substr(2));
    return terminator.empty() ? "EOF" : terminator;
}

SourceSpan DirectiveReader::span() const {
    const auto& line = lines[index];
    return spanOfLine(line.originPath, line.lineNumber, line.text);
}

SourceSpan DirectiveReader::headerSpan() const {
    const auto& line = lines[header];
    return spanOfLine(line.originPath, line.lineNumber, line.text);
}

SourceSpan DirectiveReader::conditionSpan() const {
    SourceSpan place = span();
    place.path = task.filePath;
    return place;
}

std::optional<std::string_view> DirectiveReader::nextLineOfAnyKind() {
    if (index + 1 >= lines.size() || lines[index + 1].directiveBoundary) {
        return std::nullopt;
    }
    return cleanLine(lines[++index].text);
}

std::optional<std::string_view> DirectiveReader::nextLine() {
    const auto text = nextLineOfAnyKind();
    if (text && isStructureLine(*text)) {
        --index;
        return std::nullopt;
    }
    return text;
}

std::optional<std::string_view> DirectiveReader::nextFilledLine() {
    auto text = nextLine();
    while (text && text->empty()) {
        text = nextLine();
    }
    return text;
}

bool DirectiveReader::readHeredoc(std::string& text) {
    const std::string terminator = heredocTerminator();
    text.clear();
    const std::size_t first = index + 1;
    while (index + 1 < lines.size() && !lines[index + 1].directiveBoundary) {
        const std::string& raw = lines[++index].text;
        if (trim(raw) == terminator) {
            return true;
        }
        if (index != first) {
            text += '\n';
        }
        text += raw;
    }
    return false;
}

std::optional<std::string> DirectiveReader::readTextBlock() {
    std::optional<std::string> text;
    while (index + 1 < lines.size() && !lines[index + 1].directiveBoundary) {
        const SourceLine& line = lines[index + 1];
        if (!line.verbatim && isStructureLine(cleanLine(line.text))) {
            break;
        }
        ++index;
        if (text) {
            *text += '\n';
            *text += line.text;
        } else {
            text = line.text;
        }
    }
    return text;
}

void DirectiveReader::warn(std::string_view text) const {
    warnings("task '" + task.name + "' " + std::string(text));
}

void DirectiveReader::fail(std::string_view text) const {
    throw DiagnosticError("task '" + task.name + "' " + std::string(text));
}

void DirectiveReader::failHere(std::string_view text) const {
    throw DiagnosticError(span(), "task '" + task.name + "' " + std::string(text));
}

} // namespace morquill::taskdsl
