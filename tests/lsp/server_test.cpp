#include "lsp/server.h"

#include "fixtures/lsp_client.h"
#include "lsp/method_table.h"

namespace {

using namespace morquill::lsp;
using std::chrono::milliseconds;
using namespace std::string_literals;

TEST(Server, RefusesRequestsBeforeInitialize) {
    LspClient client(LspClient::notInitialized);
    EXPECT_EQ(client.requestError("textDocument/diagnostic", Json::object()), -32002);
}

TEST(Server, IsInitializedOnce) {
    LspClient client(LspClient::notInitialized);
    const Json answer = client.request("initialize", {{"capabilities", Json::object()}});
    EXPECT_EQ(answer["serverInfo"]["name"], "mqkit-lsp");
    EXPECT_EQ(answer["capabilities"]["positionEncoding"], "utf-16");
    EXPECT_EQ(answer["capabilities"]["textDocumentSync"]["change"], 2);
    EXPECT_EQ(client.requestError("initialize", Json::object()), -32600);
}

TEST(Server, TakesUtf8WhereItIsOffered) {
    LspClient client(LspClient::notInitialized);
    const Json general = {{"positionEncodings", {"utf-8", "utf-16"}}};
    const Json answer = client.request("initialize", {{"capabilities", {{"general", general}}}});
    EXPECT_EQ(answer["capabilities"]["positionEncoding"], "utf-8");
}

TEST(Server, EndsWithZeroAfterShutdown) {
    LspClient client;
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
    EXPECT_EQ(client.requestError("textDocument/diagnostic", Json::object()), -32600);
    EXPECT_EQ(client.server.exitStatus(), std::nullopt);
    client.notify("exit", nullptr);
    EXPECT_EQ(client.server.exitStatus(), 0);
}

TEST(Server, EndsWithOneWithoutShutdown) {
    LspClient client;
    EXPECT_EQ(client.server.statusAtEnd(), 1);
    client.notify("exit", nullptr);
    EXPECT_EQ(client.server.exitStatus(), 1);
}

TEST(Server, AnswersUnknownRequestsAndPassesOverUnknownNotifications) {
    LspClient client;
    EXPECT_EQ(client.requestError("textDocument/nonsense", Json::object()), -32601);
    EXPECT_EQ(client.requestError("$/nonsense", Json::object()), -32601);
    client.notify("workspace/nonsense", Json::object());
    client.notify("$/setTrace", {{"value", "off"}});
    EXPECT_TRUE(client.takeMessages().empty());
}

struct BadMessage {
    Frame frame;
    int code;
};

TEST(Server, AnswersWhatIsNoMessageAndGoesOn) {
    LspClient client;
    const BadMessage cases[] = {
        {FrameBody{"{"}, -32700},
        {FrameBody{""}, -32700},
        {FrameBody{"[]"}, -32600},
        {FrameBody{"7"}, -32600},
        {FrameBody{"{}"}, -32600},
        {FrameBody{R"({"method":7})"}, -32600},
        {FrameFault{"a header is broken"}, -32700},
    };
    for (const auto& row : cases) {
        client.server.receive(row.frame);
        client.run();
        const auto messages = client.takeMessages();
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_EQ(messages[0]["error"]["code"], row.code);
        EXPECT_TRUE(messages[0]["id"].is_null());
    }
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
}

TEST(Server, AnAnswerOfTheClientIsNoMessage) {
    LspClient client;
    client.server.receive(FrameBody{R"({"jsonrpc":"2.0","id":1,"result":null})"});
    client.run();
    EXPECT_TRUE(client.takeMessages().empty());
}

TEST(Server, ARequestInTheQueueCanBeTakenBack) {
    LspClient client;
    client.open("file:///a.mq", "$a\n");
    client.takeMessages();
    client.queue(
        {{"id", 41}, {"method", "textDocument/diagnostic"}, {"params", client.document("file:///a.mq")}});
    client.queue(
        {{"id", 42}, {"method", "textDocument/diagnostic"}, {"params", client.document("file:///a.mq")}});
    client.queue({{"method", "$/cancelRequest"}, {"params", {{"id", 41}}}});
    client.run();
    const auto messages = client.takeMessages();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0]["error"]["code"], -32800);
    EXPECT_TRUE(messages[1].contains("result"));
}

TEST(Server, ARequestForATextThatHasChangedMeanwhileIsRefused) {
    LspClient client;
    client.open("file:///a.mq", "$a\n");
    client.takeMessages();
    client.queue(
        {{"id", 41}, {"method", "textDocument/diagnostic"}, {"params", client.document("file:///a.mq")}});
    client.queue({{"method", "textDocument/didChange"},
                  {"params",
                   {{"textDocument", {{"uri", "file:///a.mq"}, {"version", 2}}},
                    {"contentChanges", {{{"text", "$b\n"}}}}}}});
    client.run();
    EXPECT_EQ(client.takeMessages()[0]["error"]["code"], -32801);
    Json old = client.document("file:///a.mq");
    old["textDocument"]["version"] = 1;
    EXPECT_EQ(client.requestError("textDocument/diagnostic", old), -32801);
    EXPECT_EQ(client.requestError("textDocument/diagnostic", client.document("file:///none.mq")), -32602);
}

TEST(Server, WaitsForAPauseOfTyping) {
    LspClient client;
    client.open("file:///a.mq", "$a\n");
    EXPECT_EQ(client.server.pause(client.now), milliseconds(0));
    client.idle();
    EXPECT_EQ(client.server.pause(client.now), std::nullopt);
    client.change("file:///a.mq", "$b\n");
    EXPECT_EQ(client.server.pause(client.now), milliseconds(150));
    client.now += milliseconds(100);
    client.change("file:///a.mq", "$c\n");
    client.takeMessages();
    client.now += milliseconds(149);
    client.idle();
    EXPECT_TRUE(client.takeMessages().empty());
    client.now += milliseconds(1);
    client.idle();
    EXPECT_EQ(client.takeMessages().size(), 1U);
}

TEST(Server, RestsBeforeInitializeAndAfterShutdown) {
    LspClient before(LspClient::notInitialized);
    EXPECT_EQ(before.server.pause(before.now), std::nullopt);
    LspClient client;
    client.open("untitled:1", "$a\n");
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
    EXPECT_EQ(client.server.pause(client.now), std::nullopt);
}

TEST(Server, ABadNotificationIsLoggedAndCostsNothing) {
    LspClient client;
    client.notify("textDocument/didChange", {{"textDocument", 7}});
    const auto messages = client.takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0]["method"], "window/logMessage");
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
}

/// The values "0, 1, ..., 999".
std::string thousandValues() {
    std::string list = "0";
    for (int i = 1; i < 1000; ++i) {
        list += ", " + std::to_string(i);
    }
    return list;
}

std::string repeated(std::string_view text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

TEST(Server, AnswersEveryRequestAboutAnyText) {
    const std::string values = thousandValues();
    const std::string texts[] = {
        "$a\n  %source " + std::string(1'000'000, 'x') + "\n",
        std::string(1'000'000, '['),
        "$a\n  %when " + std::string(100'000, '('),
        "@derive d\n  let g = " + std::string(100'000, '-') + "1\n@end\n",
        repeated("$a\n  %source b\n  %keywords hf\n", 2'000), // as many faults as tasks
        repeated("$a\n  %program xtb\n  %keywords hf\n", 2'000),
        "$b\n" + repeated("$[a]\n  %source b\n", 2'000),
        repeated("&INCLUDE x.mq\n", 1'000),
        "matrix:\n  a: " + values + "\n  b: " + values + "\n  c: " + values +
            "\n$t_[a]_[b]_[c]\n  %keywords hf\n",
        "$\0\x01\n  %source \x7f\r\r\n  %when {{ \xf0\x9f\x98\x80.x }} = \t\n"s,
    };
    for (const auto& text : texts) {
        LspClient client;
        client.open(unsavedUri, text);
        client.idle();
        for (const auto& row : requestTable()) {
            Json params = LspClient::at(unsavedUri, 1, 12);
            params["positions"] = Json::array({params["position"]});
            params["range"] = {{"start", {{"line", 0}, {"character", 0}}},
                               {"end", {{"line", 9}, {"character", 0}}}};
            params["context"] = {{"includeDeclaration", true}, {"diagnostics", Json::array()}};
            params["newName"] = "other";
            params["previousResultId"] = "1";
            params["query"] = "a";
            const Json answer = client.ask(row.method, std::move(params));
            EXPECT_TRUE(answer.contains("result") || answer["error"]["code"] != -32603)
                << row.method << ": " << answer.dump().substr(0, 300) << "\n"
                << text.substr(0, 40);
        }
    }
}

} // namespace
