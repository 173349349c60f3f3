#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// What the words of the language mean: one table for hover and completion, held against docs/ by a test.
namespace morquill::lsp {

/// Where a word has its meaning.
enum class HelpTopic : std::uint8_t {
    directive,
    controlKey,
    program,
    block, ///< `@plot`, `&INCLUDE` and the like
    fragmentKind,
    condition, ///< the words of `%when`
    source,    ///< the words of `%source`
    plotKind,
    plotStatement,
    deriveStatement,
    function,
    lintCode,
};

struct HelpRow {
    HelpTopic topic;
    std::string_view word;
    std::string_view form; ///< how it is written, with its parameters; empty where the word says it all
    std::string_view text; ///< one sentence
};

[[nodiscard]] std::span<const HelpRow> helpTable() noexcept;
/// The row of a word, in any case; null for an unknown one.
[[nodiscard]] const HelpRow* findHelp(HelpTopic topic, std::string_view word) noexcept;
/// The topic as a heading.
[[nodiscard]] std::string_view topicTitle(HelpTopic topic) noexcept;

} // namespace morquill::lsp
