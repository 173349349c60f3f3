#include "lsp/sources/resolve.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include <fnmatch.h>

namespace morquill::lsp {

namespace {

/// The definitions of a name in one file that `accept` takes.
template <class Accept>
void addDefinitions(const SourceFile& file, std::string_view name, const Accept& accept,
                    std::vector<Place>& places) {
    const auto [first, last] = file.definitions.equal_range(name);
    const auto begin = places.size();
    for (auto entry = first; entry != last; ++entry) {
        if (accept(file.index.occurrences[entry->second])) {
            places.push_back({&file, entry->second});
        }
    }
    std::sort(places.begin() + static_cast<std::ptrdiff_t>(begin), places.end(),
              [](const Place& left, const Place& right) { return left.occurrence < right.occurrence; });
}

/// True when the text is what a name with `[key]`s may become.
bool fitsTemplate(std::string_view text, std::string_view name) {
    std::string pattern;
    bool inKey = false;
    for (const char c : name) {
        if (c == '[') {
            pattern += '*';
            inKey = true;
        } else if (c == ']' && inKey) {
            inKey = false;
        } else if (!inKey) {
            pattern += c == '*' || c == '?' || c == '\\' ? std::string{'\\', c} : std::string{c};
        }
    }
    return ::fnmatch(pattern.c_str(), std::string(text).c_str(), 0) == 0;
}

bool hasKeys(std::string_view name) noexcept {
    return name.find('[') != std::string_view::npos;
}

using PlaceKey = std::pair<const SourceFile*, std::uint32_t>;

std::set<PlaceKey> keysOf(const std::vector<Place>& places) {
    std::set<PlaceKey> keys;
    for (const Place& place : places) {
        keys.emplace(place.file, place.occurrence);
    }
    return keys;
}

/// True for a name that counts in a block alone.
bool isLocal(NameKind kind) noexcept {
    switch (kind) {
    case NameKind::loop:
    case NameKind::let:
    case NameKind::formula:
    case NameKind::profile:
    case NameKind::emitted:
    case NameKind::column:
    case NameKind::alias:
    case NameKind::plotItem:
        return true;
    default:
        return false;
    }
}

} // namespace

NameKind kindClass(NameKind kind) noexcept {
    switch (kind) {
    case NameKind::define:
    case NameKind::axis:
        return NameKind::key;
    default:
        return kind;
    }
}

bool isPattern(std::string_view name) noexcept {
    return name.find_first_of("*?") != std::string_view::npos;
}

std::optional<Place> placeAt(const SourceFile& file, std::size_t offset) {
    const Occurrence* found = occurrenceAt(file.index, offset);
    if (found == nullptr) {
        return std::nullopt;
    }
    return Place{&file, static_cast<std::uint32_t>(found - file.index.occurrences.data())};
}

std::vector<Place> Resolver::named(NameKind kind, std::string_view name) const {
    std::vector<Place> places;
    for (const SourceFile* file : files_) {
        addDefinitions(
            *file, name, [kind](const Occurrence& o) { return o.kind == kind; }, places);
    }
    return places;
}

std::vector<Place> Resolver::tasks(std::string_view name) const {
    auto places = named(NameKind::task, name);
    if (!places.empty()) {
        return places;
    }
    const bool pattern = isPattern(name);
    for (const SourceFile* file : files_) {
        const auto& all = file->index.occurrences;
        for (std::uint32_t i = 0; i < all.size(); ++i) {
            if (all[i].kind != NameKind::task || all[i].role != NameRole::definition) {
                continue;
            }
            const auto defined = file->name(all[i]);
            const bool fits = pattern
                                  ? ::fnmatch(std::string(name).c_str(), std::string(defined).c_str(), 0) == 0
                                  : hasKeys(defined) && fitsTemplate(name, defined);
            if (fits) {
                places.push_back({file, i});
            }
        }
    }
    return places;
}

/// A file's own defines and axes come before those of the files that include it.
std::vector<Place> Resolver::keys(const SourceFile& file, std::string_view name) const {
    const auto isKey = [](const Occurrence& o) { return kindClass(o.kind) == NameKind::key; };
    std::vector<Place> places;
    addDefinitions(file, name, isKey, places);
    for (const SourceFile* values : files_) {
        if (values->kind == FileKind::values && values != &file) {
            addDefinitions(*values, name, isKey, places);
        }
    }
    for (const SourceFile* other : files_) {
        if (places.empty() && other != &file && other->kind != FileKind::values) {
            addDefinitions(*other, name, isKey, places);
        }
    }
    return places;
}

/// The library that a namespace of the file is bound to; null when there is none.
const SourceFile* Resolver::libraryOf(const SourceFile& file, std::string_view alias) const {
    for (std::size_t i = 0; i < file.index.links.size(); ++i) {
        const auto& link = file.index.links[i];
        if (link.alias != noIndex && file.name(file.index.occurrences[link.alias]) == alias) {
            return sources_.ofPath(file.linked[i]);
        }
    }
    return nullptr;
}

std::vector<Place> Resolver::fragments(const Place& place) const {
    const auto qualifier = place.get().qualifier;
    const SourceFile* library = place.file;
    if (qualifier != noIndex) {
        const auto alias = place.file->name(place.file->index.occurrences[qualifier]);
        library = alias == "this" || alias == "self" ? place.file : libraryOf(*place.file, alias);
    }
    std::vector<Place> places;
    if (library != nullptr) {
        addDefinitions(
            *library, place.name(), [](const Occurrence& o) { return o.kind == NameKind::fragment; }, places);
    }
    return places;
}

std::vector<Place> Resolver::parameters(const Place& place) const {
    const Occurrence& at = place.get();
    std::vector<Place> places;
    const auto add = [&](const SourceFile& file, std::uint32_t scope) {
        addDefinitions(
            file, place.name(),
            [scope](const Occurrence& o) { return o.kind == NameKind::parameter && o.scope == scope; },
            places);
    };
    if (at.qualifier == noIndex) {
        add(*place.file, at.scope);
        return places;
    }
    // An argument: the parameter of the fragment that it is handed to.
    for (const Place& fragment : fragments({place.file, at.qualifier})) {
        const auto& blocks = fragment.file->index.blocks;
        const auto block = std::find_if(blocks.begin(), blocks.end(),
                                        [&](const Block& b) { return b.name == fragment.occurrence; });
        if (block != blocks.end()) {
            add(*fragment.file, static_cast<std::uint32_t>(block - blocks.begin()));
        }
    }
    return places;
}

std::vector<Place> Resolver::tables(const Place& place) const {
    const Occurrence& at = place.get();
    std::vector<Place> places;
    if (at.role == NameRole::definition) {
        return {place};
    }
    if (at.qualifier == noIndex) {
        return places;
    }
    for (const Place& derive :
         named(NameKind::derive, place.file->name(place.file->index.occurrences[at.qualifier]))) {
        const auto& index = derive.file->index;
        addDefinitions(
            *derive.file, place.name(),
            [&](const Occurrence& o) {
                return o.kind == NameKind::table && index.blocks[o.scope].name == derive.occurrence;
            },
            places);
    }
    return places;
}

std::vector<Place> Resolver::definitions(const Place& place) const {
    const Occurrence& at = place.get();
    const auto name = place.name();
    if (at.role == NameRole::word) {
        return {};
    }
    switch (at.kind) {
    case NameKind::task:
        return tasks(name);
    case NameKind::define:
    case NameKind::axis:
    case NameKind::key:
        return keys(*place.file, name);
    case NameKind::fragment:
        return fragments(place);
    case NameKind::parameter:
        return parameters(place);
    case NameKind::table:
        return tables(place);
    case NameKind::derive:
    case NameKind::plot:
    case NameKind::collection:
    case NameKind::setting:
        return named(at.kind, name);
    default:
        break;
    }
    std::vector<Place> places;
    if (isLocal(at.kind)) {
        addDefinitions(
            *place.file, name,
            [&at](const Occurrence& o) { return o.kind == at.kind && o.scope == at.scope; }, places);
    } else if (at.kind == NameKind::library) {
        addDefinitions(
            *place.file, name, [](const Occurrence& o) { return o.kind == NameKind::library; }, places);
    }
    return places;
}

std::vector<Place> Resolver::references(const std::vector<Place>& definitions) const {
    std::vector<Place> places;
    if (definitions.empty()) {
        return places;
    }
    const auto name = definitions.front().name();
    const auto wanted = kindClass(definitions.front().get().kind);
    const std::set<PlaceKey> targets = keysOf(definitions);
    // What a name means depends on its file, kind and scope, unless it stands behind another one.
    std::map<std::tuple<const SourceFile*, NameKind, std::uint32_t>, bool> known;
    const auto isMeant = [&](const Place& place) {
        const auto find = [&] {
            const auto meant = this->definitions(place);
            return std::any_of(meant.begin(), meant.end(), [&](const Place& one) {
                return targets.contains({one.file, one.occurrence});
            });
        };
        const Occurrence& at = place.get();
        if (at.qualifier != noIndex || at.kind == NameKind::table) {
            return find();
        }
        const auto [entry, isNew] = known.try_emplace({place.file, at.kind, at.scope}, false);
        if (isNew) {
            entry->second = find();
        }
        return entry->second;
    };
    for (const SourceFile* file : files_) {
        const auto& all = file->index.occurrences;
        for (std::uint32_t i = 0; i < all.size(); ++i) {
            if (all[i].role == NameRole::word || kindClass(all[i].kind) != wanted ||
                file->name(all[i]) != name) {
                continue;
            }
            if (isMeant({file, i})) {
                places.push_back({file, i});
            }
        }
    }
    return places;
}

} // namespace morquill::lsp
