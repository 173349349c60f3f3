#include "taskdsl/derive/read_back.h"

#include "support/match.h"
#include "support/text.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/expr/expression_walk.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace morquill::taskdsl::derive {

namespace {

/// Words that split a statement or a condition when they are outside parentheses.
constexpr std::string_view structureWords[] = {"and", "as", "by",      "else", "in",
                                               "not", "or", "matches", "unit"};

bool isStructureWord(std::string_view name) noexcept {
    constexpr std::size_t shortest = 2;
    constexpr std::size_t longest = 7;
    return name.size() >= shortest && name.size() <= longest &&
           std::any_of(std::begin(structureWords), std::end(structureWords),
                       [&](std::string_view word) { return equalsNoCase(name, word); });
}

/// A name is unusual when it is a word of the language, when a colon or bracket in it counts in its place,
/// or when substitution has put something else in its place.
bool isUnusualName(std::string_view name) noexcept {
    return name.empty() || isDigit(name.front()) || name.front() == '.' ||
           !std::all_of(name.begin(), name.end(), isDottedWordChar) || isStructureWord(name);
}

bool holdsUnusualName(const plot::PlotExpression& node) {
    return std::visit(
        Match{[](const plot::IdentifierExpr& identifier) { return isUnusualName(identifier.name); },
              [](const plot::CallExpr& call) {
                  return isUnusualName(call.name) ||
                         std::any_of(call.arguments.begin(), call.arguments.end(), [](const auto& argument) {
                             return argument.named && isUnusualName(argument.name);
                         });
              },
              [](const auto&) { return false; }},
        node.node);
}

/// The place after a name with the arguments of its call, or after a text in parentheses.
std::size_t endOfOperand(std::string_view text, std::size_t at) noexcept {
    while (at < text.size() && plot::isExpressionNameChar(text[at])) {
        ++at;
    }
    if (at == text.size() || text[at] != '(') {
        return at;
    }
    return std::min(skipParentheses(text, at), text.size());
}

/// Parentheses around every operand at level zero that begins with an unusual name.
std::string wrapNames(std::string_view text) {
    std::string wrapped;
    for (std::size_t at = 0; at < text.size();) {
        const auto opaque = skipOpaque(text, at);
        const auto end = std::max(opaque == at ? endOfOperand(text, at) : opaque, at + 1);
        const auto operand = text.substr(at, end - at);
        const auto name = operand.substr(0, operand.find('('));
        const bool named = isWordStart(operand.front()) || operand.front() == '[';
        const bool wrap = named && isUnusualName(name);
        wrapped.append(wrap ? "(" : "").append(operand).append(wrap ? ")" : "");
        at = end;
    }
    return wrapped;
}

} // namespace

bool isUnusual(const ExprRef& expression, const plot::PrintedExpression& printed) {
    bool unusual = printed.oddReference || !printed.loss.empty();
    plot::forEachNode(expression,
                      [&](const plot::PlotExpression& node) { unusual = unusual || holdsUnusualName(node); });
    return unusual;
}

std::string formOf(std::string_view text, ExpressionForm form) {
    switch (form) {
    case ExpressionForm::wrapped:
        return '(' + std::string(text) + ')';
    case ExpressionForm::namesWrapped:
        return wrapNames(text);
    case ExpressionForm::plain:
        break;
    }
    return std::string(text);
}

void ReadBackCheck::report(std::string_view why) {
    ++reports_;
    if (std::find(reasons_.begin(), reasons_.end(), why) == reasons_.end()) {
        reasons_.emplace_back(why);
    }
}

void ReadBackCheck::warn() const {
    if (!warnings_ || reasons_.empty()) {
        return;
    }
    const std::string line =
        "derive '" + std::string(derive_) + "' does not read back: " + join(reasons_, "; ");
    warnings_(oneLine(line));
}

void ReadBackCheck::reportStatement(std::string_view statement) {
    report("'" + std::string(statement) + "' reads differently");
}

} // namespace morquill::taskdsl::derive
