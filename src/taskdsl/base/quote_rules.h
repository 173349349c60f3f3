#pragma once

#include "support/quote_walk.h"

#include <array>

/// How each language quotes, side by side. A field that a row does not name has its default: both kinds of
/// quotes, a backslash that protects any byte inside them, no snapshots and no brackets.
namespace morquill::taskdsl::quote_rules {

/// A line of a task up to its comment. A kind of quote that is not paired on the line is an ordinary byte, so
/// there is a row for no kind, single quotes, double quotes and both.
inline constexpr std::array taskComment{QuoteRule({.quotes = ""}), QuoteRule({.quotes = "'"}),
                                        QuoteRule({.quotes = "\""}), QuoteRule(QuoteRow{})};

/// Shell words protect outside quotes too, as a shell does, and a backslash in a path stays one.
inline constexpr QuoteRule shellWords({.backslash = Backslash::exceptInSingleQuotes,
                                       .isProtected = Protected::shellBytes});

/// The values of an axis, between commas. Brackets are part of a value.
inline constexpr QuoteRule valueList(QuoteRow{});

/// An include line or a fragment header: parentheses hold arguments and may go on over several lines.
inline constexpr QuoteRule includeLine({.opening = "(", .closing = ")"});

/// The arguments of an include: brackets of any kind hold a comma together with what is around it.
inline constexpr QuoteRule includeArguments({.opening = "([{", .closing = ")]}"});

/// The quoted target of an include is a path: a backslash protects what it must and is else part of it.
inline constexpr QuoteRule includeTarget({.isProtected = Protected::quoteOrBackslash});

/// A condition between `and` and `or`.
inline constexpr QuoteRule whenCondition({.snapshots = Snapshots::nested, .opening = "(", .closing = ")"});

/// A condition inside parentheses that may enclose the whole of it: only here a backslash in the open
/// protects. The parentheses are counted by the caller, who must know how low the count falls.
inline constexpr QuoteRule whenEnclosure({.backslash = Backslash::everywhere,
                                          .snapshots = Snapshots::nested});

/// A statement of a plot up to its comment or its options: `\#` outside quotes begins no comment.
inline constexpr QuoteRule plotText({.backslash = Backslash::exceptInSingleQuotes,
                                     .snapshots = Snapshots::nested,
                                     .opening = "(",
                                     .closing = ")"});

/// The words of a statement: braces do not hold a word together, and a backslash outside double
/// quotes protects nothing.
inline constexpr QuoteRule
    plotWords({.backslash = Backslash::inDoubleQuotes, .opening = "(", .closing = ")"});

/// A physical line of a statement, whose quotes and snapshots have to be closed on it. Parentheses may not,
/// so the caller counts them from line to line.
inline constexpr QuoteRule statementLine({.snapshots = Snapshots::nested});

/// A statement of a derive: a snapshot is one token of an expression and ends at the first `}}`.
inline constexpr QuoteRule deriveText({.snapshots = Snapshots::flat, .opening = "(", .closing = ")"});

/// The same where `in [...]` may hold the values of a condition.
inline constexpr QuoteRule deriveCondition({.snapshots = Snapshots::flat, .opening = "([", .closing = ")]"});

/// A string of an expression.
inline constexpr QuoteRule expressionString(QuoteRow{});

/// What lint takes for a line's comment, before any language is known: quotes end at the next one alike.
inline constexpr QuoteRule rawComment({.backslash = Backslash::nowhere});

} // namespace morquill::taskdsl::quote_rules
