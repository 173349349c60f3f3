#include "lsp/navigation.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

const std::string studyText = "$opt\n"
                              "  %keywords \"opt\"\n"
                              "$freq\n"
                              "  %source opt\n";

std::string printPlaces(const Json& list) {
    std::string printed;
    for (const Json& entry : list) {
        printed += LspClient::rangeText(entry["range"]);
        printed += entry.contains("kind") ? "(" + entry["kind"].dump() + ") " : " ";
    }
    return printed;
}

TEST(Navigation, GoesToTheDefinition) {
    LspClient client;
    client.open(unsavedUri, studyText);
    EXPECT_EQ(printPlaces(client.request("textDocument/definition", LspClient::at(unsavedUri, 3, 11))),
              "0:1-0:4 ");
    EXPECT_EQ(printPlaces(client.request("textDocument/definition", LspClient::at(unsavedUri, 3, 13))),
              "0:1-0:4 ");
    EXPECT_TRUE(client.request("textDocument/definition", LspClient::at(unsavedUri, 1, 13)).is_null());
    EXPECT_TRUE(client.request("textDocument/definition", LspClient::at(unsavedUri, 3, 5)).is_null());
    EXPECT_TRUE(client.request("textDocument/definition", LspClient::at(unsavedUri, 99, 0)).is_null());
    EXPECT_EQ(client.requestError("textDocument/definition", LspClient::document(unsavedUri)), -32602);
}

TEST(Navigation, FindsReferencesWithAndWithoutTheDefinition) {
    LspClient client;
    client.open(unsavedUri, studyText);
    Json params = LspClient::at(unsavedUri, 0, 2);
    EXPECT_EQ(printPlaces(client.request("textDocument/references", params)), "3:10-3:13 ");
    params["context"] = {{"includeDeclaration", true}};
    EXPECT_EQ(printPlaces(client.request("textDocument/references", params)), "0:1-0:4 3:10-3:13 ");
}

TEST(Navigation, HighlightsWritesAndReads) {
    LspClient client;
    client.open(unsavedUri, studyText);
    EXPECT_EQ(printPlaces(client.request("textDocument/documentHighlight", LspClient::at(unsavedUri, 3, 10))),
              "0:1-0:4(3) 3:10-3:13(2) ");
}

TEST(Navigation, GoesToAFile) {
    const TemporaryDirectory directory;
    directory.write("l.mqlib", "&FRAGMENT task_body opt\n");
    const auto file = uriOfPath(directory.path("a.mq"));
    const auto library = uriOfPath(directory.path("l.mqlib"));
    LspClient client;
    client.open(file, "&INCLUDE \"l.mqlib\" as l\n$a\n  &INCLUDE l.opt\n");
    const Json start = client.request("textDocument/definition", LspClient::at(file, 0, 12));
    EXPECT_EQ(start["uri"], library);
    EXPECT_EQ(LspClient::rangeText(start["range"]), "0:0-0:0");
    const Json fragment = client.request("textDocument/definition", LspClient::at(file, 2, 14));
    EXPECT_EQ(fragment[0]["uri"], library);
    EXPECT_EQ(LspClient::rangeText(fragment[0]["range"]), "0:20-0:23");
}

} // namespace
