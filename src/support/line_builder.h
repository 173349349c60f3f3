#pragma once

#include "support/large_memory.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace morquill {

/// Builds a text line by line. Every line begins with the indent: a fixed text, then two blanks per level.
/// Pieces are texts; the functions that add return the builder itself.
class LineBuilder {
  public:
    explicit LineBuilder(std::string_view indent = {}) : indent_(indent) {}

    /// Adds a whole line.
    template <class... Pieces>
    LineBuilder& line(const Pieces&... pieces) {
        return open(pieces...).close();
    }
    /// Adds a line made of a label and a value, unless the value is empty.
    LineBuilder& filled(std::string_view label, std::string_view value) {
        return value.empty() ? *this : line(label, value);
    }

    /// Begins a line.
    template <class... Pieces>
    LineBuilder& open(const Pieces&... pieces) {
        text_ += indent_;
        text_.append(blanksPerLevel * level_, ' ');
        return add(pieces...);
    }
    /// Adds to the open line, or adds lines that have their own line ends.
    template <class... Pieces>
    LineBuilder& add(const Pieces&... pieces) {
        (text_.append(std::string_view(pieces)), ...);
        return *this;
    }
    /// Adds what `write` appends to the text that it is given.
    template <class Write>
    LineBuilder& addWith(const Write& write) {
        write(text_);
        return *this;
    }
    /// Ends the open line.
    LineBuilder& close() {
        text_ += '\n';
        return *this;
    }

    /// Indents the following lines by one level more.
    void deeper() noexcept { ++level_; }
    /// Indents the following lines by one level less.
    void shallower() noexcept { level_ -= level_ > 0 ? 1 : 0; }

    /// Reserves room for a text of about that many bytes.
    void reserve(std::size_t bytes) { reserveLarge(text_, bytes); }

    /// The size of the text so far, in bytes.
    [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }
    [[nodiscard]] bool empty() const noexcept { return text_.empty(); }
    /// The text so far; valid until the next change.
    [[nodiscard]] std::string_view text() const noexcept { return text_; }
    /// The text so far from the byte `begin` on.
    [[nodiscard]] std::string_view textFrom(std::size_t begin) const noexcept {
        return std::string_view(text_).substr(begin);
    }

    /// Removes everything past the first `size` bytes.
    void cutTo(std::size_t size) { text_.resize(size); }
    /// Returns the whole text and leaves the builder empty.
    [[nodiscard]] std::string take() { return std::exchange(text_, {}); }

  private:
    static constexpr std::size_t blanksPerLevel = 2;

    std::string text_;
    std::string_view indent_;
    std::size_t level_ = 0;
};

} // namespace morquill
