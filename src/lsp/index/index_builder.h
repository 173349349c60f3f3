#pragma once

#include "lsp/index/file_index.h"

#include <set>
#include <string_view>
#include <vector>

namespace morquill::lsp {

/// Collects the occurrences and blocks of one file. Every text that is handed in is a part of the file's: its
/// place is where it points to.
class IndexBuilder {
  public:
    explicit IndexBuilder(std::string_view text) : text_(text) { index_.blocks.emplace_back(); }

    [[nodiscard]] std::string_view text() const noexcept { return text_; }
    [[nodiscard]] std::uint32_t offsetOf(const char* place) const noexcept {
        return static_cast<std::uint32_t>(place - text_.data());
    }

    /// Adds an occurrence and returns its number; an empty name is none (`noIndex`).
    std::uint32_t add(NameKind kind, NameRole role, std::string_view name, std::uint32_t scope = 0,
                      std::uint32_t qualifier = noIndex);
    /// Adds the `[key]`s of a text: each a key, a parameter of the fragment, or a loop's item.
    void addKeys(std::string_view piece);
    /// Adds a name that may hold `[key]`s.
    std::uint32_t addWithKeys(NameKind kind, NameRole role, std::string_view name);
    /// Adds what stands behind the last statement of a line as a comment. `rest` is the line from its end on.
    void addComment(std::string_view rest);
    void addLink(FileLink::Kind kind, std::string_view name, std::string target,
                 std::uint32_t alias = noIndex);

    /// Opens a block with the line that `line` begins.
    std::uint32_t open(BlockKind kind, std::string_view line, std::uint32_t name = noIndex);
    /// Adds a block of one line that is open at no time: a scope for names.
    std::uint32_t addScope(BlockKind kind, std::string_view line);
    /// Closes the innermost block; it ends where the last filled line does.
    void close();
    /// Closes blocks up to and with that one.
    void closeTo(std::uint32_t block);
    /// The innermost open block.
    [[nodiscard]] std::uint32_t current() const noexcept { return open_.empty() ? 0 : open_.back(); }
    [[nodiscard]] BlockKind kindOf(std::uint32_t block) const noexcept { return index_.blocks[block].kind; }
    void setName(std::uint32_t block, std::uint32_t name) noexcept { index_.blocks[block].name = name; }
    /// Notes a line that is not blank.
    void noteFilled(std::string_view line) noexcept;

    /// A `@foreach` whose lines are being read.
    struct Loop {
        std::string_view name;
        bool counts = false; ///< the name is the loop's own, not that of a collection
        std::uint32_t block = 0;
    };
    std::vector<Loop> loops;
    /// Names of the parameters of the fragment that is being read, and its block.
    std::set<std::string_view> parameters;
    std::uint32_t fragmentBlock = 0;

    /// The finished index; the builder is empty afterwards.
    [[nodiscard]] FileIndex take();

  private:
    void addKey(std::string_view key);

    std::string_view text_;
    FileIndex index_;
    std::vector<std::uint32_t> open_;
    std::uint32_t filledEnd_ = 0;
};

} // namespace morquill::lsp
