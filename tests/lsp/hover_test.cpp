#include "lsp/hover.h"

#include "fixtures/lsp_client.h"

namespace {

using namespace morquill::lsp;

/// The hover at the first place behind `before`; "-" when there is none.
std::string hoverAt(const std::string& text, std::string_view before) {
    LspClient client;
    client.open(unsavedUri, text);
    const TextBuffer buffer(text);
    PositionWalk walk(buffer, PositionUnit::utf16);
    const auto at = walk.at(text.find(before) + before.size());
    const Json answer =
        client.request("textDocument/hover",
                       LspClient::at(unsavedUri, static_cast<int>(at.line), static_cast<int>(at.character)));
    return answer.is_null() ? "-" : answer["contents"]["value"].get<std::string>();
}

TEST(Hover, OfWords) {
    const std::string text = "$a\n  %keywords hf\n  %control\n    totcore 4\n  %program orca\n  %plot "
                             "spectrum s\n    x frequency\n    y ir_intensity\n";
    EXPECT_EQ(hoverAt(text, "  %key"),
              "`%keywords <text> | << EOF`\n\nThe route or keyword line of the program; the last one "
              "counts.");
    EXPECT_EQ(hoverAt(text, "totc"),
              "`totcore <n>`\n\nNumber of processor cores; the value of the prelude serves tasks "
              "that have none.");
    const std::string lines = "$a\n  %source\n    geom origin\n    geom.b xyz=b.xyz\n  %batch\n    lane 2\n"
                              "  %mod\n    charge.b 1\n  %control\n    geom check\n";
    EXPECT_EQ(hoverAt(lines, "geom.").substr(0, 24), "`geom[.<slot>] <source>`");
    EXPECT_EQ(hoverAt(lines, "lan"), "`lane <n>`\n\nNumber of calculations side by side.");
    EXPECT_EQ(hoverAt(lines, "char").substr(0, 17), "`charge[.<slot>] ");
    EXPECT_EQ(hoverAt(lines, "%control\n    ge").substr(0, 12), "`geom check`");
    EXPECT_EQ(hoverAt(text, "%keywords h"), "-");
    EXPECT_EQ(hoverAt(text, "%program or"), "ORCA; takes %keywords and %extrainput.");
    EXPECT_EQ(hoverAt(text, "%plot sp"),
              "Lines with their intensities, drawn as sticks, broadened, or both.");
    EXPECT_EQ(hoverAt("&INCLUDE x.mq\n", "&IN").substr(0, 10), "`&INCLUDE ");
}

TEST(Hover, OfATaskIsItsCanonicalText) {
    EXPECT_EQ(hoverAt("$a\n%keywords   'b c'\n$b\n  %source a\n  %keywords hf\n", "%source "),
              "````mq\n$a\n  %source origin\n  %keywords \"b c\"\n````");
    EXPECT_EQ(hoverAt("matrix:\n  f: x, y\n  g: 1, 2, 3\n$a\n  %keywords [f]\n", "$"),
              "````mq\n$a\n  %source origin\n  %keywords [f]\n````\n\nThe matrix makes 6 variants.");
}

TEST(Hover, OfAKeyIsItsValues) {
    EXPECT_EQ(hoverAt("define:\n  d: \"1 2\" # c\nmatrix:\n  f: x, y\n$a_[f]_[d]\n  %keywords hf\n", "$a_["),
              "Axis `f`: `x, y`");
    EXPECT_EQ(hoverAt("define:\n  d: \"1 2\" # c\nmatrix:\n  f: x, y\n$a_[f]_[d]\n  %keywords hf\n", "]_["),
              "Define `d`: `\"1 2\"`");
}

TEST(Hover, OfFunctionsPropertiesAndNames) {
    const std::string text = "@derive d\n  let g = energy(a) + scf_energy\n  emit e = g\n@end\n$a\n";
    EXPECT_EQ(hoverAt(text, "let g = en"), "`energy(task)`\n\nThe energy of a task, in hartree.");
    EXPECT_EQ(hoverAt(text, "emit e = "), "````mq\nlet g = energy(a) + scf_energy\n````");
    const auto property = hoverAt(text, ") + scf");
    EXPECT_EQ(property.substr(0, 4), "`qc.");
    EXPECT_NE(property.find("hartree"), std::string::npos);
    EXPECT_EQ(propertyHelp("no such thing"), "");
}

TEST(Hover, OfAConditionIsWhatWasUnderstood) {
    EXPECT_EQ(hoverAt("$a\n  %when completed b and (defined c or {{ b.e }}==1)\n$b\n", "completed b an"),
              "Both sides hold; binds stronger than or.\n\nUnderstood as `completed b and (defined c or {{ "
              "b.e }} = 1)`");
}

TEST(Hover, OfAnIssueIsWhatItsCodeMeans) {
    EXPECT_EQ(hoverAt("$a\n  %source b\n  %keywords hf\n", "%source "),
              "`missing-source-task`: %source names no task.");
}

TEST(Hover, CountsVariants) {
    morquill::taskdsl::TaskDocument document;
    EXPECT_EQ(variantCount(document), 1U);
    document.matrixAxes.push_back({"a", std::vector<std::string>(100000, "x"), {}, {}});
    document.matrixAxes.push_back({"b", std::vector<std::string>(10000, "x"), {}, {}});
    EXPECT_EQ(variantCount(document), 0U); // beyond the bound
}

} // namespace
