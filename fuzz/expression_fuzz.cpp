// Any bytes as an expression: what is read prints, and the print reads as the same tree, or it says that it
// does not; so it is again when substitution has put any text in the place of names.

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/expr/expression.h"
#include "taskdsl/expr/substitute_expression.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

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
        (void)std::fprintf(stderr, "%s\n%s\n", printed.text.c_str(), printed.loss.c_str());
        std::abort();
    }
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
    holdLaw(expression);
    holdLaw(plot::substituteExpression(expression,
                                       {{"key", std::string(text)}, {"k", "a.b"}, {"n", "2"}, {"e", ""}}));
    return 0;
}
