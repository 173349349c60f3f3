#pragma once

#include "lsp/index/file_index.h"
#include "lsp/sources/analysis.h"
#include "lsp/sources/text_store.h"
#include "lsp/sources/workspace.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The files that questions are asked about: open texts, and what the disk has of the files that they lead
/// to.
namespace morquill::lsp {

/// A file with its index.
struct SourceFile {
    std::string uri;
    std::string path; ///< empty for a text that belongs to no file
    FileKind kind = FileKind::tasks;
    const TextBuffer* buffer = nullptr;
    FileIndex index;
    /// Names to the occurrences that define them, every kind in one.
    std::unordered_multimap<std::string_view, std::uint32_t> definitions;
    /// The path of the file that each of `index.links` leads to; empty for one that leads nowhere.
    std::vector<std::string> linked;

    std::unique_ptr<TextBuffer> ownBuffer; ///< of a file that is not open
    std::uint64_t stamp = 0;               ///< of the store when this was made
    std::int64_t diskTime = 0;             ///< when the file on the disk was written; 0 for an open text

    [[nodiscard]] std::string_view text() const noexcept { return buffer->text(); }
    [[nodiscard]] std::string_view name(const Occurrence& occurrence) const noexcept {
        return nameOf(text(), occurrence);
    }
    /// The name of a block, or its keyword; empty for one without a name and for `noIndex`.
    [[nodiscard]] std::string_view blockName(std::uint32_t block) const noexcept {
        const auto number = block == noIndex ? noIndex : index.blocks[block].name;
        return number == noIndex ? std::string_view{} : name(index.occurrences[number]);
    }
    /// The keyword of the directive that holds the block or is it; empty outside any.
    [[nodiscard]] std::string_view directiveOf(std::uint32_t block) const noexcept {
        return blockName(enclosing(index, block, BlockKind::directive));
    }
};

/// One occurrence in one file.
struct Place {
    const SourceFile* file = nullptr;
    std::uint32_t occurrence = 0;

    [[nodiscard]] const Occurrence& get() const noexcept { return file->index.occurrences[occurrence]; }
    [[nodiscard]] std::string_view name() const noexcept { return file->name(get()); }
    friend bool operator==(const Place&, const Place&) = default;
};

class SourceFiles {
  public:
    SourceFiles(const TextStore& texts, const Workspace& workspace) : texts_(texts), workspace_(workspace) {}

    /// The file of an open text. The reference holds until a text changes or a file is asked for anew.
    [[nodiscard]] const SourceFile& of(const OpenText& text);
    /// The file of a path, from the open text or the disk; null when it cannot be read.
    [[nodiscard]] const SourceFile* ofPath(const std::string& path);
    /// The files that the file leads to, itself first, through all includes; and the extra files beside a
    /// task file.
    [[nodiscard]] std::vector<const SourceFile*> closure(const SourceFile& root);
    /// The files of all documents to which the file belongs: those of its own closure, and those of every
    /// open text or file of the workspace that leads to it.
    [[nodiscard]] std::vector<const SourceFile*> documentFiles(const SourceFile& file);

    /// Lets go of a text that is no longer open.
    void forget(const std::string& uri) { open_.erase(uri); }

  private:
    [[nodiscard]] const SourceFile* readDisk(const std::string& path);

    const TextStore& texts_;
    const Workspace& workspace_;
    std::map<std::string, SourceFile, std::less<>> open_; ///< by URI
    std::map<std::string, SourceFile, std::less<>> disk_; ///< by path
};

/// How a file of a kind is read.
[[nodiscard]] FileForm fileForm(FileKind kind) noexcept;

} // namespace morquill::lsp
