#pragma once

#include "lsp/sources/source_files.h"

#include <optional>
#include <vector>

/// From a name to what it is a name of, and back.
namespace morquill::lsp {

/// What a place means, and the files of its documents.
struct Meaning {
    Place at;
    std::vector<Place> definitions; ///< of the same thing: more than one where a name is given twice
    std::vector<const SourceFile*> files;
};

class Resolver {
  public:
    Resolver(SourceFiles& sources, const SourceFile& file)
        : sources_(sources), files_(sources.documentFiles(file)) {}

    /// The definitions of what stands at a place; the place itself, and its like, for a definition. Empty
    /// when the name means nothing in the document.
    [[nodiscard]] std::vector<Place> definitions(const Place& place) const;
    /// Every place in the document that means one of the definitions, these included, file by file.
    [[nodiscard]] std::vector<Place> references(const std::vector<Place>& definitions) const;
    [[nodiscard]] const std::vector<const SourceFile*>& files() const& noexcept { return files_; }
    const std::vector<const SourceFile*>& files() && = delete; // the list goes with its owner

  private:
    [[nodiscard]] std::vector<Place> tasks(std::string_view name) const;
    [[nodiscard]] std::vector<Place> keys(const SourceFile& file, std::string_view name) const;
    [[nodiscard]] std::vector<Place> fragments(const Place& place) const;
    [[nodiscard]] std::vector<Place> parameters(const Place& place) const;
    [[nodiscard]] std::vector<Place> tables(const Place& place) const;
    [[nodiscard]] std::vector<Place> named(NameKind kind, std::string_view name) const;
    [[nodiscard]] const SourceFile* libraryOf(const SourceFile& file, std::string_view alias) const;

    SourceFiles& sources_;
    std::vector<const SourceFile*> files_;
};

/// The occurrence at an offset; nothing where no name stands.
[[nodiscard]] std::optional<Place> placeAt(const SourceFile& file, std::size_t offset);

/// Kinds that mean one sort of thing: a define, an axis and the reference to either are alike.
[[nodiscard]] NameKind kindClass(NameKind kind) noexcept;

/// True for a pattern such as `sp_*`.
[[nodiscard]] bool isPattern(std::string_view name) noexcept;

} // namespace morquill::lsp
