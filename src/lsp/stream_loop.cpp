#include "lsp/stream_loop.h"

#include "lsp/server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <limits>
#include <string_view>
#include <utility>

#include <malloc.h>
#include <poll.h>
#include <unistd.h>

namespace morquill::lsp {

namespace {

/// Bytes of a message behind which memory is given back.
constexpr std::size_t largeMessage = 1U << 20U;

TimePoint now() {
    return std::chrono::steady_clock::now();
}

/// Waits for input; false when the time is over first.
bool waitForInput(int input, std::optional<std::chrono::milliseconds> longest) {
    constexpr auto most = std::numeric_limits<int>::max();
    const int timeout = longest ? static_cast<int>(std::min<std::int64_t>(longest->count(), most)) : -1;
    pollfd descriptor{input, POLLIN, 0};
    const int ready = ::poll(&descriptor, 1, timeout);
    return ready > 0;
}

/// Writes all bytes; false when the other side is gone.
bool writeAll(int output, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(output, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// The stream from the client.
class Input {
  public:
    explicit Input(int descriptor) : descriptor_(descriptor) {}

    /// Reads what is there, and hands whole messages on; false at the end of the stream.
    bool read(Server& server) {
        std::array<char, 64U << 10U> bytes;
        const auto count = ::read(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            return true;
        }
        if (count <= 0) {
            return false;
        }
        frames_.feed(std::string_view(bytes.data(), static_cast<std::size_t>(count)));
        while (auto frame = frames_.next()) {
            server.receive(*frame);
        }
        return true;
    }

  private:
    int descriptor_;
    FrameReader frames_;
};

} // namespace

int serve(int input, int output) {
    std::signal(SIGPIPE, SIG_IGN);
    bool connected = true;
    bool wasLarge = false;
    Server server([&](const std::string& body) {
        connected = connected && writeAll(output, frameOf(body));
        wasLarge = wasLarge || body.size() > largeMessage;
    });
    Input stream(input);
    bool open = true;
    while (connected && !server.exitStatus()) {
        const auto pause = open ? server.pause(now()) : std::chrono::milliseconds(0);
        if (open && waitForInput(input, pause)) {
            open = stream.read(server);
        } else if (!server.step(now())) {
            if (!open) {
                break;
            }
            server.idle(now());
        } else if (std::exchange(wasLarge, false)) {
            ::malloc_trim(0); // a large answer is made of many small values, whose room is not needed again
        }
    }
    return server.exitStatus().value_or(server.statusAtEnd());
}

} // namespace morquill::lsp
