#include "lsp/sources/text_store.h"

#include "lsp/base/uri.h"
#include "support/file.h"
#include "support/paths.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace morquill::lsp {

namespace {

std::optional<std::uint32_t> readCount(const Json& value, std::string_view name) {
    const auto number = integerMember(value, name);
    if (!number || *number < 0) {
        return std::nullopt;
    }
    // Clients say "the whole line" by a huge number.
    return static_cast<std::uint32_t>(
        std::min<std::int64_t>(*number, std::numeric_limits<std::int32_t>::max()));
}

} // namespace

std::optional<Position> readPosition(const Json& position) {
    const auto line = readCount(position, "line");
    const auto character = readCount(position, "character");
    return line && character ? std::optional(Position{*line, *character}) : std::nullopt;
}

std::optional<ByteRange> readRange(const Json& range, const TextBuffer& buffer, PositionUnit unit) {
    const auto start = readPosition(member(range, "start"));
    const auto end = readPosition(member(range, "end"));
    if (!start || !end) {
        return std::nullopt;
    }
    const ByteRange bytes{buffer.offsetAt(*start, unit), buffer.offsetAt(*end, unit)};
    return bytes.begin <= bytes.end ? std::optional(bytes) : std::nullopt;
}

OpenText& TextStore::open(const std::string& uri, std::int64_t version, std::string text) {
    OpenText& entry = texts_[uri];
    entry.uri = uri;
    if (const auto path = pathOfUri(uri)) {
        entry.path = absolutePath(*path);
        entry.canonicalPath = normalisedPath(entry.path);
    }
    entry.version = version;
    noteChange(entry.canonicalPath);
    entry.stamp = stamp_;
    entry.buffer = TextBuffer(std::move(text));
    return entry;
}

bool TextStore::change(const std::string& uri, std::int64_t version, const Json& changes, PositionUnit unit) {
    const auto found = texts_.find(uri);
    if (found == texts_.end() || !changes.is_array()) {
        return false;
    }
    OpenText& entry = found->second;
    entry.version = version;
    noteChange(entry.canonicalPath);
    entry.stamp = stamp_;
    for (const Json& change : changes) {
        const Json& text = member(change, "text");
        if (!text.is_string()) {
            return false;
        }
        const auto& inserted = text.get_ref<const std::string&>();
        if (!change.contains("range")) {
            entry.buffer = TextBuffer(inserted);
            continue;
        }
        const auto range = readRange(change["range"], entry.buffer, unit);
        if (!range) {
            return false;
        }
        entry.buffer.replace(*range, inserted);
    }
    return true;
}

bool TextStore::close(const std::string& uri) {
    const auto found = texts_.find(uri);
    if (found == texts_.end()) {
        return false;
    }
    noteChange(found->second.canonicalPath);
    texts_.erase(found);
    return true;
}

void TextStore::noteChange(const std::string& path) {
    ++stamp_;
    if (!path.empty()) {
        changes_[normalisedPath(path)] = stamp_;
    }
}

bool TextStore::changedSince(const std::string& path, std::uint64_t stamp) const {
    const auto found = changes_.find(normalisedPath(path));
    return found != changes_.end() && found->second > stamp;
}

const OpenText* TextStore::find(std::string_view uri) const {
    const auto found = texts_.find(uri);
    return found == texts_.end() ? nullptr : &found->second;
}

const OpenText* TextStore::findPath(const std::string& path) const {
    for (const auto& [uri, entry] : texts_) {
        if (!path.empty() && entry.path == path) {
            return &entry;
        }
    }
    if (texts_.empty() || path.empty()) {
        return nullptr;
    }
    const auto canonical = normalisedPath(path);
    for (const auto& [uri, entry] : texts_) {
        if (!entry.path.empty() && entry.canonicalPath == canonical) {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace morquill::lsp
