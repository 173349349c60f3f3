#include "project/rename/task_references.h"

#include "fixtures/scratch_tree.h"
#include "taskdsl/parser/task_parser.h"

namespace morquill::project {
namespace {

class TaskReferences : public ScratchTree {
  protected:
    /// The references of all places that have some: "<file name>: <text> <text>", a field in braces.
    std::vector<std::string> collect(const std::string& text) {
        write("a.mq", text);
        const auto document = taskdsl::TaskParser().parseFile(at("a.mq"));
        std::vector<std::string> lines;
        for (const auto& place : collectTaskReferences(document)) {
            std::string line = std::filesystem::path(place.file).filename().string() + ":";
            for (const auto& reference : place.references) {
                line += reference.form == ReferenceForm::field ? " {" + reference.text + "}"
                                                               : " " + reference.text;
            }
            if (!place.references.empty()) {
                lines.push_back(line);
            }
        }
        return lines;
    }
};

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(TaskReferences, AreThoseOfEveryDirectiveThatNamesTasks) {
    EXPECT_THAT(
        collect("$a\n%source opt\n%control\n    guess sp_[m]\n%when completed x and {{ y.energy }} < 0\n"
                "$b\n%source\n    geom g\n    geom.two xyz=a.xyz\n%interface consume p\n"
                "$p\n%interface provider\n"),
        ElementsAre("a.mq: opt", "a.mq: sp_[m]", "a.mq: x {y.energy}", "a.mq: g", "a.mq: p"));
    EXPECT_THAT(
        collect("$a\n%source origin\n%control\n    guess true\n$b\n%source xyz=a.xyz\n%keywords opt\n"),
        IsEmpty());
}

TEST_F(TaskReferences, KnowTheFileThatTheyAreWrittenIn) {
    write("inner.mq", "$soc\n%source opt\n");
    // The lines of a fragment have the place of the line that includes it.
    write("f.mqlib", "&FRAGMENT task wait\n%when completed opt\n");
    EXPECT_THAT(
        collect("&INCLUDE f.mqlib as f\n&INCLUDE inner.mq\n$opt\n%program orca\n$last\n&INCLUDE f.wait\n"),
        ElementsAre("inner.mq: opt", "a.mq: opt"));
}

TEST_F(TaskReferences, AreThoseOfPlotsAndDerives) {
    EXPECT_THAT(collect("$opt\n%program orca\n@plot excited levels\n  column S task \"opt\" multiplicity "
                        "singlet\n  roots 1\n@end\n"
                        "@derive d\n    let e = energy(opt)\n    emit e = e\n@end\n"),
                ElementsAre("a.mq: opt", "a.mq: opt"));
}

} // namespace
} // namespace morquill::project
