#include "taskdsl/derive/read_back.h"

#include "support/number.h"
#include "support/text.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/derive/expression_walk.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace morquill::taskdsl::derive {

namespace {

constexpr int printedDigits = 15;
constexpr int exactDigits = 17; // of any double

/// Words that take a statement or a condition apart where they stand outside parentheses.
constexpr std::string_view structureWords[] = {"and", "as", "by",      "else", "in",
                                               "not", "or", "matches", "unit"};

bool isStructureWord(std::string_view name) noexcept {
    constexpr std::size_t shortest = 2;
    constexpr std::size_t longest = 7;
    return name.size() >= shortest && name.size() <= longest &&
           std::any_of(std::begin(structureWords), std::end(structureWords),
                       [&](std::string_view word) { return equalsNoCase(name, word); });
}

/// A name is unusual when it is a word of the language, when a colon or bracket in it counts where it stands,
/// or when substitution has put something else in its place.
bool isUnusualName(std::string_view name) noexcept {
    return name.empty() || isDigit(name.front()) || name.front() == '.' ||
           !std::all_of(name.begin(), name.end(), isDottedWordChar) || isStructureWord(name);
}

bool isUnusualReference(const plot::SnapshotExpr& snapshot) noexcept {
    return snapshot.task.empty() || snapshot.key.empty() || snapshot.task.find('.') != std::string::npos ||
           !std::all_of(snapshot.task.begin(), snapshot.task.end(), isKeyChar) ||
           !std::all_of(snapshot.key.begin(), snapshot.key.end(), isKeyChar);
}

bool losesDigits(double value) {
    constexpr double allIntegers = 1e15;
    if (std::abs(value) < allIntegers && value == std::trunc(value)) {
        return false;
    }
    return readDouble(formatSignificant(value, printedDigits)) != value;
}

bool isSum(plot::BinaryOp op) noexcept {
    return op == plot::BinaryOp::add || op == plot::BinaryOp::subtract;
}

/// True for a sum or product whose right side is one too and prints without its parentheses.
bool regroups(const plot::BinaryExpr& binary) noexcept {
    const auto* right = plot::expressionAs<plot::BinaryExpr>(binary.right);
    const bool keeps = binary.op == plot::BinaryOp::subtract || binary.op == plot::BinaryOp::divide;
    return right != nullptr && !keeps && isSum(right->op) == isSum(binary.op);
}

bool isUnusualNode(const plot::PlotExpression& node) {
    return std::visit(
        Match{[](const plot::NumberExpr& number) {
                  return std::isinf(number.value) || losesDigits(number.value);
              },
              [](const plot::IdentifierExpr& identifier) { return isUnusualName(identifier.name); },
              [](const plot::SnapshotExpr& snapshot) { return isUnusualReference(snapshot); },
              [](const plot::CallExpr& call) {
                  return isUnusualName(call.name) ||
                         std::any_of(call.arguments.begin(), call.arguments.end(), [](const auto& argument) {
                             return argument.named && isUnusualName(argument.name);
                         });
              },
              [](const plot::BinaryExpr& binary) { return regroups(binary); },
              [](const auto&) { return false; }},
        node.node);
}

ExprRef tryParse(std::string_view text) {
    try {
        return plot::parsePlotExpression(text, {});
    } catch (const DiagnosticError&) {
        return nullptr;
    }
}

/// Why a name does not stand for itself; empty when it does.
std::string lossOfName(const std::string& name) {
    const auto read = tryParse(name);
    const auto* identifier = plot::expressionAs<plot::IdentifierExpr>(read);
    return identifier != nullptr && identifier->name == name ? "" : "'" + name + "' is no name";
}

std::string lossOfCall(const plot::CallExpr& call) {
    std::string loss = lossOfName(call.name);
    for (const auto& argument : call.arguments) {
        if (loss.empty() && argument.named) {
            loss = lossOfName(argument.name);
        }
    }
    return loss;
}

std::string lossOfReference(const plot::SnapshotExpr& snapshot) {
    const std::string text = "{{ " + snapshot.task + "." + snapshot.key + " }}";
    const auto read = tryParse(text);
    const auto* again = plot::expressionAs<plot::SnapshotExpr>(read);
    const bool same = again != nullptr && again->task == snapshot.task && again->key == snapshot.key;
    return same ? "" : "'" + text + "' is no reference";
}

/// Why the node alone, whatever stands below it, is not read as it was; empty when it is.
std::string lossOf(const plot::PlotExpression& node) {
    return std::visit(
        Match{[](const plot::NumberExpr& number) {
                  return losesDigits(number.value)
                             ? "the number " + formatSignificant(number.value, exactDigits) +
                                   " prints with 15 digits"
                             : std::string();
              },
              [](const plot::IdentifierExpr& identifier) { return lossOfName(identifier.name); },
              [](const plot::SnapshotExpr& snapshot) { return lossOfReference(snapshot); },
              [](const plot::CallExpr& call) { return lossOfCall(call); },
              [](const plot::BinaryExpr& binary) {
                  return regroups(binary) ? std::string("parentheses on the right of '") +
                                                (isSum(binary.op) ? '+' : '*') + "' are not printed"
                                          : std::string();
              },
              [](const auto&) { return std::string(); }},
        node.node);
}

/// The place behind a name with the arguments of its call, or behind a text in parentheses.
std::size_t endOfOperand(std::string_view text, std::size_t at) noexcept {
    const auto isChar = [](char c) { return isDottedWordChar(c) || c == ':' || c == '[' || c == ']'; };
    while (at < text.size() && isChar(text[at])) {
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

bool isUnusual(const ExprRef& expression) {
    bool unusual = false;
    forEachNode(expression,
                [&](const plot::PlotExpression& node) { unusual = unusual || isUnusualNode(node); });
    return unusual;
}

Reading readAlone(const ExprRef& expression, std::string_view text) {
    Reading reading{tryParse(text), {}};
    if (plot::equalExpressions(reading.expression, expression)) {
        return reading;
    }
    forEachNode(expression, [&](const plot::PlotExpression& node) {
        if (reading.loss.empty()) {
            reading.loss = lossOf(node);
        }
    });
    if (reading.loss.empty()) {
        reading.loss = "an expression reads differently";
    }
    return reading;
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
    if (!warnings_ || !reported_.emplace(why).second) {
        return;
    }
    const std::string line = "derive '" + std::string(derive_) + "' does not read back: " + std::string(why);
    warnings_(replaceAll(replaceAll(line, "\n", "\\n"), "\r", "\\r"));
}

void ReadBackCheck::reportStatement(std::string_view statement) {
    report("'" + std::string(statement) + "' reads differently");
}

} // namespace morquill::taskdsl::derive
