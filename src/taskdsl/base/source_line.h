#pragma once

#include "taskdsl/base/line_kind.h"
#include "taskdsl/base/source_span.h"
#include "taskdsl/base/substitute.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

/// One line on its way through the parser. What it is by its own text is worked out once, when the text is
/// set.
class SourceLine {
  public:
    SourceLine(TextSlice text, SharedText path, std::uint32_t number = 0)
        : originPath(std::move(path)), lineNumber(number), text_(std::move(text)) {
        classify();
    }
    /// The line that `part`, a view into `whole`, shows.
    SourceLine(const TextSlice& whole, std::string_view part, const SharedText& path, std::uint32_t number)
        : originPath(path), lineNumber(number), text_(whole, part) {
        classify();
    }

    SharedText originPath;          ///< file it came from; empty means the file being parsed
    std::uint32_t lineNumber = 0;   ///< in its own file, from 1
    bool directiveBoundary = false; ///< a synthetic empty line that closes the directive block before it
    bool verbatim = false;          ///< belongs to a heredoc or text body and is taken as it is written

    /// The raw text without the line end: a piece of its file's text, or a text of its own once values were
    /// put in.
    [[nodiscard]] std::string_view text() const noexcept { return text_; }
    /// The text without its comment, trimmed; a piece of `text()`.
    [[nodiscard]] std::string_view clean() const noexcept { return clean_; }
    /// A piece of the line, to be kept beyond it.
    [[nodiscard]] TextSlice slice(std::string_view part) const { return text_.slice(part); }
    [[nodiscard]] LineKind kind() const noexcept { return kind_; }
    /// The place of the line in its file.
    [[nodiscard]] SourceSpan span() const { return spanOfLine(originPath, lineNumber, text_); }

    /// Puts the values of `[key]` in; a line that is changed is classified anew.
    void substitute(const ValueMap& values) {
        if (!values.empty() && text_.view().find('[') != std::string_view::npos) {
            putIn(values);
        }
    }

  private:
    void classify() noexcept;
    void putIn(const ValueMap& values);

    LineKind kind_ = LineKind::empty;
    TextSlice text_;
    std::string_view clean_; ///< into `text_`
};

/// The lines of a text, which hold it, numbered from 1.
[[nodiscard]] std::vector<SourceLine> makeSourceLines(const TextSlice& text, const SharedText& path);

/// A `@plot`, `%plot` or `@derive` block as it was found, before its own language is applied.
struct CapturedBlock {
    std::string header;            ///< text after the keyword, comment removed and trimmed
    SourceSpan span;               ///< the header line
    std::vector<SourceLine> lines; ///< the body, without the closing "@end"; every line has its origin path
};

} // namespace morquill::taskdsl
