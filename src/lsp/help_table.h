#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// What the words of the language mean: one table for hover, completion and docs/words.md. A test compares
/// its words with the parser and with the other pages.
namespace morquill::lsp {

/// Where a word has its meaning.
enum class HelpTopic : std::uint8_t {
    directive,
    controlKey,
    sourceBinding, ///< the first words of lines below `%source`
    batchLine,     ///< likewise below `%batch`
    modLine,       ///< likewise below `%mod`
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
    std::string_view text; ///< one sentence, without signs of Markdown
};

[[nodiscard]] std::span<const HelpRow> helpTable() noexcept;
/// The row of a word, in any case; null for an unknown one.
[[nodiscard]] const HelpRow* findHelp(HelpTopic topic, std::string_view word) noexcept;
/// What the first words of the lines below a directive are; nothing where they are no words of the language.
[[nodiscard]] std::optional<HelpTopic> lineTopic(std::string_view directive) noexcept;
/// The topic as a heading.
[[nodiscard]] std::string_view topicTitle(HelpTopic topic) noexcept;

} // namespace morquill::lsp
