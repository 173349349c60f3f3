#include "lsp/messages.h"

namespace {

using namespace morquill::lsp;

TEST(Messages, AreJsonRpc) {
    EXPECT_EQ(responseText(7, {{"a", 1}}), R"({"id":7,"jsonrpc":"2.0","result":{"a":1}})");
    EXPECT_EQ(responseText("x", nullptr), R"({"id":"x","jsonrpc":"2.0","result":null})");
    EXPECT_EQ(errorText(nullptr, ErrorCode::parseError, "no JSON"),
              R"({"error":{"code":-32700,"message":"no JSON"},"id":null,"jsonrpc":"2.0"})");
    EXPECT_EQ(notificationText("m", Json::object()), R"({"jsonrpc":"2.0","method":"m","params":{}})");
    EXPECT_EQ(requestText(2, "m", nullptr), R"({"id":2,"jsonrpc":"2.0","method":"m","params":null})");
}

} // namespace
