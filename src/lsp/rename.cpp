#include "lsp/rename.h"

#include "lsp/sources/resolve.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

namespace morquill::lsp {

namespace {

/// Kinds whose names may be changed, and what they are called.
struct RenamedKindRow {
    NameKind kind;
    std::string_view noun;
};
constexpr std::array<RenamedKindRow, 8> renamedKinds{{
    {NameKind::task, "task"},
    {NameKind::key, "define or axis"},
    {NameKind::fragment, "fragment"},
    {NameKind::parameter, "parameter"},
    {NameKind::formula, "formula"},
    {NameKind::let, "let"},
    {NameKind::derive, "derive"},
    {NameKind::profile, "profile"},
}};

std::string_view nounOf(NameKind kind) noexcept {
    const auto row = std::find_if(renamedKinds.begin(), renamedKinds.end(),
                                  [kind](const RenamedKindRow& r) { return r.kind == kindClass(kind); });
    return row == renamedKinds.end() ? std::string_view{} : row->noun;
}

[[noreturn]] void refuse(const std::string& text) {
    throw ResponseError(ErrorCode::requestFailed, text);
}

/// A name that can be changed, with all its places.
struct Target {
    Place at;
    std::vector<Place> definitions;
    std::vector<Place> places; ///< definitions among them
    std::string_view noun;
};

/// Throws `ResponseError` for what cannot be renamed.
Target requireTarget(Session& session, const Json& params, const Resolver& resolver, const SourceFile& file) {
    const OpenText& text = requireText(session, params);
    const auto place = placeAt(file, requireOffset(session, text, params));
    const auto noun =
        place && place->get().role != NameRole::word ? nounOf(place->get().kind) : std::string_view{};
    if (noun.empty()) {
        refuse("nothing here can be renamed");
    }
    Target target{*place, resolver.definitions(*place), {}, noun};
    const auto name = place->name();
    // A pattern, or a name that a loop makes, is not the name itself.
    std::erase_if(target.definitions, [name](const Place& p) { return p.name() != name; });
    if (target.definitions.empty()) {
        refuse("no " + std::string(noun) + " is called '" + std::string(name) + "'");
    }
    target.places = resolver.references(target.definitions);
    return target;
}

/// True when a column of a plot is called after the task at the place, and has no other word for it.
bool isColumnName(const Place& place) noexcept {
    const auto& all = place.file->index.occurrences;
    const auto& at = place.get();
    return place.occurrence > 0 && all[place.occurrence - 1].kind == NameKind::plotItem &&
           all[place.occurrence - 1].begin == at.begin && all[place.occurrence - 1].length == at.length;
}

/// What stands in the place of the old name. A column keeps its own and says what its task is called.
std::string replacement(const Place& place, const std::string& name) {
    return isColumnName(place) ? std::string(place.name()) + " task \"" + name + "\"" : name;
}

/// A file's text with the name changed in all its places.
std::string renamedText(const SourceFile& file, const std::vector<Place>& places, const std::string& name) {
    std::string text;
    std::size_t end = 0;
    for (const Place& place : places) {
        if (place.file == &file) {
            text += file.text().substr(end, place.get().begin - end);
            text += replacement(place, name);
            end = place.get().end();
        }
    }
    text += file.text().substr(end);
    return text;
}

/// The numbers of the occurrences that are no words.
std::vector<std::uint32_t> names(const FileIndex& index) {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < index.occurrences.size(); ++i) {
        if (index.occurrences[i].role != NameRole::word) {
            numbers.push_back(i);
        }
    }
    return numbers;
}

/// True when the changed text has the names that it had, in the same order, but for the one that was changed.
bool readsBack(const SourceFile& file, const std::vector<Place>& places, const std::string& name) {
    const std::string text = renamedText(file, places, name);
    const auto index = indexFile(text, fileForm(file.kind));
    const auto& before = file.index.occurrences;
    std::vector<bool> changed(before.size());
    for (const Place& place : places) {
        if (place.file == &file) {
            changed[place.occurrence] = true;
        }
    }
    // A name in which the changed one lies changes with it.
    const auto holdsChanged = [&](std::uint32_t number) {
        for (auto inner = number + 1; inner < before.size() && before[inner].begin < before[number].end();
             ++inner) {
            if (changed[inner]) {
                return true;
            }
        }
        return false;
    };
    const auto old = names(file.index);
    const auto now = names(index);
    return std::equal(
        old.begin(), old.end(), now.begin(), now.end(), [&](std::uint32_t left, std::uint32_t right) {
            const auto& made = index.occurrences[right];
            const auto wanted = changed[left] ? std::string_view(name) : file.name(before[left]);
            const bool same = nameOf(text, made) == wanted || (!changed[left] && holdsChanged(left));
            return made.kind == before[left].kind && made.role == before[left].role && same;
        });
}

/// True when the name means something else already where the target counts.
bool isTaken(const Target& target, const Resolver& resolver, std::string_view name) {
    const auto wanted = kindClass(target.at.get().kind);
    const auto scope = target.definitions.front().get().scope;
    return std::any_of(resolver.files().begin(), resolver.files().end(), [&](const SourceFile* file) {
        const auto [first, last] = file->definitions.equal_range(name);
        return std::any_of(first, last, [&](const auto& entry) {
            const auto& o = file->index.occurrences[entry.second];
            const bool sameScope =
                scope == 0 || (o.scope == scope && file == target.definitions.front().file);
            return kindClass(o.kind) == wanted && sameScope;
        });
    });
}

} // namespace

Json prepareRename(Session& session, const Json& params) {
    const SourceFile& file = session.sources.of(requireText(session, params));
    const Resolver resolver(session.sources, file);
    const auto target = requireTarget(session, params, resolver, file);
    PositionWalk walk(*file.buffer, session.client.unit);
    const auto& o = target.at.get();
    return {{"range", rangeJson(walk, {o.begin, o.end()})}, {"placeholder", target.at.name()}};
}

Json renameSymbol(Session& session, const Json& params) {
    const SourceFile& file = session.sources.of(requireText(session, params));
    const Resolver resolver(session.sources, file);
    const auto target = requireTarget(session, params, resolver, file);
    const auto name = textMember(params, "newName");
    const auto quoted = "'" + name + "'";
    if (trim(name).empty()) {
        refuse("a name cannot be empty");
    }
    if (name != target.at.name() && isTaken(target, resolver, name)) {
        refuse("there is a " + std::string(target.noun) + " called " + quoted + " already");
    }
    std::map<const SourceFile*, PositionWalk> walks;
    Json changes = Json::object();
    for (const Place& place : target.places) {
        const auto [walk, isNew] =
            walks.try_emplace(place.file, PositionWalk(*place.file->buffer, session.client.unit));
        if (isNew && !readsBack(*place.file, target.places, name)) {
            refuse(quoted + " would not be read as the name of this " + std::string(target.noun));
        }
        const auto& o = place.get();
        changes[place.file->uri].push_back(
            {{"range", rangeJson(walk->second, {o.begin, o.end()})}, {"newText", replacement(place, name)}});
    }
    return {{"changes", std::move(changes)}};
}

} // namespace morquill::lsp
