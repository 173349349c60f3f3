#include "taskdsl/expr/expression.h"

#include "support/number.h"
#include "support/text.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

constexpr int significantDigits = 15;

/// Calls `visit` with the reference to each child of the node, from left to right.
template <class Node, class Visit>
void forEachChild(Node& node, const Visit& visit) {
    if (auto* call = std::get_if<CallExpr>(&node)) {
        for (auto& argument : call->arguments) {
            visit(argument.value);
        }
    } else if (auto* unary = std::get_if<UnaryExpr>(&node)) {
        visit(unary->operand);
    } else if (auto* binary = std::get_if<BinaryExpr>(&node)) {
        visit(binary->left);
        visit(binary->right);
    }
}

/// Moves the children that are there to the end of `taken`.
void takeChildren(PlotExpression::Node& node, std::vector<ExprRef>& taken) {
    forEachChild(node, [&](ExprRef& child) {
        if (child) {
            taken.push_back(std::move(child));
        }
    });
}

/// How tightly a node holds together in print.
enum Precedence : int { anything = 0, sums = 1, products = 2, signs = 3, primaries = 4 };

bool isProduct(BinaryOp op) noexcept {
    return op == BinaryOp::multiply || op == BinaryOp::divide;
}

int precedenceOf(const PlotExpression::Node& node) noexcept {
    if (const auto* binary = std::get_if<BinaryExpr>(&node)) {
        return isProduct(binary->op) ? products : sums;
    }
    return std::holds_alternative<UnaryExpr>(node) ? signs : primaries;
}

std::string_view operatorText(BinaryOp op) noexcept {
    switch (op) {
    case BinaryOp::subtract:
        return " - ";
    case BinaryOp::multiply:
        return " * ";
    case BinaryOp::divide:
        return " / ";
    case BinaryOp::add:
        break;
    }
    return " + ";
}

/// What is still to be printed: a text, or a node and the precedence that its context asks for.
struct PrintItem {
    std::string_view text;
    const PlotExpression* expression = nullptr;
    int asked = anything;
};

/// Prints what stands at the front of a node and leaves the rest on the stack, last part first.
void printNode(const PlotExpression::Node& node, std::string& out, std::vector<PrintItem>& stack) {
    std::visit(
        Match{[&](const NumberExpr& number) { out += formatSignificant(number.value, significantDigits); },
              [&](const StringExpr& string) { out += quotePlotText(string.text); },
              [&](const IdentifierExpr& identifier) { out += identifier.name; },
              [&](const SnapshotExpr& snapshot) {
                  out += "{{ ";
                  out += snapshot.task;
                  out += '.';
                  out += snapshot.key;
                  out += " }}";
              },
              [&](const CallExpr& call) {
                  out += call.name;
                  out += '(';
                  stack.push_back({")", nullptr, anything});
                  for (auto it = call.arguments.rbegin(); it != call.arguments.rend(); ++it) {
                      stack.push_back({{}, it->value.get(), anything});
                      if (it->named) {
                          stack.push_back({"=", nullptr, anything});
                          stack.push_back({it->name, nullptr, anything});
                      }
                      if (std::next(it) != call.arguments.rend()) {
                          stack.push_back({", ", nullptr, anything});
                      }
                  }
              },
              [&](const UnaryExpr& unary) {
                  out += unary.op == UnaryOp::minus ? '-' : '+';
                  stack.push_back({{}, unary.operand.get(), signs});
              },
              [&](const BinaryExpr& binary) {
                  const int own = isProduct(binary.op) ? products : sums;
                  const bool strict = binary.op == BinaryOp::subtract || binary.op == BinaryOp::divide;
                  stack.push_back({{}, binary.right.get(), own + (strict ? 1 : 0)});
                  stack.push_back({operatorText(binary.op), nullptr, anything});
                  stack.push_back({{}, binary.left.get(), own});
              }},
        node);
}

/// True when the nodes are alike but for their children.
bool equalHeads(const PlotExpression::Node& left, const PlotExpression::Node& right) {
    if (left.index() != right.index()) {
        return false;
    }
    const auto with = [&](const auto& a) -> const auto& {
        return std::get<std::decay_t<decltype(a)>>(right);
    };
    return std::visit(
        Match{[&](const NumberExpr& a) { return a.value == with(a).value; },
              [&](const StringExpr& a) { return a.text == with(a).text; },
              [&](const IdentifierExpr& a) { return a.name == with(a).name; },
              [&](const SnapshotExpr& a) { return a.task == with(a).task && a.key == with(a).key; },
              [&](const CallExpr& a) {
                  const CallExpr& b = with(a);
                  return a.name == b.name &&
                         std::equal(a.arguments.begin(), a.arguments.end(), b.arguments.begin(),
                                    b.arguments.end(),
                                    [](const PlotCallArgument& x, const PlotCallArgument& y) {
                                        return x.named == y.named && x.name == y.name;
                                    });
              },
              [&](const UnaryExpr& a) { return a.op == with(a).op; },
              [&](const BinaryExpr& a) { return a.op == with(a).op; }},
        left);
}

} // namespace

PlotExpression::~PlotExpression() {
    std::vector<ExprRef> doomed;
    takeChildren(node, doomed);
    while (!doomed.empty()) {
        const ExprRef child = std::move(doomed.back());
        doomed.pop_back();
        if (child.use_count() == 1) {
            // Every node is made as a non-const object, and this is its last owner.
            takeChildren(const_cast<PlotExpression&>(*child).node, doomed);
        }
    }
}

ExprRef makeExpression(PlotExpression::Node node) {
    return std::make_shared<PlotExpression>(std::move(node));
}

std::string renderPlotExpression(const ExprRef& expression) {
    std::string out;
    std::vector<PrintItem> stack;
    stack.reserve(16); // most expressions need no more
    stack.push_back({{}, expression.get(), anything});
    while (!stack.empty()) {
        const PrintItem item = stack.back();
        stack.pop_back();
        if (item.expression == nullptr) {
            out += item.text;
            continue;
        }
        if (precedenceOf(item.expression->node) < item.asked) {
            out += '(';
            stack.push_back({")", nullptr, anything});
        }
        printNode(item.expression->node, out, stack);
    }
    return out;
}

ExprRef mapExpression(const ExprRef& expression, const std::function<ExprRef(const ExprRef&)>& replace) {
    if (!expression) {
        return expression;
    }
    struct Visit {
        const ExprRef* source;
        bool childrenDone;
    };
    std::vector<Visit> open{{&expression, false}};
    std::vector<ExprRef> done; // the results, of a node's children the last ones when its turn comes
    while (!open.empty()) {
        const Visit visit = open.back();
        open.pop_back();
        const ExprRef& source = *visit.source;
        if (!visit.childrenDone) {
            open.push_back({&source, true});
            const std::size_t firstChild = open.size();
            forEachChild(source->node, [&](const ExprRef& child) {
                if (child) {
                    open.push_back({&child, false});
                }
            });
            std::reverse(open.begin() + static_cast<std::ptrdiff_t>(firstChild), open.end());
            continue;
        }
        std::size_t count = 0;
        forEachChild(source->node, [&](const ExprRef& child) { count += child ? 1 : 0; });
        const std::size_t first = done.size() - count;
        std::size_t at = first;
        bool changed = false;
        forEachChild(source->node, [&](const ExprRef& child) { changed |= child && done[at++] != child; });
        ExprRef node = source;
        if (changed) {
            PlotExpression::Node copy = source->node;
            at = first;
            forEachChild(copy, [&](ExprRef& child) {
                if (child) {
                    child = std::move(done[at++]);
                }
            });
            node = makeExpression(std::move(copy));
        }
        done.resize(first);
        done.push_back(replace(node));
    }
    return done.front();
}

bool equalExpressions(const ExprRef& left, const ExprRef& right) {
    std::vector<std::pair<const PlotExpression*, const PlotExpression*>> open{{left.get(), right.get()}};
    while (!open.empty()) {
        const auto [a, b] = open.back();
        open.pop_back();
        if (a == b) {
            continue;
        }
        if (a == nullptr || b == nullptr || !equalHeads(a->node, b->node)) {
            return false;
        }
        const std::size_t first = open.size();
        forEachChild(a->node, [&](const ExprRef& child) { open.emplace_back(child.get(), nullptr); });
        std::size_t at = first;
        forEachChild(b->node, [&](const ExprRef& child) { open[at++].second = child.get(); });
    }
    return true;
}

} // namespace morquill::taskdsl::plot
