#pragma once

#include "lsp/index/expression_tokens.h"
#include "lsp/index/index_builder.h"

#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>

/// The names in the expressions of plots and derives.
namespace morquill::lsp {

/// What the owner of an expression knows of a plain name; false leaves it to the catalog.
using NameReader = std::function<bool(const Token& name)>;

struct ExpressionScan {
    IndexBuilder& builder;
    const NameReader& readName;
    /// Words that stand between the parts of a statement, lower case; found outside parentheses in any case.
    std::initializer_list<std::string_view> words = {};
};

/// Adds the names of the tokens of an expression: calls with the tasks, axes and tables that they name, named
/// arguments, values of tasks, properties, numbers and strings.
void scanExpression(const ExpressionScan& scan, std::span<const Token> tokens);

/// Adds a task that a token names, a name or a string. Returns false for another token.
bool addTaskToken(IndexBuilder& builder, const Token& token);

/// Adds `<derive>.<table>` of a token, and returns the derive.
std::uint32_t addDerivedTable(IndexBuilder& builder, const Token& token);

/// Adds the names of a string or name as they stand: a number or a text.
void addPlainToken(IndexBuilder& builder, const Token& token);

/// Adds `{{ task.key }}`.
void addSnapshot(IndexBuilder& builder, std::string_view snapshot);

/// The name of a token: of a string what is between its quotes.
[[nodiscard]] std::string_view tokenName(const Token& token) noexcept;

} // namespace morquill::lsp
