#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/derive_spec.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// What keeps the printed form of a derive from reading back, and what is done about it.
/// Not for use outside this room.
namespace morquill::taskdsl::derive {

/// The one statement of a printed line, wherever it is in a block; nothing for any other text.
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

/// True for a name that makes another statement of `emit <name> = ...`, such as "table".
[[nodiscard]] bool isEmitWord(std::string_view name) noexcept;

/// A quick check: false when the expression, printed so, reads back in any place, true when that has
/// to be tried.
[[nodiscard]] bool isUnusual(const ExprRef& expression, const plot::PrintedExpression& printed);

/// The forms in which an expression is tried, each with more parentheses: plain, as a whole in parentheses,
/// and with parentheses around every unusual name outside calls and parentheses.
enum class ExpressionForm { plain, wrapped, namesWrapped };
[[nodiscard]] std::string formOf(std::string_view text, ExpressionForm form);

/// Prints the expressions of one derive in forms that read back, and reports what has none.
class ReadBackCheck {
  public:
    ReadBackCheck(std::string_view derive, const WarningSink& warnings)
        : derive_(derive), warnings_(warnings) {}

    /// The expression in the first form that `fits(text, reading)` takes, `reading` being the
    /// expression that the text has to mean. Without one it is printed plain, and "'<statement>' reads
    /// differently" is reported.
    template <class Fits>
    [[nodiscard]] std::string print(const ExprRef& expression, std::string_view statement, const Fits& fits) {
        auto printed = plot::printExpression(expression);
        return isUnusual(expression, printed) ? choose(expression, std::move(printed), statement, fits)
                                              : std::move(printed.text);
    }

    /// The same for an expression that has to be tried whatever it looks like.
    template <class Fits>
    [[nodiscard]] std::string tryForms(const ExprRef& expression, std::string_view statement,
                                       const Fits& fits) {
        return choose(expression, plot::printExpression(expression), statement, fits);
    }

    /// What has been seen so far; taken before a statement of several expressions is printed.
    struct Mark {
        std::size_t unusual;
        std::size_t reports;
    };
    [[nodiscard]] Mark mark() const noexcept { return {unusual_, reports_}; }
    /// Reads the whole of such a statement when it holds something unusual, each part of which
    /// does read back.
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
    template <class Fits>
    std::string choose(const ExprRef& expression, plot::PrintedExpression printed, std::string_view statement,
                       const Fits& fits) {
        ++unusual_;
        if (!printed.loss.empty()) {
            report(printed.loss);
        }
        const ExprRef reading = plot::readPrinted(expression, printed);
        if (!reading) {
            return std::move(printed.text);
        }
        for (const auto form :
             {ExpressionForm::plain, ExpressionForm::wrapped, ExpressionForm::namesWrapped}) {
            if (std::string tried = formOf(printed.text, form); fits(tried, reading)) {
                return tried;
            }
        }
        reportStatement(statement);
        return std::move(printed.text);
    }

    std::string_view derive_;
    const WarningSink& warnings_;
    std::vector<std::string> reasons_;
    std::size_t unusual_ = 0; ///< unusual expressions
    std::size_t reports_ = 0; ///< repeated ones counted
};

} // namespace morquill::taskdsl::derive
