#include "lsp/base/text_buffer.h"

#include "support/text.h"

#include <algorithm>

namespace morquill::lsp {

namespace {

/// A character of UTF-8. A byte that begins none counts as a character of its own.
struct Character {
    std::size_t bytes = 1;
    std::size_t units = 1; ///< in UTF-16
};

bool continues(std::string_view text, std::size_t at) noexcept {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
}

Character characterAt(std::string_view text, std::size_t at) noexcept {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead < 0xC2U || lead > 0xF4U || !continues(text, at + 1)) {
        return {};
    }
    if (lead < 0xE0U) {
        return {2, 1};
    }
    if (!continues(text, at + 2)) {
        return {};
    }
    if (lead < 0xF0U) {
        return {3, 1};
    }
    return continues(text, at + 3) ? Character{4, 2} : Character{};
}

} // namespace

TextBuffer::TextBuffer(std::string text) : text_(std::move(text)) {
    findLines();
}

void TextBuffer::findLines() {
    lines_.assign(1, 0);
    sourceLines_.clear();
    bool loneReturn = false;
    for (std::size_t i = 0; i < text_.size(); ++i) {
        const char c = text_[i];
        if (c == '\n') {
            lines_.push_back(static_cast<std::uint32_t>(i + 1));
        } else if (c == '\r' && (i + 1 == text_.size() || text_[i + 1] != '\n')) {
            lines_.push_back(static_cast<std::uint32_t>(i + 1));
            loneReturn = true;
        }
    }
    if (loneReturn) {
        sourceLines_.push_back(0);
        for (auto feed = text_.find('\n'); feed != std::string::npos; feed = text_.find('\n', feed + 1)) {
            sourceLines_.push_back(static_cast<std::uint32_t>(feed + 1));
        }
    }
}

ByteRange TextBuffer::line(std::size_t number) const noexcept {
    if (number >= lines_.size()) {
        return {text_.size(), text_.size()};
    }
    ByteRange range{lines_[number], number + 1 < lines_.size() ? lines_[number + 1] : text_.size()};
    if (range.size() > 0 && text_[range.end - 1] == '\n') {
        --range.end;
    }
    if (range.size() > 0 && text_[range.end - 1] == '\r') {
        --range.end;
    }
    return range;
}

std::size_t TextBuffer::lineOf(std::size_t offset) const noexcept {
    const auto behind = std::upper_bound(lines_.begin(), lines_.end(), offset);
    return static_cast<std::size_t>(behind - lines_.begin()) - 1;
}

std::size_t TextBuffer::offsetAt(Position position, PositionUnit unit) const noexcept {
    const auto range = line(position.line);
    const auto text = std::string_view(text_).substr(range.begin, range.size());
    std::size_t units = 0;
    std::size_t at = 0;
    while (at < text.size() && units < position.character) {
        const auto character = characterAt(text, at);
        units += unit == PositionUnit::utf8 ? character.bytes : character.units;
        if (units > position.character) {
            break;
        }
        at += character.bytes;
    }
    return range.begin + at;
}

std::size_t TextBuffer::sourceOffset(std::int64_t line, std::int64_t column) const noexcept {
    const auto& starts = sourceLines_.empty() ? lines_ : sourceLines_;
    if (line < 1) {
        return 0;
    }
    if (static_cast<std::uint64_t>(line) > starts.size()) {
        return text_.size();
    }
    const auto number = static_cast<std::size_t>(line - 1);
    const std::size_t begin =
        starts[number] + (number == 0 ? text_.size() - skipByteOrderMark(text_).size() : 0);
    std::size_t end = number + 1 < starts.size() ? starts[number + 1] - std::size_t{1} : text_.size();
    end = std::max(end, begin);
    return std::min(end, begin + static_cast<std::size_t>(std::max<std::int64_t>(column, 1) - 1));
}

void TextBuffer::replace(ByteRange range, std::string_view text) {
    text_.replace(range.begin, range.size(), text);
    findLines();
}

Position PositionWalk::at(std::size_t offset) noexcept {
    offset = std::min(offset, buffer_->text().size());
    const auto line = buffer_->lineOf(offset);
    const auto range = buffer_->line(line);
    if (line != line_ || offset < offset_ || offset_ < range.begin) {
        line_ = line;
        offset_ = range.begin;
        character_ = 0;
    }
    // A place inside the line end is the end of the line.
    const auto text = std::string_view(buffer_->text()).substr(0, range.end);
    while (offset_ < std::min(offset, range.end)) {
        const auto character = characterAt(text, offset_);
        if (offset_ + character.bytes > offset) {
            break;
        }
        character_ += unit_ == PositionUnit::utf8 ? character.bytes : character.units;
        offset_ += character.bytes;
    }
    return {static_cast<std::uint32_t>(line_), static_cast<std::uint32_t>(character_)};
}

std::size_t unitCount(std::string_view text, PositionUnit unit) noexcept {
    if (unit == PositionUnit::utf8) {
        return text.size();
    }
    std::size_t units = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto character = characterAt(text, at);
        units += character.units;
        at += character.bytes;
    }
    return units;
}

} // namespace morquill::lsp
