#include "lsp/hints.h"

#include "lsp/hover.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace morquill::lsp {

namespace {

/// The names of those that use a task, each once, in the order of their files.
struct UserList {
    std::vector<std::string_view> names;
    std::unordered_set<std::string_view> known;
};
using Users = std::map<std::string_view, UserList>;

/// The task, plot or derive around an occurrence.
std::string_view ownerOf(const SourceFile& file, const Occurrence& o) {
    const auto innermost = blockAt(file.index, o.begin);
    for (const auto kind : {BlockKind::task, BlockKind::derive, BlockKind::plot}) {
        if (const auto name = file.blockName(enclosing(file.index, innermost, kind)); !name.empty()) {
            return name;
        }
    }
    return {};
}

Users usersOf(const std::vector<const SourceFile*>& files) {
    Users users;
    for (const SourceFile* file : files) {
        for (const auto& o : file->index.occurrences) {
            if (o.kind != NameKind::task || o.role != NameRole::reference) {
                continue;
            }
            auto& list = users[file->name(o)];
            const auto owner = ownerOf(*file, o);
            if (!owner.empty() && list.known.insert(owner).second) {
                list.names.push_back(owner);
            }
        }
    }
    return users;
}

std::string usedBy(const std::vector<std::string_view>& users) {
    constexpr std::size_t most = 5;
    std::string text = "used by ";
    for (std::size_t i = 0; i < std::min(most, users.size()); ++i) {
        text += (i == 0 ? "" : ", ") + std::string(users[i]);
    }
    return users.size() > most ? text + " and " + std::to_string(users.size() - most) + " more" : text;
}

} // namespace

Json inlayHints(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto range = readRange(member(params, "range"), text.buffer, session.client.unit);
    if (!range) {
        throw ResponseError(ErrorCode::invalidParams, "range expected");
    }
    const auto& document = session.analyses.of(text).document;
    const auto count = document ? variantCount(*document) : 1;
    Json hints = Json::array();
    if (count < 2) {
        return hints;
    }
    const SourceFile& file = session.sources.of(text);
    PositionWalk walk(text.buffer, session.client.unit);
    for (const auto& o : file.index.occurrences) {
        const bool inRange = o.begin >= range->begin && o.end() <= range->end;
        if (inRange && o.kind == NameKind::task && o.role == NameRole::definition) {
            hints.push_back(
                {{"position", positionJson(walk.at(text.buffer.line(text.buffer.lineOf(o.begin)).end))},
                 {"label", std::to_string(count) + " variants"},
                 {"paddingLeft", true}});
        }
    }
    return hints;
}

Json codeLenses(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const SourceFile& file = session.sources.of(text);
    const auto users = usersOf(session.sources.documentFiles(file));
    PositionWalk walk(text.buffer, session.client.unit);
    Json lenses = Json::array();
    for (const auto& o : file.index.occurrences) {
        if (o.kind != NameKind::task || o.role != NameRole::definition) {
            continue;
        }
        const auto found = users.find(file.name(o));
        if (found != users.end() && !found->second.names.empty()) {
            lenses.push_back({{"range", rangeJson(walk, {o.begin, o.end()})},
                              {"command", {{"title", usedBy(found->second.names)}, {"command", ""}}}});
        }
    }
    return lenses;
}

} // namespace morquill::lsp
