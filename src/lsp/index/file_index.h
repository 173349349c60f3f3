#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Where every name of a file stands, and which blocks its lines make: the one list that all questions of an
/// editor are asked of. It is made from the text as it is written, so that a file with a fault has one, too.
namespace morquill::lsp {

/// What a name is a name of. References that only the document can tell apart share a kind.
enum class NameKind : std::uint8_t {
    // given by the user
    task,
    define,
    axis,
    key,        ///< a reference to a define, an axis or a setting: `[key]`
    setting,    ///< a scalar of the prelude
    collection, ///< a list of the prelude
    loop,       ///< the name of a counting `@foreach`
    itemKey,    ///< behind the dot of `[collection.key]`
    library,    ///< a namespace
    fragment,
    parameter, ///< of a fragment or a formula
    plot,
    derive,
    table,
    formula,
    profile,
    let,
    emitted,  ///< a value that a derive gives out
    column,   ///< of a table
    alias,    ///< of the atoms of a task
    plotItem, ///< a point, a series or a column of a plot
    // words of the language and of results
    directive,
    controlKey,
    program,
    statement, ///< the word that begins a statement
    word,      ///< any other word with a meaning: an option, a kind, `guess`
    function,
    argument, ///< the name of a named argument
    property,
    // texts
    path,
    string,
    number,
    comment,
};

enum class NameRole : std::uint8_t { definition, reference, word };

inline constexpr std::uint32_t noIndex = 0xFFFFFFFFU;

/// One name at one place. The bytes of the place are the name.
struct Occurrence {
    std::uint32_t begin = 0;
    std::uint32_t length = 0;
    std::uint32_t scope = 0;           ///< the block in which a name counts; block 0 is the file
    std::uint32_t qualifier = noIndex; ///< the occurrence that says whose name this is, as a namespace does
    NameKind kind = NameKind::word;
    NameRole role = NameRole::word;

    [[nodiscard]] std::size_t end() const noexcept { return std::size_t{begin} + length; }
};

enum class BlockKind : std::uint8_t {
    file,
    prelude,
    defines,
    matrix,
    section, ///< a setting or collection of the prelude over several lines
    task,
    directive,
    heredoc,
    plot,
    derive,
    loop,
    fragment,
    formula, ///< a scope for its parameters
    include, ///< an include over several lines
};

/// Consecutive lines that belong together. Blocks lie in one another and never cross.
struct Block {
    BlockKind kind = BlockKind::file;
    std::uint32_t begin = 0; ///< of its first line
    std::uint32_t end = 0;   ///< of the text of its last line that is not blank
    std::uint32_t parent = 0;
    std::uint32_t name = noIndex; ///< the occurrence of its name, or of its keyword
};

/// A line that leads to another file.
struct FileLink {
    enum class Kind : std::uint8_t { taskFile, yamlFile, library, fragmentFile, otherFile, geometry };
    Kind kind = Kind::otherFile;
    std::uint32_t begin = 0; ///< of the name
    std::uint32_t end = 0;
    std::uint32_t alias = noIndex; ///< the occurrence of the namespace that a library is bound to
    std::string target;            ///< as the path search takes it
};

struct FileIndex {
    std::vector<Occurrence> occurrences; ///< ordered by their places; they do not overlap, except comments
    std::vector<Block> blocks;           ///< ordered by their begins, a block before those in it
    std::vector<FileLink> links;

    [[nodiscard]] std::size_t memory() const noexcept;
};

/// How a file is read.
enum class FileForm : std::uint8_t { tasks, library, fragment, values };

[[nodiscard]] FileIndex indexFile(std::string_view text, FileForm form);

/// The occurrence that holds the byte at `offset`, or ends there; the narrowest, and none that is a comment
/// or a string when another one does. Null when there is none.
[[nodiscard]] const Occurrence* occurrenceAt(const FileIndex& index, std::size_t offset) noexcept;
/// The innermost block that holds the offset: a number of `index.blocks`.
[[nodiscard]] std::uint32_t blockAt(const FileIndex& index, std::size_t offset) noexcept;
/// The innermost block of that kind that encloses the block or is it; `noIndex` when there is none.
[[nodiscard]] std::uint32_t enclosing(const FileIndex& index, std::uint32_t block, BlockKind kind) noexcept;

[[nodiscard]] inline std::string_view nameOf(std::string_view text, const Occurrence& occurrence) noexcept {
    return text.substr(occurrence.begin, occurrence.length);
}

} // namespace morquill::lsp
