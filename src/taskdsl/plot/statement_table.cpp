#include "taskdsl/plot/statements.h"

#include <algorithm>
#include <cstddef>

namespace morquill::taskdsl::plot {

namespace {

using enum PlotKind;

/// What a plot may say: the word and its aliases, the function that reads it, and the kinds that refuse it
/// with the words of the refusal.
constexpr StatementRow rows[] = {
    {"from", readFrom},
    {"axis", readAxis},
    {"legend", readLegend},
    {"title", readTitle},
    {"output", readOutput},
    {"format", readFormat},
    {"terminal", readTerminal},
    {"size", readSize},
    {"style", readStyle},
    {"theme", readTheme},
    {"missing", readMissing},

    {"x", readX, {{{kinds(barrier, frontier, excited), "x is not valid in a barrier or frontier plot"}}}},
    {"y",
     readY,
     {{{kinds(barrier, frontier, excited), "y is not valid in a barrier or frontier plot"},
       {kinds(histogram), "histogram plot uses x and bins; y is not valid"}}}},
    {"intensity", readY, {{{allBut(spectrum), "intensity is only valid in a spectrum plot"}}}},
    {"z", readZ, {{{allBut(heatmap), "z is only valid in a heatmap plot"}}}},
    {"yerr yerror error", readYerr, {{{allBut(errorbar), "yerr is only valid in an errorbar plot"}}}},
    {"series",
     readSeries,
     {{{allBut(convergence, curve),
        "named series are currently supported only in convergence and curve plots"}}},
     RefusalTime::afterReading},
    {"threshold", readThreshold, {{{allBut(convergence), "threshold is only valid in a convergence plot"}}}},
    // The words name one kind for whatever kind refuses.
    {"relative", readRelative, {{{allBut(barrier, curve), "relative is not valid in a convergence plot"}}}},
    {"sort",
     readSort,
     {{{allBut(curve, spectrum, bar, errorbar),
        "sort is only valid in a curve, spectrum, bar, or errorbar plot"}}}},
    {"mode", readMode, {{{allBut(spectrum), "mode is only valid in a spectrum plot"}}}},
    {"broaden", readBroaden, {{{allBut(spectrum), "broaden is only valid in a spectrum plot"}}}},
    {"range",
     readRange,
     {{{allBut(spectrum, histogram), "range is only valid in a spectrum or histogram plot"}}}},
    {"bins", readBins, {{{allBut(histogram), "bins is only valid in a histogram plot"}}}},
    {"density", readDensity, {{{allBut(histogram), "density is only valid in a histogram plot"}}}},
    {"limit", readLimit, {{{allBut(bar), "limit is only valid in a bar plot"}}}},
    {"diagonal", readDiagonal, {{{allBut(scatter), "diagonal is only valid in a scatter plot"}}}},
    {"fit", readFit, {{{allBut(scatter), "fit is only valid in a scatter plot"}}}},
    {"metrics", readMetrics, {{{allBut(scatter), "metrics is only valid in a scatter plot"}}}},

    {"point", readPoint, {{{allBut(barrier), "point is only valid in a barrier plot"}}}},
    {"column system",
     readColumn,
     {{{allBut(frontier, excited), "column is only valid in a frontier or excited-state level plot"}}}},
    {"orbitals orbital", readOrbitals, {{{allBut(frontier), "orbitals is only valid in a frontier plot"}}}},
    {"spin", readSpin, {{{allBut(frontier), "spin is only valid in a frontier plot"}}}},
    {"roots root states state",
     readRoots,
     {{{allBut(excited), "roots is only valid in an excited-state level plot"}}}},
    {"arrow transition",
     readArrow,
     {{{allBut(excited), "arrow is only valid in an excited-state level plot"}}}},
    {"unit",
     readUnit,
     {{{allBut(barrier, frontier, excited),
        "top-level unit is only valid in a barrier, frontier, or excited-state level plot"}}}},
};

/// What a barrier point may say on the lines directly below it.
constexpr StatementRow pointRows[] = {
    {"label", readPointLabel},
    {"value", readPointValue},
};

/// One statement word, to be found by binary search.
struct IndexEntry {
    std::string_view word;
    const StatementRow* row = nullptr;
};

constexpr std::size_t countWords() {
    std::size_t count = 0;
    for (const auto& row : rows) {
        count += 1 + static_cast<std::size_t>(std::count(row.words.begin(), row.words.end(), ' '));
    }
    return count;
}

constexpr auto wordIndex = [] {
    std::array<IndexEntry, countWords()> index{};
    std::size_t at = 0;
    for (const auto& row : rows) {
        for (std::string_view words = row.words; !words.empty();) {
            const std::size_t end = std::min(words.find(' '), words.size());
            index[at++] = {words.substr(0, end), &row};
            words.remove_prefix(std::min(end + 1, words.size()));
        }
    }
    std::sort(index.begin(), index.end(),
              [](const IndexEntry& left, const IndexEntry& right) { return left.word < right.word; });
    return index;
}();

} // namespace

const StatementRow* findStatement(std::string_view word) noexcept {
    const auto found = std::lower_bound(
        wordIndex.begin(), wordIndex.end(), word,
        [](const IndexEntry& entry, std::string_view wanted) { return entry.word < wanted; });
    return found != wordIndex.end() && found->word == word ? found->row : nullptr;
}

const StatementRow* findPointStatement(std::string_view word) noexcept {
    for (const auto& row : pointRows) {
        if (row.words == word) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace morquill::taskdsl::plot
