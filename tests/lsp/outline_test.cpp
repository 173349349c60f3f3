#include "lsp/outline.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

const std::string outlineText = "dsl_version: 2\n" // 0
                                "define:\n"        // 1
                                "  x: 1\n"         // 2
                                "matrix:\n"        // 3
                                "  f: a, b\n"      // 4
                                "# one\n"          // 5
                                "# two\n"          // 6
                                "$opt\n"           // 7
                                "  %keywords hf\n" // 8
                                "  %control\n"     // 9
                                "    totcore 4\n"  // 10
                                "\n"               // 11
                                "@derive d\n"      // 12
                                "  let g = 1\n"    // 13
                                "  emit g\n"       // 14
                                "@end\n";          // 15

const Json nested = {{"textDocument", {{"documentSymbol", {{"hierarchicalDocumentSymbolSupport", true}}}}}};

/// The symbols, one a line, indented by depth: name, kind and lines.
std::string printSymbols(const Json& symbols, int depth = 0) {
    std::string printed;
    for (const Json& symbol : symbols) {
        printed += std::string(static_cast<std::size_t>(2 * depth), ' ') + symbol["name"].get<std::string>() +
                   " " + symbol["kind"].dump() + " " + LspClient::rangeText(symbol["range"]) + "\n";
        printed += printSymbols(symbol.value("children", Json::array()), depth + 1);
    }
    return printed;
}

TEST(Outline, ShowsTheBlocks) {
    LspClient client(LspClient::initialized, nested);
    client.open(unsavedUri, outlineText);
    EXPECT_EQ(printSymbols(client.request("textDocument/documentSymbol", LspClient::document(unsavedUri))),
              "prelude 2 0:0-4:9\n"
              "  dsl_version 13 0:0-0:14\n"
              "  define 3 1:0-2:6\n"
              "    x 14 2:2-2:3\n"
              "  matrix 10 3:0-4:9\n"
              "    f 10 4:2-4:3\n"
              "opt 5 7:0-10:13\n"
              "  %keywords 7 8:0-8:14\n"
              "  %control 7 9:0-10:13\n"
              "d 12 12:0-15:4\n"
              "  g 13 13:6-13:7\n");
}

TEST(Outline, IsFlatForClientsThatTakeNoTree) {
    LspClient client;
    client.open(unsavedUri, "$a\n  %keywords hf\n");
    const Json symbols = client.request("textDocument/documentSymbol", LspClient::document(unsavedUri));
    ASSERT_EQ(symbols.size(), 2U);
    EXPECT_EQ(symbols[1]["name"], "%keywords");
    EXPECT_EQ(symbols[1]["containerName"], "a");
    EXPECT_EQ(symbols[1]["location"]["uri"], unsavedUri);
}

TEST(Outline, FoldsBlocksAndComments) {
    LspClient client;
    client.open(unsavedUri, outlineText);
    std::string printed;
    for (const Json& range : client.request("textDocument/foldingRange", LspClient::document(unsavedUri))) {
        printed += range["startLine"].dump() + "-" + range["endLine"].dump() + range.value("kind", "") + " ";
    }
    EXPECT_EQ(printed, "1-2 3-4 7-10 9-10 12-15 5-6comment ");
}

TEST(Outline, ASelectionGrowsBlockByBlock) {
    LspClient client;
    client.open(unsavedUri, outlineText);
    Json params = LspClient::document(unsavedUri);
    params["positions"] = {{{"line", 10}, {"character", 5}}};
    const Json answer = client.request("textDocument/selectionRange", params);
    std::string printed;
    for (const Json* selection = &answer[0]; selection != nullptr;
         selection = selection->contains("parent") ? &(*selection)["parent"] : nullptr) {
        printed += LspClient::rangeText((*selection)["range"]) + " ";
    }
    EXPECT_EQ(printed, "10:4-10:11 10:4-10:13 9:0-10:13 7:0-10:13 0:0-16:0 ");
}

TEST(Outline, LinksFilesThatAreThere) {
    const TemporaryDirectory directory;
    directory.write("b c.mq", "$b\n");
    directory.write("x.xyz", "1\n");
    const auto file = uriOfPath(directory.path("a.mq"));
    LspClient client;
    client.open(file, "$a\n  %source xyz=x.xyz\n&INCLUDE \"b c.mq\"\n&INCLUDE gone.mq\n");
    const Json links = client.request("textDocument/documentLink", LspClient::document(file));
    ASSERT_EQ(links.size(), 2U);
    EXPECT_EQ(LspClient::rangeText(links[0]["range"]), "1:14-1:19");
    EXPECT_EQ(links[0]["target"], uriOfPath(directory.path("x.xyz")));
    EXPECT_EQ(LspClient::rangeText(links[1]["range"]), "2:10-2:16");
    EXPECT_EQ(links[1]["target"], uriOfPath(directory.path("b c.mq")));
}

TEST(Outline, StandsManyLoops) {
    std::string loops;
    for (int i = 0; i < 100000; ++i) {
        loops += "@foreach a\n";
    }
    LspClient client(LspClient::initialized, nested);
    client.open(unsavedUri, loops);
    EXPECT_FALSE(client.request("textDocument/documentSymbol", LspClient::document(unsavedUri)).empty());
}

} // namespace
