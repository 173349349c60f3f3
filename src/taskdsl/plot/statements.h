#pragma once

#include "taskdsl/plot/kind_set.h"
#include "taskdsl/plot/reading.h"

#include <array>
#include <string_view>

/// The statements of a plot body, one function per row of the statement table. Internal to the parser.
namespace morquill::taskdsl::plot {

/// Kinds in which a statement is refused, and the words of the refusal.
struct Refusal {
    KindSet kinds = 0;
    std::string_view message;
};

/// When the kind of the plot is looked at.
enum class RefusalTime { beforeReading, afterReading };

/// What the parser knows about a statement word.
struct StatementRow {
    std::string_view words; ///< the word and its aliases, separated by blanks
    void (*read)(PlotReading&, const Statement&);
    std::array<Refusal, 2> refusals{};
    RefusalTime refused = RefusalTime::beforeReading;
};

/// The row of a lower-case statement word; null for an unknown one.
[[nodiscard]] const StatementRow* findStatement(std::string_view word) noexcept;
/// The row of a word that only a barrier point which has just been opened takes; null for any other word.
[[nodiscard]] const StatementRow* findPointStatement(std::string_view word) noexcept;

// Every kind (plot_statements.cpp).
void readFrom(PlotReading&, const Statement&);
void readAxis(PlotReading&, const Statement&);
void readLegend(PlotReading&, const Statement&);
void readTitle(PlotReading&, const Statement&);
void readOutput(PlotReading&, const Statement&);
void readFormat(PlotReading&, const Statement&);
void readTerminal(PlotReading&, const Statement&);
void readSize(PlotReading&, const Statement&);
void readStyle(PlotReading&, const Statement&);
void readTheme(PlotReading&, const Statement&);
void readMissing(PlotReading&, const Statement&);

// Data and the way they are drawn (data_statements.cpp).
void readX(PlotReading&, const Statement&);
void readY(PlotReading&, const Statement&);
void readZ(PlotReading&, const Statement&);
void readYerr(PlotReading&, const Statement&);
void readSeries(PlotReading&, const Statement&);
void readThreshold(PlotReading&, const Statement&);
void readRelative(PlotReading&, const Statement&);
void readSort(PlotReading&, const Statement&);
void readMode(PlotReading&, const Statement&);
void readBroaden(PlotReading&, const Statement&);
void readRange(PlotReading&, const Statement&);
void readBins(PlotReading&, const Statement&);
void readDensity(PlotReading&, const Statement&);
void readLimit(PlotReading&, const Statement&);
void readDiagonal(PlotReading&, const Statement&);
void readFit(PlotReading&, const Statement&);
void readMetrics(PlotReading&, const Statement&);

// Barrier points and level columns (level_statements.cpp).
void readPoint(PlotReading&, const Statement&);
void readPointLabel(PlotReading&, const Statement&);
void readPointValue(PlotReading&, const Statement&);
void readColumn(PlotReading&, const Statement&);
void readOrbitals(PlotReading&, const Statement&);
void readSpin(PlotReading&, const Statement&);
void readRoots(PlotReading&, const Statement&);
void readArrow(PlotReading&, const Statement&);
void readUnit(PlotReading&, const Statement&);

} // namespace morquill::taskdsl::plot
