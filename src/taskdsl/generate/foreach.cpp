#include "taskdsl/generate/foreach.h"

#include "support/cursor.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/growth.h"
#include "taskdsl/base/limits.h"
#include "taskdsl/base/scan.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

std::string_view dropSpaceBehind(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Takes `-?\d+`; nothing, and the cursor is where it was, when that does not come next.
std::string_view takeNumber(Cursor& cursor) noexcept {
    Cursor ahead = cursor;
    ahead.take('-');
    if (ahead.takeWhile(isDigit).empty()) {
        return {};
    }
    return cursor.takeTo(ahead.place());
}

struct Series {
    std::int64_t first = 0;
    std::int64_t last = 0;
};

/// Reads `^series\(\s*(-?\d+)\s*-\s*(-?\d+)\s*\)$`.
Series parseSeries(const std::string& source) {
    const auto unsupported = [&source] {
        return DiagnosticError("unsupported @foreach source expression '" + source + "'");
    };
    Cursor cursor(source);
    if (!cursor.take("series(")) {
        throw unsupported();
    }
    const auto first = takeNumber(cursor.skipSpace());
    if (first.empty() || !cursor.skipSpace().take('-')) {
        throw unsupported();
    }
    const auto last = takeNumber(cursor.skipSpace());
    if (last.empty() || cursor.skipSpace().rest() != ")") {
        throw unsupported();
    }
    Series series;
    const auto read = [](std::string_view digits, std::int64_t& value) {
        return std::from_chars(digits.data(), digits.data() + digits.size(), value).ec == std::errc{};
    };
    if (!read(first, series.first) || !read(last, series.last)) {
        throw DiagnosticError("@foreach source '" + source + "' has a number beyond 64 bits");
    }
    return series;
}

/// The number of items of a series, checked against the bound.
std::size_t itemCount(const Series& series, const std::string& source) {
    const auto low = static_cast<std::uint64_t>(std::min(series.first, series.last));
    const auto high = static_cast<std::uint64_t>(std::max(series.first, series.last));
    if (high - low >= limits::seriesItems) {
        throw DiagnosticError("@foreach source '" + source + "' has more than " +
                              std::to_string(limits::seriesItems) + " items");
    }
    return high - low + 1;
}

enum class LineKind : std::uint8_t { plain, plot, derive, header, end };

LineKind classify(std::string_view raw, ForeachHeader& header) {
    if (!trimLeft(raw).starts_with('@')) {
        return LineKind::plain;
    }
    const auto text = cleanLine(raw);
    if (beginsBlock(text, "@plot")) {
        return LineKind::plot;
    }
    if (beginsBlock(text, "@derive")) {
        return LineKind::derive;
    }
    if (text == "@end") {
        return LineKind::end;
    }
    header = parseForeachHeader(text);
    return header.valid ? LineKind::header : LineKind::plain;
}

/// A `@foreach` header and the "@end" that belongs to it; the line count when there is none.
struct Loop {
    ForeachHeader header;
    std::size_t end = 0;
};

/// The values of the items around a line, one layer per loop.
class ItemValues {
  public:
    explicit ItemValues(const ValueMap& outer) : values(outer) {}
    [[nodiscard]] const ValueMap& get() const noexcept { return values; }

    /// What a layer covered up: the key and its former value.
    using Layer = std::vector<std::pair<std::string, std::optional<std::string>>>;

    [[nodiscard]] Layer push(const std::string& name, const ValueMap& item) {
        Layer layer;
        for (const auto& [key, value] : item) {
            std::string whole = name + "." + key;
            const auto [entry, isNew] = values.try_emplace(whole, value);
            layer.emplace_back(std::move(whole), std::nullopt);
            if (!isNew) {
                layer.back().second = std::exchange(entry->second, value);
            }
        }
        return layer;
    }
    void pop(Layer layer) {
        for (auto& [key, former] : layer) {
            if (former) {
                values.insert_or_assign(std::move(key), std::move(*former));
            } else {
                values.erase(key);
            }
        }
    }

  private:
    ValueMap values;
};

class ForeachPass {
  public:
    ForeachPass(std::vector<SourceLine> allLines, const Collections& named, const ValueMap& outer)
        : lines(std::move(allLines)), collections(named), values(outer) {
        scan();
    }

    std::vector<SourceLine> run() {
        result.reserve(lines.size());
        walk(0, lines.size(), 0);
        return std::move(result);
    }

  private:
    /// Classifies every line and finds the "@end" of every header in one walk. The count looks at headers and
    /// "@end" lines alone: an "@end" of a block inside a loop closes the loop.
    void scan() {
        kinds.reserve(lines.size());
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            ForeachHeader header;
            kinds.push_back(classify(lines[i].text, header));
            if (kinds[i] == LineKind::header) {
                loops.emplace(i, Loop{std::move(header), lines.size()});
                open.push_back(i);
            } else if (kinds[i] == LineKind::end && !open.empty()) {
                loops.find(open.back())->second.end = i;
                open.pop_back();
            }
        }
    }

    void walk(std::size_t begin, std::size_t end, std::size_t depth) {
        for (std::size_t i = begin; i < end; ++i) {
            switch (kinds[i]) {
            case LineKind::plain:
                take(i, depth);
                break;
            case LineKind::plot:
                i = copyBlock(i, end, depth, "@plot");
                break;
            case LineKind::derive:
                i = copyBlock(i, end, depth, "@derive");
                break;
            case LineKind::end:
                throw DiagnosticError("unexpected @end without matching @foreach");
            case LineKind::header:
                i = repeat(i, depth);
                break;
            }
        }
    }

    /// Copies a block through its "@end" and gives the index of that line.
    std::size_t copyBlock(std::size_t begin, std::size_t end, std::size_t depth, std::string_view keyword) {
        for (std::size_t i = begin; i < end; ++i) {
            const bool last = kinds[i] == LineKind::end;
            take(i, depth);
            if (last) {
                return i;
            }
        }
        throw DiagnosticError("unterminated " + std::string(keyword) + " block");
    }

    /// Repeats a loop and gives the index of its "@end".
    std::size_t repeat(std::size_t begin, std::size_t depth) {
        const Loop& loop = loops.find(begin)->second;
        const ForeachHeader& header = loop.header;
        if (loop.end == lines.size()) {
            throw DiagnosticError("unterminated @foreach block for collection '" + header.name +
                                  (header.hasSource ? " in " + header.source : "") + "'");
        }
        if (depth == limits::foreachDepth) {
            throw DiagnosticError("@foreach blocks are nested more than " +
                                  std::to_string(limits::foreachDepth) + " deep");
        }
        if (header.hasSource) {
            repeatForSeries(header, begin + 1, loop.end, depth);
        } else if (const auto found = collections.find(header.name); found != collections.end()) {
            for (const auto& item : found->second) {
                repeatFor(header.name, item, begin + 1, loop.end, depth);
            }
        } else if (!header.optional) {
            throw DiagnosticError("undefined @foreach collection '" + header.name + "'");
        }
        return loop.end;
    }

    void repeatForSeries(const ForeachHeader& header, std::size_t begin, std::size_t end, std::size_t depth) {
        const Series series = parseSeries(header.source);
        const std::size_t count = itemCount(series, header.source);
        std::int64_t number = series.first;
        for (std::size_t index = 1; index <= count; ++index) {
            const auto text = std::to_string(number);
            repeatFor(header.name, {{"index", std::to_string(index)}, {"series", text}, {"value", text}},
                      begin, end, depth);
            if (index < count) { // the last number may be the last of its type
                number += series.first <= series.last ? 1 : -1;
            }
        }
    }

    void repeatFor(const std::string& name, const ValueMap& item, std::size_t begin, std::size_t end,
                   std::size_t depth) {
        growth.takeRepetition();
        auto layer = values.push(name, item);
        walk(begin, end, depth + 1);
        values.pop(std::move(layer));
    }

    /// A line outside every loop is met once and moved, one inside a loop is copied for every item.
    void take(std::size_t i, std::size_t depth) {
        SourceLine& line = lines[i];
        const bool substitutes = line.text.find('[') != std::string::npos && !values.get().empty();
        if (depth == 0) {
            if (substitutes) {
                line.text = substituteBrackets(line.text, values.get());
            }
            result.push_back(std::move(line));
            return;
        }
        if (substitutes) {
            result.push_back({substituteBrackets(line.text, values.get()), line.originPath, line.lineNumber,
                              line.directiveBoundary, line.verbatim});
        } else {
            result.push_back(line);
        }
        growth.takeLine(result.back().text.size());
    }

    std::vector<SourceLine> lines;
    const Collections& collections;
    ItemValues values;
    std::vector<LineKind> kinds;
    std::map<std::size_t, Loop> loops;
    std::vector<SourceLine> result;
    GrowthBudget growth;
};

bool holdsBlocks(const std::vector<SourceLine>& lines) noexcept {
    for (const auto& line : lines) {
        if (trimLeft(line.text).starts_with('@')) {
            return true;
        }
    }
    return false;
}

} // namespace

ForeachHeader parseForeachHeader(std::string_view text) {
    // ^@foreach(\?)?\s+([A-Za-z_][A-Za-z0-9_.-]*)\s+in\s+(.+?)\s*$, else the same without " in <source>"
    Cursor cursor(dropSpaceBehind(text));
    if (!cursor.take("@foreach")) {
        return {};
    }
    ForeachHeader header;
    header.optional = cursor.take('?');
    const auto keywordEnd = cursor.place();
    if (cursor.skipSpace().place() == keywordEnd || cursor.atEnd() || !isWordStart(cursor.rest().front())) {
        return {};
    }
    header.name = cursor.takeWhile(isKeyChar);
    header.valid = cursor.atEnd();
    const auto nameEnd = cursor.place();
    if (cursor.skipSpace().place() > nameEnd && matchWord(cursor.rest(), "in")) {
        cursor.take("in");
        header.source = cursor.skipSpace().rest();
        header.hasSource = !header.source.empty();
        header.valid = header.hasSource;
    }
    return header.valid ? header : ForeachHeader{};
}

std::vector<SourceLine> expandForeach(std::vector<SourceLine> lines, const Collections& collections,
                                      const ValueMap& values) {
    if (values.empty() && !holdsBlocks(lines)) {
        return lines;
    }
    return ForeachPass(std::move(lines), collections, values).run();
}

} // namespace morquill::taskdsl
