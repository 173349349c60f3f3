#include "lsp/hints.h"

#include "fixtures/lsp_client.h"

namespace {

using namespace morquill::lsp;

Json wholeText() {
    Json params = LspClient::document(unsavedUri);
    params["range"] = {{"start", {{"line", 0}, {"character", 0}}}, {"end", {{"line", 99}, {"character", 0}}}};
    return params;
}

TEST(Hints, CountVariants) {
    LspClient client;
    client.open(unsavedUri, "matrix:\n  f: a, b\n  g: c, d\n$opt # [f]\n  %keywords [f]\n");
    const Json hints = client.request("textDocument/inlayHint", wholeText());
    ASSERT_EQ(hints.size(), 1U);
    EXPECT_EQ(hints[0]["label"], "4 variants");
    EXPECT_EQ(hints[0]["position"], positionJson({3, 10}));
    client.change(unsavedUri, "$opt\n");
    EXPECT_TRUE(client.request("textDocument/inlayHint", wholeText()).empty());
}

TEST(Hints, SayWhoUsesATask) {
    LspClient client;
    client.open(unsavedUri,
                "$a\n$b\n  %source a\n  %when completed a\n@derive d\n  let g = energy(a)\n  emit g\n@end\n");
    const Json lenses = client.request("textDocument/codeLens", LspClient::document(unsavedUri));
    ASSERT_EQ(lenses.size(), 1U);
    EXPECT_EQ(lenses[0]["command"]["title"], "used by b, d");
    EXPECT_EQ(LspClient::rangeText(lenses[0]["range"]), "0:1-0:2");
}

TEST(Hints, NameAFewUsers) {
    std::string text = "$a\n";
    for (int i = 0; i < 8; ++i) {
        text += "$b" + std::to_string(i) + "\n  %source a\n";
    }
    LspClient client;
    client.open(unsavedUri, text);
    EXPECT_EQ(client.request("textDocument/codeLens", LspClient::document(unsavedUri))[0]["command"]["title"],
              "used by b0, b1, b2, b3, b4 and 3 more");
}

} // namespace
