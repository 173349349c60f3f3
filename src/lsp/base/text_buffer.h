#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A text with its lines, and places in it as the protocol, the parser and C++ count them.
namespace morquill::lsp {

/// The unit in which the protocol counts the characters of a line.
enum class PositionUnit : std::uint8_t { utf16, utf8 };

/// A place as the protocol has it: line and character count from 0. Lines end in LF, CRLF or CR.
struct Position {
    std::uint32_t line = 0;
    std::uint32_t character = 0;

    friend bool operator==(const Position&, const Position&) = default;
    friend auto operator<=>(const Position&, const Position&) = default;
};

/// A range of bytes of a text.
struct ByteRange {
    std::size_t begin = 0;
    std::size_t end = 0; ///< one behind the last byte

    [[nodiscard]] std::size_t size() const noexcept { return end - begin; }
    friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

class TextBuffer {
  public:
    TextBuffer() : TextBuffer(std::string()) {}
    explicit TextBuffer(std::string text);

    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    [[nodiscard]] std::size_t lineCount() const noexcept { return lines_.size(); }
    /// The bytes of a line without its line end; empty behind the last line.
    [[nodiscard]] ByteRange line(std::size_t number) const noexcept;
    /// The number of the line in which a byte stands; an offset behind the text is in the last line.
    [[nodiscard]] std::size_t lineOf(std::size_t offset) const noexcept;

    /// The offset of a place. A place behind the end of its line is that end, one behind the last line the
    /// end of the text, one inside a character its begin.
    [[nodiscard]] std::size_t offsetAt(Position position, PositionUnit unit) const noexcept;

    /// The offset of a line and column as the parser counts them: both from 1, lines end in LF alone, columns
    /// are bytes, and a byte order mark at the start of the text is not counted. What lies outside the text
    /// is brought to the nearest place inside.
    [[nodiscard]] std::size_t sourceOffset(std::int64_t line, std::int64_t column) const noexcept;

    /// Puts a text in the place of a range of bytes, which lies in the text.
    void replace(ByteRange range, std::string_view text);

    /// Bytes held for the lines.
    [[nodiscard]] std::size_t memory() const noexcept {
        return text_.capacity() + sizeof(std::uint32_t) * (lines_.capacity() + sourceLines_.capacity());
    }

  private:
    void findLines();

    std::string text_;
    std::vector<std::uint32_t> lines_;       ///< begin of every line
    std::vector<std::uint32_t> sourceLines_; ///< the parser's lines; empty when they are the same
};

/// Turns offsets into places. Asked in ascending order, it walks every byte once.
class PositionWalk {
  public:
    PositionWalk(const TextBuffer& buffer, PositionUnit unit) noexcept : buffer_(&buffer), unit_(unit) {}

    /// The place of an offset; one behind the text is the end of the text.
    [[nodiscard]] Position at(std::size_t offset) noexcept;

  private:
    const TextBuffer* buffer_;
    PositionUnit unit_;
    std::size_t line_ = 0;
    std::size_t offset_ = 0;    ///< of the place reached last
    std::size_t character_ = 0; ///< of the same
};

/// The number of units of a text.
[[nodiscard]] std::size_t unitCount(std::string_view text, PositionUnit unit) noexcept;

} // namespace morquill::lsp
