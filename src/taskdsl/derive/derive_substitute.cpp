#include "taskdsl/derive/derive_substitute.h"

#include "support/text.h"
#include "taskdsl/derive/statement_parts.h"
#include "taskdsl/plot/substitute_plot.h"

namespace morquill::taskdsl::derive {

void substituteDerive(DeriveSpec& spec, const ValueMap& values) {
    if (values.empty()) {
        return;
    }
    // Only a text with an open bracket can hold a reference, and most hold none.
    const auto text = [&](std::string& value) {
        if (value.find('[') != std::string::npos) {
            value = substituteBrackets(value, values);
        }
    };
    const auto expression = [&](ExprRef& value) {
        if (value) {
            value = plot::substituteExpression(value, values);
        }
    };
    const Match part{text, expression};
    text(spec.name);
    for (auto& statement : spec.statements) {
        forEachPart(statement, part);
    }
}

} // namespace morquill::taskdsl::derive
