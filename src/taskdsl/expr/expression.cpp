#include "taskdsl/expr/expression.h"

#include "support/byte_set.h"
#include "support/match.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/escape.h"
#include "taskdsl/expr/expression_walk.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/expr/precedence.h"
#include "taskdsl/expr/statement_reader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// Moves the children that are there to the end of `taken`.
void takeChildren(PlotExpression::Node& node, std::vector<ExprRef>& taken) {
    forEachChild(node, [&](ExprRef& child) {
        if (child) {
            taken.push_back(std::move(child));
        }
    });
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
    Precedence asked = Precedence::anything;
    bool closes = false; ///< a level of nesting ends here
};

/// True for a task or key that no walk through a statement stops at.
bool isCalm(std::string_view text) noexcept {
    static constexpr ByteSet calm(
        [](char c) { return isWordChar(c) || std::string_view("-.:[]").find(c) != std::string_view::npos; });
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return calm.contains(c); });
}

/// True when the reference, printed as `text`, reads as itself.
bool readsBack(const SnapshotExpr& snapshot, std::string_view text) {
    try {
        const auto again = parsePlotExpression(text, {});
        const auto* reference = expressionAs<SnapshotExpr>(again);
        return reference != nullptr && reference->task == snapshot.task && reference->key == snapshot.key;
    } catch (const DiagnosticError&) {
        return false;
    }
}

/// Prints a tree from its root, keeping what is still to be printed on a stack.
class ExpressionPrinter {
  public:
    explicit ExpressionPrinter(const ExprRef& root) {
        stack_.reserve(16);        // most expressions need no more
        printed_.text.reserve(96); // bytes: neither do they
        push(root, Precedence::anything);
    }

    PrintedExpression print() {
        while (!stack_.empty()) {
            const PrintItem item = stack_.back();
            stack_.pop_back();
            if (item.expression != nullptr) {
                open(*item.expression, item.asked);
                continue;
            }
            printed_.text += item.text;
            depth_ -= item.closes ? 1 : 0;
        }
        if (printed_.depth > maxExpressionDepth) {
            lose("the expression is nested too deeply");
        }
        return std::move(printed_);
    }

    void operator()(const NumberExpr& number) {
        if (std::isinf(number.value)) {
            printed_.text += "1e+999"; // "inf" would be a name
            return;
        }
        const auto [text, readsBack] = printPlotNumber(number.value);
        printed_.text += text;
        if (!readsBack) {
            lose(plotNumberLoss(number.value));
        }
    }
    void operator()(const StringExpr& string) { appendQuoted(printed_.text, string.text); }
    void operator()(const IdentifierExpr& identifier) { name(identifier.name); }
    void operator()(const SnapshotExpr& snapshot) {
        const std::size_t begin = printed_.text.size();
        printed_.text.append("{{ ").append(snapshot.task).append(".").append(snapshot.key).append(" }}");
        const bool calm = isCalm(snapshot.task) && isCalm(snapshot.key);
        printed_.oddReference = printed_.oddReference || !calm;
        const auto text = std::string_view(printed_.text).substr(begin);
        if ((!calm || snapshot.task.find('.') != std::string::npos) && !readsBack(snapshot, text)) {
            lose(singleQuoted(text) + " is no reference");
        }
    }
    void operator()(const CallExpr& call) {
        name(call.name);
        printed_.text += '(';
        goDeeper();
        close(")");
        for (const auto& argument : call.arguments) {
            if (argument.named) {
                checkName(argument.name);
            }
        }
        for (auto it = call.arguments.rbegin(); it != call.arguments.rend(); ++it) {
            push(it->value, Precedence::anything);
            if (it->named) {
                push("=");
                push(it->name);
            }
            if (std::next(it) != call.arguments.rend()) {
                push(", ");
            }
        }
    }
    void operator()(const UnaryExpr& unary) {
        printed_.text += unary.op == UnaryOp::minus ? '-' : '+';
        goDeeper();
        close({});
        push(unary.operand, Precedence::signs);
    }
    void operator()(const BinaryExpr& binary) {
        push(binary.right, rightPrecedence(binary.op));
        push(operatorText(binary.op));
        push(binary.left, precedenceOf(binary.op));
        if (regroups(binary)) {
            lose("parentheses on the right of '" + std::string(trim(operatorText(binary.op))) +
                 "' are not printed");
        }
    }

  private:
    /// Prints what a node begins with and leaves the rest on the stack, last part first.
    void open(const PlotExpression& expression, Precedence asked) {
        if (needsParentheses(expression, asked)) {
            printed_.text += '(';
            goDeeper();
            close(")");
        }
        std::visit(*this, expression.node);
    }

    void push(std::string_view text) { stack_.push_back({text}); }
    void push(const ExprRef& expression, Precedence asked) {
        stack_.push_back({{}, expression.get(), asked});
    }
    void close(std::string_view text) { stack_.push_back({text, nullptr, Precedence::anything, true}); }

    void goDeeper() { printed_.depth = std::max(printed_.depth, ++depth_); }

    void name(const std::string& text) {
        printed_.text += text;
        checkName(text);
    }
    void checkName(const std::string& text) {
        if (!isExpressionName(text)) {
            lose("'" + text + "' is no name");
        }
    }

    /// The first reason is kept.
    void lose(std::string reason) {
        if (printed_.loss.empty()) {
            printed_.loss = std::move(reason);
        }
    }

    PrintedExpression printed_;
    std::vector<PrintItem> stack_;
    std::size_t depth_ = 0;
};

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

/// A node of a tree that is mapped; its turn comes when its children are done.
struct Visit {
    const ExprRef* source;
    bool childrenDone;
};

/// Pushes the children that are there, the first one last.
void pushChildren(const ExprRef& source, std::vector<Visit>& open) {
    const auto first = static_cast<std::ptrdiff_t>(open.size());
    forEachChild(source->node, [&](const ExprRef& child) {
        if (child) {
            open.push_back({&child, false});
        }
    });
    std::reverse(open.begin() + first, open.end());
}

/// Takes the results of a node's children off the end of `done`: the node with these children, or the node
/// itself when none of them changed.
ExprRef withChildren(const ExprRef& source, std::vector<ExprRef>& done) {
    std::size_t count = 0;
    forEachChild(source->node, [&](const ExprRef& child) { count += child ? 1 : 0; });
    const std::size_t first = done.size() - count;
    std::size_t at = first;
    bool changed = false;
    forEachChild(source->node, [&](const ExprRef& child) { changed |= child && done[at++] != child; });
    if (!changed) {
        done.resize(first);
        return source;
    }
    PlotExpression::Node copy = source->node;
    at = first;
    forEachChild(copy, [&](ExprRef& child) {
        if (child) {
            child = std::move(done[at++]);
        }
    });
    done.resize(first);
    return makeExpression(std::move(copy));
}

} // namespace

PlotExpression::~PlotExpression() {
    std::vector<ExprRef> doomed;
    takeChildren(node, doomed);
    while (!doomed.empty()) {
        const ExprRef child = std::move(doomed.back());
        doomed.pop_back();
        if (child.isOnlyHolder()) {
            // Nobody sees the node any more: this is its last holder.
            takeChildren(const_cast<PlotExpression&>(*child).node, doomed);
        }
    }
}

PrintedExpression printExpression(const ExprRef& expression) {
    return ExpressionPrinter(expression).print();
}

std::string renderPlotExpression(const ExprRef& expression) {
    return printExpression(expression).text;
}

ExprRef readPrinted(const ExprRef& expression, const PrintedExpression& printed) {
    if (printed.loss.empty()) {
        return expression;
    }
    try {
        return parsePlotExpression(printed.text, {});
    } catch (const DiagnosticError&) {
        return nullptr;
    }
}

const std::string* nameOrString(const ExprRef& expression) noexcept {
    if (const auto* identifier = expressionAs<IdentifierExpr>(expression)) {
        return &identifier->name;
    }
    const auto* string = expressionAs<StringExpr>(expression);
    return string != nullptr ? &string->text : nullptr;
}

const std::string& requireNameOrString(const ExprRef& expression, std::string_view label,
                                       const SourceSpan& span) {
    if (const auto* text = nameOrString(expression)) {
        return *text;
    }
    plotError(span, std::string(label) + " must be an identifier or string literal");
}

ExprRef mapExpression(const ExprRef& expression, const std::function<ExprRef(const ExprRef&)>& replace) {
    if (!expression) {
        return expression;
    }
    std::vector<Visit> open{{&expression, false}};
    std::vector<ExprRef> done; // the results, of a node's children the last ones when its turn comes
    while (!open.empty()) {
        Visit& visit = open.back();
        const ExprRef& source = *visit.source;
        if (!visit.childrenDone) {
            visit.childrenDone = true;
            pushChildren(source, open);
            continue;
        }
        open.pop_back();
        const ExprRef node = withChildren(source, done);
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
