#include "lsp/text_notifications.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

TEST(TextNotifications, KeepTheTextsOfTheClient) {
    LspClient client;
    client.open("untitled:1", "ab\n");
    const Json range = {{"start", {{"line", 0}, {"character", 1}}}, {"end", {{"line", 0}, {"character", 2}}}};
    client.notify("textDocument/didChange", {{"textDocument", {{"uri", "untitled:1"}, {"version", 7}}},
                                             {"contentChanges", {{{"range", range}, {"text", "x"}}}}});
    const OpenText* text = client.server.session().texts.find("untitled:1");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->buffer.text(), "ax\n");
    EXPECT_EQ(text->version, 7);
    client.notify("textDocument/didClose", LspClient::document("untitled:1"));
    EXPECT_EQ(client.server.session().texts.find("untitled:1"), nullptr);
}

TEST(TextNotifications, AFileThatChangesOnTheDiskIsReadAnew) {
    const TemporaryDirectory directory;
    const auto uri = uriOfPath(directory.path("a.mq"));
    LspClient client;
    client.open(uri, "$a\n  %source b\n  %keywords hf\n&INCLUDE b.mq\n");
    EXPECT_EQ(client.takeDiagnostics(uri).size(), 2U); // no task b, no file b.mq
    directory.write("b.mq", "$b\n  %keywords hf\n");
    client.notify("workspace/didChangeWatchedFiles",
                  {{"changes", {{{"uri", uriOfPath(directory.path("b.mq"))}, {"type", 1}}}}});
    client.idle();
    const auto messages = client.takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_TRUE(messages[0]["params"]["diagnostics"].empty());
}

TEST(TextNotifications, WhatIsNoTextCostsNothing) {
    LspClient client;
    client.notify("textDocument/didOpen", Json::object());
    client.notify("textDocument/didSave", LspClient::document("untitled:1"));
    client.notify("textDocument/didClose", LspClient::document("untitled:1"));
    client.notify("workspace/didChangeWatchedFiles", {{"changes", {7, {{"uri", "x:y"}}}}});
    client.notify("workspace/didChangeWatchedFiles", nullptr);
    EXPECT_EQ(client.takeMessages().size(), 1U); // the log line of the first
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
}

} // namespace
