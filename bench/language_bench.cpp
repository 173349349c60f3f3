// How fast a file goes through the parser and the writer, in bytes of input per second.

#include "catalog/property_catalog.h"
#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace morquill;

/// A chain of ORCA tasks of ten lines each.
std::string chainOf(int tasks) {
    std::string text = "dsl_version: 2\ntotcore: 8\n\n";
    for (int i = 0; i < tasks; ++i) {
        const std::string before = "task_" + std::to_string(i == 0 ? 0 : i - 1);
        text += "$task_" + std::to_string(i) + "\n  %source " + (i == 0 ? "origin" : before) +
                "\n  %program orca\n  %control\n    totcore 8\n    totmem 16000\n"
                "  %keywords \"B3LYP def2-TZVP TightSCF Opt Freq\"\n  %when\n    completed " +
                before + " # wait\n\n";
    }
    return text;
}

/// Spectra with twenty lines each.
std::string plotsOf(int plots) {
    std::string text;
    for (int i = 0; i < plots; ++i) {
        text += "@plot curve scan_" + std::to_string(i) +
                "\n  from task scan\n  x scan.distance label \"distance\" unit \"angstrom\"\n";
        for (int k = 0; k < 8; ++k) {
            text += "  series s" + std::to_string(k) + " = (scan.energy - min(scan.energy)) * 627.5095 + " +
                    std::to_string(k) + " label \"state " + std::to_string(k) + "\"\n";
        }
        text +=
            "  axis x:\n    label \"r\"\n  axis y:\n    label \"E\"\n  title \"scan\"\n  style linepoints\n"
            "  theme scientific\n  output \"scan.png\"\n  size 900 600\n@end\n\n";
    }
    return text;
}

std::string derivesOf(int derives) {
    std::string text;
    for (int i = 0; i < derives; ++i) {
        text += "@derive d" + std::to_string(i) + "\n";
        for (int k = 0; k < 10; ++k) {
            text += "  let v" + std::to_string(k) +
                    " = convert({{ opt.energy }} - {{ freq.energy }}, \"kcal/mol\")\n";
        }
        text += "  require v0 < 5 else \"too high\"\n  emit e0 = v0 unit \"kcal/mol\"\n  emit e1 = v1\n"
                "  emit e2 = v2\n  report \"barrier\" = v3\n@end\n\n";
    }
    return text;
}

void formatText(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        taskdsl::TaskParser parser;
        benchmark::DoNotOptimize(
            renderCanonicalDocument(parser.parseText(text, "bench.mq"), views::CanonicalView::sourceView,
                                    [](const std::string&) {})); // as fmt does: what is printed is checked
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}

void formatTasks(benchmark::State& state) {
    formatText(state, chainOf(static_cast<int>(state.range(0))));
}
BENCHMARK(formatTasks)->Arg(4'000)->Arg(40'000)->Unit(benchmark::kMillisecond);

void formatPlots(benchmark::State& state) {
    formatText(state, plotsOf(static_cast<int>(state.range(0))));
}
BENCHMARK(formatPlots)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void formatDerives(benchmark::State& state) {
    formatText(state, derivesOf(static_cast<int>(state.range(0))));
}
BENCHMARK(formatDerives)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

/// `axes` axes of ten values over one task: ten to the power of `axes` variants.
std::string matrixOf(int axes) {
    std::string text = "matrix:\n";
    std::string keywords;
    for (int i = 0; i < axes; ++i) {
        const std::string key = "axis_" + std::to_string(i);
        text += "  " + key + ": 0, 1, 2, 3, 4, 5, 6, 7, 8, 9\n";
        keywords += " [" + key + "]";
    }
    return text + "$opt\n  %program orca\n  %control\n    totcore 8\n  %keywords \"TightSCF" + keywords +
           "\"\n";
}

/// Parses and prints every variant; the items are variants.
void expandVariants(benchmark::State& state) {
    const std::string text = matrixOf(static_cast<int>(state.range(0)));
    std::size_t variants = 0;
    for (auto _ : state) {
        taskdsl::TaskParser parser;
        const auto document = parser.parseText(text, "bench.mq");
        benchmark::DoNotOptimize(renderCanonicalDocument(document, views::CanonicalView::matrixExpandedView,
                                                         [](const std::string&) {}));
        variants = document.tasks.size();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(variants) * state.iterations());
}
BENCHMARK(expandVariants)->Arg(3)->Arg(4)->Arg(5)->Unit(benchmark::kMillisecond);

void expandLoop(benchmark::State& state) {
    formatText(state, "@foreach i in series(1-" + std::to_string(state.range(0)) +
                          ")\n$task_[i.value]\n  %source origin\n  %keywords \"B3LYP [i.index]\"\n@end\n");
}
BENCHMARK(expandLoop)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void findPropertyByAlias(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(findProperty("Total Energy"));
    }
}
BENCHMARK(findPropertyByAlias);

} // namespace
