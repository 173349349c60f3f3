#pragma once

#include "lsp/base/json.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// The messages of JSON-RPC: what is sent, and the errors of the protocol.
namespace morquill::lsp {

enum class ErrorCode : std::int32_t {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParams = -32602,
    internalError = -32603,
    serverNotInitialized = -32002,
    requestFailed = -32803,
    contentModified = -32801,
    requestCancelled = -32800,
};

/// A request that is answered by an error. The message is shown to the user.
class ResponseError : public std::runtime_error {
  public:
    ResponseError(ErrorCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

    [[nodiscard]] ErrorCode code() const noexcept { return code_; }

  private:
    ErrorCode code_;
};

/// Takes the text of one message that goes to the client.
using SendMessage = std::function<void(const std::string& body)>;

[[nodiscard]] std::string responseText(const Json& id, Json result);
[[nodiscard]] std::string errorText(const Json& id, ErrorCode code, std::string_view message);
[[nodiscard]] std::string notificationText(std::string_view method, Json params);
[[nodiscard]] std::string requestText(std::int64_t id, std::string_view method, Json params);

} // namespace morquill::lsp
