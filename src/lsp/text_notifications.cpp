#include "lsp/text_notifications.h"

#include "lsp/base/uri.h"
#include "lsp/diagnostics.h"
#include "support/paths.h"

#include <stdexcept>

namespace morquill::lsp {

namespace {

const Json& documentOf(const Json& params) {
    return member(params, "textDocument");
}

/// Diagnoses the other open texts that read the file of the path.
void scheduleReaders(Session& session, const std::string& uri, const std::string& path, Pause pause) {
    for (const auto& [other, text] : session.texts.texts()) {
        if (other != uri && !path.empty() && session.analyses.dependsOn(text, path)) {
            scheduleDiagnostics(session, other, pause);
        }
    }
}

} // namespace

void didOpen(Session& session, const Json& params) {
    const Json& document = documentOf(params);
    const auto uri = textMember(document, "uri");
    if (uri.empty()) {
        throw std::invalid_argument("a text without a URI was opened");
    }
    const auto& text =
        session.texts.open(uri, integerMember(document, "version").value_or(0), textMember(document, "text"));
    scheduleDiagnostics(session, uri, Pause::none);
    scheduleReaders(session, uri, text.path, Pause::none);
}

void didChange(Session& session, const Json& params) {
    const Json& document = documentOf(params);
    const auto uri = textMember(document, "uri");
    if (!session.texts.change(uri, integerMember(document, "version").value_or(0),
                              member(params, "contentChanges"), session.client.unit)) {
        throw std::invalid_argument("a change that cannot be applied: " + uri);
    }
    scheduleDiagnostics(session, uri, Pause::typing);
    scheduleReaders(session, uri, session.texts.find(uri)->path, Pause::typing);
}

void didSave(Session& session, const Json& params) {
    const auto uri = textMember(documentOf(params), "uri");
    if (const OpenText* text = session.texts.find(uri)) {
        if (session.workspace.files().contains(text->path)) {
            session.workspace.refresh(text->path);
        }
        scheduleDiagnostics(session, uri, Pause::none);
    }
}

void didClose(Session& session, const Json& params) {
    const auto uri = textMember(documentOf(params), "uri");
    const OpenText* text = session.texts.find(uri);
    if (text == nullptr) {
        return;
    }
    const std::string path = text->path;
    session.texts.close(uri);
    session.analyses.forget(uri);
    session.sources.forget(uri);
    session.sentTokens.erase(uri);
    clearDiagnostics(session, uri);
    scheduleReaders(session, uri, path, Pause::none);
}

void didChangeWatchedFiles(Session& session, const Json& params) {
    const Json& changes = member(params, "changes");
    if (!changes.is_array()) {
        return;
    }
    for (const Json& change : changes) {
        const auto path = pathOfUri(textMember(change, "uri"));
        if (path && isSourceName(baseName(*path))) {
            session.workspace.refresh(*path);
        }
        if (path && session.texts.findPath(*path) == nullptr) {
            session.texts.countDiskChange(*path);
            scheduleReaders(session, {}, *path, Pause::none);
        }
    }
}

} // namespace morquill::lsp
