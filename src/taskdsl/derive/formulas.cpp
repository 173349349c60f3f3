#include "taskdsl/derive/formulas.h"

#include "catalog/property_catalog.h"
#include "support/match.h"
#include "support/text.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/expr/expression_walk.h"
#include "taskdsl/expr/statement_reader.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace morquill::taskdsl::derive {

using plot::plotError;

namespace {

/// In byte order.
constexpr std::string_view reservedNames[] = {"abs",
                                              "aggregate",
                                              "angle",
                                              "assert",
                                              "at",
                                              "bind",
                                              "boltzmann",
                                              "cbs",
                                              "coalesce",
                                              "convert",
                                              "count",
                                              "derive_value",
                                              "derived",
                                              "dimensionless",
                                              "dipole",
                                              "dipole_moment",
                                              "emit",
                                              "energy",
                                              "entropy",
                                              "exists",
                                              "exp",
                                              "false",
                                              "filter",
                                              "force",
                                              "frequency",
                                              "from",
                                              "group",
                                              "harmonic_zpe",
                                              "heat_capacity",
                                              "heatcapacity",
                                              "join",
                                              "kv",
                                              "length",
                                              "let",
                                              "limit",
                                              "log",
                                              "mass",
                                              "matrix_value",
                                              "max",
                                              "mean",
                                              "min",
                                              "nth",
                                              "number",
                                              "pow",
                                              "present",
                                              "pressure",
                                              "profile",
                                              "quantity",
                                              "reduce",
                                              "relative",
                                              "report",
                                              "require",
                                              "result",
                                              "rethermo",
                                              "row_index",
                                              "rrho_enthalpy",
                                              "scalar",
                                              "select",
                                              "sin",
                                              "single_point",
                                              "sort",
                                              "spectral",
                                              "spectral_coordinate",
                                              "sqrt",
                                              "step",
                                              "sum",
                                              "task_index",
                                              "temperature",
                                              "thermo",
                                              "thermochemistry",
                                              "true",
                                              "using",
                                              "where"};
static_assert(std::is_sorted(std::begin(reservedNames), std::end(reservedNames)));

/// Functions that evaluate thermochemistry, and the arguments that must be seen at each of their calls.
constexpr std::string_view thermoFunctions[] = {"thermo", "thermochemistry", "rethermo"};
constexpr std::string_view callSpecificArguments[] = {"task", "quantity", "electronic_energy"};

/// Throws unless the name of a formula or profile is free.
void requireFreeName(const std::string& name, const DeriveSurface& surface, const SourceSpan& span) {
    if (isReservedDeriveName(name)) {
        plotError(span, "formula name " + singleQuoted(name) + " is reserved by the derive language");
    }
    if (surface.formulas.contains(name) || surface.profiles.contains(name)) {
        plotError(span, "duplicate derive surface definition " + singleQuoted(name));
    }
}

struct Signature {
    std::string_view name;
    std::string_view parameters;
};

Signature readSignature(std::string_view text, const SourceSpan& span) {
    const auto open = text.find('(');
    const auto parameters =
        open == std::string_view::npos ? std::nullopt : insideParentheses(text.substr(open));
    if (!parameters) {
        plotError(span, "formula signature must be name(parameters)");
    }
    return {trim(text.substr(0, open)), *parameters};
}

std::vector<std::string> readParameters(std::string_view text, const SourceSpan& span) {
    std::vector<std::string> parameters;
    if (text.empty()) {
        return parameters;
    }
    std::set<std::string_view> seen;
    for (const auto entry : splitAtCommas(text)) {
        if (entry.empty()) {
            plotError(span, "formula parameter list contains an empty parameter");
        }
        auto name = requireIdentifier(entry, "formula parameters must be simple identifiers", span);
        if (name == "using") {
            plotError(span, "formula parameter name 'using' is reserved");
        }
        if (!seen.insert(entry).second) {
            plotError(span, "duplicate formula parameter " + singleQuoted(name));
        }
        parameters.push_back(std::move(name));
    }
    return parameters;
}

/// A body may speak of nothing but its parameters. `using=` names a profile that exists already.
void checkBody(const FormulaDefinition& formula, const DeriveSurface& surface, const SourceSpan& span) {
    const std::set<std::string_view> parameters(formula.parameters.begin(), formula.parameters.end());
    const Match checkNode{
        [&](const plot::SnapshotExpr&) {
            plotError(span, "formula bodies cannot capture snapshot references; pass the selected value as a "
                            "parameter");
        },
        [&](const plot::IdentifierExpr& identifier) {
            if (!parameters.contains(identifier.name)) {
                plotError(span, "formula body captures bare identifier " + singleQuoted(identifier.name) +
                                    "; pass it as a parameter or quote it as a literal");
            }
        },
        [&](const plot::CallExpr& call) {
            for (const auto& argument : call.arguments) {
                if (isUsing(argument)) {
                    (void)requireProfile(argument.value, call.name, surface, span);
                }
            }
        },
        [](const auto&) {}};
    plot::forEachNode(
        formula.body, [&](const plot::PlotExpression& node) { std::visit(checkNode, node.node); },
        [](const plot::PlotCallArgument& argument) { return !isUsing(argument); });
}

void checkProfileArguments(const ParameterProfile& profile, const SourceSpan& span) {
    const bool thermo = isOneOf(profile.target, thermoFunctions);
    std::set<std::string_view> seen;
    for (const auto& argument : profile.arguments) {
        if (!argument.named) {
            plotError(span, "profile entries must use named arguments");
        }
        if (argument.name == "using") {
            plotError(span, "profiles cannot inherit another profile");
        }
        if (!seen.insert(argument.name).second) {
            plotError(span, "duplicate profile argument " + singleQuoted(argument.name));
        }
        if (thermo && isOneOf(argument.name, callSpecificArguments)) {
            plotError(span,
                      "thermo profiles cannot hide call-specific argument " + singleQuoted(argument.name));
        }
    }
}

struct Projection {
    std::string target;
    std::string quantity;
};

std::vector<Projection> readProjections(std::string_view text, const SourceSpan& span) {
    if (text.empty()) {
        plotError(span, "bind requires at least one thermo projection");
    }
    std::vector<Projection> projections;
    std::set<std::string_view> seen;
    for (const auto entry : splitAtCommas(text)) {
        if (entry.empty()) {
            plotError(span, "bind projection list contains an empty entry");
        }
        const auto halves = splitAtEquals(entry);
        if (!halves) {
            plotError(span, "bind projection must be 'name = thermo_quantity'");
        }
        auto target = requireIdentifier(halves->left, "bind target name must be a simple identifier", span);
        auto quantity = requireIdentifier(halves->right, "bind thermo quantity must be an identifier", span);
        if (!seen.insert(halves->left).second) {
            plotError(span, "duplicate bind target " + singleQuoted(target));
        }
        projections.push_back({std::move(target), std::move(quantity)});
    }
    return projections;
}

} // namespace

bool isReservedDeriveName(std::string_view name) {
    return std::binary_search(std::begin(reservedNames), std::end(reservedNames), toLower(name)) ||
           canonicalPropertyName(name).has_value();
}

bool isUsing(const plot::PlotCallArgument& argument) noexcept {
    return argument.named && argument.name == "using";
}

const ParameterProfile& requireProfile(const ExprRef& value, std::string_view function,
                                       const DeriveSurface& surface, const SourceSpan& span) {
    const auto& name = plot::requireNameOrString(value, "using profile", span);
    const auto found = surface.profiles.find(name);
    if (found == surface.profiles.end()) {
        plotError(span, "unknown parameter profile " + singleQuoted(name));
    }
    if (found->second.target != function) {
        plotError(span, "profile " + singleQuoted(name) + " is for " + found->second.target + "(), not " +
                            std::string(function) + "()");
    }
    return found->second;
}

void parseFormula(std::string_view text, const SourceSpan& span, DeriveSurface& surface) {
    const auto halves = splitAtEquals(text);
    if (!halves) {
        plotError(span, "formula must be 'formula name(parameters) = expression'");
    }
    if (halves->right.empty()) {
        plotError(span, "formula requires an expression body");
    }
    const auto signature = readSignature(halves->left, span);
    FormulaDefinition formula;
    formula.span = span;
    formula.name = requireIdentifier(signature.name, "formula name must be a simple identifier", span);
    requireFreeName(formula.name, surface, span);
    formula.parameters = readParameters(signature.parameters, span);
    formula.body = plot::parsePlotExpression(halves->right, span);
    checkBody(formula, surface, span);
    surface.formulas.emplace(formula.name, std::move(formula));
}

void parseProfile(std::string_view text, const SourceSpan& span, DeriveSurface& surface) {
    const auto halves = splitAtEquals(text);
    if (!halves) {
        plotError(span, "profile must include '= (named arguments)'");
    }
    const auto head = splitAtWord(halves->left, "for");
    if (!head) {
        plotError(span, "profile must be 'profile name for function = (named arguments)'");
    }
    ParameterProfile profile;
    profile.span = span;
    profile.name = requireIdentifier(head->left, "profile name must be a simple identifier", span);
    requireFreeName(profile.name, surface, span);
    profile.target = requireIdentifier(head->right, "profile target must be a function name", span);
    if (!halves->right.starts_with('(') || !halves->right.ends_with(')')) {
        plotError(span, "profile arguments must be enclosed in parentheses");
    }
    const auto call = plot::parseCallOf(profile.target, halves->right, span);
    const auto* list = plot::expressionAs<plot::CallExpr>(call);
    if (list == nullptr) { // `(a=1) + (2)`
        plotError(span, "invalid profile argument list");
    }
    profile.arguments = list->arguments;
    checkProfileArguments(profile, span);
    surface.profiles.emplace(profile.name, std::move(profile));
}

void parseBind(std::string_view text, const SourceSpan& span, DeriveSurface& surface,
               std::vector<DeriveStatement>& statements) {
    const auto halves = splitAtWord(text, "to");
    if (!halves) {
        plotError(span, "bind must be 'bind thermo(...) to (name = quantity, ...)'");
    }
    const auto projections = insideParentheses(halves->right);
    if (!projections) {
        plotError(span, "bind projections must be enclosed in parentheses");
    }
    const auto source = halves->left.empty() ? nullptr : plot::parsePlotExpression(halves->left, span);
    const auto* call = plot::expressionAs<plot::CallExpr>(source);
    if (call == nullptr || call->name != "thermo") {
        plotError(span, "bind currently supports only direct thermo(...) calls");
    }
    if (std::any_of(call->arguments.begin(), call->arguments.end(),
                    [](const plot::PlotCallArgument& argument) {
                        return argument.named && argument.name == "quantity";
                    })) {
        plotError(span, "bind thermo(...) supplies quantity through its projection list");
    }
    for (auto& projection : readProjections(*projections, span)) {
        plot::CallExpr projected = *call;
        projected.arguments.push_back(
            {.name = "quantity",
             .named = true,
             .value = plot::makeExpression(plot::StringExpr{std::move(projection.quantity)})});
        auto value = expandFormulas(plot::makeExpression(std::move(projected)), surface, span);
        chargeCopy(value, surface, span);
        statements.emplace_back(LetStatement{std::move(projection.target), std::move(value), span});
    }
}

ExprRef readDeriveExpression(std::string_view text, DeriveSurface& surface, const SourceSpan& span) {
    return expandFormulas(plot::parsePlotExpression(text, span), surface, span);
}

} // namespace morquill::taskdsl::derive
