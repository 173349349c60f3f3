#include "lsp/quick_fixes.h"

#include "fixtures/lsp_client.h"
#include "lint/file_check.h"

namespace {

using namespace morquill::lsp;

std::string editedBy(std::string text, const Json& action) {
    const TextBuffer buffer(text);
    const Json& edits = action["edit"]["changes"][unsavedUri];
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        const auto range = readRange((*edit)["range"], buffer, PositionUnit::utf16);
        text.replace(range->begin, range->size(), (*edit)["newText"].get<std::string>());
    }
    return text;
}

Json actions(const std::string& text, const Json& only = nullptr) {
    LspClient client;
    client.open(unsavedUri, text);
    Json params = LspClient::document(unsavedUri);
    params["range"] = {{"start", {{"line", 0}, {"character", 0}}}, {"end", {{"line", 99}, {"character", 0}}}};
    params["context"] = {{"diagnostics", Json::array()}};
    if (!only.is_null()) {
        params["context"]["only"] = only;
    }
    return client.request("textDocument/codeAction", params);
}

/// The codes of what lint finds.
std::vector<std::string> codes(const std::string& text) {
    std::vector<std::string> found;
    for (const auto& issue : morquill::lint::lintText(text, "", [](const std::string&) {}).issues) {
        found.emplace_back(issue.code);
    }
    return found;
}

struct FixCase {
    std::string_view code;
    std::string before;
    std::string after;
};

TEST(QuickFixes, LeadToATextThatLintAccepts) {
    const FixCase cases[] = {
        {"legacy-fragment-kind-alias", "$a\n  %keywords hf\n@fragment x cmd\n",
         "$a\n  %keywords hf\n@fragment x process\n"},
        {"legacy-control-gpu-alias", "$a\n  %control\n    totgpu 1\n  %keywords hf\n",
         "$a\n  %control\n    gpus 1\n  %keywords hf\n"},
        {"legacy-process-alias", "$a\n  %keywords hf\n  %process\n    mkdirp x\n",
         "$a\n  %keywords hf\n  %process\n    mkdir x\n"},
        {"legacy-multi-source",
         "dsl_version: 1\n$a\n  %keywords hf\n$b\n  %keywords hf\n$c\n  %source a, b\n  %keywords hf\n",
         "dsl_version: 1\n$a\n  %keywords hf\n$b\n  %keywords hf\n$c\n  %source a\n  %when\n    completed "
         "b\n  %keywords hf\n"},
        {"legacy-source-guess", "$a\n  %keywords hf\n$b\n  %source a guess\n  %keywords hf\n",
         "$a\n  %keywords hf\n$b\n  %source a\n  %control\n    guess true\n  %keywords hf\n"},
        {"legacy-other-keywords", "$a\n  %program other\n  %keywords job=m x=1 y=2\n",
         "$a\n  %program other\n  %template m\n  %param x=1 y=2\n"},
        {"legacy-script-runner", "$a\n  %program script\n  %keywords /bin/sh\n  %body x\n",
         "$a\n  %program script\n  %runner /bin/sh\n  %body x\n"},
        {"legacy-xtb-keywords", "$a\n  %program xtb\n  %keywords --opt\n",
         "$a\n  %program xtb\n  %args --opt\n"},
        {"legacy-implicit-xtb-args", "$a\n  %args --opt", "$a\n  %program xtb\n  %args --opt"},
        {"legacy-keyword-brace-expansion", "dsl_version: 2\n$a\n  %keywords \"{b3lyp, pbe}/svp\"\n",
         "dsl_version: 2\nmatrix:\n  choice: b3lyp, pbe\n$a\n  %keywords \"[choice]/svp\"\n"},
        {"legacy-keyword-brace-expansion", "matrix:\n  - choice: 1, 2\n\n$a_[choice]\n  %keywords {b,c}\n",
         "matrix:\n  - choice: 1, 2\n  - choice_2: b, c\n\n$a_[choice]\n  %keywords [choice_2]\n"},
        {"missing-source-task", "$opt\n  %keywords hf\n$b\n  %source Opt\n  %keywords hf\n",
         "$opt\n  %keywords hf\n$b\n  %source opt\n  %keywords hf\n"},
        {"missing-completed-target",
         "$scna2\n  %keywords hf\n  %when completed scna\n$scan\n  %keywords hf\n",
         "$scna2\n  %keywords hf\n  %when completed scan\n$scan\n  %keywords hf\n"},
        {"parse-error", "$a\n  %keyword hf\n", "$a\n  %keywords hf\n"},
    };
    for (const auto& row : cases) {
        EXPECT_THAT(codes(row.before), testing::Contains(std::string(row.code)));
        const Json found = actions(row.before, {"quickfix"});
        ASSERT_FALSE(found.empty()) << row.code;
        EXPECT_EQ(editedBy(row.before, found[0]), row.after) << row.code;
        EXPECT_THAT(codes(row.after), testing::IsEmpty()) << row.code;
    }
}

TEST(QuickFixes, AllOlderFormsAtOnce) {
    const std::string text =
        "$a\n  %program xtb\n  %keywords --opt\n$b\n  %source a guess\n  %keywords hf\n  %process\n"
        "    scripts x\n$c\n  %source bb\n  %keywords hf\n";
    const Json found = actions(text, {"source"});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]["kind"], "source.fixAll");
    // A task that does not exist is not guessed.
    EXPECT_EQ(editedBy(text, found[0]),
              "$a\n  %program xtb\n  %args --opt\n$b\n  %source a\n  %control\n    guess true\n"
              "  %keywords hf\n  %process\n    run x\n$c\n  %source bb\n  %keywords hf\n");
}

TEST(QuickFixes, AreNoneForATextWithoutFaults) {
    EXPECT_TRUE(actions("$a\n  %keywords hf\n").empty());
    EXPECT_TRUE(actions("$a\n  %source nothing_like_it\n  %keywords hf\n").empty());
}

TEST(QuickFixes, TakeTheNearestWord) {
    EXPECT_EQ(nearestWord("keyword", {"when", "keywords", "body"}), "keywords");
    EXPECT_EQ(nearestWord("Opt", {"opt"}), "opt");
    EXPECT_EQ(nearestWord("scna", {"scab", "scan"}), "scan"); // two letters swapped
    EXPECT_EQ(nearestWord("xyz", {"opt", "freq"}), "");
    EXPECT_EQ(nearestWord("", {"opt"}), "");
}

} // namespace
