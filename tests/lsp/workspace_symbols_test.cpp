#include "lsp/workspace_symbols.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

/// Lets the server look at its folders until it rests.
void rest(LspClient& client) {
    while (client.server.pause(client.now) == std::chrono::milliseconds(0)) {
        client.idle();
    }
}

struct WorkspaceSymbols : testing::Test {
    void begin(LspClient& client, Json params) {
        params["capabilities"] = {
            {"workspace", {{"didChangeWatchedFiles", {{"dynamicRegistration", true}}}}}};
        (void)client.request("initialize", params);
        client.notify("initialized", Json::object());
    }
    std::string names(LspClient& client, const std::string& query) {
        std::string found;
        for (const Json& symbol : client.request("workspace/symbol", {{"query", query}})) {
            found += symbol["name"].get<std::string>() + " ";
        }
        return found;
    }

    TemporaryDirectory directory;
};

TEST_F(WorkspaceSymbols, AreTheNamesOfAllFiles) {
    directory.write("a.mq", "$opt\n$freq\n");
    directory.write("sub/b.mq", "$opt_b\n");
    LspClient client(LspClient::notInitialized);
    begin(client, {{"rootUri", uriOfPath(directory.root())}});
    // Before the folder is known the server answers, too.
    EXPECT_EQ(names(client, ""), "");
    rest(client);
    EXPECT_EQ(names(client, "OPT"), "opt opt_b ");
    const Json symbol = client.request("workspace/symbol", {{"query", "freq"}})[0];
    EXPECT_EQ(symbol["location"]["uri"], uriOfPath(directory.path("a.mq")));
    EXPECT_EQ(LspClient::rangeText(symbol["location"]["range"]), "1:1-1:5");
}

TEST_F(WorkspaceSymbols, FollowTheDiskAndTheFolders) {
    directory.write("one/a.mq", "$opt\n");
    directory.write("two/b.mq", "$other\n");
    LspClient client(LspClient::notInitialized);
    begin(client, {{"workspaceFolders", {{{"uri", uriOfPath(directory.path("one"))}, {"name", "one"}}}}});
    const auto messages = client.takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0]["method"], "client/registerCapability");
    rest(client);
    directory.write("one/c.mq", "$optimum\n");
    client.notify("workspace/didChangeWatchedFiles",
                  {{"changes", {{{"uri", uriOfPath(directory.path("one/c.mq"))}, {"type", 1}}}}});
    EXPECT_EQ(names(client, "opt"), "opt optimum ");
    client.notify("workspace/didChangeWorkspaceFolders",
                  {{"event",
                    {{"added", {{{"uri", uriOfPath(directory.path("two"))}, {"name", "two"}}}},
                     {"removed", {{{"uri", uriOfPath(directory.path("one"))}, {"name", "one"}}}}}}});
    rest(client);
    EXPECT_EQ(names(client, ""), "other ");
}

TEST_F(WorkspaceSymbols, NeedNoFolder) {
    LspClient client;
    EXPECT_EQ(names(client, ""), "");
    client.notify("workspace/didChangeWorkspaceFolders", {{"event", 7}});
    EXPECT_TRUE(client.request("shutdown", nullptr).is_null());
}

} // namespace
