#include "taskdsl/task/when_expr.h"

#include "support/cursor.h"
#include "support/match.h"
#include "support/text.h"
#include "support/word_table.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/scan.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// In the order in which they are tried at one place.
constexpr auto compareWords = wordTable<WhenCompareOp>({
    {"==", WhenCompareOp::equal},
    {"=", WhenCompareOp::equal},
    {"!=", WhenCompareOp::notEqual},
    {"<=", WhenCompareOp::lessEqual},
    {">=", WhenCompareOp::greaterEqual},
    {"<", WhenCompareOp::less},
    {">", WhenCompareOp::greater},
});

/// Equality is printed in its short form.
std::string_view compareText(WhenCompareOp op) noexcept {
    return op == WhenCompareOp::equal ? "=" : compareWords.wordOf(op).value_or("=");
}

/// How many pairs of parentheses enclose the whole text one inside the other. The text is walked once for all
/// of them: the pair that opens at depth n encloses its text when the depth stays at n or above until the
/// closing parentheses at the end begin.
std::size_t countEnclosingPairs(std::string_view text) noexcept {
    std::size_t i = 0;
    std::size_t opening = 0;
    for (; i < text.size() && (text[i] == '(' || isTrimmed(text[i])); ++i) {
        opening += text[i] == '(' ? 1 : 0;
    }
    std::size_t depth = opening;
    std::size_t lowest = opening;
    std::size_t closing = 0;
    QuoteWalk walk(quote_rules::whenEnclosure);
    while (i < text.size()) {
        const bool open = walk.inOpen();
        const auto next = walk.step(text, i);
        const bool sheltered = !open || !walk.inOpen() || next > i + 1;
        const char c = sheltered ? '\0' : text[i];
        i = next;
        if (c == ')') {
            if (depth == 0) {
                return 0;
            }
            --depth;
            ++closing;
        } else if (!isTrimmed(c)) {
            lowest = closing > 0 ? std::min(lowest, depth) : lowest;
            closing = 0;
            depth += c == '(' ? 1 : 0;
        }
    }
    return depth == 0 ? std::min({opening, closing, lowest}) : 0;
}

std::string_view stripEnclosingPairs(std::string_view text) noexcept {
    text = trim(text);
    if (text.empty() || text.front() != '(' || text.back() != ')') {
        return text;
    }
    for (auto pairs = countEnclosingPairs(text); pairs > 0; --pairs) {
        text = trim(text.substr(1, text.size() - 2));
    }
    return text;
}

bool standsAt(std::string_view text, std::size_t i, std::string_view word) noexcept {
    const auto end = i + word.size();
    if (word.empty() || end > text.size() || lowerChar(text[i]) != lowerChar(word.front())) {
        return false;
    }
    return (i == 0 || isSpace(text[i - 1])) && (end == text.size() || isSpace(text[end])) &&
           equalsNoCase(text.substr(i, word.size()), word);
}

bool isLineBreak(char c) noexcept {
    return c == '\n' || c == '\r';
}

/// A text to be matched as a comparison, and what the matcher needs to know of its end.
struct ComparisonText {
    std::string_view text;
    std::size_t end = 0;       ///< one past the last byte that is no white space
    std::size_t lastBreak = 0; ///< one past the last line break before `end`; 0 when there is none
};

/// What `\s*(.+?)\s*$` captures from `begin` on.
std::optional<std::string_view> matchRightSide(const ComparisonText& whole, std::size_t begin) noexcept {
    const auto text = whole.text;
    if (begin < whole.end) {
        begin = skipSpace(text, begin);
        return begin < whole.lastBreak ? std::nullopt : std::optional(text.substr(begin, whole.end - begin));
    }
    // Only white space: the group takes the last byte of it that `.` matches.
    for (auto end = text.size(); end > begin; --end) {
        if (!isLineBreak(text[end - 1])) {
            return text.substr(end - 1, 1);
        }
    }
    return std::nullopt;
}

WhenOperand readOperand(std::string_view text) {
    text = trim(text);
    if (isWhenPlaceholder(text)) {
        return {WhenOperandKind::placeholder, std::string(whenPlaceholderBody(text))};
    }
    return {WhenOperandKind::literal, std::string(text)};
}

/// The comparison whose operator begins at `at`, if one does and a right side follows it.
std::optional<WhenComparison> compareAt(const ComparisonText& whole, std::string_view left, std::size_t at) {
    for (const auto& [word, op] : compareWords) {
        if (!whole.text.substr(at).starts_with(word)) {
            continue;
        }
        if (const auto right = matchRightSide(whole, at + word.size())) {
            return WhenComparison{readOperand(left), readOperand(*right), op};
        }
    }
    return std::nullopt;
}

/// Pattern `^\s*(.+?)\s*(==|=|!=|<=|>=|<|>)\s*(.+?)\s*$`, where `.` takes no line feed and no carriage
/// return. The lazy left side ends at the first operator that has a right side.
std::optional<WhenComparison> matchComparison(std::string_view text) {
    const std::size_t begin = skipSpace(text);
    ComparisonText whole{text, text.size(), 0};
    while (whole.end > begin && isSpace(text[whole.end - 1])) {
        --whole.end;
    }
    for (auto i = whole.end; i > begin && whole.lastBreak == 0; --i) {
        whole.lastBreak = isLineBreak(text[i - 1]) ? i : 0;
    }
    std::size_t leftEnd = begin;
    for (std::size_t i = begin; i < text.size(); ++i) {
        if (i > begin && std::string_view("=!<>").find(text[i]) != std::string_view::npos) {
            const auto left = text.substr(begin, leftEnd - begin);
            if (auto comparison = compareAt(whole, left, i)) {
                return comparison;
            }
        }
        if (isSpace(text[i])) {
            continue;
        }
        // The left side would have to take what is between.
        const auto between = text.substr(leftEnd, i - leftEnd);
        if (std::any_of(between.begin(), between.end(), isLineBreak)) {
            break;
        }
        leftEnd = i + 1;
    }
    // An operator directly after leading white space: the left side takes the last byte of that space.
    for (std::size_t i = begin; i > 0; --i) {
        if (!isLineBreak(text[i - 1])) {
            return begin < text.size() ? compareAt(whole, text.substr(i - 1, 1), begin) : std::nullopt;
        }
    }
    return std::nullopt;
}

TaskWhenExpr parseNode(std::string_view text, int depth);

TaskWhenExpr parseGroup(WhenGroupOp op, const std::vector<std::string_view>& parts, int depth) {
    if (depth >= maxWhenNesting) {
        throw DiagnosticError("%when condition nests groups more than " + std::to_string(maxWhenNesting) +
                              " levels deep");
    }
    WhenGroup group{op, {}};
    group.children.reserve(parts.size());
    for (const auto part : parts) {
        group.children.push_back(std::make_shared<const TaskWhenExpr>(parseNode(part, depth + 1)));
    }
    return {std::move(group)};
}

TaskWhenExpr parseNode(std::string_view text, int depth) {
    const auto split = splitWhen(text);
    if (!split.parts.empty()) {
        return parseGroup(split.op, split.parts, depth);
    }
    text = split.text;
    if (const auto operand = textAfterWord(text, "defined")) {
        return {WhenDefined{std::string(*operand)}};
    }
    if (const auto operand = textAfterWord(text, "completed")) {
        return {WhenCompleted{std::string(*operand)}};
    }
    if (auto comparison = matchComparison(text)) {
        return {std::move(*comparison)};
    }
    return {WhenText{std::string(text)}};
}

std::string formatOperand(const WhenOperand& operand) {
    return operand.kind == WhenOperandKind::placeholder ? "{{ " + operand.text + " }}" : operand.text;
}

/// Calls `visit` for every node, parents first and children in their order. The walk keeps its own stack.
template <class Visit>
void walk(const TaskWhenExpr& expr, const Visit& visit) {
    std::vector<const TaskWhenExpr*> open{&expr};
    while (!open.empty()) {
        const TaskWhenExpr& node = *open.back();
        open.pop_back();
        visit(node);
        if (const auto* group = std::get_if<WhenGroup>(&node.node)) {
            for (auto child = group->children.rbegin(); child != group->children.rend(); ++child) {
                open.push_back(child->get());
            }
        }
    }
}

bool isOrGroup(const TaskWhenExpr& expr) noexcept {
    const auto* group = std::get_if<WhenGroup>(&expr.node);
    return group != nullptr && group->op == WhenGroupOp::disjunction;
}

/// Either a node still to be printed or a text between nodes.
struct PrintStep {
    const TaskWhenExpr* node = nullptr;
    std::string_view text;
};

/// The steps that print a group, the last one first.
void pushGroup(std::vector<PrintStep>& steps, const WhenGroup& group) {
    const bool conjunction = group.op == WhenGroupOp::conjunction;
    for (std::size_t i = group.children.size(); i-- > 0;) {
        const auto& child = *group.children[i];
        const bool enclosed = conjunction && isOrGroup(child);
        if (enclosed) {
            steps.push_back({nullptr, ")"});
        }
        steps.push_back({&child, {}});
        if (enclosed) {
            steps.push_back({nullptr, "("});
        }
        if (i > 0) {
            steps.push_back({nullptr, conjunction ? " and " : " or "});
        }
    }
}

} // namespace

TaskWhenExpr parseWhenExpr(std::string_view text) {
    return parseNode(text, 0);
}

std::string formatWhenExpr(const TaskWhenExpr& expr) {
    std::string text;
    std::vector<PrintStep> steps{{&expr, {}}};
    while (!steps.empty()) {
        const auto step = steps.back();
        steps.pop_back();
        if (step.node == nullptr) {
            text += step.text;
            continue;
        }
        std::visit(Match{[&](const WhenDefined& node) { text += "defined " + node.operand; },
                         [&](const WhenCompleted& node) { text += "completed " + node.operand; },
                         [&](const WhenComparison& node) {
                             text += formatOperand(node.left);
                             text.append(" ").append(compareText(node.op)) += ' ';
                             text += formatOperand(node.right);
                         },
                         [&](const WhenGroup& group) { pushGroup(steps, group); },
                         [&](const WhenText& node) { text += node.text; }},
                   step.node->node);
    }
    return text;
}

std::vector<std::string_view> splitWhenTopLevel(std::string_view text, std::string_view keyword) {
    std::vector<std::string_view> parts;
    const auto addPart = [&](std::size_t begin, std::size_t end) {
        const auto part = trim(text.substr(begin, end - begin));
        if (!part.empty()) {
            parts.push_back(part);
        }
    };
    std::size_t begin = 0;
    QuoteWalk walk(quote_rules::whenCondition);
    for (std::size_t i = 0; i < text.size();) {
        if (walk.atTop() && standsAt(text, i, keyword)) {
            addPart(begin, i);
            i += keyword.size();
            begin = i;
        } else if (isWordChar(text[i])) {
            i += Cursor(text, i).takeWhile(isWordChar).size(); // neither a mark nor a keyword begins within
        } else {
            i = walk.step(text, i);
        }
    }
    addPart(begin, text.size());
    return parts;
}

WhenSplit splitWhen(std::string_view text) {
    text = stripEnclosingPairs(text);
    if (auto parts = splitWhenTopLevel(text, "or"); parts.size() > 1) {
        return {text, WhenGroupOp::disjunction, std::move(parts)};
    }
    if (auto parts = splitWhenTopLevel(text, "and"); parts.size() > 1) {
        return {text, WhenGroupOp::conjunction, std::move(parts)};
    }
    return {text, WhenGroupOp::conjunction, {}};
}

bool isWhenPlaceholder(std::string_view text) noexcept {
    text = trim(text);
    return text.size() > 3 && text.starts_with("{{") && text.ends_with("}}");
}

std::string_view whenPlaceholderBody(std::string_view text) noexcept {
    text = trim(text);
    return text.size() < 4 ? std::string_view{} : trim(text.substr(2, text.size() - 4));
}

std::vector<std::string> collectCompletedTargets(const TaskWhenExpr& expr) {
    std::vector<std::string> targets;
    walk(expr, [&](const TaskWhenExpr& node) {
        if (const auto* completed = std::get_if<WhenCompleted>(&node.node)) {
            const auto target = trim(completed->operand);
            if (!target.empty()) {
                targets.emplace_back(target);
            }
        }
    });
    return targets;
}

std::vector<std::string> collectPlaceholders(const TaskWhenExpr& expr) {
    std::vector<std::string> placeholders;
    walk(expr, [&](const TaskWhenExpr& node) {
        const auto* comparison = std::get_if<WhenComparison>(&node.node);
        if (comparison == nullptr) {
            return;
        }
        for (const auto* side : {&comparison->left, &comparison->right}) {
            if (side->kind == WhenOperandKind::placeholder) {
                placeholders.push_back(side->text);
            }
        }
    });
    return placeholders;
}

bool hasAllOthers(const TaskWhenExpr& expr) {
    bool found = false;
    walk(expr, [&](const TaskWhenExpr& node) {
        const auto* completed = std::get_if<WhenCompleted>(&node.node);
        found = found || (completed != nullptr && equalsNoCase(trim(completed->operand), "allothers"));
    });
    return found;
}

} // namespace morquill::taskdsl
