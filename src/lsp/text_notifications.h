#pragma once

#include "lsp/session.h"

/// The notifications that keep the texts of the server like those of the client.
namespace morquill::lsp {

void didOpen(Session& session, const Json& params);
void didChange(Session& session, const Json& params);
void didSave(Session& session, const Json& params);
void didClose(Session& session, const Json& params);
void didChangeWatchedFiles(Session& session, const Json& params);

} // namespace morquill::lsp
