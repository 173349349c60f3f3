#include "lsp/stream_loop.h"

#include "lsp/base/framing.h"

#include <thread>

#include <unistd.h>

namespace {

using namespace morquill::lsp;

struct Served {
    int status = -1;
    std::vector<std::string> bodies;
};

/// Serves a client that sends all this and then ends its stream.
Served serveStream(const std::string& stream) {
    int input[2];
    int output[2];
    EXPECT_EQ(::pipe(input), 0);
    EXPECT_EQ(::pipe(output), 0);
    std::thread writer([&] {
        std::string_view rest = stream;
        while (!rest.empty()) {
            const auto written = ::write(input[1], rest.data(), rest.size());
            if (written <= 0) {
                break;
            }
            rest.remove_prefix(static_cast<std::size_t>(written));
        }
        ::close(input[1]);
    });
    Served served;
    std::thread reader([&] {
        FrameReader frames;
        char bytes[4096];
        for (auto count = ::read(output[0], bytes, sizeof bytes); count > 0;
             count = ::read(output[0], bytes, sizeof bytes)) {
            frames.feed(std::string_view(bytes, static_cast<std::size_t>(count)));
        }
        while (const auto frame = frames.next()) {
            served.bodies.push_back(std::get<FrameBody>(*frame).text);
        }
    });
    served.status = serve(input[0], output[1]);
    ::close(input[0]);
    ::close(output[1]);
    writer.join();
    reader.join();
    ::close(output[0]);
    return served;
}

const std::string shutdownFrame = frameOf(R"({"jsonrpc":"2.0","id":2,"method":"shutdown"})");
const std::string initializeFrame =
    frameOf(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"capabilities":{}}})");

TEST(StreamLoop, ServesUntilExit) {
    const auto served =
        serveStream(initializeFrame + shutdownFrame + frameOf(R"({"jsonrpc":"2.0","method":"exit"})"));
    EXPECT_EQ(served.status, 0);
    ASSERT_EQ(served.bodies.size(), 2U);
    EXPECT_EQ(served.bodies[1], R"({"id":2,"jsonrpc":"2.0","result":null})");
}

TEST(StreamLoop, TheEndOfTheStreamEndsIt) {
    EXPECT_EQ(serveStream("").status, 1);
    EXPECT_EQ(serveStream(initializeFrame).status, 1);
    EXPECT_EQ(serveStream(initializeFrame + shutdownFrame).status, 0);
}

TEST(StreamLoop, ABrokenFrameIsAnswered) {
    const auto served = serveStream("nonsense\r\n\r\n" + initializeFrame);
    ASSERT_EQ(served.bodies.size(), 2U);
    EXPECT_EQ(
        served.bodies[0],
        R"({"error":{"code":-32700,"message":"a header has no Content-Length"},"id":null,"jsonrpc":"2.0"})");
}

} // namespace
