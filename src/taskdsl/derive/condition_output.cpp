#include "taskdsl/derive/condition_output.h"

#include "taskdsl/derive/condition.h"
#include "taskdsl/derive/derive_text.h"

#include <utility>

namespace morquill::taskdsl::derive {

namespace {

using Kind = DeriveConditionKind;

DeriveCondition leafOf(ExprRef left, DeriveCompareOp op = DeriveCompareOp::truthy, ExprRef right = nullptr) {
    DeriveCondition leaf;
    leaf.left = std::move(left);
    leaf.op = op;
    leaf.right = std::move(right);
    return leaf;
}

ExprRef zero() {
    return plot::makeExpression(plot::NumberExpr{0});
}

bool readsAsCondition(std::string_view text, const DeriveCondition& expected) {
    DeriveSurface surface;
    try {
        return parseDeriveCondition(text, surface, {}) == expected;
    } catch (const DiagnosticError&) {
        return false;
    }
}

class ConditionPrinter {
  public:
    ConditionPrinter(std::string_view keyword, ElseWord elseWord, ReadBackCheck& check)
        : keyword_(keyword), elseWord_(elseWord), check_(check) {}

    std::string print(const DeriveCondition& condition) {
        append(condition);
        return std::move(line_);
    }

  private:
    /// Appends the condition; goes down the last child in a loop, since chains lean that way.
    void append(const DeriveCondition& condition) {
        const auto outerGroups = groups_;
        const DeriveCondition* node = &condition;
        while (!node->children.empty()) {
            checkGroups(*node);
            if (node->kind == Kind::negation) {
                line_ += "not ";
            } else {
                appendLeft(*node);
            }
            const DeriveCondition& last = node->children.back();
            if (opensGroup(*node, last)) {
                line_ += '(';
                ++groups_;
            }
            node = &last;
        }
        appendLeaf(*node);
        line_.append(groups_ - outerGroups, ')');
        groups_ = outerGroups;
    }

    static bool opensGroup(const DeriveCondition& parent, const DeriveCondition& child) {
        return parent.kind == Kind::conjunction && child.kind == Kind::disjunction;
    }

    void appendLeft(const DeriveCondition& node) {
        const DeriveCondition& left = node.children.front();
        const bool grouped = opensGroup(node, left);
        groups_ += grouped ? 1 : 0;
        line_ += grouped ? "(" : "";
        append(left);
        line_ += grouped ? ")" : "";
        groups_ -= grouped ? 1 : 0;
        line_ += ' ';
        line_ += deriveConditionKindName(node.kind);
        line_ += ' ';
    }

    /// Only an `or` below an `and` keeps its parentheses.
    void checkGroups(const DeriveCondition& node) {
        const DeriveCondition& first = node.children.front();
        if (node.kind == Kind::negation) {
            if (first.kind == Kind::conjunction || first.kind == Kind::disjunction) {
                check_.report("'not' before a group prints without parentheses");
            }
        } else if (first.kind == node.kind) {
            check_.report("a group before '" + std::string(deriveConditionKindName(node.kind)) +
                          "' prints without parentheses");
        }
    }

    void appendLeaf(const DeriveCondition& leaf) {
        if (leaf.op == DeriveCompareOp::truthy) {
            line_ += part(leaf.left, "", "", [](ExprRef value) { return leafOf(std::move(value)); });
            return;
        }
        line_ += part(leaf.left, "", " == 0",
                      [](ExprRef left) { return leafOf(std::move(left), DeriveCompareOp::equal, zero()); });
        if (leaf.op == DeriveCompareOp::in) {
            appendList(leaf);
            return;
        }
        line_ += ' ';
        line_ += deriveCompareOpName(leaf.op);
        line_ += ' ';
        line_ += part(leaf.right, "0 == ", "",
                      [](ExprRef right) { return leafOf(zero(), DeriveCompareOp::equal, std::move(right)); });
    }

    void appendList(const DeriveCondition& leaf) {
        line_ += " in [";
        std::string_view separator;
        for (const auto& value : leaf.list) {
            line_ += separator;
            line_ += part(value, "0 in [", "]", [](ExprRef entry) {
                DeriveCondition list = leafOf(zero(), DeriveCompareOp::in);
                list.list.push_back(std::move(entry));
                return list;
            });
            separator = ", ";
        }
        line_ += ']';
    }

    /// An expression of a leaf in a form that reads back between `before` and `after` as part of what
    /// `sample` makes of it.
    template <class Sample>
    std::string part(const ExprRef& expression, std::string_view before, std::string_view after,
                     const Sample& sample) {
        return check_.print(expression, keyword_, [&](const std::string& text, const ExprRef& reading) {
            const std::string whole = std::string(before) + text + std::string(after);
            return !endsAtElse(whole) && readsAsCondition(whole, sample(reading));
        });
    }

    bool endsAtElse(std::string_view text) const {
        return elseWord_ == ElseWord::ends && groups_ == 0 &&
               splitAtWord(text, "else", 0, Brackets::shielding);
    }

    std::string_view keyword_;
    ElseWord elseWord_;
    ReadBackCheck& check_;
    std::string line_;
    std::size_t groups_ = 0; ///< open parentheses
};

} // namespace

std::string printCondition(const DeriveCondition& condition, std::string_view keyword, ElseWord elseWord,
                           ReadBackCheck& check) {
    return ConditionPrinter(keyword, elseWord, check).print(condition);
}

} // namespace morquill::taskdsl::derive
