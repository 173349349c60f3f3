#include "project/rename/document_shape.h"

#include "taskdsl/parser/task_parser.h"

#include <gtest/gtest.h>

namespace morquill::project {
namespace {

bool sameShape(const std::string& before, const std::string& after) {
    const taskdsl::TaskParser parser;
    return hasSameShape(parser.parseText(before, "t.mq"), parser.parseText(after, "t.mq"));
}

TEST(DocumentShape, IsTheSameUnderOtherNames) {
    EXPECT_TRUE(sameShape("$a\n", "$b\n"));
    EXPECT_TRUE(
        sameShape("$a\n$c\n%source a\n%when completed a\n", "$b\n$c\n%source b\n%when completed b\n"));
    EXPECT_TRUE(sameShape("$a\n$d\n$c\n%when completed a and completed d\n",
                          "$b\n$d\n$c\n%when completed b and completed d\n"));
    EXPECT_TRUE(sameShape("$a\n@derive d\n    let e = energy(a)\n    emit e = e\n@end\n",
                          "$b\n@derive d\n    let e = energy(b)\n    emit e = e\n@end\n"));
}

TEST(DocumentShape, ChangesWithWhatATaskDependsOn) {
    struct Row {
        const char* before;
        const char* after;
    };
    const Row rows[] = {
        {"$a\n$c\n%source a\n", "$b\n$c\n%source origin\n"},
        {"$a\n$c\n%source\n    geom a\n    geom.x a\n", "$b\n$c\n%source\n    geom b\n"},
        {"$a\n$c\n%when completed a\n", "$b\n$c\n%when completed allothers\n"},
        {"$a\n$d\n$c\n%when completed a and completed d\n", "$b\n$d\n$c\n%when completed b or completed d\n"},
        {"$a\n@derive d\n    let e = energy(a)\n    emit e = e\n@end\n", "$b\n"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(sameShape(row.before, row.after)) << row.after;
    }
}

} // namespace
} // namespace morquill::project
