#pragma once

#include "lsp/session.h"

#include <optional>
#include <string>
#include <vector>

/// Formatting: the canonical text, as `mqkit fmt` writes it.
namespace morquill::lsp {

/// What a rewrite of the text would drop, as a user would name it ("comments"), each once; empty when nothing
/// is lost.
[[nodiscard]] std::vector<std::string> lostByRewrite(const SourceFile& file);

/// `textDocument/formatting`. Throws `ResponseError` with what would be lost, or why the text cannot be read.
[[nodiscard]] Json formatDocument(Session& session, const Json& params);
/// `textDocument/rangeFormatting`: indentation of the lines of tasks, and runs of blank lines, in the range
/// alone.
[[nodiscard]] Json formatRange(Session& session, const Json& params);

} // namespace morquill::lsp
