#pragma once

#include "lsp/base/framing.h"
#include "lsp/session.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

/// The life of the server, from message to message. It reads and writes no stream itself.
namespace morquill::lsp {

class Server {
  public:
    explicit Server(SendMessage send);

    /// Takes a frame in. It is looked at in its turn, by `step`.
    void receive(const Frame& frame);
    /// Handles the oldest message that waits; false when there is none.
    bool step(TimePoint now);
    /// Does work that waited for a pause and is due.
    void idle(TimePoint now);
    /// How long nothing needs to be done without a new message; nothing for ever.
    [[nodiscard]] std::optional<std::chrono::milliseconds> pause(TimePoint now) const;
    /// The exit status, once the client has ended the server.
    [[nodiscard]] std::optional<int> exitStatus() const noexcept { return exitStatus_; }
    /// The status when the stream ends without a word: 0 after `shutdown`, otherwise 1.
    [[nodiscard]] int statusAtEnd() const noexcept { return life_ == Life::stopped ? 0 : 1; }

    [[nodiscard]] const Session& session() const noexcept { return session_; }

  private:
    enum class Life : std::uint8_t { waiting, running, stopped };

    /// A message that has been read: a request has an id, a notification has none.
    struct Message {
        Json id;
        std::string method;
        Json params;
        bool isRequest = false;
        std::optional<ResponseError> fault; ///< it is no message of the protocol
    };

    [[nodiscard]] static std::optional<Message> readMessage(const Frame& frame);
    void handle(const Message& message);
    void answer(const Message& message);
    [[nodiscard]] Json result(const Message& message);
    [[nodiscard]] Json initialize(const Json& params);
    void takeNotification(const Message& message);
    [[nodiscard]] bool isCancelled(const Message& message) const;
    [[nodiscard]] bool isOutdated(const Message& message) const;

    Session session_;
    std::deque<Message> queue_;
    Life life_ = Life::waiting;
    std::optional<int> exitStatus_;
};

} // namespace morquill::lsp
