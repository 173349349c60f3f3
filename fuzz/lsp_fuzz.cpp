// The language server takes any stream of messages: what comes out is always whole messages of JSON-RPC, a
// request gets one answer, and nothing ends it but `exit`. A line of the input that is no JSON is sent as
// bytes without a frame.

#include "lsp/base/framing.h"
#include "lsp/server.h"
#include "support/text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace morquill::lsp;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::size_t answers = 0;
    Server server([&](const std::string& body) {
        const auto message = parseJson(body);
        require(message && message->is_object() && textMember(*message, "jsonrpc") == "2.0");
        answers += message->contains("id") && !message->contains("method") ? 1 : 0;
    });
    FrameReader frames;
    TimePoint now{std::chrono::hours(1)};
    std::size_t requests = 0;
    const auto run = [&] {
        while (auto frame = frames.next()) {
            server.receive(*frame);
            ++requests;
        }
        while (server.step(now)) {
        }
        now += std::chrono::seconds(1);
        server.idle(now);
    };
    frames.feed(frameOf(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"capabilities":{}}})"));
    run();
    for (const auto line : morquill::splitLines(input)) {
        frames.feed(line.starts_with('{') || line.starts_with('[') ? frameOf(line)
                                                                   : std::string(line) + "\r\n\r\n");
        run();
    }
    require(answers <= requests);
    return 0;
}
