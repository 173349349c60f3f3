#pragma once

#include "lsp/messages.h"
#include "lsp/sources/analysis.h"
#include "lsp/sources/source_files.h"
#include "lsp/sources/text_store.h"
#include "lsp/sources/workspace.h"

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <vector>

/// What one client and this server share from `initialize` to `exit`.
namespace morquill::lsp {

using TimePoint = std::chrono::steady_clock::time_point;

/// What the client said it can do.
struct ClientFeatures {
    PositionUnit unit = PositionUnit::utf16;
    bool pullsDiagnostics = false;     ///< asks for diagnostics itself: they are not pushed
    bool nestedSymbols = false;        ///< takes symbols with children
    bool snippets = false;             ///< takes completions with placeholders
    bool refreshesDiagnostics = false; ///< can be asked to pull diagnostics anew
    bool watchesFiles = false;         ///< takes a registration of file watchers
};

/// Semantic tokens as they were sent.
struct SentTokens {
    std::string id;
    std::vector<std::uint32_t> data;
};

struct Session {
    explicit Session(SendMessage sender)
        : send(std::move(sender)), analyses(texts), sources(texts, workspace) {}

    void notify(std::string_view method, Json params) const {
        send(notificationText(method, std::move(params)));
    }
    void request(std::string_view method, Json params) {
        send(requestText(++nextRequest, method, std::move(params)));
    }

    SendMessage send;
    ClientFeatures client;
    TextStore texts;
    Workspace workspace;
    Analyses analyses;
    SourceFiles sources;
    std::vector<std::string> folders; ///< absolute paths of the workspace's folders
    /// Open texts whose diagnostics wait for a pause, with the time at which they are due.
    std::map<std::string, TimePoint> dueDiagnostics;
    /// Diagnostics by the open text that they come from and by the file in which they are shown.
    std::map<std::string, std::map<std::string, Json>> contributions;
    std::map<std::string, SentTokens> sentTokens; ///< the last ones, by URI
    std::uint64_t tokenCount = 0;                 ///< answers with tokens since the start
    TimePoint now{};                              ///< of the message being handled
    std::int64_t nextRequest = 0;
};

/// The open text that a request's `textDocument` names. Throws `ResponseError`: invalid parameters for one
/// that is not open, content modified when the request names another version than the text has.
[[nodiscard]] const OpenText& requireText(const Session& session, const Json& params);

/// The offset of the request's `position`. Throws `ResponseError` when there is none.
[[nodiscard]] std::size_t requireOffset(const Session& session, const OpenText& text, const Json& params);

[[nodiscard]] Json positionJson(Position position);
/// The range of bytes as the protocol has it.
[[nodiscard]] Json rangeJson(PositionWalk& walk, ByteRange range);

} // namespace morquill::lsp
