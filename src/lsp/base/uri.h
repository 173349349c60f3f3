#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Files as the protocol names them.
namespace morquill::lsp {

/// The absolute path that a `file` URI names, its escapes decoded; nothing for another scheme, another
/// machine, a broken escape or an escaped NUL.
[[nodiscard]] std::optional<std::string> pathOfUri(std::string_view uri);

/// The `file` URI of an absolute path. Bytes outside `[A-Za-z0-9._~/-]` are escaped.
[[nodiscard]] std::string uriOfPath(std::string_view path);

} // namespace morquill::lsp
