#include "lsp/formatting.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;

/// The text after the edits of an answer, which are in ascending order.
std::string edited(std::string text, const Json& edits) {
    const TextBuffer buffer(text);
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        const auto range = readRange((*edit)["range"], buffer, PositionUnit::utf16);
        text.replace(range->begin, range->size(), (*edit)["newText"].get<std::string>());
    }
    return text;
}

std::string formatted(const std::string& text) {
    LspClient client;
    client.open(unsavedUri, text);
    const Json answer = client.ask("textDocument/formatting", LspClient::document(unsavedUri));
    return answer.contains("error") ? "! " + answer["error"]["message"].get<std::string>()
                                    : edited(text, answer["result"]);
}

std::string aligned(const std::string& text, int first, int last) {
    LspClient client;
    client.open(unsavedUri, text);
    Json params = LspClient::document(unsavedUri);
    params["range"] = {{"start", {{"line", first}, {"character", 0}}},
                       {"end", {{"line", last}, {"character", 0}}}};
    return edited(text, client.request("textDocument/rangeFormatting", params));
}

TEST(Formatting, WritesTheCanonicalText) {
    EXPECT_EQ(formatted("$a\n%keywords hf\n$b\n%source a\n%keywords   'b3lyp opt'\n"),
              "dsl_version: 2\n\n$a\n  %source origin\n  %keywords hf\n\n$b\n  %source a\n  %keywords "
              "\"b3lyp opt\"\n");
}

TEST(Formatting, LeavesACanonicalTextAlone) {
    LspClient client;
    client.open(unsavedUri, "dsl_version: 2\n\n$a\n  %source origin\n  %keywords hf\n");
    EXPECT_TRUE(client.request("textDocument/formatting", LspClient::document(unsavedUri)).empty());
}

TEST(Formatting, RefusesWhatItWouldDrop) {
    EXPECT_EQ(formatted("# why\n$a\n"), "! formatting would lose: comments");
    EXPECT_EQ(formatted("c: [1, 2]\n@foreach c\n$a_[c.value]\n@end\n"),
              "! formatting would lose: @foreach loops, collections");
    EXPECT_EQ(formatted("$a\n&INCLUDE gone.mq\n"), "! formatting would lose: includes");
    EXPECT_EQ(formatted("$a\n  %control\n    alert false\n"),
              "! formatting would lose: task 'a' does not read back: it is written without alert false");
}

TEST(Formatting, RefusesATextWithAFault) {
    EXPECT_EQ(formatted("$a\n  %nonsense\n"), "! task 'a' contains unknown directive '%nonsense'");
    EXPECT_EQ(formatted("dsl_version: 1\n$a\n$b\n$c\n  %source a,b\n").substr(0, 23),
              "! task 'c' uses removed");
}

TEST(Formatting, OfARangeMovesBlanksAlone) {
    const std::string text =
        "$a\n      %keywords hf\n%control # c\n  totcore 4\n        guess true\n\n\n\n  $b\n";
    EXPECT_EQ(aligned(text, 0, 9),
              "$a\n  %keywords hf\n  %control # c\n    totcore 4\n    guess true\n\n$b\n");
    EXPECT_EQ(aligned(text, 3, 4),
              "$a\n      %keywords hf\n%control # c\n    totcore 4\n        guess true\n\n\n\n  $b\n");
}

TEST(Formatting, OfARangeKeepsBlanksThatCount) {
    const std::string text =
        "define:\n    x: 1\n$a\n  %body << EOF\n\n\n    text\nEOF\n  %extrainput\n        %x\n";
    EXPECT_EQ(aligned(text, 0, 8), text);
}

} // namespace
