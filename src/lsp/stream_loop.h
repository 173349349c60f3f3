#pragma once

/// The loop between the streams and the server.
namespace morquill::lsp {

/// Serves one client on two descriptors until it ends the server or its stream ends; returns the exit status.
/// Messages that have come are all read before the first is handled, so that one may take back another.
[[nodiscard]] int serve(int input, int output);

} // namespace morquill::lsp
