#pragma once

#include "lsp/session.h"

#include <chrono>
#include <map>
#include <string>

/// Diagnostics: what lint and the parser report, where the client shows it.
namespace morquill::lsp {

/// How long typing has to rest before diagnostics are made.
inline constexpr std::chrono::milliseconds typingPause{150};

enum class Pause { none, typing };

/// Makes the diagnostics of an open text due.
void scheduleDiagnostics(Session& session, const std::string& uri, Pause pause);
/// Sends the diagnostics that are due.
void publishDue(Session& session);
/// Takes back what was sent for a text.
void clearDiagnostics(Session& session, const std::string& uri);

/// The diagnostics that an open text gives rise to, by the URI of the file in which they are shown: its own,
/// and files that it includes.
[[nodiscard]] std::map<std::string, Json> diagnosticsOf(Session& session, const OpenText& text);

/// `textDocument/diagnostic`.
[[nodiscard]] Json pullDiagnostics(Session& session, const Json& params);

} // namespace morquill::lsp
