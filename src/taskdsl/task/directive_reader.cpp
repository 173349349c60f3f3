#include "taskdsl/task/directive_reader.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

bool isContinuedCommand(std::string_view text) noexcept {
    return text.ends_with('\\') && !text.ends_with("\\\\");
}

WrittenDirective splitDirective(std::string_view clean) noexcept {
    const auto directive = directiveName(clean);
    const auto keyword = directive.substr(0, directive.find(' '));
    return {keyword, trim(directive.substr(keyword.size()))};
}

SourceSpan DirectiveReader::span() const {
    return lines_[index_].span();
}

SourceSpan DirectiveReader::headerSpan() const {
    return lines_[header_].span();
}

SourceSpan DirectiveReader::conditionSpan() const {
    SourceSpan place = span();
    place.path = task.filePath;
    return place;
}

const SourceLine* DirectiveReader::peek() const noexcept {
    const std::size_t next = index_ + 1;
    return next < lines_.size() && !lines_[next].directiveBoundary ? &lines_[next] : nullptr;
}

std::optional<std::string_view> DirectiveReader::nextLineOfAnyKind() {
    const SourceLine* line = peek();
    if (line == nullptr) {
        return std::nullopt;
    }
    ++index_;
    return line->clean();
}

std::optional<std::string_view> DirectiveReader::nextLine() {
    const SourceLine* line = peek();
    if (line == nullptr || isStructure(line->kind())) {
        return std::nullopt;
    }
    ++index_;
    return line->clean();
}

std::optional<std::string_view> DirectiveReader::nextFilledLine() {
    auto text = nextLine();
    while (text && text->empty()) {
        text = nextLine();
    }
    return text;
}

HeredocText DirectiveReader::readHeredoc() {
    const BlockEnd end = findHeredocEnd(lines_, index_, taskdsl::heredocTerminator(value));
    HeredocText heredoc{{}, end.isClosed};
    for (std::size_t i = index_ + 1; i < end.index; ++i) {
        if (i != index_ + 1) {
            heredoc.text += '\n';
        }
        heredoc.text += lines_[i].text();
    }
    index_ = end.isClosed ? end.index : end.index - 1;
    return heredoc;
}

std::optional<std::string> DirectiveReader::readTextBlock() {
    std::optional<std::string> text;
    for (const SourceLine* line = peek(); line != nullptr && (line->verbatim || !isStructure(line->kind()));
         line = peek()) {
        ++index_;
        if (text) {
            *text += '\n';
            *text += line->text();
        } else {
            text = line->text();
        }
    }
    return text;
}

void DirectiveReader::warn(std::string_view text) const {
    options.warnings("task '" + task.name + "' " + std::string(text));
}

void DirectiveReader::fail(std::string_view text) const {
    throw DiagnosticError("task '" + task.name + "' " + std::string(text));
}

void DirectiveReader::failHere(std::string_view text) const {
    throw DiagnosticError(span(), "task '" + task.name + "' " + std::string(text));
}

} // namespace morquill::taskdsl
