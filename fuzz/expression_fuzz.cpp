// Any bytes as an expression: what is read prints, the print reads back, and prints as itself. When nothing
// was rounded or regrouped on the way, the tree is the same as well.

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/expr/expression.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace morquill::taskdsl;

namespace {

/// A number past the range of a double prints as "inf", which reads back as a name.
bool isFinite(const plot::ExprRef& expression) {
    bool finite = true;
    (void)plot::mapExpression(expression, [&](const plot::ExprRef& node) {
        const auto* number = plot::expressionAs<plot::NumberExpr>(node);
        finite = finite && (number == nullptr || std::isfinite(number->value));
        return node;
    });
    return finite;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    plot::ExprRef expression;
    try {
        expression = plot::parsePlotExpression(text, {});
    } catch (const DiagnosticError&) {
        return 0;
    }
    if (!isFinite(expression)) {
        return 0;
    }
    const auto printed = plot::renderPlotExpression(expression);
    const auto again = plot::parsePlotExpression(printed, {});
    if (plot::renderPlotExpression(again) != printed) {
        std::abort();
    }
    // Printing has rounded the numbers and written `a + (b + c)` as `a + b + c`; from here on nothing moves.
    if (!plot::equalExpressions(again, plot::parsePlotExpression(plot::renderPlotExpression(again), {}))) {
        std::abort();
    }
    return 0;
}
