#include "project/rename/word_replace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <random>
#include <regex>

namespace morquill::project {
namespace {

std::string replaceWord(std::string text, std::string_view word, std::string_view to) {
    RewrittenText rewritten(std::move(text));
    rewritten.replaceWord(word, to);
    return std::move(rewritten).take();
}

std::string replaceText(std::string text, std::string_view from, std::string_view to) {
    RewrittenText rewritten(std::move(text));
    rewritten.replaceText(from, to);
    return std::move(rewritten).take();
}

/// The word replacement as it is written down: a regular expression over the whole text. Slow, and it
/// overflows the stack on long texts; good enough for short ones.
std::string replaceWordSlowly(const std::string& text, const std::string& word, const std::string& to) {
    std::string escaped;
    for (const char c : word) {
        if (std::strchr("^$\\.*+?()[]{}|", c) != nullptr && c != '\0') {
            escaped += '\\';
        }
        escaped += c;
    }
    const std::regex expression("(^|[^A-Za-z0-9_])(" + escaped + ")([^A-Za-z0-9_]|$)");
    std::string result;
    auto from = text.cbegin();
    const std::sregex_iterator none;
    for (std::sregex_iterator match(text.cbegin(), text.cend(), expression); match != none; ++match) {
        result.append(from, (*match)[0].first);
        result += (*match)[1].str() + to + (*match)[3].str();
        from = (*match)[0].second;
    }
    return result.append(from, text.cend());
}

std::string replaceTextSlowly(const std::string& text, const std::string& from, const std::string& to) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (text.compare(i, from.size(), from) == 0) {
            result += to;
            i += from.size();
        } else {
            result += text[i++];
        }
    }
    return result;
}

TEST(ReplaceWord, TouchesTheWordOnly) {
    struct Row {
        const char* text;
        const char* expected;
    };
    const Row rows[] = {
        {"", ""},
        {"opt", "new"},
        {"$opt", "$new"},
        {"opt2", "opt2"},
        {"topt", "topt"},
        {"_opt", "_opt"},
        {"opt_", "opt_"},
        {"Opt", "Opt"},
        {"opt\n%source opt\n", "new\n%source new\n"},
        {"{{opt.energy}}", "{{new.energy}}"},
        {"completed opt and completed freq", "completed new and completed freq"},
        {"opt opt", "new opt"},
        {"opt opt opt", "new opt new"},
        {"opt,opt,opt,opt", "new,opt,new,opt"},
        {"opt  opt", "new  new"},
        {"opt\nopt", "new\nopt"},
        {"optopt opt", "optopt new"},
        {"\xc3\xa4opt\xc3\xa4", "\xc3\xa4new\xc3\xa4"},
        {"\r\nopt\r\n", "\r\nnew\r\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(replaceWord(row.text, "opt", "new"), row.expected) << row.text;
    }
}

TEST(ReplaceWord, TakesBothNamesLiterally) {
    EXPECT_EQ(replaceWord("a.b axb a.b.c", "a.b", "x"), "x axb x.c");
    EXPECT_EQ(replaceWord("$opt_[x] opt_x", "opt_[x]", "y"), "$y opt_x");
    EXPECT_EQ(replaceWord("(opt)", "opt", "1$&$3\\"), "(1$&$3\\)");
    EXPECT_EQ(replaceWord("opt", "opt", "opt opt"), "opt opt");
    EXPECT_EQ(replaceWord("---", "--", "x"), "x-");
    EXPECT_EQ(replaceWord("a--a a---a", "-", "x"), "a--a a-x-a");
    EXPECT_EQ(replaceWord("a b", "", "x"), "a b");
}

TEST(ReplaceWord, AgreesWithTheRegularExpressionOnRandomTexts) {
    std::mt19937 random(7);
    const auto pick = [&](std::size_t count) { return random() % count; };
    const auto text = [&](std::string_view letters, std::size_t longest) {
        std::string result(pick(longest + 1), ' ');
        for (auto& c : result) {
            c = letters[pick(letters.size())];
        }
        return result;
    };
    for (int round = 0; round < 800; ++round) {
        const std::string_view letters = round % 3 == 0   ? "a "
                                         : round % 3 == 1 ? "ab.- \n"
                                                          : "aA_$[]^\\{}()+*?|/1\xff";
        auto word = text(letters, 4);
        word += letters[pick(letters.size())];
        auto input = text(letters, 90);
        for (std::size_t i = pick(8); i > 0; --i) {
            input.insert(pick(input.size() + 1), word);
        }
        const auto to = text("b$&1\\ ", 3);
        ASSERT_EQ(replaceWord(input, word, to), replaceWordSlowly(input, word, to)) << input << " / " << word;
        ASSERT_EQ(replaceText(input, word, to), replaceTextSlowly(input, word, to)) << input << " / " << word;
        ASSERT_EQ(containsText(input, word), input.find(word) != std::string::npos) << input << " / " << word;
    }
}

TEST(ReplaceWord, LongNamesAreFoundLikeShortOnes) {
    for (const std::size_t length : {256, 257, 600}) {
        for (const std::string unit : {"a", "a-", "-", "ab--"}) {
            std::string word;
            while (word.size() < length) {
                word += unit;
            }
            const std::string input = "x " + word + " " + word + "  " + word + unit + word + "-" + word;
            EXPECT_EQ(replaceWord(input, word, "<new>"), replaceWordSlowly(input, word, "<new>")) << word;
            EXPECT_EQ(replaceText(input, word, "<new>"), replaceTextSlowly(input, word, "<new>")) << word;
        }
    }
}

TEST(ReplaceWord, CostsTheSameForTheWorstText) {
    // Every place almost fits: a search that starts over at each would take hours.
    const std::string text(1 << 20, 'a');
    const std::string word = std::string(100000, 'a') + "b" + std::string(100000, 'a');
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(replaceWord(text, word, "x").size(), text.size());
    EXPECT_EQ(replaceWord(text, std::string(100000, 'a'), "x").size(), text.size());
    EXPECT_EQ(replaceWord(text, std::string(250, 'a'), "x").size(), text.size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(ReplaceText, IsLiteralAndWithoutOverlap) {
    EXPECT_EQ(replaceText("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaceText("opt_mol1 opt_mol10", "opt_mol1", "new_mol1"), "new_mol1 new_mol10");
    EXPECT_EQ(replaceText("$opt_[x] opt_x", "opt_[", "new_["), "$new_[x] opt_x");
    EXPECT_EQ(replaceText("abc", "", "x"), "abc");
    EXPECT_EQ(replaceText("", "a", "x"), "");
    EXPECT_FALSE(containsText("abc", ""));
    EXPECT_TRUE(containsText(std::string(200, '.') + "abc", "abc"));
    EXPECT_FALSE(containsText(std::string("ab"), "abc"));
}

/// `opt` becomes `to` in the forms `opt_m1`, `opt_[` and `opt`, one rule after the other.
std::string rename(std::string text, const std::string& to) {
    RewrittenText rewritten(std::move(text));
    rewritten.replaceText("opt_m1", to + "_m1");
    rewritten.replaceText("opt_[", to + "_[");
    rewritten.replaceWord("opt", to);
    return std::move(rewritten).take();
}

TEST(RewrittenText, IsNotMatchedWhereSomethingWasPutIn) {
    EXPECT_EQ(rename("opt_m1 opt opt_[x]", "opt-tight"), "opt-tight_m1 opt-tight opt-tight_[x]");
    EXPECT_EQ(rename("opt_m1", "x opt y"), "x opt y_m1");
    EXPECT_EQ(rename("opt_m1opt_m1 opt", "opt"), "opt_m1opt_m1 opt");
    // the second rule does not find what the first has put in
    EXPECT_EQ(rename("opt_m1", "opt_[a]"), "opt_[a]_m1");
    EXPECT_EQ(rename("opt opt_[opt] opt_m1", "opt_[a]"), "opt_[a] opt_[a]_[opt_[a]] opt_[a]_m1");
    // ... but both are neighbours
    EXPECT_EQ(rename("opt_[opt]", "new"), "new_[new]");
    EXPECT_EQ(rename("opt_[opt_[opt]opt_m1", "a"), "a_[a_[a]a_m1");
    // What stands between two places that were put in is still looked at, and only that.
    EXPECT_EQ(rename("opt_m1 opt opt_m1 opt opt_[ opt", "s-opt"),
              "s-opt_m1 s-opt s-opt_m1 s-opt s-opt_[ s-opt");
    EXPECT_EQ(rename("", "opt-x"), "");
}

} // namespace
} // namespace morquill::project
