#include "taskdsl/generate/include_line.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

TEST(IncludeLine, OnlyTheKeywordBeforeABlankOrTheEnd) {
    for (const char* text : {"", "include x", "&INCLUDEx", "&include x", "&INCLUDE\tx", "# &INCLUDE x"}) {
        EXPECT_FALSE(parseIncludeLine(text).isInclude) << text;
    }
    EXPECT_TRUE(parseIncludeLine("  &INCLUDE x # comment").isInclude);
    EXPECT_EQ(parseIncludeLine("  &INCLUDE x # comment").target, "x");
}

TEST(IncludeLine, KnowsAFileByItsEndingInAnyCase) {
    EXPECT_EQ(kindOfPath("/a/L.MQLIB"), IncludeTarget::library);
    EXPECT_EQ(kindOfPath("b.MqFrag"), IncludeTarget::fragmentFile);
    EXPECT_EQ(kindOfPath("x.yaml.d/t.mq"), IncludeTarget::taskFile);
    EXPECT_EQ(kindOfPath(".yml"), IncludeTarget::yamlFile);
    EXPECT_EQ(kindOfPath("mq"), std::nullopt);
    EXPECT_EQ(kindOfPath("a.mq2"), std::nullopt);
    EXPECT_EQ(kindOfPath(""), std::nullopt);
}

TEST(IncludeLine, APreludeFollowsYamlFilesAndNamedLibraries) {
    EXPECT_EQ(parsePreludeInclude("&INCLUDE <a.YAML>").value().target, "a.YAML");
    EXPECT_EQ(parsePreludeInclude("&INCLUDE l.mqlib as l").value().alias, "l");
    for (const char* line : {"&INCLUDE l.mqlib", "&INCLUDE x.yaml.d/t.mq", "&INCLUDE l.f(a=1,", "define:"}) {
        EXPECT_FALSE(parsePreludeInclude(line)) << line;
    }
    EXPECT_THROW((void)parsePreludeInclude("&INCLUDE \"a.yaml"), DiagnosticError);
}

TEST(IncludeLine, TellsTargetsByTheirLook) {
    const std::vector<std::tuple<const char*, const char*, IncludeTarget>> rows{
        {"a.mq", "a.mq", IncludeTarget::taskFile},
        {"A.PROJMQ", "A.PROJMQ", IncludeTarget::taskFile},
        {"a.mqfrag", "a.mqfrag", IncludeTarget::fragmentFile},
        {"a.mqlib", "a.mqlib", IncludeTarget::library},
        {"a.yaml", "a.yaml", IncludeTarget::yamlFile},
        {"a.yml", "a.yml", IncludeTarget::yamlFile},
        {"a.inp", "a.inp", IncludeTarget::otherFile},
        {"a.txt", "a.txt", IncludeTarget::otherFile},
        {"a.json", "a.json", IncludeTarget::otherFile},
        {"a.sh", "a.sh", IncludeTarget::otherFile},
        {"a.toml", "a.toml", IncludeTarget::otherFile},
        {"a.b", "a.b", IncludeTarget::reference},
        {"a.b.c", "a.b.c", IncludeTarget::reference},
        {"\"a.b\"", "a.b", IncludeTarget::reference},
        {"a/b.c", "a/b.c", IncludeTarget::otherFile},
        {"a\\b.c", "a\\b.c", IncludeTarget::otherFile},
        {"<a.b>", "a.b", IncludeTarget::otherFile},
        {"a.1b", "a.1b", IncludeTarget::otherFile},
        {"a b", "a b", IncludeTarget::otherFile},
        {"ab", "ab", IncludeTarget::fragmentName},
        {"'x y.mq'", "x y.mq", IncludeTarget::taskFile},
        {R"("a\"b\\c\d.mq")", R"(a"b\c\d.mq)", IncludeTarget::taskFile},
        {"\"\"", "", IncludeTarget::otherFile},
    };
    for (const auto& [text, target, kind] : rows) {
        const auto include = parseIncludeLine(std::string("&INCLUDE ") + text);
        EXPECT_EQ(include.target, target) << text;
        EXPECT_EQ(include.kind, kind) << text;
        EXPECT_EQ(include.isLibraryReference,
                  kind == IncludeTarget::reference || kind == IncludeTarget::library);
    }
}

TEST(IncludeLine, AnglesAreKeptForTheSearch) {
    const auto include = parseIncludeLine("&INCLUDE < a.mqlib > as x");
    EXPECT_TRUE(include.isAngle);
    EXPECT_EQ(include.target, "a.mqlib");
    EXPECT_EQ(include.alias, "x");
    EXPECT_EQ(searchName(include), "<a.mqlib>");
    EXPECT_EQ(searchName(parseIncludeLine("&INCLUDE a.mqlib")), "a.mqlib");
}

TEST(IncludeLine, ReadsArguments) {
    const auto include = parseIncludeLine("&INCLUDE x.y(a=1,b='c,d')");
    EXPECT_EQ(include.target, "x.y");
    EXPECT_EQ(include.argumentText, "a=1,b='c,d'");
    EXPECT_EQ(include.arguments, (ValueMap{{"a", "1"}, {"b", "c,d"}}));
    EXPECT_EQ(parseIncludeLine("&INCLUDE x.y ( a = f(1,2) , , b=[p,q], c = {r,s}, d= )").arguments,
              (ValueMap{{"a", "f(1,2)"}, {"b", "[p,q]"}, {"c", "{r,s}"}, {"d", ""}}));
    EXPECT_TRUE(parseIncludeLine("&INCLUDE x.y()").hasArguments);
    EXPECT_TRUE(parseIncludeLine("&INCLUDE name(a=1)").hasArguments);
}

TEST(IncludeLine, TheWordAsDividesOutsideQuotesAndParentheses) {
    const auto include = parseIncludeLine("&INCLUDE \"a as b.mqlib\" as c-1");
    EXPECT_EQ(include.target, "a as b.mqlib");
    EXPECT_EQ(include.alias, "c-1");
    EXPECT_EQ(parseIncludeLine("&INCLUDE x.y(a=b as c)").arguments, (ValueMap{{"a", "b as c"}}));
    EXPECT_EQ(parseIncludeLine("&INCLUDE as").target, "as");
}

TEST(IncludeLine, TellsWhatDoesNotFollowTheGrammar) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"", "empty &INCLUDE target"},
        {" # x", "empty &INCLUDE target"},
        {"(a=1)", "empty &INCLUDE target"},
        {"x.mqlib as", "missing namespace alias after 'as'"},
        {"x.mqlib as ", "missing namespace alias after 'as'"},
        {"x.mqlib as 1a", "invalid &INCLUDE namespace alias '1a'"},
        {"x.mqlib as a b", "invalid &INCLUDE namespace alias 'a b'"},
        {"x.mqlib as a.b", "invalid &INCLUDE namespace alias 'a.b'"},
        {"\"x", "unterminated quoted &INCLUDE target"},
        {R"("x\")", "unterminated quoted &INCLUDE target"},
        {"'x' y", "unexpected text after quoted &INCLUDE target: 'y'"},
        {"\"x\"(a=1)", "unexpected text after quoted &INCLUDE target: '(a=1)'"},
        {"<x", "unterminated angle-bracket &INCLUDE target"},
        {"<x> y", "unexpected text after angle-bracket &INCLUDE target: 'y'"},
        {"< >", "empty angle-bracket &INCLUDE target"},
        {"x.y(a=1", "unterminated argument list in &INCLUDE 'x.y(a=1'"},
        {"x.y(a=1) z", "unterminated argument list in &INCLUDE 'x.y(a=1) z'"},
        {"x.mq(a=1)", "file &INCLUDE targets do not accept arguments"},
        {"x.mqfrag()", "file &INCLUDE targets do not accept arguments"},
        {"a b(c=1)", "file &INCLUDE targets do not accept arguments"},
        {"x.y(a)", "fragment arguments must use name=value syntax: 'a'"},
        {"x.y(1a=2)", "invalid fragment argument name '1a'"},
        {"x.y(=2)", "invalid fragment argument name ''"},
        {"x.y(a=1,a=2)", "duplicate fragment argument 'a'"},
        {"x.yaml as q", "'as <namespace>' is only valid when including a library file"},
        {"x.y as q", "'as <namespace>' is only valid when including a library file"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([text = text] { (void)parseIncludeLine(std::string("&INCLUDE ") + text); }),
                  message)
            << text;
    }
}

TEST(Parentheses, AreGatheredOverLines) {
    const auto lines = linesOf("&INCLUDE x.y(a=1, # one\n  b='(',\n\n c=2)\nnext\n");
    const auto gathered = gatherParentheses(lines, 0);
    EXPECT_EQ(gathered.end, GatherEnd::balanced);
    EXPECT_EQ(gathered.text, "&INCLUDE x.y(a=1, b='(',  c=2)");
    EXPECT_EQ(gathered.last, 3U);
    EXPECT_EQ(gatherParentheses(linesOf("a(\nb\n"), 0).end, GatherEnd::unterminated);
    EXPECT_EQ(gatherParentheses(linesOf("a(\nb))\n"), 0).end, GatherEnd::unmatched);
}

TEST(Arguments, SplitOutsideQuotesAndBrackets) {
    EXPECT_THAT(splitArguments(" a , (b,c), [d,(e,f)] ,,'g,h', )i"),
                ElementsAre("a", "(b,c)", "[d,(e,f)]", "'g,h'", ")i"));
}

} // namespace
} // namespace morquill::taskdsl
