#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/derive_spec.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What keeps the printed form of a derive from reading back, and what is done about it. Not for use outside
/// this room.
namespace morquill::taskdsl::derive {

/// The one statement that stands on a printed line, wherever in a block; nothing for any other text.
[[nodiscard]] std::optional<DeriveStatement> readSingleStatement(std::string_view text);

/// True when the printed line reads as the statement, places aside.
template <class Statement>
[[nodiscard]] bool readsAs(std::string_view line, const Statement& expected) {
    auto read = readSingleStatement(line);
    auto* statement = read ? std::get_if<Statement>(&*read) : nullptr;
    if (statement == nullptr) {
        return false;
    }
    statement->span = expected.span;
    return *statement == expected;
}

/// A quick look: false when the expression reads back wherever it is printed, true when that has to be tried.
[[nodiscard]] bool isUnusual(const ExprRef& expression);

/// What an unusual expression reads as where it is printed alone.
struct Reading {
    ExprRef expression; ///< empty when the text is refused
    std::string loss;   ///< why that is not the expression that was printed; empty when it is
};
[[nodiscard]] Reading readAlone(const ExprRef& expression, std::string_view text);

/// The forms in which an expression is tried, each with more parentheses: as it stands, as a whole in
/// parentheses, and with parentheses around every unusual name outside calls and parentheses.
enum class ExpressionForm { plain, wrapped, namesWrapped };
[[nodiscard]] std::string formOf(std::string_view text, ExpressionForm form);

/// Prints the expressions of one derive in forms that read back, and reports what has none.
class ReadBackCheck {
  public:
    ReadBackCheck(std::string_view derive, const WarningSink& warnings)
        : derive_(derive), warnings_(warnings) {}

    /// The expression in the first form that `fits(text, reading)` takes, `reading` being the expression that
    /// the text has to stand for. Without one it is printed plain, and "'<statement>' reads differently" is
    /// reported.
    template <class Fits>
    [[nodiscard]] std::string print(const ExprRef& expression, std::string_view statement, const Fits& fits) {
        return isUnusual(expression) ? choose(expression, statement, fits)
                                     : plot::renderPlotExpression(expression);
    }

    /// The same for an expression that is known to be unusual.
    template <class Fits>
    [[nodiscard]] std::string choose(const ExprRef& expression, std::string_view statement,
                                     const Fits& fits) {
        ++unusual_;
        std::string text = plot::renderPlotExpression(expression);
        const Reading reading = readAlone(expression, text);
        if (!reading.loss.empty()) {
            report(reading.loss);
        }
        if (!reading.expression) {
            return text;
        }
        for (const auto form :
             {ExpressionForm::plain, ExpressionForm::wrapped, ExpressionForm::namesWrapped}) {
            if (std::string tried = formOf(text, form); fits(tried, reading.expression)) {
                return tried;
            }
        }
        reportStatement(statement);
        return text;
    }

    /// What has been seen so far; taken before a statement of several expressions is printed.
    struct Mark {
        std::size_t unusual;
        std::size_t reports;
    };
    [[nodiscard]] Mark mark() const noexcept { return {unusual_, reports_}; }
    /// Reads the whole of such a statement when it holds something unusual, each part of which does read
    /// back.
    template <class Statement>
    void confirm(const Mark& before, std::string_view line, std::string_view keyword,
                 const Statement& statement) {
        if (unusual_ != before.unusual && reports_ == before.reports && !readsAs(line, statement)) {
            reportStatement(keyword);
        }
    }

    /// Notes why the derive does not read back.
    void report(std::string_view why);
    /// Warns in one line of all that was noted, each reason once.
    void warn() const;
    void reportStatement(std::string_view statement);

  private:
    std::string_view derive_;
    const WarningSink& warnings_;
    std::vector<std::string> reasons_;
    std::size_t unusual_ = 0; ///< unusual expressions
    std::size_t reports_ = 0; ///< repeated ones counted
};

} // namespace morquill::taskdsl::derive
