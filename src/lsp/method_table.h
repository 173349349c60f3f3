#pragma once

#include "lsp/session.h"

#include <span>
#include <string_view>

/// The methods that the server knows: one row each.
namespace morquill::lsp {

/// What an answer is worth once the text has changed.
enum class Lifetime {
    any,    ///< it stays right, or has its own care
    ofText, ///< it is about the text as it was: a newer version in the queue makes it useless
};

/// A request: its answer is the result. Throws `ResponseError` for one that is refused.
struct RequestRow {
    std::string_view method;
    Json (*answer)(Session&, const Json& params);
    Lifetime lifetime = Lifetime::ofText;
    std::string_view capability{};     ///< the member of the server's capabilities that offers it
    std::string_view options = "true"; ///< the value of that member, as JSON
};

struct NotificationRow {
    std::string_view method;
    void (*take)(Session&, const Json& params);
};

[[nodiscard]] std::span<const RequestRow> requestTable() noexcept;
[[nodiscard]] std::span<const NotificationRow> notificationTable() noexcept;
[[nodiscard]] const RequestRow* findRequest(std::string_view method) noexcept;
[[nodiscard]] const NotificationRow* findNotification(std::string_view method) noexcept;

/// What the server offers, from the rows of the table.
[[nodiscard]] Json serverCapabilities(const ClientFeatures& client);

} // namespace morquill::lsp
