#include "lsp/session.h"

namespace {

using namespace morquill::lsp;

struct SessionFixture : testing::Test {
    Session session{[this](const std::string& body) { sent.push_back(body); }};
    std::vector<std::string> sent;
};

using SessionTest = SessionFixture;

TEST_F(SessionTest, SendsNotificationsAndRequests) {
    session.notify("m", Json::object());
    session.request("r", nullptr);
    session.request("r", nullptr);
    EXPECT_EQ(sent, (std::vector<std::string>{R"({"jsonrpc":"2.0","method":"m","params":{}})",
                                              R"({"id":1,"jsonrpc":"2.0","method":"r","params":null})",
                                              R"({"id":2,"jsonrpc":"2.0","method":"r","params":null})"}));
}

TEST_F(SessionTest, RequiresATextAndAPlace) {
    session.texts.open("u", 4, "ab\ncd");
    const Json document = {{"uri", "u"}};
    const auto& text = requireText(session, {{"textDocument", document}});
    EXPECT_EQ(text.version, 4);
    const Json place = {{"position", {{"line", 1}, {"character", 1}}}};
    EXPECT_EQ(requireOffset(session, text, place), 4U);
    EXPECT_THROW((void)requireOffset(session, text, Json::object()), ResponseError);
    EXPECT_THROW((void)requireText(session, Json::object()), ResponseError);
    EXPECT_THROW((void)requireText(session, {{"textDocument", {{"uri", "u"}, {"version", 3}}}}),
                 ResponseError);
}

TEST_F(SessionTest, WritesRanges) {
    const TextBuffer buffer("ab\ncd");
    PositionWalk walk(buffer, PositionUnit::utf16);
    EXPECT_EQ(rangeJson(walk, {1, 4}).dump(),
              R"({"end":{"character":1,"line":1},"start":{"character":1,"line":0}})");
}

} // namespace
