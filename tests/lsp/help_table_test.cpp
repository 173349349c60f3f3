#include "lsp/help_table.h"

#include "lint/rules.h"
#include "support/file.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/task_document.h"

#include <regex>
#include <set>

namespace {

using namespace morquill::lsp;

std::set<std::string> words(HelpTopic topic) {
    std::set<std::string> found;
    for (const auto& row : helpTable()) {
        if (row.topic == topic) {
            EXPECT_TRUE(found.insert(std::string(row.word)).second) << row.word;
        }
    }
    return found;
}

/// What a pattern captures in a page of docs/.
std::set<std::string> captured(const std::string& page, const std::string& pattern) {
    const auto text = morquill::readTextFile("docs/" + page);
    EXPECT_TRUE(text) << page;
    std::set<std::string> found;
    const std::regex expression(pattern);
    for (std::sregex_iterator at(text->begin(), text->end(), expression), end; at != end; ++at) {
        found.insert((*at)[1]);
    }
    return found;
}

TEST(HelpTable, HasEveryCodeOfLint) {
    std::set<std::string> codes;
    for (const auto& rule : morquill::lint::lintRules()) {
        codes.insert(std::string(rule.code));
    }
    EXPECT_EQ(words(HelpTopic::lintCode), codes);
}

TEST(HelpTable, HasEveryDirectiveOfTheParserAndTheDocs) {
    for (const auto& word : words(HelpTopic::directive)) {
        EXPECT_NE(morquill::taskdsl::findDirective(word), nullptr) << word;
    }
    for (const auto& word : captured("language.md", "`%([a-z]+)`")) {
        EXPECT_TRUE(words(HelpTopic::directive).contains(word)) << word;
    }
}

TEST(HelpTable, HasEveryProgram) {
    using morquill::taskdsl::TaskProgram;
    std::set<std::string> programs;
    for (int i = 0; i <= static_cast<int>(TaskProgram::script); ++i) {
        programs.insert(std::string(programName(static_cast<TaskProgram>(i))));
    }
    EXPECT_EQ(words(HelpTopic::program), programs);
}

TEST(HelpTable, HasThePlotsAndStatementsOfTheDocs) {
    EXPECT_EQ(words(HelpTopic::plotKind), captured("plots.md", "\n## [^\n]*: `([a-z]+)`\n"));
    const auto statements = words(HelpTopic::plotStatement);
    for (const auto& word : captured("plots.md", "\n\\| `([a-z]+)[ :`]")) {
        EXPECT_TRUE(statements.contains(word)) << word;
    }
    const auto derives = words(HelpTopic::deriveStatement);
    for (const auto& word : captured("derive.md", "\n\\| `(?!not|\\(|a |emit )([a-z]+) <")) {
        EXPECT_TRUE(derives.contains(word)) << word;
    }
}

TEST(HelpTable, HasNoSignsOfMarkdownInItsSentences) {
    for (const auto& row : helpTable()) {
        EXPECT_EQ(row.text.find_first_of("<>*_`\\"), std::string_view::npos) << row.word;
        EXPECT_TRUE(row.text.ends_with('.')) << row.word;
        EXPECT_TRUE(row.form.empty() || row.form.find(row.word) != std::string_view::npos) << row.word;
    }
}

TEST(HelpTable, FindsWordsInAnyCase) {
    EXPECT_EQ(findHelp(HelpTopic::directive, "SOURCE")->word, "source");
    EXPECT_EQ(findHelp(HelpTopic::directive, "totcore"), nullptr);
    EXPECT_EQ(topicTitle(HelpTopic::lintCode), "Codes of lint");
}

} // namespace
