#include "lsp/diagnostics.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;
using Lines = std::vector<std::string>;

TEST(Diagnostics, AreLintsAndTheParsersWarnings) {
    LspClient client;
    client.open("file:///nowhere/a.mq", "$opt\n"
                                        "  %source gone\n"
                                        "  %keywords \"b3lyp\"\n"
                                        "  %control\n"
                                        "    totgpu 1\n");
    EXPECT_EQ(
        client.takeDiagnostics("file:///nowhere/a.mq"),
        (Lines{"4:4-4:10 W legacy-control-gpu-alias: %control totgpu is legacy; use gpus",
               "1:10-1:14 E missing-source-task: source task does not exist: gone",
               "0:0-0:4 W parser-warning: task 'opt' uses legacy %control totgpu; use %control gpus."}));
}

TEST(Diagnostics, AreClearedOnClose) {
    LspClient client;
    client.open("file:///nowhere/a.mq", "$opt\n");
    EXPECT_EQ(client.takeDiagnostics("file:///nowhere/a.mq"),
              (Lines{"0:0-0:4 E missing-keywords: keywords are not set"}));
    client.notify("textDocument/didClose", LspClient::document("file:///nowhere/a.mq"));
    const auto messages = client.takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_TRUE(messages[0]["params"]["diagnostics"].empty());
}

TEST(Diagnostics, FollowTheText) {
    LspClient client;
    client.open("untitled:1", "$opt\n");
    EXPECT_EQ(client.takeDiagnostics("untitled:1").size(), 1U);
    client.change("untitled:1", "$opt\n  %keywords \"hf\"\n");
    client.now += typingPause;
    client.idle();
    const auto messages = client.takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0]["params"]["version"], 2);
    EXPECT_TRUE(messages[0]["params"]["diagnostics"].empty());
}

TEST(Diagnostics, ATextIsReadOncePerVersion) {
    LspClient client;
    client.open("untitled:1", "$opt\n");
    client.idle();
    (void)client.request("textDocument/diagnostic", LspClient::document("untitled:1"));
    client.notify("textDocument/didSave", LspClient::document("untitled:1"));
    client.idle();
    EXPECT_EQ(client.server.session().analyses.count(), 1U);
}

TEST(Diagnostics, ArePulledWhereTheClientAsks) {
    LspClient client(LspClient::initialized, {{"textDocument", {{"diagnostic", Json::object()}}}});
    client.open("untitled:1", "$opt\n");
    client.idle();
    EXPECT_TRUE(client.takeMessages().empty());
    const Json answer = client.request("textDocument/diagnostic", LspClient::document("untitled:1"));
    EXPECT_EQ(answer["kind"], "full");
    EXPECT_EQ(LspClient::diagnosticLines(answer["items"]),
              (Lines{"0:0-0:4 E missing-keywords: keywords are not set"}));
}

TEST(Diagnostics, AFaultOfAnIncludeIsShownInBothFiles) {
    const TemporaryDirectory directory;
    directory.write("inner.mq", "$a\n  %keywords hf\n  %nonsense x\n");
    const auto outer = uriOfPath(directory.path("outer.mq"));
    const auto inner = uriOfPath(directory.path("inner.mq"));
    LspClient client;
    client.open(outer, "$b\n  %keywords hf\n&INCLUDE \"inner.mq\"\n");
    client.idle();
    std::map<std::string, Lines> shown;
    for (const Json& message : client.takeMessages()) {
        shown[message["params"]["uri"]] = LspClient::diagnosticLines(message["params"]["diagnostics"]);
    }
    EXPECT_EQ(shown[inner],
              (Lines{"2:2-2:13 E parse-error: task 'a' contains unknown directive '%nonsense'"}));
    EXPECT_EQ(shown[outer], (Lines{"2:0-2:19 E parse-error: in " + directory.path("inner.mq") +
                                   ": task 'a' contains unknown directive '%nonsense'"}));
    // The unsaved text of the other file counts, and the fault goes away in both.
    client.open(inner, "$a\n  %keywords hf\n");
    client.idle();
    shown.clear();
    for (const Json& message : client.takeMessages()) {
        shown[message["params"]["uri"]] = LspClient::diagnosticLines(message["params"]["diagnostics"]);
    }
    EXPECT_EQ(shown, (std::map<std::string, Lines>{{inner, {}}, {outer, {}}}));
}

TEST(Diagnostics, ALibraryIsReadAsALibrary) {
    LspClient client;
    client.open("file:///nowhere/a.mqlib", "&FRAGMENT task_body opt(method)\n  %keywords [method]\n");
    EXPECT_EQ(client.takeDiagnostics("file:///nowhere/a.mqlib"), Lines{});
    client.change("file:///nowhere/a.mqlib", "&FRAGMENT control c\n  %keywords hf\n");
    client.now += typingPause;
    EXPECT_EQ(client.takeDiagnostics("file:///nowhere/a.mqlib"),
              (Lines{"1:2-1:14 E parse-error: task directive '%keywords' is not valid inside a control "
                     "fragment"}));
}

TEST(Diagnostics, CountInTheUnitOfTheClient) {
    const std::string text = "$\xf0\x9d\x84\x9e\n"; // G clef: two units of UTF-16, four bytes
    LspClient client;
    client.open("untitled:1", text);
    EXPECT_EQ(client.takeDiagnostics("untitled:1")[0].substr(0, 7), "0:0-0:3");
    LspClient bytes(LspClient::initialized, {{"general", {{"positionEncodings", {"utf-8"}}}}});
    bytes.open("untitled:1", text);
    EXPECT_EQ(bytes.takeDiagnostics("untitled:1")[0].substr(0, 7), "0:0-0:5");
}

TEST(Diagnostics, AnyBytesAreAnswered) {
    LspClient client;
    client.open("untitled:1", std::string(1000000, 'x'));
    client.idle();
    client.change("untitled:1", "$a [x\n" + std::string(100000, '('));
    client.now += typingPause;
    client.idle();
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
}

} // namespace
