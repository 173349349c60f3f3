#include "taskdsl/task/runtime_values.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(RuntimePlaceholders, NameTheCaseTheTaskAndItsSource) {
    EXPECT_EQ(runtimePlaceholders("water", "opt", "water.xyz", "pre"), (ValueMap{{"rootname", "water"},
                                                                                 {"taskname", "opt"},
                                                                                 {"inputname", "water_opt"},
                                                                                 {"originname", "water.xyz"},
                                                                                 {"sourcename", "pre"}}));
    EXPECT_EQ(runtimePlaceholders("water", "opt", "", "").count("originname"), 0U);
    EXPECT_EQ(runtimePlaceholders("water", "opt", "", "").at("sourcename"), "");
}

TEST(RuntimePlaceholders, GoIntoSixTexts) {
    TaskInfo task("[taskname]");
    for (auto* text : {&task.keywords, &task.args, &task.extraKeywords, &task.paramValues, &task.runner,
                       &task.body, &task.templateName}) {
        *text = "[rootname]/[originname]";
    }
    task.source = SourceTaskList{{"[rootname]"}};
    applyRuntimePlaceholders(task, runtimePlaceholders("r", "t", "", "s"));
    for (const auto* text :
         {&task.keywords, &task.args, &task.extraKeywords, &task.paramValues, &task.runner, &task.body}) {
        EXPECT_EQ(*text, "r/[originname]");
    }
    EXPECT_EQ(task.source, SourceSpec(SourceTaskList{{"[rootname]"}}));
    EXPECT_EQ(task.templateName, "[rootname]/[originname]");
    EXPECT_EQ(task.name, "[taskname]");
}

TEST(KeywordValue, IsFoundAtTheStartOrAfterWhiteSpace) {
    const std::vector<std::tuple<const char*, const char*, const char*>> rows{
        {"job=a", "job", "a"},
        {"x job\t=\n a b", "job", "a"},
        {"xjob=1 job=2", "job", "2"},
        {"job job=3", "job", "3"},
        {"job= ", "job", ""},
        {"Job=1", "job", ""},
        {"job=\"a b\"c", "job", "a b"},
        {"job='a \"b'", "job", "a \"b"},
        {"job=\"a b", "job", "\"a"},
        {"job=\"\" job=2", "job", ""},
        {"job=a,b;c", "job", "a,b;c"},
        {"a.b=1", "a.b", "1"},
        {"", "job", ""},
    };
    for (const auto& [text, key, value] : rows) {
        EXPECT_EQ(findKeywordValue(text, key), value) << text;
    }
}

} // namespace
} // namespace morquill::taskdsl
