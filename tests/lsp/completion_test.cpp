#include "lsp/completion.h"

#include "fixtures/lsp_client.h"
#include "fixtures/temporary_directory.h"

namespace {

using namespace morquill::lsp;
using morquill::TemporaryDirectory;

/// The answer at the place of the `|` in a text.
Json itemsAt(std::string text, const std::string& uri = "untitled:1", Json capabilities = Json::object()) {
    const auto cursor = text.find('|');
    text.erase(cursor, 1);
    LspClient client(LspClient::initialized, std::move(capabilities));
    client.open(uri, text);
    const TextBuffer buffer(text);
    PositionWalk walk(buffer, PositionUnit::utf16);
    const auto at = walk.at(cursor);
    return client.request("textDocument/completion", LspClient::at(uri, static_cast<int>(at.line),
                                                                   static_cast<int>(at.character)))["items"];
}

std::vector<std::string> labels(const Json& items) {
    std::vector<std::string> found;
    for (const Json& item : items) {
        found.push_back(item["label"]);
    }
    return found;
}

using Labels = std::vector<std::string>;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

TEST(Completion, OfDirectivesPutsThoseOfTheProgramFirst) {
    const Json items = itemsAt("$a\n  %program xtb\n  %|\n");
    EXPECT_THAT(labels(items), IsSupersetOf({"source", "args", "keywords", "when"}));
    for (const Json& item : items) {
        const bool other = testing::Matches(testing::AnyOf("keywords", "template", "param", "runner",
                                                           "body"))(item["label"].get<std::string>());
        EXPECT_EQ(item["sortText"].get<std::string>()[0], other ? '1' : '0') << item["label"];
        EXPECT_FALSE(item["documentation"].get<std::string>().empty());
    }
}

TEST(Completion, ReplacesTheWordThatWasBegun) {
    const Json items = itemsAt("$a\n  %key|\n");
    EXPECT_EQ(LspClient::rangeText(items[0]["textEdit"]["range"]), "1:3-1:6");
}

TEST(Completion, OfTasks) {
    const std::string text = "$opt\n$freq-2\n";
    EXPECT_THAT(labels(itemsAt(text + "$x\n  %source |\n")),
                ElementsAre("origin", "restart", "xyz", "opt", "freq-2"));
    EXPECT_THAT(labels(itemsAt(text + "$x\n  %control\n    guess o|\n")),
                ElementsAre("true", "opt", "freq-2", "x"));
    EXPECT_THAT(labels(itemsAt(text + "$x\n  %when completed |\n")),
                ElementsAre("allothers", "opt", "freq-2", "x"));
    EXPECT_THAT(labels(itemsAt(text + "$x\n  %when {{ |\n")), ElementsAre("opt", "freq-2", "x"));
    EXPECT_THAT(labels(itemsAt(text + "@plot barrier b\n  from task |\n@end\n")),
                ElementsAre("opt", "freq-2"));
    EXPECT_THAT(labels(itemsAt(text + "@derive d\n  let g = energy(|\n@end\n")), Contains("opt"));
    EXPECT_THAT(labels(itemsAt(text + "@derive d\n  let g = abs(|\n@end\n")), Not(Contains("opt")));
}

TEST(Completion, OfKeys) {
    EXPECT_THAT(
        labels(itemsAt(
            "ions:\n  - name: cl\ndefine:\n  d: 1\nmatrix:\n  f: a, b\n@foreach ions\n$a_[|\n@end\n")),
        ElementsAre("d", "f", "ions.index", "ions.value", "ions.name"));
    EXPECT_THAT(
        labels(itemsAt("&FRAGMENT task_body opt(m, b=x)\n  %keywords [|\n", "file:///nowhere/l.mqlib")),
        ElementsAre("m", "b"));
}

TEST(Completion, OfWordsByPlace) {
    EXPECT_THAT(labels(itemsAt("$a\n  %program |\n")), IsSupersetOf({"orca", "script"}));
    EXPECT_THAT(labels(itemsAt("$a\n  %control\n    |\n")), IsSupersetOf({"totcore", "guess"}));
    EXPECT_THAT(labels(itemsAt("$a\n  %control\n    verbosity |\n")), ElementsAre("p", "t"));
    EXPECT_THAT(labels(itemsAt("$a\n  %control\n    totcore |\n")), IsEmpty());
    EXPECT_THAT(labels(itemsAt("$a\n  %batch\n    |\n")), ElementsAre("lane", "collect", "cluster"));
    EXPECT_THAT(labels(itemsAt("$a\n  %batch |\n")), IsEmpty());
    EXPECT_THAT(labels(itemsAt("$a\n  %mod |\n")), ElementsAre("charge", "spin", "geom", "basisset"));
    EXPECT_THAT(labels(itemsAt("$a\n  %source\n    |\n")), ElementsAre("geom"));
    EXPECT_THAT(labels(itemsAt("$a\n  %source\n    geom |\n")), ElementsAre("origin", "restart", "xyz"));
    EXPECT_THAT(labels(itemsAt("$a\n  %when |\n")), IsSupersetOf({"completed", "defined"}));
    EXPECT_THAT(labels(itemsAt("@plot |\n")), IsSupersetOf({"barrier", "excited"}));
    EXPECT_THAT(labels(itemsAt("@plot bar b\n  |\n@end\n")), IsSupersetOf({"x", "title", "@end"}));
    EXPECT_THAT(labels(itemsAt("@derive d\n  |\n@end\n")), IsSupersetOf({"let", "from", "emit"}));
    EXPECT_THAT(labels(itemsAt("@derive d\n  let g = 1\n  emit e = |\n@end\n")),
                IsSupersetOf({"g", "convert", "energy"}));
    EXPECT_THAT(labels(itemsAt("@derive d\n  emit e = g unit |\n@end\n")), Contains("kcal/mol"));
    EXPECT_THAT(labels(itemsAt("|\n")), IsEmpty());
}

TEST(Completion, OfIncludes) {
    const TemporaryDirectory directory;
    directory.write("l.mqlib", "&FRAGMENT task_body opt(m, b=x)\n&FRAGMENT control c\n");
    directory.write("sub/x.mq", "$x\n");
    directory.write("notes.txt", "");
    const auto uri = uriOfPath(directory.path("a.mq"));
    const std::string head = "&INCLUDE \"l.mqlib\" as lib\n";
    EXPECT_THAT(labels(itemsAt(head + "&INCLUDE |\n", uri)),
                ElementsAre("lib.opt", "lib.c", "l.mqlib", "sub/"));
    EXPECT_THAT(labels(itemsAt(head + "&INCLUDE sub/|\n", uri)), Contains("sub/x.mq"));
    const Json snippets = {
        {"textDocument", {{"completion", {{"completionItem", {{"snippetSupport", true}}}}}}}};
    EXPECT_EQ(itemsAt(head + "&INCLUDE lib.|\n", uri, snippets)[0]["textEdit"]["newText"],
              "lib.opt(m=${1}, b=${2})");
}

TEST(Completion, OfGeometries) {
    const TemporaryDirectory directory;
    directory.write("mol.xyz", "");
    directory.write("two words.xyz", "");
    directory.write("notes.txt", "");
    directory.write("sub/ts.xyz", "");
    directory.write("two folders/x.xyz", "");
    const auto uri = uriOfPath(directory.path("a.mq"));
    const Json items = itemsAt("$a\n  %source xyz=m|\n", uri);
    EXPECT_THAT(labels(items), testing::UnorderedElementsAre("mol.xyz", "two words.xyz", "sub/"));
    for (const Json& item : items) {
        const bool holdsBlank = item["label"] == "two words.xyz";
        EXPECT_EQ(item["textEdit"]["newText"], holdsBlank ? Json("\"two words.xyz\"") : item["label"]);
        EXPECT_EQ(LspClient::rangeText(item["textEdit"]["range"]), "1:14-1:15");
    }
    EXPECT_THAT(labels(itemsAt("$a\n  %source\n    geom.b xyz=sub/|\n", uri)), ElementsAre("sub/ts.xyz"));
    EXPECT_THAT(labels(itemsAt("$a\n  %source xyz=\"sub/t|\n", uri)), ElementsAre("sub/ts.xyz"));
    EXPECT_THAT(labels(itemsAt("define:\n  d: 1\n$a\n  %source xyz=sub/[d|\n", uri)), ElementsAre("d"));
    EXPECT_THAT(labels(itemsAt("$a\n  %source xyz=|\n")), IsEmpty()); // a text that is in no folder
    EXPECT_THAT(labels(itemsAt("$b\n$a\n  %source xyz=mol.xyz |\n", uri)), Not(Contains("mol.xyz")));
}

TEST(Completion, SignatureOfACall) {
    const auto signature = [](const std::string& expression) {
        const std::string text = "@derive d\n  let g = " + expression + "\n@end\n";
        LspClient client;
        client.open("untitled:1", text);
        return client.request("textDocument/signatureHelp",
                              LspClient::at("untitled:1", 1, 10 + static_cast<int>(expression.size())));
    };
    const Json answer = signature("convert(energy(a), ");
    EXPECT_EQ(answer["signatures"][0]["label"], "convert(value, unit)");
    EXPECT_EQ(answer["activeParameter"], 1);
    EXPECT_EQ(signature("convert(energy(")["signatures"][0]["label"], "energy(task)");
    EXPECT_TRUE(signature("nonsense(").is_null());
    EXPECT_TRUE(signature("1 + 2").is_null());
}

} // namespace
