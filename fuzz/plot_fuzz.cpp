// Any bytes as a plot block: the first line is the header ("@plot ..." or "%plot ..."), the rest its body.
// What is read prints, and the print reads as the same plot, or one warning says that it does not; so it is
// again when substitution has put any text in the place of names.

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/plot/render.h"
#include "taskdsl/plot/substitute_plot.h"

#include "fixtures/plot_fixture.h"
#include "fuzz_input.h"

#include <string>

using namespace morquill;
using namespace morquill::taskdsl;

namespace {

void holdLaw(const plot::PlotSpec& spec) {
    const auto result = plot::readBack(spec);
    fuzz::require(result.lawful(), "it reads back or one warning says that it does not", result.text);
    fuzz::require(!result.equal ||
                      plot::renderPlot(plot::parsePlot(plot::blockOf(result.text, spec.ownerTask)), "") ==
                          result.text,
                  "it prints the same again", result.text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    plot::PlotSpec spec;
    try {
        spec = plot::parsePlot(plot::blockOf(text));
    } catch (const DiagnosticError&) {
        return 0;
    }
    holdLaw(spec);
    // What stands behind the block is one more text that a key may stand for.
    constexpr std::string_view close = "\n@end\n";
    const auto end = text.find(close);
    const std::string rest(end == std::string_view::npos ? "" : text.substr(end + close.size()));
    plot::substitutePlot(spec, {{"key", rest}, {"k", "label"}, {"n", "2"}, {"e", ""}, {"s", "a b"}});
    holdLaw(spec);
    return 0;
}
