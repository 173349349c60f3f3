#include "taskdsl/plot/render_data.h"

#include "support/number.h"
#include "support/text.h"
#include "taskdsl/expr/plot_text.h"

namespace morquill::taskdsl::plot {

namespace {

/// The record as it reads where no place is known.
template <class Record>
Record withoutSpan(Record record) {
    record.span = {};
    return record;
}

PlotSeries readAs(const PlotSeries& series, const PrintedValue& value) {
    auto read = withoutSpan(series);
    read.expression = value.reads;
    return read;
}

/// ` <expression>` and the modifiers of a series.
void printSeriesTail(Printer& print, const PlotSeries& series, const PrintedValue& value) {
    const bool named = !series.id.empty();
    print.expression(value, {"label", "unit", "log", "scale", "axis", "style"}, named);
    print.quotedOption("label", series.label).nameOption("unit", series.unit).wordIf(series.logScale, "log");
    if (series.axisDeclared) {
        print.word("axis").word(plotAxisName(series.axis));
    }
    if (series.styleDeclared) {
        print.word("style").word(plotStyleName(series.style));
    }
    print.end();
}

/// The series of a plot in `member` of its data.
template <class Data>
void printSeries(Printer& print, std::string_view keyword, const Data& data, PlotSeries Data::*member) {
    const PlotSeries& series = data.*member;
    if (!series.expression) {
        return;
    }
    const auto value = print.valueOf(series.expression);
    print.settle([&] { printSeriesTail(print.line(keyword), series, value); },
                 [&] {
                     Data read;
                     read.*member = readAs(series, value);
                     return PlotData(std::move(read));
                 });
}

template <class Data>
void printSeriesList(Printer& print, const Data& data) {
    for (const PlotSeries& series : data.series) {
        const auto value = print.valueOf(series.expression);
        const auto write = [&] {
            if (series.id.empty()) {
                print.line("y");
            } else {
                print.line("series").word(series.id).word("=");
            }
            printSeriesTail(print, series, value);
        };
        if (!series.id.empty() && !isPlotIdentifier(series.id)) {
            print.lose("the series id '" + series.id + "' is no identifier");
        }
        print.settle(write, [&] {
            Data read;
            read.series = {readAs(series, value)};
            return PlotData(std::move(read));
        });
    }
}

void printRange(Printer& print, bool declared, double low, double high) {
    if (!declared) {
        return;
    }
    print.line("range");
    if (low < high && plotNumberText(low) == plotNumberText(high)) {
        // Bounds that 15 digits make equal would not be a range.
        print.word(formatSignificant(low, exactDigits)).word(formatSignificant(high, exactDigits)).end();
    } else {
        print.word(print.number(low)).word(print.number(high)).end();
    }
}

/// The columns of a level plot; only an excited plot has multiplicities.
template <class Data>
void printColumns(Printer& print, const Data& data) {
    constexpr bool withMultiplicity = std::is_same_v<Data, ExcitedPlotData>;
    for (const PlotColumn& column : data.columns) {
        const auto write = [&] {
            print.line("column").name(column.id);
            if (column.label != column.id) {
                print.word("label").quoted(column.label);
            }
            if (column.task != column.id) {
                print.word("task").quoted(column.task);
            }
            if (withMultiplicity && column.multiplicityDeclared) {
                print.word("multiplicity").word(multiplicityText(column.multiplicity));
            }
            print.end();
        };
        print.settle(write, [&] {
            Data read;
            read.columns = {withoutSpan(column)};
            return PlotData(std::move(read));
        });
    }
}

void printArrow(Printer& print, const ExcitedArrow& arrow) {
    const auto write = [&] {
        print.line("arrow from").name(arrow.sourceColumn);
        print.word("root").word(std::to_string(arrow.sourceRoot)).word("to");
        if (arrow.targetMode == ArrowTargetMode::explicitRoot) {
            print.name(arrow.targetColumn).word("root").word(std::to_string(arrow.targetRoot));
        } else {
            print.name(arrow.relativeColumn).word(arrowTargetName(arrow.targetMode));
        }
        print.word("style").word(arrowStyleName(arrow.style)).end();
    };
    print.settle(write, [&] {
        ExcitedPlotData read;
        read.arrows = {withoutSpan(arrow)};
        return PlotData(std::move(read));
    });
}

/// `unit <text>` of the whole plot.
template <class Data>
void printUnit(Printer& print, const Data& data) {
    if (data.unit.empty()) {
        if (!Data{}.unit.empty()) {
            print.lose("an empty unit is not printed and becomes '" + Data{}.unit + "'");
        }
        return;
    }
    print.settle([&] { print.line("unit").name(data.unit).end(); },
                 [&] {
                     Data read;
                     read.unit = data.unit;
                     return PlotData(std::move(read));
                 });
}

/// The lines of each kind.
struct DataPrinter {
    Printer& print;

    void operator()(const BarrierPlotData& data) const {
        for (const auto& point : data.points) {
            printPoint(point);
        }
        if (data.relativeMode == RelativeMode::toPoint) {
            print.settle([&] { print.line("relative to").name(data.relativePoint).end(); },
                         [&] {
                             BarrierPlotData read;
                             read.relativeMode = data.relativeMode;
                             read.relativePoint = data.relativePoint;
                             return PlotData(std::move(read));
                         });
        }
        printRelative(data.relativeMode);
        printUnit(print, data);
    }

    void operator()(const ConvergencePlotData& data) const {
        printSeries(print, "x", data, &ConvergencePlotData::x);
        printSeriesList(print, data);
        for (const auto& threshold : data.thresholds) {
            printThreshold(threshold);
        }
    }

    void operator()(const CurvePlotData& data) const {
        printSeries(print, "x", data, &CurvePlotData::x);
        printSeriesList(print, data);
        printRelative(data.relativeMode);
        print.lineIf(data.sortByX, "sort by x");
    }

    void operator()(const SpectrumPlotData& data) const {
        printSeries(print, "x", data, &SpectrumPlotData::x);
        printSeries(print, "y", data, &SpectrumPlotData::y);
        print.line("mode").word(spectrumModeName(data.mode)).end();
        if (data.broadening != BroadenFunction::none) {
            printBroadening(data);
        }
        printRange(print, data.rangeDeclared, data.rangeLow, data.rangeHigh);
        print.lineIf(!data.sortByX, "sort none");
    }

    void operator()(const ScatterPlotData& data) const {
        printSeries(print, "x", data, &ScatterPlotData::x);
        printSeries(print, "y", data, &ScatterPlotData::y);
        print.lineIf(data.diagonal, "diagonal y=x");
        print.lineIf(data.fitLinear, "fit linear");
        if (!data.metrics.empty()) {
            print.line("metrics").word(join(data.metrics, " ")).end();
        }
    }

    void operator()(const HeatmapPlotData& data) const {
        printSeries(print, "x", data, &HeatmapPlotData::x);
        printSeries(print, "y", data, &HeatmapPlotData::y);
        printSeries(print, "z", data, &HeatmapPlotData::z);
    }

    void operator()(const HistogramPlotData& data) const {
        printSeries(print, "x", data, &HistogramPlotData::x);
        print.line("bins").word(std::to_string(data.bins)).end();
        printRange(print, data.rangeDeclared, data.rangeLow, data.rangeHigh);
        print.lineIf(data.density, "density true");
    }

    void operator()(const BarPlotData& data) const {
        printSeries(print, "x", data, &BarPlotData::x);
        printSeries(print, "y", data, &BarPlotData::y);
        print.lineIf(data.sortEnabled, data.sortDescending ? "sort by y desc" : "sort by y asc");
        if (data.limitDeclared) {
            print.line("limit").word(std::to_string(data.limit)).end();
        }
    }

    void operator()(const ErrorbarPlotData& data) const {
        printSeries(print, "x", data, &ErrorbarPlotData::x);
        printSeries(print, "y", data, &ErrorbarPlotData::y);
        printSeries(print, "yerr", data, &ErrorbarPlotData::yerr);
        print.lineIf(data.sortByX, "sort by x");
    }

    void operator()(const FrontierPlotData& data) const {
        printColumns(print, data);
        if (!data.orbitals.empty()) {
            print.words("orbitals", data.orbitals, [](const std::vector<std::string>& orbitals) {
                FrontierPlotData read;
                read.orbitals = orbitals;
                return PlotData(std::move(read));
            });
        }
        print.line("spin").word(spinSelectionName(data.spin)).end();
        printUnit(print, data);
    }

    void operator()(const ExcitedPlotData& data) const {
        printColumns(print, data);
        if (!data.roots.empty()) {
            print.line("roots");
            for (const auto root : data.roots) {
                print.word(std::to_string(root));
            }
            print.end();
        }
        for (const auto& arrow : data.arrows) {
            printArrow(print, arrow);
        }
        printUnit(print, data);
    }

  private:
    void printPoint(const BarrierPoint& point) const {
        const auto value = print.valueOf(point.value);
        const auto write = [&] {
            print.line("point").name(point.id).quotedOption("label", point.label);
            if (point.value) {
                print.word("value").expression(value, {"label", "value"});
            }
            print.end();
        };
        print.settle(write, [&] {
            BarrierPlotData read;
            read.points = {withoutSpan(point)};
            read.points.front().value = value.reads;
            return PlotData(std::move(read));
        });
    }

    void printThreshold(const ThresholdLine& threshold) const {
        const auto property = print.valueOf(threshold.property);
        const auto value = print.number(threshold.value);
        const auto write = [&] {
            print.line("threshold").expression(property, {"value", "label", "unit", "axis"});
            print.word("value").word(value).quotedOption("label", threshold.label);
            print.nameOption("unit", threshold.unit).wordIf(threshold.axis == PlotAxis::y2, "axis y2").end();
        };
        print.settle(write, [&] {
            ConvergencePlotData read;
            read.thresholds = {withoutSpan(threshold)};
            read.thresholds.front().property = property.reads;
            read.thresholds.front().value = parsePlotNumber(value).value_or(threshold.value);
            return PlotData(std::move(read));
        });
    }

    void printBroadening(const SpectrumPlotData& data) const {
        const auto width = print.number(data.fwhm);
        const auto write = [&] {
            print.line("broaden").word(broadenFunctionName(data.broadening)).word("fwhm").word(width);
            print.nameOption("unit", data.fwhmUnit).end();
        };
        print.settle(write, [&] {
            SpectrumPlotData read;
            read.broadening = data.broadening;
            read.fwhm = parsePlotNumber(width).value_or(data.fwhm);
            read.fwhmUnit = data.fwhmUnit;
            return PlotData(std::move(read));
        });
    }

    void printRelative(RelativeMode mode) const {
        print.lineIf(mode == RelativeMode::first, "relative first");
        print.lineIf(mode == RelativeMode::minimum, "relative minimum");
    }
};

} // namespace

void printData(Printer& print, const PlotData& data) {
    std::visit(DataPrinter{print}, data);
}

} // namespace morquill::taskdsl::plot
