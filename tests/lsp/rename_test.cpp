#include "lsp/rename.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

/// The text with the name at a place changed, or "! " and why it is not.
std::string renamed(const std::string& text, int line, int character, const std::string& name) {
    LspClient client;
    client.open(unsavedUri, text);
    Json params = LspClient::at(unsavedUri, line, character);
    params["newName"] = name;
    const Json answer = client.ask("textDocument/rename", params);
    if (answer.contains("error")) {
        return "! " + answer["error"]["message"].get<std::string>();
    }
    std::string made = text;
    const TextBuffer buffer(text);
    const Json& edits = answer["result"]["changes"][unsavedUri];
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        const auto range = readRange((*edit)["range"], buffer, PositionUnit::utf16);
        made.replace(range->begin, range->size(), (*edit)["newText"].get<std::string>());
    }
    return made;
}

TEST(Rename, ChangesTheTaskAndNothingElse) {
    EXPECT_EQ(renamed("$opt\n"
                      "  %keywords \"opt\"\n"
                      "$freq # opt\n"
                      "  %source opt\n"
                      "  %control\n"
                      "    guess opt\n"
                      "  %when completed opt and {{ opt.opt }} < 0\n"
                      "@plot barrier opt\n"
                      "  point opt value energy(opt)\n"
                      "@end\n"
                      "@plot frontier f\n"
                      "  column opt label \"opt\"\n"
                      "@end\n",
                      3, 10, "min"),
              "$min\n"
              "  %keywords \"opt\"\n"
              "$freq # opt\n"
              "  %source min\n"
              "  %control\n"
              "    guess min\n"
              "  %when completed min and {{ min.opt }} < 0\n"
              "@plot barrier opt\n"
              "  point opt value energy(min)\n"
              "@end\n"
              "@plot frontier f\n"
              "  column opt task \"min\" label \"opt\"\n"
              "@end\n");
}

TEST(Rename, ChangesAxesDefinesFormulasAndLets) {
    EXPECT_EQ(renamed("matrix:\n  - f: a, b\n  - g: c, d\n    map: f\n$t_[f]_[g]\n", 1, 4, "functional"),
              "matrix:\n  - functional: a, b\n  - g: c, d\n    map: functional\n$t_[functional]_[g]\n");
    EXPECT_EQ(renamed("define:\n  x: 1\n$t\n  %keywords [x]\n  %body << EOF\n[x]\nEOF\n", 3, 13, "y"),
              "define:\n  y: 1\n$t\n  %keywords [y]\n  %body << EOF\n[y]\nEOF\n");
    const std::string derive = "@derive d\n  let g = 1\n  formula f(x) = 2 * x\n  emit g = f(g)\n@end\n";
    EXPECT_EQ(renamed(derive, 1, 6, "h"),
              "@derive d\n  let h = 1\n  formula f(x) = 2 * x\n  emit g = f(h)\n@end\n");
    EXPECT_EQ(renamed(derive, 3, 11, "twice"),
              "@derive d\n  let g = 1\n  formula twice(x) = 2 * x\n  emit g = twice(g)\n@end\n");
}

TEST(Rename, RefusesWhatWouldNotHold) {
    const std::string text = "$a\n$b\n  %source a\n  %program orca\n";
    EXPECT_EQ(renamed(text, 0, 1, "b"), "! there is a task called 'b' already");
    EXPECT_EQ(renamed(text, 0, 1, " "), "! a name cannot be empty");
    EXPECT_EQ(renamed(text, 0, 1, "c # d"), "! 'c # d' would not be read as the name of this task");
    EXPECT_EQ(renamed(text, 0, 1, "c\n$d"), "! 'c\n$d' would not be read as the name of this task");
    EXPECT_EQ(renamed(text, 0, 1, "origin"), "! 'origin' would not be read as the name of this task");
    EXPECT_EQ(renamed(text, 3, 12, "xtb"), "! nothing here can be renamed");
    EXPECT_EQ(renamed("$a\n  %source gone\n", 1, 11, "x"), "! no task is called 'gone'");
    EXPECT_EQ(renamed("define:\n  x: 1\n$a_[x]\n", 1, 2, "y z"),
              "! 'y z' would not be read as the name of this define or axis");
}

TEST(Rename, IsPrepared) {
    LspClient client;
    client.open(unsavedUri, "$opt\n  %source opt\n");
    const Json answer = client.request("textDocument/prepareRename", LspClient::at(unsavedUri, 1, 12));
    EXPECT_EQ(answer["placeholder"], "opt");
    EXPECT_EQ(LspClient::rangeText(answer["range"]), "1:10-1:13");
    EXPECT_EQ(client.requestError("textDocument/prepareRename", LspClient::at(unsavedUri, 1, 4)), -32803);
}

TEST(Rename, ReachesEveryFileOfTheDocument) {
    const TemporaryDirectory directory;
    directory.write("l.mqlib", "&FRAGMENT task_body opt(m)\n  %keywords [m]\n");
    const auto file = uriOfPath(directory.path("a.mq"));
    LspClient client;
    client.open(file, "&INCLUDE \"l.mqlib\" as l\n$a\n  &INCLUDE l.opt(m=hf)\n");
    Json params = LspClient::at(file, 2, 18);
    params["newName"] = "method";
    const Json changes = client.request("textDocument/rename", params)["changes"];
    EXPECT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[uriOfPath(directory.path("l.mqlib"))].size(), 2U);
    EXPECT_EQ(LspClient::rangeText(changes[file][0]["range"]), "2:17-2:18");
}

} // namespace
