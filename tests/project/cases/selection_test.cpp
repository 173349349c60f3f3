#include "project/cases/selection.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TaskCatalog sampleCatalog() {
    TaskCatalog catalog;
    catalog.availableTasks = {"opt", "optfreq", "sp", "a[1]"};
    catalog.expandedTasks = {"opt__x", "opt__y", "optfreq", "sp", "a[1]"};
    catalog.logicalNames = catalog.availableTasks;
    catalog.expansionsByName = {
        {"opt", {"opt__x", "opt__y"}}, {"optfreq", {"optfreq"}}, {"sp", {"sp"}}, {"a[1]", {"a[1]"}},
        {"opt__x", {"opt__x"}},        {"opt__y", {"opt__y"}}};
    return catalog;
}

TEST(SelectTaskBlocks, NamesAndWildcards) {
    const struct {
        std::vector<std::string> names;
        Wildcards wildcards;
        std::vector<std::string> selected;
        std::vector<std::string> missing;
    } rows[] = {
        {{"sp", "opt"}, Wildcards::matched, {"sp", "opt__x", "opt__y"}, {}},
        {{"opt__y", "opt"}, Wildcards::matched, {"opt__y", "opt__x"}, {}},
        {{"opt*"}, Wildcards::matched, {"opt__x", "opt__y", "optfreq"}, {}},
        {{"*"}, Wildcards::matched, {"opt__x", "opt__y", "optfreq", "sp", "a[1]"}, {}},
        {{"?p"}, Wildcards::matched, {"sp"}, {}},
        {{"[os]p*"}, Wildcards::matched, {"opt__x", "opt__y", "optfreq", "sp"}, {}},
        {{"a\\[1]"}, Wildcards::matched, {"a[1]"}, {}},
        {{"a[1]"}, Wildcards::matched, {}, {"a[1]"}},
        {{"a[1]"}, Wildcards::plain, {"a[1]"}, {}},
        {{"opt__*"}, Wildcards::matched, {}, {"opt__*"}},
        {{"opt*"}, Wildcards::plain, {}, {"opt*"}},
        {{"zz*", "sp", "none", ""}, Wildcards::matched, {"sp"}, {"zz*", "none"}},
        {{"OPT"}, Wildcards::matched, {}, {"OPT"}},
        {{}, Wildcards::matched, {}, {}},
    };
    for (const auto& row : rows) {
        const auto found = selectTaskBlocks(sampleCatalog(), row.names, row.wildcards);
        EXPECT_EQ(found.selected, row.selected) << ::testing::PrintToString(row.names);
        EXPECT_EQ(found.missing, row.missing) << ::testing::PrintToString(row.names);
    }
}

TEST(SelectTaskBlocks, APatternOfManyStarsIsCheap) {
    TaskCatalog catalog;
    catalog.logicalNames = {std::string(5'000, 'a')};
    std::string pattern;
    for (int i = 0; i < 50; ++i) {
        pattern += "*a";
    }
    EXPECT_THAT(selectTaskBlocks(catalog, {pattern + "b"}, Wildcards::matched).missing,
                ElementsAre(pattern + "b"));
}

TEST(FormatSelection, ADollarStandsBeforeEachName) {
    EXPECT_EQ(formatSelection({"a", "b c"}), "$a, $b c");
    EXPECT_EQ(formatSelection({}), "");
}

class Selection : public ScratchTree {
  protected:
    Output fromFile(const std::string& file, const std::vector<std::string>& names,
                    std::string_view input = "",
                    std::string_view title = "select task blocks to update comd:") {
        return run(input, [&] {
            return keep(selectFromFile(file.empty() ? file : at(file), "task file", names, title));
        });
    }
    Output fromProject(const std::string& file, const std::vector<std::string>& names,
                       std::string_view input = "") {
        return run(input, [&] {
            return keep(selectFromProject(at("p"), file.empty() ? file : at(file), names, "pick:"));
        });
    }
    /// True when there was a choice, which is kept.
    bool keep(std::optional<std::vector<std::string>> choice) {
        selected = choice.value_or(std::vector<std::string>());
        return choice.has_value();
    }
    void makeProject() const {
        write("p/demo.projmq", "$opt\n%keywords a\n$soc\n%keywords a\n");
        write("p/m/m.mq", "$own\n%keywords a\n");
    }

    std::vector<std::string> selected;
};

TEST_F(Selection, NamesOfACaseAreTakenWithoutAQuestion) {
    write("m/m.mq", "$opt\n%keywords a\n$soc\n%keywords a\n");
    Output output = fromFile("m/m.mq", {"soc", "opt"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "[mqkit] task file found: m.mq\n");
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(selected, ElementsAre("soc", "opt"));

    output = fromFile("m/m.mq", {"o*", "opt", "x"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.out, "[mqkit] task file found: m.mq\n");
    EXPECT_EQ(output.err,
              "[mqkit][ERROR] task block not found in task file: o*, x\navailable task blocks: opt, soc\n");
}

TEST_F(Selection, WithoutNamesTheMenuAsks) {
    write("m/m.mq", "$opt\n%keywords a\n$soc\n%keywords a\n$\"a[b]\"\n%keywords a\n");
    const std::string menu =
        "[mqkit] task file found: m.mq\n\n[mqkit] select task blocks to update comd:\n\n[mqkit] "
        "available task blocks:\n  1. opt\n  2. soc\n  3. a[b]\nInput index (e.g. 1 2 3 or "
        "1,2,3): ";
    Output output = fromFile("m/m.mq", {}, "3,1 1 99\n");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, menu);
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(selected, ElementsAre("opt", "a[b]"));
    for (const char* nothing : {"", "\n", "x\n", "99\n"}) {
        output = fromFile("m/m.mq", {}, nothing);
        EXPECT_EQ(output.status, 1);
        EXPECT_EQ(output.out, menu);
        EXPECT_THAT(selected, IsEmpty());
    }
    output = fromFile("m/m.mq", {}, "", "");
    EXPECT_EQ(output.out, "[mqkit] task file found: m.mq\n" + menu.substr(menu.find("\n[mqkit] available")));
}

TEST_F(Selection, TheMenuOfAMatrixShowsWhatIsWritten) {
    write("m/m.mq", "matrix:\n  s: x,y\n$opt\n%keywords [s]\n$soc\n%keywords [s]\n");
    Output output = fromFile("m/m.mq", {}, "2\n");
    EXPECT_THAT(output.out, ::testing::HasSubstr("blocks:\n  1. opt\n  2. soc\nInput"));
    EXPECT_THAT(selected, ElementsAre("soc__s_x", "soc__s_y"));
    output = fromFile("m/m.mq", {"opt__s_y"});
    EXPECT_THAT(selected, ElementsAre("opt__s_y"));
    output = fromFile("m/m.mq", {"nope"});
    EXPECT_EQ(output.err,
              "[mqkit][ERROR] task block not found in task file: nope\navailable task blocks: opt, soc\n"
              "expanded task blocks: opt__s_x, soc__s_x, opt__s_y, soc__s_y\n");
}

TEST_F(Selection, AFileWithoutBlocksIsRefused) {
    Output output = fromFile("", {});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] task file is empty\n");
    write("m/m.mq", "# nothing\n");
    output = fromFile("m/m.mq", {"opt"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] no task blocks were found in: m.mq\n");
    write("m/m.mq", "$opt\n%oops\n");
    output = fromFile("m/m.mq", {"opt"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] failed to parse task file: " + at("m/m.mq") +
                              ":2:1-2:6: error: task 'opt' contains unknown directive '%oops'\n");
}

TEST_F(Selection, AProjectOffersTheBlocksOfAllItsFiles) {
    makeProject();
    Output output = fromProject("p/demo.projmq", {"o*"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "[mqkit] project template found: demo.projmq\n");
    EXPECT_THAT(selected, ElementsAre("opt", "own"));

    output = fromProject("p/demo.projmq", {}, "3 2\n");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out,
              "[mqkit] project template found: demo.projmq\n\n[mqkit] pick:\n\n[mqkit] available task "
              "blocks:\n  1. opt\n  2. soc\n  3. own\nInput index (e.g. 1 2 3 or 1,2,3): ");
    EXPECT_THAT(selected, ElementsAre("soc", "own"));

    output = fromProject("p/demo.projmq", {"zz*", "opt", "no"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] task block not found in project template/case context: zz*, no\n"
                          "available task blocks: opt, soc, own\n");
}

TEST_F(Selection, AProjectWithoutBlocksIsRefused) {
    Output output = fromProject("", {});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "[mqkit][ERROR] .projmq project template not found: " + at("p") + "\n");
    write("p/demo.projmq", "\n");
    output = fromProject("p/demo.projmq", {});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.out, "[mqkit] project template found: demo.projmq\n");
    EXPECT_EQ(output.err,
              "[mqkit][ERROR] no task blocks were found in project template or case files: demo.projmq\n");
    write("p/demo.projmq", "%oops\n");
    output = fromProject("p/demo.projmq", {});
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.err, ::testing::StartsWith("[mqkit][ERROR] failed to parse task file: "));
}

} // namespace
} // namespace morquill::project
