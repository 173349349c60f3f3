#include "templates/library/supersequence.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace morquill::templates {

namespace {

using LineViews = std::vector<std::string_view>;
using Symbols = std::vector<std::uint32_t>;
using Bits = std::vector<std::uint64_t>;
constexpr std::size_t wordBits = 64;

/// Assigns equal numbers to equal lines.
class SymbolTable {
  public:
    Symbols number(const std::string_view* begin, const std::string_view* end) {
        Symbols symbols;
        for (; begin != end; ++begin) {
            symbols.push_back(
                numbers_.try_emplace(*begin, static_cast<std::uint32_t>(numbers_.size())).first->second);
        }
        return symbols;
    }
    [[nodiscard]] std::size_t size() const noexcept { return numbers_.size(); }

  private:
    std::unordered_map<std::string_view, std::uint32_t> numbers_;
};

/// The places of every symbol in a text, as a bit row.
class PlaceMasks {
  public:
    PlaceMasks(const Symbols& text, std::size_t symbolCount)
        : places_(symbolCount), frequent_(symbolCount), scratch_((text.size() + wordBits - 1) / wordBits) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            places_[text[i]].push_back(i);
        }
    }
    /// The row of a symbol; valid until the next call.
    const Bits& of(std::uint32_t symbol) {
        // A symbol with more places than the row has words is stored as a row:
        // there are at most 64 of them. For the others, the bits are set one
        // by one, which costs no more than the walk over the row that follows.
        if (places_[symbol].size() > scratch_.size()) {
            Bits& row = frequent_[symbol];
            if (row.empty()) {
                row.resize(scratch_.size());
                flip(row, symbol);
            }
            return row;
        }
        flip(scratch_, inScratch_);
        flip(scratch_, symbol);
        inScratch_ = symbol;
        return scratch_;
    }

  private:
    void flip(Bits& row, std::uint32_t symbol) const {
        if (symbol < places_.size()) {
            for (const auto place : places_[symbol]) {
                row[place / wordBits] ^= std::uint64_t{1} << place % wordBits;
            }
        }
    }

    std::vector<std::vector<std::size_t>> places_;
    std::vector<Bits> frequent_;
    Bits scratch_;
    std::uint32_t inScratch_ = UINT32_MAX;
};

/// The lengths of the longest common subsequences of all prefixes of two texts. Row i, for the first i
/// symbols of `first`, is a bit row over `second`: a cleared bit means that the length grows at that place.
/// Each row follows from the one before with a few operations per word, so only every k-th row is kept; those
/// between two kept ones are computed again when they are needed, from the last to the first.
class CommonLengths {
  public:
    CommonLengths(const Symbols& first, const Symbols& second, std::size_t symbolCount)
        : first_(first), masks_(second, symbolCount),
          step_(static_cast<std::size_t>(std::sqrt(static_cast<double>(first.size()))) + 1) {
        Bits row((second.size() + wordBits - 1) / wordBits, ~std::uint64_t{0});
        for (std::size_t i = 0;; ++i) {
            if (i % step_ == 0) {
                kept_.push_back(row);
            }
            if (i == first.size()) {
                break;
            }
            advance(row, first[i]);
        }
    }

    /// The length for the first `i` and the first `j` symbols. The cost is low as long as `i` falls, or grows
    /// by at most one, from call to call.
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
        const Bits& mask = masks_.of(symbol);
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

    /// The window reaches from one kept row to the next, inclusive: the walk compares row i with row i - 1,
    /// so both have to lie in the same window.
    const Bits& rowOf(std::size_t i) {
        if (window_.empty() || i < windowStart_ || i >= windowStart_ + window_.size()) {
            windowStart_ = i / step_ * step_;
            window_.assign(1, kept_[i / step_]);
            while (window_.size() <= step_ && windowStart_ + window_.size() <= first_.size()) {
                Bits next = window_.back();
                advance(next, first_[windowStart_ + window_.size() - 1]);
                window_.push_back(std::move(next));
            }
        }
        return window_[i - windowStart_];
    }

    const Symbols& first_;
    PlaceMasks masks_;
    std::size_t step_;
    std::vector<Bits> kept_;
    std::vector<Bits> window_;
    std::size_t windowStart_ = 0;
};

} // namespace

std::vector<std::string_view> shortestCommonSupersequence(const LineViews& first, const LineViews& second) {
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
    // From the ends to the beginnings; the supersequence of the first i and the first j lines has
    // i + j - common.at(i, j) lines.
    LineViews reversed(first.rbegin(), first.rbegin() + static_cast<std::ptrdiff_t>(back));
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
