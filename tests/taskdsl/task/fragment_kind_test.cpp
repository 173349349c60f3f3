#include "taskdsl/task/fragment_kind.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace morquill::taskdsl {
namespace {

TEST(FragmentKinds, HaveTheirSpellings) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"document", "document"},  {"doc", "document"},
        {"task", "task_body"},     {" Task-Body ", "task_body"},
        {"taskbody", "task_body"}, {"process", "process"},
        {"command", "process"},    {"commands", "process"},
        {"cmd", "process"},        {"preprocess", "preprocess"},
        {"control", "control"},    {"mod", "mod"},
        {"when", "when"},          {"meta", "meta"},
        {"param", "param"},        {"args", "args"},
        {"batch", "batch"},        {"text", "text"},
        {"BODY", "text"},          {"extrainput", "text"},
        {"unknown", "unknown"},    {"", "unknown"},
        {"keywords", "unknown"},
    };
    for (const auto& [spelling, name] : rows) {
        EXPECT_EQ(fragmentKindName(parseFragmentKind(spelling)), name) << spelling;
    }
    EXPECT_EQ(fragmentKindName(static_cast<FragmentKind>(99)), "unknown");
}

TEST(FragmentKinds, FitTheirOwnScopeAndCommandsFitEachOther) {
    for (int kind = 0; kind <= 12; ++kind) {
        for (int scope = 1; scope <= 12; ++scope) {
            const bool commands = (kind == 3 || kind == 4) && (scope == 3 || scope == 4);
            EXPECT_EQ(kindFits(static_cast<FragmentKind>(kind), static_cast<FragmentKind>(scope)),
                      kind == 0 || kind == scope || commands)
                << kind << " in " << scope;
        }
    }
}

} // namespace
} // namespace morquill::taskdsl
