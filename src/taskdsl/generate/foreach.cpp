#include "taskdsl/generate/foreach.h"

#include "support/cursor.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/foreach_header.h"
#include "taskdsl/base/growth.h"
#include "taskdsl/base/limits.h"
#include "taskdsl/base/line_blocks.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

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
    const auto number = [&source](std::string_view digits) {
        std::int64_t value = 0;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc{}) {
            throw DiagnosticError("@foreach source '" + source + "' has a number beyond 64 bits");
        }
        return value;
    };
    return {number(first), number(last)};
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

/// A `@foreach` header, with texts of its own because its line may be moved away, and its "@end".
struct Loop {
    std::string name;
    std::optional<std::string> source;
    bool isOptional = false;
    std::optional<std::size_t> end;
};

/// The values of the items around a line, one layer per loop.
class ItemValues {
  public:
    explicit ItemValues(const ValueMap& outer) : values_(outer) {}
    [[nodiscard]] const ValueMap& get() const noexcept { return values_; }

    /// What a layer hides: each key and its former value.
    using Layer = std::vector<std::pair<std::string, std::optional<std::string>>>;

    [[nodiscard]] Layer push(const std::string& name, const ValueMap& item) {
        Layer layer;
        for (const auto& [key, value] : item) {
            std::string whole = std::string(name).append(".").append(key);
            const auto [entry, isNew] = values_.try_emplace(whole, value);
            layer.emplace_back(std::move(whole), std::nullopt);
            if (!isNew) {
                layer.back().second = std::exchange(entry->second, value);
            }
        }
        return layer;
    }
    void pop(Layer&& layer) {
        for (auto& [key, former] : layer) {
            if (former) {
                values_.insert_or_assign(std::move(key), std::move(*former));
            } else {
                values_.erase(key);
            }
        }
    }

  private:
    ValueMap values_;
};

/// The lines of a loop between its header and its "@end".
struct LoopBody {
    std::size_t begin = 0;
    std::size_t end = 0;
};

class ForeachPass {
  public:
    ForeachPass(std::vector<SourceLine> allLines, const Collections& named, const ValueMap& outer)
        : lines_(std::move(allLines)), collections_(named), values_(outer) {
        findLoops();
    }

    std::vector<SourceLine> run() {
        result_.reserve(lines_.size());
        walk(0, lines_.size(), 0);
        return std::move(result_);
    }

  private:
    /// Finds the "@end" of every header in one walk. The count looks at headers and "@end" lines alone: an
    /// "@end" of a block inside a loop closes the loop.
    void findLoops() {
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            if (lines_[i].kind() == LineKind::loop) {
                loops_.emplace(i, loopOf(lines_[i]));
                open.push_back(i);
            } else if (lines_[i].kind() == LineKind::end && !open.empty()) {
                loops_.find(open.back())->second.end = i;
                open.pop_back();
            }
        }
    }

    static Loop loopOf(const SourceLine& line) {
        const auto header = parseForeachHeader(line.clean()).value();
        return {std::string(header.name), std::optional<std::string>(header.source), header.isOptional, {}};
    }

    void walk(std::size_t begin, std::size_t end, std::size_t depth) {
        for (std::size_t i = begin; i < end; ++i) {
            switch (lines_[i].kind()) {
            case LineKind::plot:
                i = copyBlock(i, end, depth, "@plot");
                break;
            case LineKind::derive:
                i = copyBlock(i, end, depth, "@derive");
                break;
            case LineKind::end:
                throw DiagnosticError("unexpected @end without matching @foreach");
            case LineKind::loop:
                i = repeat(i, depth);
                break;
            default:
                take(i, depth);
            }
        }
    }

    /// Copies a block through its "@end" and returns the index of that line.
    std::size_t copyBlock(std::size_t begin, std::size_t limit, std::size_t depth, std::string_view keyword) {
        const BlockEnd end = findBlockEnd(lines_, begin, limit);
        if (!end.isClosed) {
            throw DiagnosticError("unterminated " + std::string(keyword) + " block");
        }
        for (std::size_t i = begin; i <= end.index; ++i) {
            take(i, depth);
        }
        return end.index;
    }

    /// Repeats a loop and returns the index of its "@end".
    std::size_t repeat(std::size_t begin, std::size_t depth) {
        const Loop& loop = loops_.find(begin)->second;
        if (!loop.end) {
            throw DiagnosticError("unterminated @foreach block for collection '" + loop.name +
                                  (loop.source ? " in " + *loop.source : "") + "'");
        }
        if (depth == limits::foreachDepth) {
            throw DiagnosticError("@foreach blocks are nested more than " +
                                  std::to_string(limits::foreachDepth) + " deep");
        }
        if (loop.source) {
            repeatForSeries(loop.name, *loop.source, {begin + 1, *loop.end}, depth);
        } else if (const auto found = collections_.find(loop.name); found != collections_.end()) {
            for (const auto& item : found->second) {
                repeatFor(loop.name, item, {begin + 1, *loop.end}, depth);
            }
        } else if (!loop.isOptional) {
            throw DiagnosticError("undefined @foreach collection '" + loop.name + "'");
        }
        return *loop.end;
    }

    void repeatForSeries(const std::string& name, const std::string& source, const LoopBody& body,
                         std::size_t depth) {
        const Series series = parseSeries(source);
        const std::size_t count = itemCount(series, source);
        std::int64_t number = series.first;
        for (std::size_t index = 1; index <= count; ++index) {
            const auto text = std::to_string(number);
            repeatFor(name, {{"index", std::to_string(index)}, {"series", text}, {"value", text}}, body,
                      depth);
            if (index < count) { // the last number may be the largest or smallest of its type
                number += series.first <= series.last ? 1 : -1;
            }
        }
    }

    void repeatFor(const std::string& name, const ValueMap& item, const LoopBody& body, std::size_t depth) {
        growth_.takeRepetition();
        auto layer = values_.push(name, item);
        walk(body.begin, body.end, depth + 1);
        values_.pop(std::move(layer));
    }

    /// A line outside every loop is met once and moved, one inside a loop is copied for every item.
    void take(std::size_t i, std::size_t depth) {
        if (depth == 0) {
            result_.push_back(std::move(lines_[i]));
            result_.back().substitute(values_.get());
            return;
        }
        result_.push_back(lines_[i]);
        result_.back().substitute(values_.get());
        growth_.takeLine(result_.back().text().size());
    }

    std::vector<SourceLine> lines_;
    const Collections& collections_;
    ItemValues values_;
    std::map<std::size_t, Loop> loops_;
    std::vector<SourceLine> result_;
    GrowthBudget growth_;
};

/// True when there is something to repeat or to check.
bool holdsBlocks(const std::vector<SourceLine>& lines) noexcept {
    return std::any_of(lines.begin(), lines.end(), [](const SourceLine& line) {
        return opensBlock(line.kind()) || line.kind() == LineKind::loop || line.kind() == LineKind::end;
    });
}

} // namespace

std::vector<SourceLine> expandForeach(std::vector<SourceLine> lines, const Collections& collections,
                                      const ValueMap& values) {
    if (values.empty() && !holdsBlocks(lines)) {
        return lines;
    }
    return ForeachPass(std::move(lines), collections, values).run();
}

} // namespace morquill::taskdsl
