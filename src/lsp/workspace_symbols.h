#pragma once

#include "lsp/session.h"

/// The workspace as a whole: its folders, and the names of all its files.
namespace morquill::lsp {

/// `workspace/symbol`: names that hold the query, in any case, at most `maxSymbols`.
[[nodiscard]] Json workspaceSymbols(Session& session, const Json& params);
inline constexpr std::size_t maxSymbols = 1000;

/// `initialized`: asks to be told of files that change on the disk, and begins to look at the folders.
void didInitialize(Session& session, const Json& params);
void didChangeFolders(Session& session, const Json& params);

} // namespace morquill::lsp
