#include "taskdsl/plot/validate.h"

#include "support/text.h"
#include "taskdsl/plot/kind_set.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// The findings about one plot, as they come up.
struct Findings {
    const PlotSpec& plot;
    std::vector<PlotIssue> issues;

    /// A span without a place is replaced by that of the plot.
    void add(std::string_view code, std::string message, const SourceSpan& span) {
        issues.push_back(
            {PlotIssue::error, std::string(code), std::move(message), isValidSpan(span) ? span : plot.span});
    }
    void add(std::string_view code, std::string message) { add(code, std::move(message), plot.span); }
};

// Conditions of the rules that need no more than their message.

bool noName(const PlotSpec& plot) {
    return plot.name.empty();
}

bool badSize(const PlotSpec& plot) {
    return plot.width < 1 || plot.height < 1;
}

bool isCdxml(const PlotSpec& plot) {
    return plot.format == PlotOutputFormat::cdxml;
}

bool noX(const PlotSpec& plot) {
    return std::visit(
        [](const auto& data) {
            if constexpr (requires { data.x; }) {
                return !data.x.expression;
            }
            return true;
        },
        plot.data);
}

bool noY(const PlotSpec& plot) {
    return std::visit(
        [](const auto& data) {
            if constexpr (requires { data.y; }) {
                return !data.y.expression;
            } else if constexpr (requires { data.series; }) {
                return data.series.empty();
            }
            return true;
        },
        plot.data);
}

bool noZ(const PlotSpec& plot) {
    return !std::get<HeatmapPlotData>(plot.data).z.expression;
}

bool noYerr(const PlotSpec& plot) {
    return !std::get<ErrorbarPlotData>(plot.data).yerr.expression;
}

bool noSource(const PlotSpec& plot) {
    return plot.sourceKind == PlotSourceKind::unspecified;
}

bool noProjectSource(const PlotSpec& plot) {
    return noSource(plot) && plot.scope == PlotScope::project;
}

bool tooFewPoints(const PlotSpec& plot) {
    return std::get<BarrierPlotData>(plot.data).points.size() < 2;
}

bool broadensByNothing(const PlotSpec& plot) {
    const auto& data = std::get<SpectrumPlotData>(plot.data);
    return (data.mode == SpectrumMode::broadened || data.mode == SpectrumMode::sticksBroadened) &&
           data.broadening == BroadenFunction::none;
}

bool badWidth(const PlotSpec& plot) {
    const auto& data = std::get<SpectrumPlotData>(plot.data);
    return data.broadening != BroadenFunction::none && !(data.fwhm > 0); // NaN is not positive
}

bool broadensSamples(const PlotSpec& plot) {
    const auto& data = std::get<SpectrumPlotData>(plot.data);
    return data.mode == SpectrumMode::sampled && data.broadening != BroadenFunction::none;
}

bool badRange(const PlotSpec& plot) {
    return std::visit(
        [](const auto& data) {
            if constexpr (requires { data.rangeLow; }) {
                return data.rangeDeclared && !(data.rangeHigh > data.rangeLow); // NaN is not above
            }
            return false;
        },
        plot.data);
}

bool badBins(const PlotSpec& plot) {
    return std::get<HistogramPlotData>(plot.data).bins < 1;
}

bool noUnit(const PlotSpec& plot) {
    return std::visit(
        [](const auto& data) {
            if constexpr (requires { data.unit; }) {
                return data.unit.empty();
            }
            return false;
        },
        plot.data);
}

bool hasColumns(const PlotSpec& plot) {
    return std::visit(
        [](const auto& data) {
            if constexpr (requires { data.columns; }) {
                return !data.columns.empty();
            }
            return false;
        },
        plot.data);
}

bool sourceWithoutLevels(const PlotSpec& plot) {
    const bool projectSelf = plot.sourceKind == PlotSourceKind::self && plot.scope == PlotScope::project;
    return !hasColumns(plot) && (plot.sourceKind == PlotSourceKind::project ||
                                 plot.sourceKind == PlotSourceKind::derived || projectSelf);
}

bool noLevels(const PlotSpec& plot) {
    return !hasColumns(plot) && noProjectSource(plot);
}

// Checks with messages of their own.

/// True when an id, the empty one included, occurs twice.
bool repeatsId(const std::vector<PlotSeries>& list) {
    std::vector<std::string_view> ids;
    ids.reserve(list.size());
    for (const auto& series : list) {
        ids.push_back(series.id);
    }
    std::sort(ids.begin(), ids.end());
    return std::adjacent_find(ids.begin(), ids.end()) != ids.end();
}

void checkSeriesIds(Findings& findings) {
    const auto& data = findings.plot.data;
    const auto* convergence = std::get_if<ConvergencePlotData>(&data);
    const auto& list = convergence != nullptr ? convergence->series : std::get<CurvePlotData>(data).series;
    if (!repeatsId(list)) {
        return;
    }
    std::set<std::string_view> seen;
    for (const auto& series : list) {
        if (!series.id.empty() && !seen.insert(series.id).second) {
            findings.add("plot-series-duplicate", "duplicate plot series id " + singleQuoted(series.id),
                         series.span);
        }
    }
}

void checkLegendOrder(Findings& findings) {
    const LegendSpec& legend = findings.plot.legend;
    if (!legend.declared) {
        return;
    }
    std::set<std::string_view> known;
    std::visit(
        [&](const auto& data) {
            if constexpr (requires { data.series; }) {
                for (const auto& series : data.series) {
                    known.insert(series.id);
                }
            }
        },
        findings.plot.data);
    known.erase(""); // unnamed series
    std::set<std::string_view> seen;
    for (const auto& id : legend.order) {
        if (!seen.insert(id).second) {
            findings.add("plot-legend-order-duplicate",
                         "legend order contains duplicate series id " + singleQuoted(id), legend.span);
        } else if (!known.contains(id)) {
            findings.add("plot-legend-order-unknown",
                         "legend order references unknown named series " + singleQuoted(id), legend.span);
        }
    }
}

void checkPoints(Findings& findings) {
    std::set<std::string_view> seen;
    for (const auto& point : std::get<BarrierPlotData>(findings.plot.data).points) {
        if (point.id.empty()) {
            findings.add("barrier-point-id", "barrier point id must not be empty", point.span);
        } else if (!seen.insert(point.id).second) {
            findings.add("barrier-point-duplicate", "duplicate barrier point id " + singleQuoted(point.id),
                         point.span);
        }
        if (!point.value) {
            findings.add("barrier-point-value",
                         "barrier point " + singleQuoted(point.id) + " has no value expression", point.span);
        }
    }
}

void checkRelativePoint(Findings& findings) {
    const auto& data = std::get<BarrierPlotData>(findings.plot.data);
    const bool known = std::any_of(data.points.begin(), data.points.end(),
                                   [&](const BarrierPoint& point) { return point.id == data.relativePoint; });
    if (data.relativeMode == RelativeMode::toPoint && !known) {
        findings.add("barrier-relative-point",
                     "relative reference point " + singleQuoted(data.relativePoint) + " does not exist");
    }
}

/// `what` begins the messages, `code` the codes.
void checkColumns(Findings& findings, const std::vector<PlotColumn>& columns, const std::string& what,
                  const std::string& code) {
    std::set<std::string_view> seen;
    for (const auto& column : columns) {
        if (column.id.empty()) {
            findings.add(code + "-id", what + " column id must not be empty", column.span);
        } else if (!seen.insert(column.id).second) {
            findings.add(code + "-duplicate", "duplicate " + what + " column id " + singleQuoted(column.id),
                         column.span);
        }
        if (column.task.empty()) {
            findings.add(code + "-task", what + " column " + singleQuoted(column.id) + " has no task",
                         column.span);
        }
        // A frontier column never declares one.
        if (column.multiplicityDeclared && column.multiplicity < 1) {
            findings.add(code + "-multiplicity",
                         what + " column " + singleQuoted(column.id) + " has an invalid multiplicity",
                         column.span);
        }
    }
}

void checkFrontierColumns(Findings& findings) {
    checkColumns(findings, std::get<FrontierPlotData>(findings.plot.data).columns, "frontier",
                 "frontier-column");
}

void checkExcitedColumns(Findings& findings) {
    checkColumns(findings, std::get<ExcitedPlotData>(findings.plot.data).columns, "excited-state level",
                 "excited-column");
}

void checkRoots(Findings& findings) {
    for (const auto root : std::get<ExcitedPlotData>(findings.plot.data).roots) {
        if (root < 1) {
            findings.add("excited-root", "excited-state root selectors must be positive");
        }
    }
}

void checkArrows(Findings& findings) {
    for (const auto& arrow : std::get<ExcitedPlotData>(findings.plot.data).arrows) {
        if (arrow.sourceColumn.empty() || arrow.sourceRoot < 1) {
            findings.add("excited-arrow-from", "excited-state arrow requires 'from <column> root <n>'",
                         arrow.span);
        }
        const bool toRoot = arrow.targetMode == ArrowTargetMode::explicitRoot;
        if (!toRoot && arrow.relativeColumn.empty()) {
            findings.add("excited-arrow-target", "relative excited-state arrow requires a target column",
                         arrow.span);
        }
        if (toRoot && (arrow.targetColumn.empty() || arrow.targetRoot < 1)) {
            findings.add("excited-arrow-to", "explicit excited-state arrow requires 'to <column> root <n>'",
                         arrow.span);
        }
    }
}

void checkArrowColumns(Findings& findings) {
    const auto& data = std::get<ExcitedPlotData>(findings.plot.data);
    if (data.columns.empty()) {
        return;
    }
    std::set<std::string_view> known;
    for (const auto& column : data.columns) {
        known.insert(column.id);
    }
    const auto require = [&](const std::string& id, const SourceSpan& span) {
        if (!known.contains(id)) {
            findings.add("excited-arrow-column",
                         "excited-state arrow references unknown column " + singleQuoted(id), span);
        }
    };
    for (const auto& arrow : data.arrows) {
        require(arrow.sourceColumn, arrow.span);
        const bool toRoot = arrow.targetMode == ArrowTargetMode::explicitRoot;
        const auto& target = toRoot ? arrow.targetColumn : arrow.relativeColumn;
        if (!target.empty()) {
            require(target, arrow.span);
        }
    }
}

/// One rule: a condition with its finding, or a check that finds for itself.
struct Rule {
    KindSet kinds;
    bool (*broken)(const PlotSpec&);
    std::string_view code;
    std::string_view message;
    void (*check)(Findings&) = nullptr;

    constexpr Rule(KindSet set, bool (*condition)(const PlotSpec&), std::string_view findingCode,
                   std::string_view findingMessage)
        : kinds(set), broken(condition), code(findingCode), message(findingMessage) {}
    constexpr Rule(KindSet set, void (*checker)(Findings&)) : kinds(set), broken(nullptr), check(checker) {}
};

using enum PlotKind;

/// The rules for a plot, in the order of their findings.
constexpr Rule rules[] = {
    {everyKind, noName, "plot-name-empty", "plot name must not be empty"},
    {everyKind, badSize, "plot-size-invalid", "plot size must be positive"},
    {kinds(convergence, curve), checkSeriesIds},
    {everyKind, checkLegendOrder},
    {allBut(barrier, frontier, excited), isCdxml, "plot-cdxml-kind",
     "CDXML output is supported only for barrier, frontier and excited-state plots"},

    {kinds(barrier), tooFewPoints, "barrier-points", "barrier plot requires at least two points"},
    {kinds(barrier), checkPoints},
    {kinds(barrier), checkRelativePoint},

    {kinds(convergence), noX, "convergence-x", "convergence plot requires an x expression"},
    {kinds(convergence), noY, "convergence-y", "convergence plot requires at least one y series"},
    {kinds(convergence), noProjectSource, "convergence-source",
     "project-level convergence plot requires 'from task <name>'"},

    {kinds(curve), noX, "curve-x", "curve plot requires an x expression"},
    {kinds(curve), noY, "curve-y", "curve plot requires at least one y series"},
    {kinds(curve), noSource, "curve-source",
     "curve plot requires a source such as 'from variants <task>' or 'from derived(derive.table)'"},

    {kinds(spectrum), noX, "spectrum-x", "spectrum plot requires an x expression"},
    {kinds(spectrum), noY, "spectrum-y", "spectrum plot requires a y/intensity expression"},
    {kinds(spectrum), noSource, "spectrum-source", "spectrum plot requires a data source"},
    {kinds(spectrum), broadensByNothing, "spectrum-broaden",
     "broadened spectrum requires a broadening function"},
    {kinds(spectrum), badWidth, "spectrum-fwhm", "spectrum FWHM must be positive"},
    {kinds(spectrum), broadensSamples, "spectrum-sampled-broaden",
     "sampled spectrum already contains a curve and cannot use 'broaden'"},
    {kinds(spectrum), badRange, "spectrum-range", "spectrum range must be increasing"},

    {kinds(scatter), noX, "scatter-x", "scatter plot requires an x expression"},
    {kinds(scatter), noY, "scatter-y", "scatter plot requires a y expression"},
    {kinds(scatter), noSource, "scatter-source", "scatter plot requires a data source"},

    {kinds(heatmap), noX, "heatmap-x", "heatmap plot requires an x expression"},
    {kinds(heatmap), noY, "heatmap-y", "heatmap plot requires a y expression"},
    {kinds(heatmap), noZ, "heatmap-z", "heatmap plot requires a z expression"},
    {kinds(heatmap), noSource, "heatmap-source", "heatmap plot requires a data source"},

    {kinds(histogram), noX, "histogram-x", "histogram plot requires an x expression"},
    {kinds(histogram), badBins, "histogram-bins", "histogram bins must be positive"},
    {kinds(histogram), badRange, "histogram-range", "histogram range must be increasing"},
    {kinds(histogram), noSource, "histogram-source", "histogram plot requires a data source"},

    {kinds(bar), noX, "bar-x", "bar plot requires an x/category expression"},
    {kinds(bar), noY, "bar-y", "bar plot requires a y expression"},
    {kinds(bar), noSource, "bar-source", "bar plot requires a data source"},

    {kinds(errorbar), noX, "errorbar-x", "errorbar plot requires an x expression"},
    {kinds(errorbar), noY, "errorbar-y", "errorbar plot requires a y expression"},
    {kinds(errorbar), noYerr, "errorbar-yerr", "errorbar plot requires a yerr expression"},
    {kinds(errorbar), noSource, "errorbar-source", "errorbar plot requires a data source"},

    {kinds(frontier), noUnit, "frontier-unit", "frontier plot requires a non-empty unit"},
    {kinds(frontier), checkFrontierColumns},
    {kinds(frontier), sourceWithoutLevels, "frontier-source",
     "frontier plot supports 'from self', 'from task <name>', 'from variants <template>', or column "
     "statements"},
    {kinds(frontier), noLevels, "frontier-source",
     "project-level frontier plot requires 'from task <name>', 'from variants <template>', or column "
     "statements"},

    {kinds(excited), noUnit, "excited-unit", "excited-state level plot requires a non-empty unit"},
    {kinds(excited), checkExcitedColumns},
    {kinds(excited), checkRoots},
    {kinds(excited), checkArrows},
    {kinds(excited), checkArrowColumns},
    {kinds(excited), sourceWithoutLevels, "excited-source",
     "excited-state level plot supports 'from self', 'from task <name>', 'from variants <template>', or "
     "column "
     "statements"},
    {kinds(excited), noLevels, "excited-source",
     "project-level excited-state level plot requires 'from task <name>', 'from variants <template>', or "
     "column "
     "statements"},
};

} // namespace

std::vector<PlotIssue> validatePlot(const PlotSpec& plot) {
    Findings findings{plot, {}};
    for (const auto& rule : rules) {
        if (!contains(rule.kinds, plot.kind)) {
            continue;
        }
        if (rule.check != nullptr) {
            rule.check(findings);
        } else if (rule.broken(plot)) {
            findings.add(rule.code, std::string(rule.message));
        }
    }
    return std::move(findings.issues);
}

} // namespace morquill::taskdsl::plot
