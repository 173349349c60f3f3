#pragma once

#include <cstddef>

/// How far a task file may grow while it is expanded. The bounds lie far above what anybody
/// writes on purpose; they turn endless growth into an error before memory runs out.
/// docs/language-generating.md lists them.
namespace morquill::taskdsl::limits {

inline constexpr std::size_t matrixAxes = 1'000;
inline constexpr std::size_t matrixVariants = 1'000'000;              ///< task blocks made from one matrix
inline constexpr std::size_t variantText = std::size_t{1} << 30;      ///< bytes in the fields of all variants
inline constexpr std::size_t substitutedText = std::size_t{64} << 20; ///< bytes that one text may grow by
inline constexpr std::size_t seriesItems = 100'000;                   ///< items of one `series(a-b)`
inline constexpr std::size_t foreachDepth = 1'000;                    ///< nested `@foreach` blocks
inline constexpr std::size_t expandedLines = 2'000'000; ///< lines made by `@foreach` and fragments
inline constexpr std::size_t linesPerRepetition = 4;    ///< lines counted for a loop item
inline constexpr std::size_t linesPerFragment = 10;     ///< lines counted for a fragment
inline constexpr std::size_t expandedText = std::size_t{256} << 20; ///< bytes of those lines
inline constexpr std::size_t includeDepth = 200;                    ///< nested files or fragments
inline constexpr std::size_t includes = 100'000;                    ///< include lines followed in one run
inline constexpr std::size_t yamlEntries = 1'000'000; ///< values of one YAML section, aliases followed
inline constexpr std::size_t yamlText = std::size_t{64} << 20; ///< bytes of their keys and values
inline constexpr std::size_t yamlDepth = 100;                  ///< nested mappings

} // namespace morquill::taskdsl::limits
