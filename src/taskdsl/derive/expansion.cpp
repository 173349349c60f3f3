#include "taskdsl/derive/formulas.h"

#include "support/match.h"
#include "taskdsl/expr/expression_walk.h"
#include "taskdsl/expr/precedence.h"
#include "taskdsl/expr/statement_reader.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace morquill::taskdsl::derive {

using plot::PlotCallArgument;
using plot::plotError;
using plot::Precedence;

namespace {

/// An expanded expression with what it costs where it is put to use more than once.
struct Expanded {
    ExprRef expression;
    std::size_t nodes = 1; ///< of the tree, shared parts counted as often as they occur
    std::size_t depth = 0; ///< nesting of calls, signs and parentheses in the printed form
};

/// The values of a formula's parameters, by name.
using Bindings = std::map<std::string_view, Expanded>;

/// The place of an expression.
struct Place {
    const Bindings* bindings = nullptr;      ///< of the formula whose body this is
    std::uint32_t formulas = 0;              ///< formulas around it
    std::uint32_t profiles = 0;              ///< profiles around it
    std::size_t nesting = 0;                 ///< calls, signs and parentheses around it
    Precedence asked = Precedence::anything; ///< as in print
};

/// The argument of a formula call, not yet expanded.
struct Given {
    ExprRef value;
    Place place;
};

/// Adds to one of the counts of a block.
void charge(std::size_t& count, std::size_t nodes, const SourceSpan& span) {
    count += nodes;
    if (count > maxExpandedNodes) {
        plotError(span, "derive expansion exceeds the maximum size of " + std::to_string(maxExpandedNodes) +
                            " nodes");
    }
}

/// 1 when the expression is printed in parentheses in such a place.
std::size_t parentheses(const ExprRef& expression, Precedence asked) noexcept {
    return expression && plot::needsParentheses(*expression, asked) ? 1 : 0;
}

class Expander {
  public:
    Expander(DeriveSurface& surface, const SourceSpan& span) : surface_(surface), span_(span) {}

    Expanded expand(const ExprRef& expression, Place place) {
        place.nesting += parentheses(expression, place.asked);
        checkNesting(place.nesting);
        visit(place);
        return std::visit(
            Match{[&](const plot::IdentifierExpr& node) { return expandName(node, expression, place); },
                  [&](const plot::CallExpr& node) { return expandCall(node, expression, place); },
                  [&](const plot::UnaryExpr& node) { return expandSign(node, expression, place); },
                  [&](const plot::BinaryExpr&) { return expandChain(expression, place); },
                  [&](const auto&) { return Expanded{expression}; }},
            expression->node);
    }

    /// Expands one whole expression of the block.
    ExprRef expandWhole(const ExprRef& expression) {
        Expanded result = expand(expression, {});
        if (result.nodes > written_) {
            charge(surface_.expandedNodes, result.nodes - written_, span_);
        }
        return std::move(result.expression);
    }

  private:
    // The checks are kept out of line: their texts must not take room on the stack of every level
    // of nested calls.
    [[gnu::noinline]] void checkNesting(std::size_t nesting) const {
        if (nesting > plot::maxExpressionDepth) {
            plotError(span_, "expression is nested too deeply");
        }
    }

    void visit(const Place& place) {
        if (place.formulas == 0 && place.profiles == 0) {
            ++written_;
        } else {
            charge(surface_.visitedNodes, 1, span_);
        }
    }

    Expanded expandName(const plot::IdentifierExpr& node, const ExprRef& expression, const Place& place) {
        const auto found =
            place.bindings != nullptr ? place.bindings->find(node.name) : Bindings::const_iterator{};
        if (place.bindings == nullptr || found == place.bindings->end()) {
            return {expression};
        }
        const Expanded& value = found->second;
        checkNesting(place.nesting + value.depth + parentheses(value.expression, place.asked));
        return value;
    }

    Expanded expandSign(const plot::UnaryExpr& node, const ExprRef& expression, const Place& place) {
        Expanded operand = expand(node.operand, {place.bindings, place.formulas, place.profiles,
                                                 place.nesting + 1, Precedence::signs});
        Expanded result{expression, operand.nodes + 1,
                        operand.depth + 1 + parentheses(operand.expression, Precedence::signs)};
        if (operand.expression != node.operand) {
            result.expression = plot::makeExpression(plot::UnaryExpr{node.op, std::move(operand.expression)});
        }
        return result;
    }

    /// A sum leans to the left with a level per term, so the operators on the left are taken in a loop.
    Expanded expandChain(const ExprRef& expression, Place place) {
        std::vector<const ExprRef*> chain{&expression};
        const ExprRef* leftmost = &std::get<plot::BinaryExpr>(expression->node).left;
        for (;;) {
            place.asked = plot::precedenceOf(std::get<plot::BinaryExpr>((*chain.back())->node).op);
            if (plot::expressionAs<plot::BinaryExpr>(*leftmost) == nullptr) {
                break;
            }
            place.nesting += parentheses(*leftmost, place.asked);
            visit(place);
            chain.push_back(leftmost);
            leftmost = &std::get<plot::BinaryExpr>((*leftmost)->node).left;
        }
        checkNesting(place.nesting);

        Expanded left = expand(*leftmost, place);
        while (!chain.empty()) {
            const ExprRef& written = *chain.back();
            const auto& node = std::get<plot::BinaryExpr>(written->node);
            place.asked = plot::rightPrecedence(node.op);
            Expanded right = expand(node.right, place);
            Expanded result{written, left.nodes + right.nodes + 1,
                            std::max(left.depth + parentheses(left.expression, plot::precedenceOf(node.op)),
                                     right.depth + parentheses(right.expression, place.asked))};
            if (left.expression != node.left || right.expression != node.right) {
                result.expression = plot::makeExpression(
                    plot::BinaryExpr{node.op, std::move(left.expression), std::move(right.expression)});
            }
            left = std::move(result);
            chain.pop_back();
            if (!chain.empty()) {
                place.nesting -= parentheses(
                    written, plot::precedenceOf(std::get<plot::BinaryExpr>((*chain.back())->node).op));
            }
        }
        return left;
    }

    Expanded expandCall(const plot::CallExpr& call, const ExprRef& expression, const Place& place) {
        const ParameterProfile* profile = profileOf(call);
        checkArgumentOrder(call);
        const auto formula = surface_.formulas.find(call.name);
        const FormulaDefinition* definition = formula == surface_.formulas.end() ? nullptr : &formula->second;
        checkConflicts(call, profile, definition);
        if (definition != nullptr) {
            return expandFormula(*definition, call, profile, place);
        }

        Expanded result{expression};
        bool changed = profile != nullptr;
        plot::CallExpr expanded{call.name, {}};
        forEachArgument(call, profile, place, [&](const PlotCallArgument& argument, const Place& at) {
            Expanded value = expand(argument.value, at);
            changed = changed || value.expression != argument.value;
            result.nodes += value.nodes;
            result.depth = std::max(result.depth, value.depth);
            expanded.arguments.push_back({argument.name, argument.named, std::move(value.expression)});
        });
        ++result.depth;
        if (changed) {
            result.expression = plot::makeExpression(std::move(expanded));
        }
        return result;
    }

    /// The profile that the call uses; null without `using=`.
    [[gnu::noinline]] const ParameterProfile* profileOf(const plot::CallExpr& call) const {
        const ParameterProfile* profile = nullptr;
        for (const auto& argument : call.arguments) {
            if (isUsing(argument)) {
                if (profile != nullptr) {
                    plotError(span_, "a function call may use only one parameter profile");
                }
                profile = &requireProfile(argument.value, call.name, surface_, span_);
            }
        }
        return profile;
    }

    [[gnu::noinline]] void checkArgumentOrder(const plot::CallExpr& call) const {
        bool named = false;
        for (const auto& argument : call.arguments) {
            if (named && !argument.named) {
                plotError(span_, "positional arguments must precede using= and other named arguments");
            }
            named = named || argument.named;
        }
    }

    /// The parameters that the positional arguments of a formula's call fill, in order.
    static std::set<std::string_view> filledByPlace(const plot::CallExpr& call,
                                                    const FormulaDefinition* formula) {
        std::set<std::string_view> filled;
        for (const auto& argument : call.arguments) {
            if (formula != nullptr && !argument.named && filled.size() < formula->parameters.size()) {
                filled.insert(formula->parameters[filled.size()]);
            }
        }
        return filled;
    }

    /// A profile fills only what the call leaves open; a name fills no slot that a positional
    /// argument has filled.
    [[gnu::noinline]] void checkConflicts(const plot::CallExpr& call, const ParameterProfile* profile,
                                          const FormulaDefinition* formula) const {
        const auto filled = filledByPlace(call, formula);
        const auto given = [&](const std::string& name) {
            return filled.contains(name) ||
                   std::any_of(call.arguments.begin(), call.arguments.end(),
                               [&](const auto& argument) { return argument.named && argument.name == name; });
        };
        if (profile != nullptr) {
            for (const auto& argument : profile->arguments) {
                if (given(argument.name)) {
                    plotError(span_,
                              "argument '" + argument.name +
                                  "' is specified by both the parameter profile and the function call");
                }
            }
        }
        for (const auto& argument : call.arguments) {
            if (argument.named && filled.contains(argument.name)) {
                plotError(span_, "argument '" + argument.name +
                                     "' is specified by both another argument and the function call");
            }
        }
    }

    /// Calls `take` with the arguments of the call but `using=`, then with those of the profile.
    /// Values from a profile are outside every formula body. A profile whose values use it again would not
    /// end, so profiles have a bound of their own.
    template <class Take>
    void forEachArgument(const plot::CallExpr& call, const ParameterProfile* profile, const Place& place,
                         Take take) {
        for (const auto& argument : call.arguments) {
            if (!isUsing(argument)) {
                take(argument, Place{place.bindings, place.formulas, place.profiles, place.nesting + 1,
                                     Precedence::anything});
            }
        }
        if (profile != nullptr) {
            const Place inside{nullptr, place.formulas, enterProfile(place), place.nesting + 1,
                               Precedence::anything};
            for (const auto& argument : profile->arguments) {
                take(argument, inside);
            }
        }
    }

    [[gnu::noinline]] std::uint32_t enterFormula(const Place& place) const {
        if (place.formulas >= maxFormulaDepth) {
            plotError(span_,
                      "formula expansion exceeds the maximum depth of " + std::to_string(maxFormulaDepth));
        }
        return place.formulas + 1;
    }

    [[gnu::noinline]] std::uint32_t enterProfile(const Place& place) const {
        if (place.profiles >= maxProfileDepth) {
            plotError(span_,
                      "profile expansion exceeds the maximum depth of " + std::to_string(maxProfileDepth));
        }
        return place.profiles + 1;
    }

    Expanded expandFormula(const FormulaDefinition& formula, const plot::CallExpr& call,
                           const ParameterProfile* profile, const Place& place) {
        checkRecursion(formula.name);
        const auto inside = enterFormula(place);
        Bindings bindings = bind(formula, call, profile, place);
        names_.push_back(formula.name);
        Expanded result =
            expand(formula.body, {&bindings, inside, place.profiles, place.nesting, place.asked});
        names_.pop_back();
        std::size_t grown = result.nodes;
        for (const auto& [name, value] : bindings) {
            grown -= std::min(grown, value.nodes);
        }
        std::size_t added =
            surface_.expandedNodes; // what is shared here is counted when the expression is whole
        charge(added, grown, span_);
        return result;
    }

    void checkRecursion(const std::string& name) const {
        if (std::find(names_.begin(), names_.end(), name) == names_.end()) {
            return;
        }
        std::string chain;
        for (const auto active : names_) {
            chain += std::string(active) + " -> ";
        }
        plotError(span_, "recursive formula expansion is not allowed: " + chain + name);
    }

    /// The arguments by parameter, expanded in the place of the call: outside the formula.
    Bindings bind(const FormulaDefinition& formula, const plot::CallExpr& call,
                  const ParameterProfile* profile, const Place& place) {
        const auto& parameters = formula.parameters;
        std::map<std::string_view, std::optional<Given>> slots;
        for (const auto& parameter : parameters) {
            slots[parameter] = std::nullopt;
        }
        const std::string subject = "formula '" + formula.name + "'";
        std::size_t positional = 0;
        forEachArgument(call, profile, place, [&](const PlotCallArgument& argument, const Place& at) {
            if (!argument.named && positional == parameters.size()) {
                plotError(span_, subject + " received too many arguments");
            }
            const auto slot = slots.find(argument.named ? argument.name : parameters[positional++]);
            if (slot == slots.end()) {
                plotError(span_, subject + " has no parameter '" + argument.name + "'");
            }
            if (slot->second) {
                plotError(span_, "formula argument '" + argument.name + "' is specified more than once");
            }
            slot->second.emplace(Given{argument.value, at});
        });
        for (const auto& parameter : parameters) {
            if (!slots[parameter]) {
                plotError(span_, std::string(subject).append(" requires argument '").append(parameter) + "'");
            }
        }
        Bindings bindings;
        for (const auto& parameter : parameters) {
            const Given& given = *slots[parameter];
            bindings.emplace(parameter, expand(given.value, given.place));
        }
        return bindings;
    }

    DeriveSurface& surface_;
    const SourceSpan& span_;
    std::size_t written_ = 0;             ///< nodes outside formulas and profiles
    std::vector<std::string_view> names_; ///< formulas whose bodies are being expanded
};

} // namespace

void chargeCopy(const ExprRef& expression, DeriveSurface& surface, const SourceSpan& span) {
    plot::forEachNode(expression,
                      [&](const plot::PlotExpression&) { charge(surface.expandedNodes, 1, span); });
}

ExprRef expandFormulas(const ExprRef& expression, DeriveSurface& surface, const SourceSpan& span) {
    return Expander(surface, span).expandWhole(expression);
}

} // namespace morquill::taskdsl::derive
