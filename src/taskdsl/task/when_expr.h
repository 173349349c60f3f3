#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// `%when`: the condition under which a task may run. The task keeps the text; the tree is parsed from it by
/// whoever needs it.
namespace morquill::taskdsl {

enum class WhenOperandKind : std::int32_t { literal = 0, placeholder = 1 };

/// One side of a comparison.
struct WhenOperand {
    WhenOperandKind kind = WhenOperandKind::literal;
    std::string text; ///< the literal, or what is between `{{` and `}}`, trimmed

    friend bool operator==(const WhenOperand&, const WhenOperand&) = default;
};

enum class WhenCompareOp : std::int32_t {
    equal = 0,
    notEqual = 1,
    less = 2,
    lessEqual = 3,
    greater = 4,
    greaterEqual = 5
};
enum class WhenGroupOp : std::int32_t { conjunction = 0, disjunction = 1 };

struct TaskWhenExpr;

/// `defined <operand>`.
struct WhenDefined {
    std::string operand;
};
/// `completed <operand>`: a task name or "allothers".
struct WhenCompleted {
    std::string operand;
};
struct WhenComparison {
    WhenOperand left;
    WhenOperand right;
    WhenCompareOp op = WhenCompareOp::equal;
};
/// Two or more conditions joined by "and" or "or".
struct WhenGroup {
    WhenGroupOp op = WhenGroupOp::conjunction;
    std::vector<std::shared_ptr<const TaskWhenExpr>> children;
};
/// Anything else, the empty condition included.
struct WhenText {
    std::string text;
};

/// A node of a condition. The index of an alternative is the number of its kind.
struct TaskWhenExpr {
    std::variant<WhenDefined, WhenCompleted, WhenComparison, WhenGroup, WhenText> node;
};

/// How deep groups may lie in one another; parentheses that enclose a whole text do not count.
inline constexpr int maxWhenNesting = 50;

/// Reads a condition. Every text is one; the only fault is a nesting of more than `maxWhenNesting` groups,
/// which throws `DiagnosticError` with the bare message.
[[nodiscard]] TaskWhenExpr parseWhenExpr(std::string_view text);

/// The text of a condition; with parentheses only around an "or" group inside an "and" group.
[[nodiscard]] std::string formatWhenExpr(const TaskWhenExpr& expr);

/// The parts of a text between the occurrences of a keyword (any case, white space or an end on both sides)
/// outside all parentheses, `{{ }}` and quotes. The parts are trimmed views into `text`,
/// empty ones are dropped.
[[nodiscard]] std::vector<std::string_view> splitWhenTopLevel(std::string_view text,
                                                              std::string_view keyword);

/// One step into a condition.
struct WhenSplit {
    std::string_view text; ///< without the parentheses that enclose the whole of it, trimmed
    WhenGroupOp op = WhenGroupOp::conjunction;
    std::vector<std::string_view> parts; ///< what its "or"s join, otherwise its "and"s; empty for a leaf
};
/// Takes a condition apart at its outermost joining words. All texts are views into `text`.
[[nodiscard]] WhenSplit splitWhen(std::string_view text);

/// True when the trimmed text is enclosed in `{{` and `}}`.
[[nodiscard]] bool isWhenPlaceholder(std::string_view text) noexcept;
/// The trimmed text between `{{` and `}}`; meaningful only for a placeholder.
[[nodiscard]] std::string_view whenPlaceholderBody(std::string_view text) noexcept;

/// The operands of all `completed` leaves in the order of writing, trimmed, without the empty ones.
[[nodiscard]] std::vector<std::string> collectCompletedTargets(const TaskWhenExpr& expr);
/// The texts between the braces of all placeholders in comparisons, in the order of writing.
[[nodiscard]] std::vector<std::string> collectPlaceholders(const TaskWhenExpr& expr);
/// True when some `completed` leaf names "allothers" (any case).
[[nodiscard]] bool hasAllOthers(const TaskWhenExpr& expr);

} // namespace morquill::taskdsl
