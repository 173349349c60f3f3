#include "templates/library/supersequence.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace morquill::templates {

namespace {

using Lines = std::vector<std::string_view>;
using Symbols = std::vector<std::uint32_t>;
using Bits = std::vector<std::uint64_t>;
constexpr std::size_t wordBits = 64;

/// Gives equal lines equal numbers.
class SymbolTable {
  public:
    Symbols number(const std::string_view* begin, const std::string_view* end) {
        Symbols symbols;
        for (; begin != end; ++begin) {
            symbols.push_back(
                numbers.try_emplace(*begin, static_cast<std::uint32_t>(numbers.size())).first->second);
        }
        return symbols;
    }
    [[nodiscard]] std::size_t size() const noexcept { return numbers.size(); }

  private:
    std::unordered_map<std::string_view, std::uint32_t> numbers;
};

/// For every symbol the places where it stands in a text, as a bit row.
class PlaceMasks {
  public:
    PlaceMasks(const Symbols& text, std::size_t symbolCount)
        : places(symbolCount), frequent(symbolCount), scratch((text.size() + wordBits - 1) / wordBits) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            places[text[i]].push_back(i);
        }
    }
    /// Valid until the next call.
    const Bits& of(std::uint32_t symbol) {
        // A symbol with more places than the row has words is kept as a row: there are at most 64 of them.
        // The others are set one by one, which costs no more than the walk over the row that follows.
        if (places[symbol].size() > scratch.size()) {
            Bits& row = frequent[symbol];
            if (row.empty()) {
                row.resize(scratch.size());
                flip(row, symbol);
            }
            return row;
        }
        flip(scratch, inScratch);
        flip(scratch, symbol);
        inScratch = symbol;
        return scratch;
    }

  private:
    void flip(Bits& row, std::uint32_t symbol) const {
        if (symbol < places.size()) {
            for (const auto place : places[symbol]) {
                row[place / wordBits] ^= std::uint64_t{1} << place % wordBits;
            }
        }
    }

    std::vector<std::vector<std::size_t>> places;
    std::vector<Bits> frequent;
    Bits scratch;
    std::uint32_t inScratch = UINT32_MAX;
};

/// The lengths of the longest common subsequences of all prefixes of two texts. Row i, for the first i
/// symbols of `first`, is a bit row over `second`: a cleared bit says that the length grows at that place.
/// Rows follow from one another with a few word operations, so only every k-th one is kept and the rows
/// between two of them are made again when they are asked for, from the last to the first.
class CommonLengths {
  public:
    CommonLengths(const Symbols& first, const Symbols& second, std::size_t symbolCount)
        : first_(first), masks(second, symbolCount),
          step(static_cast<std::size_t>(std::sqrt(static_cast<double>(first.size()))) + 1) {
        Bits row((second.size() + wordBits - 1) / wordBits, ~std::uint64_t{0});
        for (std::size_t i = 0;; ++i) {
            if (i % step == 0) {
                kept.push_back(row);
            }
            if (i == first.size()) {
                break;
            }
            advance(row, first[i]);
        }
    }

    /// The length for the first `i` and the first `j` symbols; `i` may not grow by more than one from call to
    /// call if the cost is to stay low.
    std::size_t at(std::size_t i, std::size_t j) {
        const Bits& row = rowOf(i);
        std::size_t grown = 0;
        for (std::size_t word = 0; word < j / wordBits; ++word) {
            grown += static_cast<std::size_t>(std::popcount(~row[word]));
        }
        if (j % wordBits != 0) {
            grown += static_cast<std::size_t>(std::popcount(~row[j / wordBits] << (wordBits - j % wordBits)));
        }
        return grown;
    }

  private:
    void advance(Bits& row, std::uint32_t symbol) {
        const Bits& mask = masks.of(symbol);
        std::uint64_t carry = 0;
        for (std::size_t word = 0; word < row.size(); ++word) {
            const std::uint64_t old = row[word];
            const std::uint64_t hits = old & mask[word];
            const std::uint64_t partial = old + hits;
            const std::uint64_t sum = partial + carry;
            carry = static_cast<std::uint64_t>(partial < old || sum < partial);
            row[word] = sum | (old & ~mask[word]);
        }
    }

    /// The window holds the rows from one kept row to the next, that one included: the walk compares row i
    /// with row i - 1, and both lie in one window.
    const Bits& rowOf(std::size_t i) {
        if (window.empty() || i < windowStart || i >= windowStart + window.size()) {
            windowStart = i / step * step;
            window.assign(1, kept[i / step]);
            while (window.size() <= step && windowStart + window.size() <= first_.size()) {
                Bits next = window.back();
                advance(next, first_[windowStart + window.size() - 1]);
                window.push_back(std::move(next));
            }
        }
        return window[i - windowStart];
    }

    const Symbols& first_;
    PlaceMasks masks;
    std::size_t step;
    std::vector<Bits> kept;
    std::vector<Bits> window;
    std::size_t windowStart = 0;
};

} // namespace

std::vector<std::string_view> shortestCommonSupersequence(const Lines& first, const Lines& second) {
    const auto shorter = std::min(first.size(), second.size());
    std::size_t front = 0;
    while (front < shorter && first[front] == second[front]) {
        ++front;
    }
    std::size_t back = 0;
    while (back < shorter - front && first[first.size() - 1 - back] == second[second.size() - 1 - back]) {
        ++back;
    }

    SymbolTable table;
    const auto a = table.number(first.data() + front, first.data() + first.size() - back);
    const auto b = table.number(second.data() + front, second.data() + second.size() - back);
    CommonLengths common(a, b, table.size());
    // From the ends to the fronts; the supersequence of the first i and the first j lines is i + j - common
    // long.
    Lines reversed(first.rbegin(), first.rbegin() + static_cast<std::ptrdiff_t>(back));
    std::size_t i = a.size();
    std::size_t j = b.size();
    while (i > 0 && j > 0) {
        if (a[i - 1] == b[j - 1]) {
            reversed.push_back(first[front + --i]);
            --j;
        } else if (common.at(i, j - 1) >= common.at(i - 1, j)) {
            reversed.push_back(second[front + --j]);
        } else {
            reversed.push_back(first[front + --i]);
        }
    }
    while (j > 0) {
        reversed.push_back(second[front + --j]);
    }
    for (i += front; i > 0;) {
        reversed.push_back(first[--i]);
    }
    return {reversed.rbegin(), reversed.rend()};
}

} // namespace morquill::templates
