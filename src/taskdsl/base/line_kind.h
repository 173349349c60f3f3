#pragma once

#include <cstdint>
#include <string_view>

/// What a line is by its own text alone; the stages decide what it means in its place.
namespace morquill::taskdsl {

enum class LineKind : std::uint8_t {
    empty,          ///< blank, or a comment and no more
    removedInclude, ///< `#INCLUDE` of older files: a comment that warns
    text,           ///< none of the others
    directive,      ///< `%` and a keyword
    taskHeader,     ///< `$` and a name
    include,        ///< `&INCLUDE`
    fragment,       ///< `&FRAGMENT`
    plot,           ///< `@plot`
    derive,         ///< `@derive`
    loop,           ///< `@foreach` that `parseForeachHeader` reads
    end             ///< "@end"
};

/// The kind of a cleaned line. It is never `removedInclude`: nothing is left of a comment.
[[nodiscard]] LineKind kindOfCleanLine(std::string_view clean) noexcept;

/// True for the lines that close the block of the directive before them: a directive, a task header, an
/// include line, a plot or derive block and "@end".
[[nodiscard]] bool isStructure(LineKind kind) noexcept;

/// True for the head of a block that runs to "@end" and is not a loop: `@plot` or `@derive`.
[[nodiscard]] constexpr bool opensBlock(LineKind kind) noexcept {
    return kind == LineKind::plot || kind == LineKind::derive;
}

/// True for a line that ends the prelude of a file: a task header, the head or the end of a block, a loop.
[[nodiscard]] constexpr bool beginsBody(LineKind kind) noexcept {
    return kind == LineKind::taskHeader || opensBlock(kind) || kind == LineKind::end ||
           kind == LineKind::loop;
}

/// True for `#INCLUDE` at the front of the trimmed line, in any case, followed by white space or the end.
[[nodiscard]] bool isHashInclude(std::string_view trimmed) noexcept;

} // namespace morquill::taskdsl
