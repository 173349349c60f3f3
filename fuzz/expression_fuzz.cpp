// Any bytes as an expression: what is read prints, and the print reads as the same tree, or it says that it
// does not; so it is again when substitution has put any text in the place of names.

#include "fuzz_input.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/expr/expression.h"
#include "taskdsl/expr/substitute_expression.h"

#include <string>

using namespace morquill;
using namespace morquill::taskdsl;

namespace {

bool readsAs(const std::string& text, const plot::ExprRef& expression) {
    try {
        return plot::equalExpressions(plot::parsePlotExpression(text, {}), expression);
    } catch (const DiagnosticError&) {
        return false;
    }
}

void holdLaw(const plot::ExprRef& expression) {
    const auto printed = plot::printExpression(expression);
    if (readsAs(printed.text, expression) != printed.loss.empty()) {
        fuzz::fail("it reads back or says that it does not", printed.text + "\n" + printed.loss);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    plot::ExprRef expression;
    try {
        expression = plot::parsePlotExpression(text, {});
    } catch (const DiagnosticError&) {
        return 0;
    }
    holdLaw(expression);
    holdLaw(plot::substituteExpression(expression,
                                       {{"key", std::string(text)}, {"k", "a.b"}, {"n", "2"}, {"e", ""}}));
    return 0;
}
