#include "lsp/base/line_diff.h"

namespace {

using namespace morquill::lsp;

/// The edits as "<begin>-<end> <text>", line feeds as "|".
std::vector<std::string> print(std::string_view from, std::string_view to) {
    std::vector<std::string> printed;
    for (const auto& edit : lineEdits(from, to)) {
        std::string text(edit.text);
        for (char& c : text) {
            c = c == '\n' ? '|' : c;
        }
        printed.push_back(std::to_string(edit.range.begin) + "-" + std::to_string(edit.range.end) + " " +
                          text);
    }
    return printed;
}

std::string edited(std::string text, const std::vector<LineEdit>& edits) {
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        text.replace(edit->range.begin, edit->range.size(), edit->text);
    }
    return text;
}

using Edits = std::vector<std::string>;

TEST(LineDiff, TouchesWhatDiffersAlone) {
    EXPECT_EQ(print("a\nb\nc\n", "a\nb\nc\n"), Edits{});
    EXPECT_EQ(print("a\nb\nc\n", "a\nx\nc\n"), (Edits{"2-4 x|"}));
    EXPECT_EQ(print("a\nb\nc\nd\ne\n", "a\nc\nd\ny\ne\n"), (Edits{"2-4 ", "8-8 y|"}));
    EXPECT_EQ(print("", "a\n"), (Edits{"0-0 a|"}));
    EXPECT_EQ(print("a\n", ""), (Edits{"0-2 "}));
    EXPECT_EQ(print("a", "a\n"), (Edits{"0-1 a|"}));
}

TEST(LineDiff, LeadsToTheOtherText) {
    const std::string_view texts[] = {"",     "a\n",          "a\nb\nc\nd\n",   "b\na\nd\nc", "a\na\nb\na\n",
                                      "\n\n", "c\nd\na\nb\n", "x\nb\ny\nd\nz\n"};
    for (const auto from : texts) {
        for (const auto to : texts) {
            EXPECT_EQ(edited(std::string(from), lineEdits(from, to)), to) << from << "->" << to;
        }
    }
}

TEST(LineDiff, VeryManyDifferencesAreOneEdit) {
    std::string from = "same\n";
    std::string to = from;
    for (int i = 0; i < 3000; ++i) {
        from += "a" + std::to_string(i) + "\n";
        to += "b" + std::to_string(i) + "\n";
    }
    const auto edits = lineEdits(from, to);
    EXPECT_EQ(edits.size(), 1U);
    EXPECT_EQ(edits[0].range.begin, 5U);
    EXPECT_EQ(edited(from, edits), to);
}

} // namespace
