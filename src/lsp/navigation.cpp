#include "lsp/navigation.h"

#include "lsp/base/uri.h"
#include "support/file.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace morquill::lsp {

namespace {

/// The link whose name stands at an offset; its number, or `noIndex`.
std::uint32_t linkAt(const SourceFile& file, std::size_t offset) noexcept {
    const auto& links = file.index.links;
    const auto link = std::find_if(links.begin(), links.end(), [offset](const FileLink& l) {
        return l.begin <= offset && offset <= l.end;
    });
    return link == links.end() ? noIndex : static_cast<std::uint32_t>(link - links.begin());
}

Json fileStart(const Session& session, const std::string& path) {
    const OpenText* open = session.texts.findPath(path);
    if (open == nullptr && !isRegularFile(path)) {
        return nullptr;
    }
    const Json start = positionJson({});
    return {{"uri", open != nullptr ? open->uri : uriOfPath(path)},
            {"range", {{"start", start}, {"end", start}}}};
}

Json locationsJson(const Session& session, const std::vector<Place>& places) {
    Json list = Json::array();
    std::map<const SourceFile*, PositionWalk> walks;
    for (const Place& place : places) {
        auto& walk = walks.try_emplace(place.file, PositionWalk(*place.file->buffer, session.client.unit))
                         .first->second;
        const auto& o = place.get();
        list.push_back({{"uri", place.file->uri}, {"range", rangeJson(walk, {o.begin, o.end()})}});
    }
    return list;
}

/// What a request about a name at a position asks about.
struct AskedName {
    const OpenText& text;
    const SourceFile& file;
    std::optional<Place> place; ///< nothing where no name is
};

AskedName askedName(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto offset = requireOffset(session, text, params);
    const SourceFile& file = session.sources.of(text);
    return {text, file, placeAt(file, offset)};
}

} // namespace

Json locationJson(const Session& session, const Place& place) {
    return locationsJson(session, {place})[0];
}

Json gotoDefinition(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto offset = requireOffset(session, text, params);
    const SourceFile& file = session.sources.of(text);
    if (const auto link = linkAt(file, offset); link != noIndex) {
        if (Json start = fileStart(session, file.linked[link]); !start.is_null()) {
            return start;
        }
    }
    const auto place = placeAt(file, offset);
    if (!place) {
        return nullptr;
    }
    const auto definitions = Resolver(session.sources, file).definitions(*place);
    return definitions.empty() ? Json() : locationsJson(session, definitions);
}

Json findReferences(Session& session, const Json& params) {
    const auto [text, file, place] = askedName(session, params);
    if (!place) {
        return nullptr;
    }
    const Resolver resolver(session.sources, file);
    auto places = resolver.references(resolver.definitions(*place));
    if (!flagMember(member(params, "context"), "includeDeclaration")) {
        std::erase_if(places, [](const Place& p) { return p.get().role == NameRole::definition; });
    }
    return locationsJson(session, places);
}

Json documentHighlight(Session& session, const Json& params) {
    const auto [text, file, place] = askedName(session, params);
    if (!place) {
        return nullptr;
    }
    constexpr int readKind = 2;
    constexpr int writeKind = 3;
    const Resolver resolver(session.sources, file);
    PositionWalk walk(text.buffer, session.client.unit);
    Json list = Json::array();
    for (const Place& found : resolver.references(resolver.definitions(*place))) {
        if (found.file == &file) {
            const auto& o = found.get();
            list.push_back({{"range", rangeJson(walk, {o.begin, o.end()})},
                            {"kind", o.role == NameRole::definition ? writeKind : readKind}});
        }
    }
    return list;
}

} // namespace morquill::lsp
