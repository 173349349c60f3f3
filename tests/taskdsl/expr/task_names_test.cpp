#include "taskdsl/expr/task_names.h"

#include "support/text.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

std::string namesIn(std::string_view expression) {
    std::set<std::string> names;
    addTaskNames(parsePlotExpression(expression, {}), names);
    return join({names.begin(), names.end()}, " ");
}

TEST(TaskNames, OfReferencesAndOfFirstArguments) {
    EXPECT_EQ(namesIn("{{ ts.energy }} - energy(reactant) * zpe('two words', other)"),
              "reactant ts two words");
    EXPECT_EQ(namesIn("abs(opt) + 1"), "");
    EXPECT_EQ(namesIn("energy(abs({{ a.k }}))"), "a");
}

TEST(TaskNames, SelfAndNothingAreNoTask) {
    EXPECT_EQ(namesIn("energy(SELF) + {{ self.k }} + energy('')"), "");
    std::set<std::string> names;
    addTaskName("Self", names);
    addTaskName("", names);
    addTaskNames(ExprRef{}, names);
    EXPECT_TRUE(names.empty());
    addTaskName("selfish", names);
    EXPECT_EQ(names, std::set<std::string>{"selfish"});
}

TEST(TaskNames, FunctionsOfTasksAreKnownInAnyCase) {
    EXPECT_TRUE(takesTask("energy"));
    EXPECT_TRUE(takesTask("Free_Energy"));
    EXPECT_FALSE(takesTask("convert"));
    EXPECT_FALSE(takesTask(""));
}

} // namespace
} // namespace morquill::taskdsl::plot
