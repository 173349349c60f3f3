#include "taskdsl/task/legacy_keywords.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morquill::taskdsl {
namespace {

TEST(LegacyKeywords, TheJobNamesTheTemplate) {
    EXPECT_EQ(legacyTemplateName("a=1 job=resp b=2"), "resp");
    EXPECT_EQ(legacyTemplateName("JOB = \"fitted charges\""), "fitted charges");
    EXPECT_EQ(legacyTemplateName("x\njob='a b'"), "a b");
    EXPECT_EQ(legacyTemplateName("job=\"open quote"), "\"open");
    EXPECT_EQ(legacyTemplateName("xjob=a job = "), "");
    EXPECT_EQ(legacyTemplateName("jobs=a"), "");
    EXPECT_EQ(legacyTemplateName("job job=a"), "a");
}

TEST(LegacyKeywords, AllOtherPairsAreParameters) {
    EXPECT_EQ(legacyParamValues("job=x a=1 Job=y b.c-d:e = \"two words\" f='' plain"),
              "a=1 b.c-d:e=\"two words\" f=\"\"");
    EXPECT_EQ(legacyParamValues("a=b=c"), "a=b=c");
    EXPECT_EQ(legacyParamValues("a='b'c d=e"), "a=b d=e") << "the rest of a word after a quote is no pair";
    EXPECT_EQ(legacyParamValues("a= "), "");
    EXPECT_EQ(legacyParamValues(""), "");
}

TEST(LegacyKeywords, APairListIsCarriedOverWhole) {
    struct Row {
        std::string keywords;
        std::string templateName;
        std::string paramValues;
        bool isWhole;
    };
    const std::vector<Row> rows{
        {"", "x", "a=1", true},         {" job=x a=1\tb = \"two words\"\n", "", "", true},
        {"job=x", "", "a=1", true},     {"a=1", "x", "", true},
        {"job=x a=1", "x", "", false},  {"job=x a=1", "", "a=1", false},
        {"job=x Job=y", "", "", false}, // one template
        {"job=x word", "", "", false},  {"a='b'c", "", "", false},
        {"+a=b", "", "", false},
    };
    for (const auto& row : rows) {
        TaskInfo task;
        task.keywords = row.keywords;
        task.templateName = row.templateName;
        task.paramValues = row.paramValues;
        EXPECT_EQ(isLegacyPairList(task), row.isWhole) << row.keywords;
    }
}

TEST(LegacyKeywords, LongTextsCostTheirLength) {
    const std::string keys(4'000'000, 'a');
    EXPECT_EQ(legacyParamValues(keys), "");
    EXPECT_EQ(legacyTemplateName(keys), "");
}

} // namespace
} // namespace morquill::taskdsl
