#include "lsp/base/line_diff.h"

#include <algorithm>
#include <cstddef>

namespace morquill::lsp {

namespace {

using Lines = std::vector<std::string_view>;

/// The lines with their line ends.
Lines wholeLines(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const auto feed = text.find('\n');
        const auto size = feed == std::string_view::npos ? text.size() : feed + 1;
        lines.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

/// Lines of the old text that are kept, each with its line of the new one.
using Matches = std::vector<std::pair<std::size_t, std::size_t>>;

/// The greedy algorithm of Myers over the lines between the common ends, up to `maxEdits` insertions and
/// deletions; no matches when there are more.
class Myers {
  public:
    static constexpr std::ptrdiff_t maxEdits = 1000;

    Myers(const Lines& from, const Lines& to, std::size_t first, std::size_t fromEnd, std::size_t toEnd)
        : from_(from), to_(to), first_(first), fromSize_(static_cast<std::ptrdiff_t>(fromEnd - first)),
          toSize_(static_cast<std::ptrdiff_t>(toEnd - first)) {}

    Matches run() {
        std::vector<std::ptrdiff_t> furthest(2 * maxEdits + 3, 0);
        std::vector<std::vector<std::ptrdiff_t>> trace;
        for (std::ptrdiff_t edits = 0; edits <= maxEdits; ++edits) {
            trace.emplace_back(furthest.begin() + (maxEdits + 1 - edits - 1),
                               furthest.begin() + (maxEdits + 1 + edits + 2));
            for (std::ptrdiff_t k = -edits; k <= edits; k += 2) {
                auto& x = furthest[static_cast<std::size_t>(maxEdits + 1 + k)];
                x = startOf(furthest, k, edits);
                while (x < fromSize_ && x - k < toSize_ && same(x, x - k)) {
                    ++x;
                }
                if (x >= fromSize_ && x - k >= toSize_) {
                    return matchesOf(trace, edits);
                }
            }
        }
        return {};
    }

  private:
    [[nodiscard]] bool same(std::ptrdiff_t x, std::ptrdiff_t y) const {
        return from_[first_ + static_cast<std::size_t>(x)] == to_[first_ + static_cast<std::size_t>(y)];
    }

    static std::ptrdiff_t startOf(const std::vector<std::ptrdiff_t>& furthest, std::ptrdiff_t k,
                                  std::ptrdiff_t edits) {
        const auto at = static_cast<std::size_t>(maxEdits + 1 + k);
        const bool down = k == -edits || (k != edits && furthest[at - 1] < furthest[at + 1]);
        return down ? furthest[at + 1] : furthest[at - 1] + 1;
    }

    /// Walks back from the end through the states before each round.
    [[nodiscard]] Matches matchesOf(const std::vector<std::vector<std::ptrdiff_t>>& trace,
                                    std::ptrdiff_t edits) const {
        Matches matches;
        std::ptrdiff_t x = fromSize_;
        std::ptrdiff_t y = toSize_;
        for (; edits >= 0; --edits) {
            const auto& state = trace[static_cast<std::size_t>(edits)]; // diagonals -edits-1 .. edits+1
            const auto at = [&](std::ptrdiff_t k) { return state[static_cast<std::size_t>(k + edits + 1)]; };
            const auto k = x - y;
            const bool down = k == -edits || (k != edits && at(k - 1) < at(k + 1));
            const auto fromX = edits == 0 ? 0 : (down ? at(k + 1) : at(k - 1) + 1);
            while (x > fromX) {
                --x;
                --y;
                matches.emplace_back(first_ + static_cast<std::size_t>(x),
                                     first_ + static_cast<std::size_t>(y));
            }
            if (edits > 0) {
                (down ? y : x) -= 1;
            }
        }
        std::reverse(matches.begin(), matches.end());
        return matches;
    }

    const Lines& from_;
    const Lines& to_;
    std::size_t first_;
    std::ptrdiff_t fromSize_;
    std::ptrdiff_t toSize_;
};

} // namespace

std::vector<LineEdit> lineEdits(std::string_view from, std::string_view to) {
    const auto old = wholeLines(from);
    const auto made = wholeLines(to);
    std::size_t first = 0;
    while (first < old.size() && first < made.size() && old[first] == made[first]) {
        ++first;
    }
    std::size_t oldEnd = old.size();
    std::size_t madeEnd = made.size();
    while (oldEnd > first && madeEnd > first && old[oldEnd - 1] == made[madeEnd - 1]) {
        --oldEnd;
        --madeEnd;
    }
    auto matches = Myers(old, made, first, oldEnd, madeEnd).run();
    matches.emplace_back(oldEnd, madeEnd);

    const auto placeOf = [](const Lines& lines, std::size_t line, std::string_view whole) {
        return line < lines.size() ? static_cast<std::size_t>(lines[line].data() - whole.data())
                                   : whole.size();
    };
    std::vector<LineEdit> edits;
    std::size_t oldAt = first;
    std::size_t madeAt = first;
    for (const auto& [oldLine, madeLine] : matches) {
        if (oldLine > oldAt || madeLine > madeAt) {
            const auto begin = placeOf(made, madeAt, to);
            edits.push_back({{placeOf(old, oldAt, from), placeOf(old, oldLine, from)},
                             to.substr(begin, placeOf(made, madeLine, to) - begin)});
        }
        oldAt = oldLine + 1;
        madeAt = madeLine + 1;
    }
    return edits;
}

} // namespace morquill::lsp
