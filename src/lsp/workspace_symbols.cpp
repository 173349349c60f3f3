#include "lsp/workspace_symbols.h"

#include "lsp/base/uri.h"
#include "support/paths.h"
#include "support/text.h"

#include <algorithm>
#include <string>
#include <utility>

namespace morquill::lsp {

namespace {

/// The kind of the protocol.
int symbolKind(NameKind kind) noexcept {
    switch (kind) {
    case NameKind::task:
        return 5; // class
    case NameKind::fragment:
    case NameKind::derive:
        return 12; // function
    case NameKind::axis:
        return 10; // enum
    case NameKind::plot:
        return 19; // object
    default:
        return 14; // constant
    }
}

} // namespace

Json workspaceSymbols(Session& session, const Json& params) {
    const auto query = toLower(textMember(params, "query"));
    Json list = Json::array();
    for (const auto& [path, file] : session.workspace.files()) {
        for (const auto& symbol : file.symbols) {
            if (list.size() == maxSymbols) {
                return list;
            }
            if (query.empty() || containsNoCase(symbol.name, query)) {
                list.push_back(
                    {{"name", symbol.name},
                     {"kind", symbolKind(symbol.kind)},
                     {"containerName", baseName(path)},
                     {"location",
                      {{"uri", uriOfPath(path)},
                       {"range",
                        {{"start", positionJson(symbol.start)}, {"end", positionJson(symbol.end)}}}}}});
            }
        }
    }
    return list;
}

void didInitialize(Session& session, const Json& /*params*/) {
    if (session.client.watchesFiles) {
        const Json options{{"watchers", Json::array({{{"globPattern", "**/*.{mq,projmq,mqlib,mqfrag}"}},
                                                     {{"globPattern", "**/extra.yaml"}}})}};
        session.request("client/registerCapability",
                        {{"registrations", Json::array({{{"id", "files"},
                                                         {"method", "workspace/didChangeWatchedFiles"},
                                                         {"registerOptions", options}}})}});
    }
    session.workspace.setFolders(session.folders, session.client.unit);
}

void didChangeFolders(Session& session, const Json& params) {
    const Json& event = member(params, "event");
    for (const Json& folder : member(event, "removed")) {
        if (const auto path = pathOfUri(textMember(folder, "uri"))) {
            std::erase(session.folders, absoluteLocation(*path));
        }
    }
    for (const Json& folder : member(event, "added")) {
        if (const auto path = pathOfUri(textMember(folder, "uri"))) {
            session.folders.push_back(absoluteLocation(*path));
        }
    }
    session.workspace.setFolders(session.folders, session.client.unit);
}

} // namespace morquill::lsp
