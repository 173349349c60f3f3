#include "lsp/diagnostics.h"

#include "lsp/base/uri.h"
#include "lsp/issue_places.h"
#include "support/paths.h"

#include <algorithm>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace morquill::lsp {

namespace {

using ByUri = std::map<std::string, Json>;

constexpr int errorSeverity = 1;
constexpr int warningSeverity = 2;

/// The URI under which the client knows a file.
std::string uriOf(const Session& session, const std::string& path) {
    const OpenText* open = session.texts.findPath(path);
    return open == nullptr ? uriOfPath(absolutePath(path)) : open->uri;
}

Json diagnosticJson(Json range, int severity, std::string_view code, std::string_view message) {
    return {{"range", std::move(range)},
            {"severity", severity},
            {"code", code},
            {"source", "mqkit"},
            {"message", message}};
}

Json placeJson(const std::string& uri, const Json& range, std::string_view message) {
    return {{"location", {{"uri", uri}, {"range", range}}}, {"message", message}};
}

/// Adds the issues of one text.
class Report {
  public:
    Report(Session& session, const OpenText& text) : session_(session), text_(text), places_(text) {
        byUri_[text.uri] = Json::array();
    }

    void add(const lint::LintIssue& issue) {
        const int severity = issue.severity == lint::LintSeverity::error ? errorSeverity : warningSeverity;
        const IssuePlace place = places_.of(issue);
        if (place.file.empty()) {
            const auto range = narrowedRange(issue, place.range, session_.sources.of(text_));
            addHere(range, severity, issue.code, place.message);
        } else {
            addElsewhere(place, severity, issue.code);
        }
    }

    void addWarning(const std::string& warning) {
        addHere(places_.ofWarning(warning), warningSeverity, "parser-warning", warningMessage(warning));
    }

    ByUri take() { return std::move(byUri_); }

  private:
    void addHere(ByteRange range, int severity, std::string_view code, std::string_view message) {
        PositionWalk walk(text_.buffer, session_.client.unit);
        byUri_[text_.uri].push_back(diagnosticJson(rangeJson(walk, range), severity, code, message));
    }

    /// A fault in an included file is shown there, and here at the line that includes it.
    void addElsewhere(const IssuePlace& place, int severity, std::string_view code) {
        const auto& [uri, other] = otherText(place.file);
        PositionWalk otherWalk(other, session_.client.unit);
        const auto range = rangeJson(otherWalk, spanRange(place.span, other));
        Json& there = byUri_[uri];
        if (there.is_null()) {
            there = Json::array();
        }
        there.push_back(diagnosticJson(range, severity, code, place.message));
        PositionWalk walk(text_.buffer, session_.client.unit);
        auto here = diagnosticJson(rangeJson(walk, place.range), severity, code,
                                   "in " + place.file + ": " + place.message);
        here["relatedInformation"] = Json::array({placeJson(uri, range, place.message)});
        byUri_[text_.uri].push_back(std::move(here));
    }

    /// Another file with its URI.
    struct OtherText {
        std::string uri;
        TextBuffer buffer;
    };
    const OtherText& otherText(const std::string& path) {
        const auto known = others_.find(path);
        if (known != others_.end()) {
            return known->second;
        }
        const OpenText* open = session_.texts.findPath(path);
        return others_
            .emplace(path,
                     OtherText{uriOf(session_, path), open == nullptr ? textOnDisk(path) : open->buffer})
            .first->second;
    }

    Session& session_;
    const OpenText& text_;
    IssuePlaces places_;
    std::map<std::string, OtherText> others_;
    ByUri byUri_;
};

/// Everything that is shown in a file, each thing once.
Json shownIn(const Session& session, const std::string& uri) {
    Json shown = Json::array();
    std::unordered_set<std::string> seen;
    for (const auto& [source, byUri] : session.contributions) {
        const auto found = byUri.find(uri);
        if (found == byUri.end()) {
            continue;
        }
        for (const Json& diagnostic : found->second) {
            if (seen.insert(dumpJson(diagnostic)).second) {
                shown.push_back(diagnostic);
            }
        }
    }
    return shown;
}

void publish(const Session& session, const std::string& uri) {
    Json params{{"uri", uri}, {"diagnostics", shownIn(session, uri)}};
    if (const OpenText* text = session.texts.find(uri)) {
        params["version"] = text->version;
    }
    session.notify("textDocument/publishDiagnostics", std::move(params));
}

/// Puts what a text gives rise to in the place of what it did, and shows what changes by it.
void contribute(Session& session, const std::string& uri, ByUri byUri) {
    std::set<std::string> touched{uri};
    for (const auto& [target, list] : session.contributions[uri]) {
        touched.insert(target);
    }
    for (const auto& [target, list] : byUri) {
        touched.insert(target);
    }
    if (byUri.empty()) {
        session.contributions.erase(uri);
    } else {
        session.contributions[uri] = std::move(byUri);
    }
    for (const auto& target : touched) {
        publish(session, target);
    }
}

} // namespace

void scheduleDiagnostics(Session& session, const std::string& uri, Pause pause) {
    if (session.client.pullsDiagnostics) {
        return;
    }
    session.dueDiagnostics[uri] =
        session.now + (pause == Pause::typing ? typingPause : std::chrono::milliseconds(0));
}

void publishDue(Session& session) {
    auto& due = session.dueDiagnostics;
    for (auto entry = due.begin(); entry != due.end();) {
        if (entry->second > session.now) {
            ++entry;
            continue;
        }
        if (const OpenText* text = session.texts.find(entry->first)) {
            contribute(session, text->uri, diagnosticsOf(session, *text));
        }
        entry = due.erase(entry);
    }
}

void clearDiagnostics(Session& session, const std::string& uri) {
    session.dueDiagnostics.erase(uri);
    if (!session.client.pullsDiagnostics) {
        contribute(session, uri, {});
    }
}

std::map<std::string, Json> diagnosticsOf(Session& session, const OpenText& text) {
    const Analysis& analysis = session.analyses.of(text);
    Report report(session, text);
    for (const auto& issue : analysis.report.issues) {
        report.add(issue);
    }
    for (const auto& warning : analysis.warnings) {
        report.addWarning(warning);
    }
    return report.take();
}

Json pullDiagnostics(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    auto byUri = diagnosticsOf(session, text);
    Json result{{"kind", "full"}, {"items", std::move(byUri[text.uri])}};
    for (auto& [uri, list] : byUri) {
        if (uri != text.uri) {
            result["relatedDocuments"][uri] = {{"kind", "full"}, {"items", std::move(list)}};
        }
    }
    return result;
}

} // namespace morquill::lsp
