#include "lsp/base/framing.h"

namespace {

using morquill::lsp::Frame;
using morquill::lsp::FrameBody;
using morquill::lsp::FrameFault;
using morquill::lsp::frameOf;
using morquill::lsp::FrameReader;

/// Everything that the reader finds in a stream: bodies as they are, faults behind "! ".
std::vector<std::string> readAll(FrameReader& reader) {
    std::vector<std::string> found;
    while (const auto frame = reader.next()) {
        const auto* body = std::get_if<FrameBody>(&*frame);
        found.push_back(body != nullptr ? body->text
                                        : "! " + std::string(std::get<FrameFault>(*frame).reason));
    }
    return found;
}

std::vector<std::string> read(std::string_view stream) {
    FrameReader reader;
    reader.feed(stream);
    return readAll(reader);
}

using Found = std::vector<std::string>;

TEST(Framing, ReadsOneBodyAfterTheOther) {
    EXPECT_EQ(read("Content-Length: 2\r\n\r\n{}Content-Length: 4\r\n\r\nnull"), (Found{"{}", "null"}));
}

TEST(Framing, WritesWhatItReads) {
    EXPECT_EQ(frameOf("{}"), "Content-Length: 2\r\n\r\n{}");
    EXPECT_EQ(read(frameOf("") + frameOf("a\r\n\r\nb")), (Found{"", "a\r\n\r\nb"}));
}

TEST(Framing, TakesOtherFieldsAnyCaseAndBareLineFeeds) {
    EXPECT_EQ(read("Content-Type: application/vscode-jsonrpc; charset=utf-8\r\ncontent-length:2\r\n\r\n{}"),
              (Found{"{}"}));
    EXPECT_EQ(read("Content-Length: 2\n\n{}"), (Found{"{}"}));
}

TEST(Framing, WaitsForEveryByte) {
    const std::string stream = "Content-Length: 4\r\n\r\nnull" + frameOf("{}");
    FrameReader reader;
    Found found;
    for (const char c : stream) {
        reader.feed(std::string_view(&c, 1));
        for (auto& text : readAll(reader)) {
            found.push_back(std::move(text));
        }
    }
    EXPECT_EQ(found, (Found{"null", "{}"}));
}

struct BrokenCase {
    std::string_view stream;
    std::string_view fault;
};

TEST(Framing, ABrokenFrameCostsItselfAlone) {
    const BrokenCase cases[] = {
        {"Content-Length: two\r\n\r\n", "! a header has no Content-Length"},
        {"Content-Length: -2\r\n\r\n", "! a header has no Content-Length"},
        {"Content-Length: 99999999999999999999999\r\n\r\n", "! a header has no Content-Length"},
        {"Content-Type: x\r\n\r\n", "! a header has no Content-Length"},
        {"\n\n", "! a header has no Content-Length"},
        {"garbage\r\n", "! a header is broken"},
        {"{\"jsonrpc\":\"2.0\"}\n", "! a header is broken"},
        {"Content-Length: 7\r\n", "! a header is broken"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(read(std::string(row.stream) + frameOf("{}")), (Found{std::string(row.fault), "{}"}))
            << row.stream;
    }
}

TEST(Framing, PassesOverAHeaderWithoutAnEnd) {
    FrameReader reader;
    reader.feed(std::string(FrameReader::maxHeader + 1, 'x'));
    EXPECT_EQ(readAll(reader), (Found{"! a header is too long"}));
    reader.feed(frameOf("{}"));
    EXPECT_EQ(readAll(reader), (Found{"{}"}));
}

TEST(Framing, PassesOverABodyThatIsTooLarge) {
    const auto size = FrameReader::maxBody + 1;
    FrameReader reader;
    reader.feed("Content-Length: " + std::to_string(size) + "\r\n\r\nabc");
    EXPECT_EQ(readAll(reader), (Found{"! a message is too large"}));
    reader.feed(std::string(size - 3, 'x'));
    EXPECT_EQ(readAll(reader), Found{});
    reader.feed(frameOf("{}"));
    EXPECT_EQ(readAll(reader), (Found{"{}"}));
}

} // namespace
