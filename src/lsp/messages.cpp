#include "lsp/messages.h"

#include <utility>

namespace morquill::lsp {

namespace {

Json envelope() {
    return Json{{"jsonrpc", "2.0"}};
}

} // namespace

std::string responseText(const Json& id, Json result) {
    Json message = envelope();
    message["id"] = id;
    message["result"] = std::move(result);
    return dumpJson(message);
}

std::string errorText(const Json& id, ErrorCode code, std::string_view text) {
    Json message = envelope();
    message["id"] = id;
    message["error"] = {{"code", static_cast<std::int32_t>(code)}, {"message", text}};
    return dumpJson(message);
}

std::string notificationText(std::string_view method, Json params) {
    Json message = envelope();
    message["method"] = method;
    message["params"] = std::move(params);
    return dumpJson(message);
}

std::string requestText(std::int64_t id, std::string_view method, Json params) {
    Json message = envelope();
    message["id"] = id;
    message["method"] = method;
    message["params"] = std::move(params);
    return dumpJson(message);
}

} // namespace morquill::lsp
