#include "views/dropped_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::views {
namespace {

using taskdsl::TaskInfo;
using taskdsl::TaskProgram;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(DroppedFields, EveryProgramPrintsItsOwnDirectives) {
    struct Row {
        TaskProgram program;
        std::vector<Payload> printed;
    };
    const Row rows[] = {
        {TaskProgram::gaussian, {Payload::none, Payload::keywords, Payload::extraInput}},
        {TaskProgram::orca, {Payload::none, Payload::keywords, Payload::extraInput}},
        {TaskProgram::xtb, {Payload::none, Payload::args, Payload::extraInput}},
        {TaskProgram::other, {Payload::none, Payload::templateName, Payload::params}},
        {TaskProgram::script, {Payload::none, Payload::runner, Payload::body}},
    };
    for (const auto& row : rows) {
        for (const Payload payload :
             {Payload::none, Payload::keywords, Payload::extraInput, Payload::args, Payload::templateName,
              Payload::params, Payload::runner, Payload::body}) {
            EXPECT_EQ(printsPayload(row.program, payload),
                      std::count(row.printed.begin(), row.printed.end(), payload) == 1)
                << static_cast<int>(row.program) << " " << static_cast<int>(payload);
        }
    }
}

TEST(DroppedFields, AreNamedAsAUserWritesThem) {
    TaskInfo task("a");
    EXPECT_THAT(droppedFields(task), IsEmpty());
    task.keywords = "hf";
    task.extraKeywords = "x";
    EXPECT_THAT(droppedFields(task), IsEmpty());
    task.args = "-v";
    task.body = "echo";
    task.alert = false;
    EXPECT_THAT(droppedFields(task), ::testing::UnorderedElementsAre("alert false", "%args", "%body"));
}

TEST(DroppedFields, KeywordsOfOlderFilesThatMoveAreNone) {
    TaskInfo script("a", TaskProgram::script);
    script.keywords = "bash";
    EXPECT_THAT(droppedFields(script), IsEmpty());
    script.runner = "python3";
    EXPECT_THAT(droppedFields(script), ElementsAre("%keywords"));
    TaskInfo other("b", TaskProgram::other);
    other.keywords = "job=nbo mem=4";
    EXPECT_THAT(droppedFields(other), IsEmpty());
    other.keywords = "job=nbo and more";
    EXPECT_THAT(droppedFields(other), ElementsAre("%keywords"));
}

} // namespace
} // namespace morquill::views
