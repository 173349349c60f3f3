#include "taskdsl/derive/derive_substitute.h"

#include "support/match.h"
#include "taskdsl/derive/statement_parts.h"
#include "taskdsl/expr/substitute_expression.h"

namespace morquill::taskdsl::derive {

void substituteDerive(DeriveSpec& spec, const ValueMap& values) {
    if (values.empty()) {
        return;
    }
    const auto text = [&](std::string& value) { substituteInto(value, values); };
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
