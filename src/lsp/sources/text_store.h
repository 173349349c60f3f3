#pragma once

#include "lsp/base/json.h"
#include "lsp/base/text_buffer.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// The texts that the client has open: what they hold counts, not what the disk has.
namespace morquill::lsp {

struct OpenText {
    std::string uri;  ///< as the client writes it
    std::string path; ///< absolute; empty when the text belongs to no file
    std::string canonicalPath;
    std::int64_t version = 0;
    std::uint64_t stamp = 0; ///< of the store when the text became what it is
    TextBuffer buffer;
};

class TextStore {
  public:
    /// Takes a text in; one that is open already is replaced.
    OpenText& open(const std::string& uri, std::int64_t version, std::string text);
    /// Applies the content changes of the protocol one after the other. False when the text is not open or a
    /// change is none; what stood before the bad change has been applied.
    bool change(const std::string& uri, std::int64_t version, const Json& changes, PositionUnit unit);
    bool close(const std::string& uri);

    [[nodiscard]] const OpenText* find(std::string_view uri) const;
    /// The open text of a file, by any path that leads to it.
    [[nodiscard]] const OpenText* findPath(const std::string& path) const;
    [[nodiscard]] const std::map<std::string, OpenText, std::less<>>& texts() const noexcept {
        return texts_;
    }

    /// Counts every change of any text.
    [[nodiscard]] std::uint64_t stamp() const noexcept { return stamp_; }
    /// Counts a change of a file that is not open.
    void countDiskChange(const std::string& path) { noteChange(path); }
    /// True when the file of that path, open or not, has changed since the store had that stamp.
    [[nodiscard]] bool changedSince(const std::string& path, std::uint64_t stamp) const;

  private:
    std::map<std::string, OpenText, std::less<>> texts_; ///< by URI
    void noteChange(const std::string& path);

    std::uint64_t stamp_ = 0;
    std::map<std::string, std::uint64_t, std::less<>> changes_; ///< canonical path to the stamp of its change
};

/// The range of a value of the protocol; nothing when it is none.
[[nodiscard]] std::optional<ByteRange> readRange(const Json& range, const TextBuffer& buffer,
                                                 PositionUnit unit);
[[nodiscard]] std::optional<Position> readPosition(const Json& position);

} // namespace morquill::lsp
