#include "lsp/semantic_tokens.h"

#include "fixtures/lsp_client.h"

namespace {

using namespace morquill::lsp;

/// The tokens as "<line>:<character>+<length> <type>[=]", one after the other.
std::string printTokens(const Json& data) {
    const auto types = Json::parse(semanticTokensOptions)["legend"]["tokenTypes"];
    std::string printed;
    std::size_t line = 0;
    std::size_t character = 0;
    for (std::size_t i = 0; i + 4 < data.size(); i += 5) {
        const auto down = data[i].get<std::size_t>();
        line += down;
        character = data[i + 1].get<std::size_t>() + (down == 0 ? character : 0);
        printed += std::to_string(line) + ":" + std::to_string(character) + "+" + data[i + 2].dump() + " " +
                   types[data[i + 3].get<std::size_t>()].get<std::string>() + (data[i + 4] == 1 ? "= " : " ");
    }
    return printed;
}

TEST(SemanticTokens, SayWhatNamesAre) {
    LspClient client;
    client.open(unsavedUri, "$a_[x] # c\n"
                            "  %source b\n"
                            "  %keywords \"h [x]\"\n");
    const Json answer = client.request("textDocument/semanticTokens/full", LspClient::document(unsavedUri));
    EXPECT_EQ(printTokens(answer["data"]), "0:1+3 class= 0:4+1 variable 0:5+1 class= 0:7+3 comment "
                                           "1:3+6 keyword 1:10+1 class "
                                           "2:3+8 keyword 2:12+4 string 2:16+1 variable 2:17+2 string ");
}

TEST(SemanticTokens, CountInTheUnitOfTheClient) {
    LspClient client;
    client.open(unsavedUri, "$\xf0\x9d\x84\x9e # c\n");
    const Json answer = client.request("textDocument/semanticTokens/full", LspClient::document(unsavedUri));
    EXPECT_EQ(printTokens(answer["data"]), "0:1+2 class= 0:4+3 comment ");
}

TEST(SemanticTokens, ADeltaLeadsToTheNewTokens) {
    LspClient client;
    client.open(unsavedUri, "$a\n  %source b\n$c\n");
    const Json full = client.request("textDocument/semanticTokens/full", LspClient::document(unsavedUri));
    client.change(unsavedUri, "$a\n  %source b\n  %program orca\n$c\n");
    Json params = LspClient::document(unsavedUri);
    params["previousResultId"] = full["resultId"];
    const Json delta = client.request("textDocument/semanticTokens/full/delta", params);
    ASSERT_EQ(delta["edits"].size(), 1U);
    std::vector<int> data = full["data"];
    const Json& edit = delta["edits"][0];
    const std::vector<int> inserted = edit["data"];
    const auto at = data.begin() + edit["start"].get<int>();
    data.insert(data.erase(at, at + edit["deleteCount"].get<int>()), inserted.begin(), inserted.end());
    const Json now = client.request("textDocument/semanticTokens/full", LspClient::document(unsavedUri));
    EXPECT_EQ(data, now["data"].get<std::vector<int>>());
    // An answer that is gone cannot be built upon.
    EXPECT_TRUE(client.request("textDocument/semanticTokens/full/delta", params).contains("data"));
}

TEST(SemanticTokens, OfARange) {
    LspClient client;
    client.open(unsavedUri, "$a\n$b\n$c\n");
    Json params = LspClient::document(unsavedUri);
    params["range"] = {{"start", {{"line", 1}, {"character", 0}}}, {"end", {{"line", 2}, {"character", 0}}}};
    EXPECT_EQ(printTokens(client.request("textDocument/semanticTokens/range", params)["data"]),
              "1:1+1 class= ");
}

} // namespace
