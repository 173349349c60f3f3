#include "lint/parse_fault.h"

#include "support/text.h"

#include <charconv>
#include <limits>
#include <optional>

namespace morquill::lint {

namespace {

constexpr std::string_view errorWord = "error:";

/// Takes a text apart from its end.
class BackwardScan {
  public:
    explicit BackwardScan(std::string_view scanned) : text(scanned) {}

    void skipSpace() noexcept {
        while (!text.empty() && isSpace(text.back())) {
            text.remove_suffix(1);
        }
    }
    bool take(char c) noexcept {
        if (text.empty() || text.back() != c) {
            return false;
        }
        text.remove_suffix(1);
        return true;
    }
    /// A run of digits; a number too large for a coordinate is the largest one.
    bool takeNumber(std::int32_t& value) noexcept {
        std::size_t begin = text.size();
        while (begin > 0 && isDigit(text[begin - 1])) {
            --begin;
        }
        const auto digits = text.substr(begin);
        if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec ==
            std::errc::result_out_of_range) {
            value = std::numeric_limits<std::int32_t>::max();
        }
        text.remove_suffix(digits.size());
        return !digits.empty();
    }
    /// `:<line>:<column>`, but for what stands before the line.
    bool takePlace(std::int32_t& line, std::int32_t& column) noexcept {
        return takeNumber(column) && take(':') && takeNumber(line);
    }
    [[nodiscard]] std::string_view rest() const noexcept { return text; }

  private:
    std::string_view text;
};

struct FaultPlace {
    std::string_view file;
    taskdsl::SourceSpan span; ///< without its path
};

/// The place in front of an "error:", when there is one.
std::optional<FaultPlace> readPlace(std::string_view beforeError) noexcept {
    BackwardScan scan(beforeError);
    scan.skipSpace();
    taskdsl::SourceSpan span;
    if (!scan.take(':') || !scan.takePlace(span.endLine, span.endColumn)) {
        return std::nullopt;
    }
    span.line = span.endLine;
    span.column = span.endColumn;
    if (scan.take('-') && !scan.takePlace(span.line, span.column)) {
        return std::nullopt;
    }
    if (!scan.take(':')) {
        return std::nullopt;
    }
    return FaultPlace{scan.rest(), span};
}

} // namespace

// Pattern: (.*):(\d+):(\d+)(?:-(\d+):(\d+))?:\s*error:\s*(.*) over the whole text, where `.` takes no line
// feed and no carriage return. The file is the longest text that fits, so the last "error:" with a place in
// front decides.
ParseFaultParts splitParseFault(std::string_view text) {
    const auto firstBreak = text.find_first_of("\r\n");
    const auto lastBreak = text.find_last_of("\r\n");
    for (auto at = text.rfind(errorWord); at != std::string_view::npos;
         at = at == 0 ? std::string_view::npos : text.rfind(errorWord, at - 1)) {
        std::size_t begin = at + errorWord.size();
        while (begin < text.size() && isSpace(text[begin])) {
            ++begin;
        }
        if (lastBreak != std::string_view::npos && lastBreak >= begin) {
            break; // earlier ones have that line break behind them too
        }
        auto place = readPlace(text.substr(0, at));
        if (place && (firstBreak == std::string_view::npos || firstBreak >= place->file.size())) {
            place->span.path = SharedText(place->file);
            return {std::string(place->file), place->span, std::string(text.substr(begin))};
        }
    }
    return {{}, {}, std::string(text)};
}

} // namespace morquill::lint
