#pragma once

#include "taskdsl/derive/derive_spec.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// Formulas, parameter profiles and binds: what the preamble of a `@derive` block may define.
/// All three are resolved while the block is read; a parsed block holds no trace of them.
namespace morquill::taskdsl::derive {

/// `formula name(parameters) = body`: a named expression.
struct FormulaDefinition {
    std::string name;
    std::vector<std::string> parameters;
    ExprRef body;
    SourceSpan span;
};

/// `profile name for target = (arguments)`: a named set of arguments for one function.
struct ParameterProfile {
    std::string name;
    std::string target;
    std::vector<plot::PlotCallArgument> arguments; ///< all named
    SourceSpan span;
};

/// What the preamble has defined so far. A name is defined before it is used: a call written before its
/// formula stays a plain call.
struct DeriveSurface {
    std::map<std::string, FormulaDefinition, std::less<>> formulas;
    std::map<std::string, ParameterProfile, std::less<>> profiles;
    std::size_t expandedNodes = 0; ///< nodes that this block holds beyond what is written
    std::size_t visitedNodes = 0;  ///< nodes of formula bodies and profiles that were gone through for it
};

/// The deepest nesting of formulas within formulas.
inline constexpr std::size_t maxFormulaDepth = 64;
/// The deepest nesting of profiles within the values of profiles.
inline constexpr std::size_t maxProfileDepth = 64;
/// The most nodes that formulas, profiles, binds and report modifiers may add to one block, and the most that
/// may be gone through to find them: definitions that double each other end here and not in memory. What is
/// written out in full is not counted.
inline constexpr std::size_t maxExpandedNodes = 100'000;

/// True for the functions, keywords and quantity words of the language and for every name of the property
/// catalog, in any case.
[[nodiscard]] bool isReservedDeriveName(std::string_view name);

/// Reads the text after `formula` and adds the definition to the surface.
void parseFormula(std::string_view text, const SourceSpan& span, DeriveSurface& surface);
/// Reads the text after `profile` and adds the definition to the surface.
void parseProfile(std::string_view text, const SourceSpan& span, DeriveSurface& surface);
/// Reads the text after `bind` and appends one `LetStatement` per projection.
void parseBind(std::string_view text, const SourceSpan& span, DeriveSurface& surface,
               std::vector<DeriveStatement>& statements);

/// The expression with every formula and profile call resolved; nodes in which nothing changed are shared.
/// Throws for a call that breaks the rules of arguments, for recursion, and for an expansion past
/// the bounds above.
[[nodiscard]] ExprRef expandFormulas(const ExprRef& expression, DeriveSurface& surface,
                                     const SourceSpan& span);

/// Counts one more copy of the expression towards `maxExpandedNodes`; throws when that is passed.
void chargeCopy(const ExprRef& expression, DeriveSurface& surface, const SourceSpan& span);

/// Parses the text and expands it.
[[nodiscard]] ExprRef readDeriveExpression(std::string_view text, DeriveSurface& surface,
                                           const SourceSpan& span);

/// True for the argument of a call that names a profile.
[[nodiscard]] bool isUsing(const plot::PlotCallArgument& argument) noexcept;

/// The profile that the value of a `using=` argument names. Throws when it is unknown or
/// for another function.
[[nodiscard]] const ParameterProfile& requireProfile(const ExprRef& value, std::string_view function,
                                                     const DeriveSurface& surface, const SourceSpan& span);

} // namespace morquill::taskdsl::derive
