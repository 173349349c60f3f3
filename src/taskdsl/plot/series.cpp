#include "taskdsl/plot/series.h"

#include "support/text.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/expr/statement_reader.h"

namespace morquill::taskdsl::plot {

namespace {

void setLabel(PlotSeries& series, std::string_view value, const SourceSpan& span) {
    if (value.empty()) {
        plotError(span, "label requires text");
    }
    series.label = unquotePlotText(value);
}

void setUnit(PlotSeries& series, std::string_view value, const SourceSpan& span) {
    const auto word = splitFirstWord(value).word;
    if (word.empty()) {
        plotError(span, "unit option requires a value");
    }
    series.unit = unquotePlotText(word);
}

void setLog(PlotSeries& series, std::string_view value, const SourceSpan&) {
    const auto choice = toLower(unquotePlotText(value));
    series.logScale = choice != "false" && choice != "off" && choice != "linear";
}

void setScale(PlotSeries& series, std::string_view value, const SourceSpan& span) {
    const auto scale = parseAxisScale(unquotePlotText(splitFirstWord(value).word));
    if (!scale) {
        plotError(span, "series scale requires linear or log10");
    }
    series.logScale = *scale == AxisScale::log10;
}

void setAxis(PlotSeries& series, std::string_view value, const SourceSpan& span) {
    const auto word = splitFirstWord(value).word;
    if (word.empty()) {
        plotError(span, "axis option requires y or y2");
    }
    const auto axis = parsePlotAxis(word);
    if (!axis) {
        plotError(span, "unsupported axis '" + std::string(word) + "'");
    }
    series.axis = *axis;
    series.axisDeclared = true;
}

void setStyle(PlotSeries& series, std::string_view value, const SourceSpan& span) {
    series.style = readStyleValue(value, span);
    series.styleDeclared = true;
}

struct Modifier {
    std::string_view word;
    void (*apply)(PlotSeries&, std::string_view value, const SourceSpan&);
};
constexpr Modifier modifiers[] = {
    {"label", setLabel}, {"unit", setUnit}, {"log", setLog},
    {"scale", setScale}, {"axis", setAxis}, {"style", setStyle},
};

} // namespace

PlotSeries parseSeriesStatement(std::string_view keyword, std::string_view text, const SourceSpan& span) {
    const auto [head, options] =
        splitKeywordOptions(text, {"label", "unit", "log", "scale", "axis", "style"});
    if (head.empty()) {
        plotError(span, std::string(keyword) + " statement requires an expression");
    }
    PlotSeries series;
    series.span = span;
    series.expression = parsePlotExpression(head, span);
    for (const auto& [word, value] : options) {
        applySeriesModifier(series, word, value, span);
    }
    return series;
}

void applySeriesModifier(PlotSeries& series, std::string_view word, std::string_view value,
                         const SourceSpan& span) {
    for (const auto& modifier : modifiers) {
        if (modifier.word == word) {
            modifier.apply(series, value, span);
            return;
        }
    }
    plotError(span, "unsupported series modifier '" + std::string(word) + "'");
}

PlotStyle readStyleValue(std::string_view text, const SourceSpan& span) {
    const auto word = splitFirstWord(text).word;
    if (word.empty()) {
        plotError(span, "style requires a value");
    }
    const auto style = parsePlotStyle(word);
    if (!style) {
        plotError(span, "unsupported plot style '" + toLower(word) + "'");
    }
    return *style;
}

} // namespace morquill::taskdsl::plot
