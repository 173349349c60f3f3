#include "taskdsl/task/when_references.h"

#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

namespace morquill::taskdsl {
namespace {

struct RenameCase {
    std::string_view text;
    ValueMap renames;
    std::string_view result;
};

TEST(RewriteWhenReferences, RenamesPlaceholdersAndCompleted) {
    const std::vector<RenameCase> cases{
        {"completed opt", {{"opt", "opt2"}}, "completed opt2"},
        {"completed opt and completed  opt", {{"opt", "sp"}}, "completed sp and completed  sp"},
        {"completed\topt)", {{"opt", "sp"}}, "completed\topt)"},
        {"completed optfreq", {{"opt", "sp"}}, "completed optfreq"},
        {"Completed opt", {{"opt", "sp"}}, "Completed opt"},
        {"(completed opt", {{"opt", "sp"}}, "(completed opt"},
        {"( completed opt )", {{"opt", "sp"}}, "( completed sp )"},
        {"defined opt", {{"opt", "sp"}}, "defined opt"},
        {"{{opt.energy}} < {{ opt .energy}}", {{"opt", "sp"}}, "{{ sp.energy}} < {{ sp.energy}}"},
        {"{{ opt }} = 1", {{"opt", "sp"}}, "{{ opt }} = 1"},
        {"{{ opt2.energy }} = 1", {{"opt", "sp"}}, "{{ opt2.energy }} = 1"},
        {"{{{ opt.e }}", {{"opt", "sp"}}, "{{{ sp.e }}"},
        {"{{{{ opt.e }}", {{"opt", "sp"}}, "{{{{ sp.e }}"},
        {"completed opt", {{"opt", "opt"}}, "completed opt"},
        {"completed opt", {}, "completed opt"},
        {"completed opt", {{"opt", "$1x"}}, "completed $1x"},
        {"completed N+1", {{"N+1", "1"}}, "completed 1"},
        {"completed a.c", {{"a.b", "x"}, {"a.c", "y"}}, "completed y"},
        {"{{ abc.x }}", {{"a.c", "y"}}, "{{ abc.x }}"},
        {"completed a b", {{"a", "x"}}, "completed x b"},
        {"completed a b", {{"a b", "x"}}, "completed x"},
        {"{{ a.b.c }}", {{"a.b", "x"}}, "{{ x.c }}"},
        // One after the other in the order of the old names: what came in is renamed again, but only
        // forwards.
        {"completed a", {{"a", "b"}, {"b", "c"}}, "completed c"},
        {"completed c", {{"b", "a"}, {"c", "b"}}, "completed b"},
        {"completed a and completed b", {{"a", "b"}, {"b", "a"}}, "completed a and completed a"},
        {"{{ a.b.c }}", {{"a", "x"}, {"a.b", "y"}}, "{{ x.b.c }}"},
        {"{{ a.b.c }}", {{"a", "a"}, {"a.b", "y"}}, "{{ y.c }}"},
        {"{{ a.b.c }}", {{"a.b", "q"}, {"q", "r"}}, "{{ r.c }}"},
        {"completed completed a", {{"a", "b"}}, "completed completed b"},
        {"completed completed a", {{"completed", "x"}}, "completed x a"},
        {"completed a b", {{"a", "completed"}, {"b", "c"}}, "completed completed c"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(rewriteWhenReferences(each.text, each.renames), each.result) << each.text;
    }
}

/// The two patterns applied for one pair, every choice of a backtracking matcher tried in its order.
std::string slowRename(const std::string& text, const std::string& oldName, const std::string& newName,
                       bool inBraces) {
    const auto fits = [&](std::size_t at, std::string_view word) {
        return text.compare(at, word.size(), word) == 0;
    };
    const auto spaceRun = [&](std::size_t at) {
        std::size_t length = 0;
        while (at + length < text.size() && isSpace(text[at + length])) {
            ++length;
        }
        return length;
    };
    std::string result;
    std::size_t i = 0;
    while (i < text.size()) {
        std::optional<std::pair<std::size_t, std::string>> match; // end and replacement
        std::vector<std::size_t> heads;                           // where the fixed word begins
        if (inBraces) {
            heads.push_back(i);
        } else {
            if (i == 0) {
                heads.push_back(0);
            }
            if (isSpace(text[i])) {
                heads.push_back(i + 1);
            }
        }
        const std::string_view word = inBraces ? "{{" : "completed";
        for (const auto head : heads) {
            if (match || head > text.size() || !fits(head, word)) {
                continue;
            }
            const auto behind = head + word.size();
            for (auto spaces = spaceRun(behind) + 1; spaces-- > 0 && !match;) {
                const auto name = behind + spaces;
                if ((!inBraces && spaces == 0) || !fits(name, oldName)) {
                    continue;
                }
                const auto end = name + oldName.size();
                if (inBraces) {
                    const auto dot = end + spaceRun(end);
                    if (dot < text.size() && text[dot] == '.') {
                        match = {dot + 1, "{{ " + newName + "."};
                    }
                } else if (end == text.size() || isSpace(text[end])) {
                    match = {end, text.substr(i, name - i) + newName};
                }
            }
        }
        if (match && match->first > i) {
            result += match->second;
            i = match->first;
        } else {
            result += text[i++];
        }
    }
    return result;
}

std::string slowRewrite(std::string text, const ValueMap& renames) {
    for (const auto& [oldName, newName] : renames) {
        if (oldName != newName) {
            text = slowRename(text, oldName, newName, true);
            text = slowRename(text, oldName, newName, false);
        }
    }
    return text;
}

std::string randomText(std::mt19937& random, const std::vector<std::string>& pieces, std::size_t count) {
    std::string text;
    for (; count > 0; --count) {
        text += pieces[random() % pieces.size()];
    }
    return text;
}

TEST(RewriteWhenReferences, EqualsThePairsOneAfterTheOther) {
    std::mt19937 random(3);
    const std::vector<std::string> plain{"a", "b", "c", "d", "ab", "b.c", "e"};
    const std::vector<std::string> wild{"a", "b", ".", " ", "{{", "completed", ""};
    const std::vector<std::string> textPieces{"completed ", " completed", "  ", " ", "{{", "{{ ",
                                              ".",          "a",          "b",  "c", "ab"};
    for (int round = 0; round < 8000; ++round) {
        const bool isWild = round % 2 == 0;
        ValueMap renames;
        for (auto count = random() % 5; count > 0; --count) {
            const auto length = isWild ? 1 + random() % 3 : 1;
            auto oldName = randomText(random, isWild ? wild : plain, length);
            renames.insert_or_assign(std::move(oldName), randomText(random, isWild ? wild : plain, length));
        }
        const auto text = randomText(random, textPieces, round % 25 == 0 ? 600 : random() % 12);
        ASSERT_EQ(rewriteWhenReferences(text, renames), slowRewrite(text, renames))
            << ::testing::PrintToString(renames) << " on " << text;
    }
}

TEST(RewriteWhenReferences, ThousandsOfNamesInOneTextAreRenamedInOnePass) {
    ValueMap renames;
    std::string text;
    std::string expected;
    for (int i = 0; i < 20000; ++i) {
        const auto name = "task" + std::to_string(i);
        renames.emplace(name, name + "__s");
        text += (i > 0 ? " and completed " : "completed ") + name + " or {{ " + name + ".energy }} < 0";
        expected +=
            (i > 0 ? " and completed " : "completed ") + name + "__s or {{ " + name + "__s.energy }} < 0";
    }
    EXPECT_EQ(rewriteWhenReferences(text, renames), expected);
}

} // namespace
} // namespace morquill::taskdsl
