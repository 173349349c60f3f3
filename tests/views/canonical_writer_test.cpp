#include "views/canonical_writer.h"

#include "fixtures/faults.h"

#include <gtest/gtest.h>

namespace morquill::views {
namespace {

using namespace taskdsl;

constexpr const char* headLine = "dsl_version: 2\n\n";

std::string sourceOf(const TaskDocument& document) {
    return renderCanonicalDocument(document, CanonicalView::sourceView);
}

std::string taskText(const TaskInfo& task) {
    TaskDocument document;
    document.tasks.edit().push_back(task);
    const std::string text = sourceOf(document);
    EXPECT_TRUE(text.starts_with(headLine));
    return text.substr(std::string_view(headLine).size());
}

TEST(CanonicalWriter, AnEmptyDocumentIsItsHead) {
    EXPECT_EQ(sourceOf({}), headLine);
    TaskDocument document;
    document.settings = {{"dsl_version", "7"}};
    EXPECT_EQ(sourceOf(document), headLine);
}

TEST(CanonicalWriter, TheHeadIsSortedAndQuoted) {
    TaskDocument document;
    document.settings = {{"totcore", "8"}, {"Zed", "a b"}, {"dsl_version", "1"}, {"a b", ""}};
    document.defines = {{"z", "x:y"}, {"a", "plain-word"}, {"e", ""}};
    EXPECT_EQ(sourceOf(document), "dsl_version: 2\n"
                                  "Zed: \"a b\"\n"
                                  "a b: \"\"\n"
                                  "totcore: 8\n"
                                  "define:\n"
                                  "  a: plain-word\n"
                                  "  e: \"\"\n"
                                  "  z: \"x:y\"\n"
                                  "\n");
}

TEST(CanonicalWriter, MatrixFormsAndViews) {
    TaskDocument document;
    document.defines = {{"d", "1"}};
    document.matrixValues = {{"b", {"2", "x y"}}, {"a", {}}};
    EXPECT_EQ(sourceOf(document), "dsl_version: 2\ndefine:\n  d: 1\nmatrix:\n  a: \n  b: 2, \"x y\"\n\n");
    document.matrixAxes = {{"z", {"1", "2"}, {}, {}}, {"y", {"p"}, {}, {}}};
    EXPECT_EQ(sourceOf(document), "dsl_version: 2\ndefine:\n  d: 1\nmatrix:\n  z: 1, 2\n  y: p\n\n");
    document.matrixAxes[1].names = {"one, two"};
    document.matrixAxes.push_back({"m", {"q", "r"}, {}, "z"});
    EXPECT_EQ(sourceOf(document), "dsl_version: 2\ndefine:\n  d: 1\nmatrix:\n"
                                  "  - z: 1, 2\n"
                                  "  - y: p\n"
                                  "    name: \"one, two\"\n"
                                  "  - m: q, r\n"
                                  "    map: z\n\n");
    EXPECT_EQ(renderCanonicalDocument(document, CanonicalView::matrixExpandedView),
              "dsl_version: 2\ndefine:\n  d: 1\n\n");
}

TEST(CanonicalWriter, TheViewsChooseTheirTasks) {
    TaskDocument document;
    document.tasks = std::vector{TaskInfo("v1"), TaskInfo("v2")};
    document.templateTasks = std::vector{TaskInfo("t")};
    EXPECT_EQ(sourceOf(document), std::string(headLine) + "$t\n  %source origin\n");
    EXPECT_EQ(renderCanonicalDocument(document, CanonicalView::matrixExpandedView),
              std::string(headLine) + "$v1\n  %source origin\n\n$v2\n  %source origin\n");
    document.templateTasks.reset();
    EXPECT_EQ(sourceOf(document), std::string(headLine) + "$v1\n  %source origin\n\n$v2\n  %source origin\n");
}

TEST(CanonicalWriter, NamesAreRaw) {
    TaskInfo task("a b");
    task.quoted = true;
    EXPECT_EQ(taskText(task), "$a b\n  %source origin\n");
}

TEST(CanonicalWriter, SourceForms) {
    TaskInfo task("a");
    const auto line = [&task](SourceSpec source) {
        task.source = std::move(source);
        const std::string text = taskText(task);
        return text.substr(3, text.size() - 4);
    };
    EXPECT_EQ(line(SourceNone{}), "  %source origin");
    EXPECT_EQ(line(SourceRestart{}), "  %source restart");
    EXPECT_EQ(line(SourceTaskList{{"b"}}), "  %source b");
    EXPECT_EQ(line(SourceTaskList{{"b", "c"}}), "  %source \"b,c\"");
    EXPECT_EQ(line(parseSourceText("xyz=a.xyz")), "  %source xyz=a.xyz");
    EXPECT_EQ(line(parseSourceText("xyz=a.xyz frame=2 more")), "  %source \"xyz=a.xyz frame=2 more\"");
    EXPECT_EQ(line(parseSourceText("xyz=\"a b.xyz\"")), "  %source \"xyz=\\\"a b.xyz\\\"\"");
    // A frame that a define has brought, and that is no number.
    EXPECT_EQ(messageOf([&] {
                  (void)line(SourceXyz{"a.xyz", 0, false, {"frame=x"}});
              }),
              "%source xyz frame selector must be a positive integer");
}

TEST(CanonicalWriter, StructuredSourceIsABlock) {
    TaskInfo task("a");
    task.source = SourceStructured{
        {parseSourceBinding("geom.main t kind='a b'"), parseSourceBinding("geom.x xyz=f.xyz frame=2")}};
    EXPECT_EQ(taskText(task), "$a\n  %source\n    geom t kind=\"a b\"\n    geom.x xyz=f.xyz frame=2\n");
}

TEST(CanonicalWriter, BatchForms) {
    TaskInfo task("a");
    task.batchCollect.edit() = {{"x", "", false}};
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n") << "no lane, no %batch";
    task.batchLanes = 4;
    task.batchCollect.reset();
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %batch 4\n");
    task.batchCluster.edit().present = true;
    task.batchCollect.edit() = {{"*.xyz", "out dir", true}, {"a b", "", false}};
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %batch\n    lane 4\n"
                              "    cluster dist geo=0.1 energy=0.25 temperature=298.15\n"
                              "    collect required *.xyz as out dir\n"
                              "    collect \"a b\"\n");
    task.batchCollect.reset();
    task.batchCluster.edit().metric = ClusterMetric::rmsd;
    task.batchCluster.edit().energyOff = true;
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %batch\n    lane 4\n"
                              "    cluster rmsd geo=0.1 energy=off temperature=298.15\n");
    task.batchCluster.edit().energyOff = false;
    task.batchCluster.edit().hasMinWeight = task.batchCluster.edit().hasAccumulation = true;
    task.batchCluster.edit().accumulation = 0.95;
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %batch\n    lane 4\n"
                              "    cluster rmsd geo=0.1 energy=0.25 temperature=298.15 min=0 accum=0.95\n");
}

TEST(CanonicalWriter, ControlItemsInTheirOrder) {
    TaskInfo task("a");
    task.totalCores = -1;
    task.alert = false;
    task.gaussianGeomControl = "check";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n") << "what has no line is dropped";
    task.totalCores = 8;
    task.totalMemory = 16000;
    task.gpuCount = 1;
    task.gpuType = "NVIDIA A100";
    task.gpuMemory = 40;
    task.guessEnabled = true;
    task.guessConverter = "mokit";
    task.waitFreq = false;
    task.localFirst = true;
    task.externalInput = true;
    task.finalGeom = "a b.xyz";
    task.verbosity = "p";
    EXPECT_EQ(taskText(task),
              "$a\n  %source origin\n  %control\n"
              "    totcore 8\n    totmem 16000\n    gpus 1\n    gpu_type NVIDIA A100\n"
              "    gpu_mem 40\n    guess true\n    guess_converter mokit\n    waitfreq false\n"
              "    localfirst true\n    externalinp true\n    finalgeom \"a b.xyz\"\n"
              "    verbosity p\n");
    task = TaskInfo("a");
    task.guessEnabled = true;
    task.guessSourceTask = "b";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %control\n    guess b\n");
}

TEST(CanonicalWriter, PayloadOfInputPrograms) {
    for (const auto program : {TaskProgram::gamess, TaskProgram::mrcc, TaskProgram::maple, TaskProgram::amesp,
                               TaskProgram::bdf, TaskProgram::mopac, TaskProgram::fcclasses}) {
        TaskInfo task("a", program);
        task.keywords = "k w";
        task.extraKeywords = "x";
        task.args = "dropped";
        EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %program " + std::string(programName(program)) +
                                      "\n  %keywords \"k w\"\n  %extrainput << EOF\nx\nEOF\n");
    }
    TaskInfo task("a");
    task.keywords = "one\ntwo";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %keywords << EOF\none\ntwo\nEOF\n");
    task.keywords = "one\rtwo";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %keywords << EOF\none\rtwo\nEOF\n");
    task.keywords = "EOF\nx";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %keywords << EOF\nEOF\nx\nEOF\n");
}

TEST(CanonicalWriter, PayloadOfOrcaJoinsItsBlock) {
    TaskInfo task("a", TaskProgram::orca);
    task.orcaBlock = "%scf end";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %program orca\n  %extrainput << EOF\n%scf end\nEOF\n");
    task.extraKeywords = "first";
    EXPECT_EQ(taskText(task),
              "$a\n  %source origin\n  %program orca\n  %extrainput << EOF\nfirst\n%scf end\nEOF\n");
    task.extraKeywords = "first\n";
    EXPECT_EQ(taskText(task),
              "$a\n  %source origin\n  %program orca\n  %extrainput << EOF\nfirst\n%scf end\nEOF\n");
}

TEST(CanonicalWriter, PayloadOfXtb) {
    TaskInfo task("a", TaskProgram::xtb);
    task.args = "--gfn 2";
    task.extraKeywords = "$constrain";
    task.keywords = "dropped";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %program xtb\n  %args \"--gfn 2\"\n"
                              "  %extrainput << EOF\n$constrain\nEOF\n");
}

TEST(CanonicalWriter, PayloadOfOther) {
    TaskInfo task("a", TaskProgram::other);
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %program other\n");
    task.keywords = "job=\"my job\" b=1 c=\"x y\"";
    EXPECT_EQ(taskText(task),
              "$a\n  %source origin\n  %program other\n  %template \"my job\"\n  %param b=1 c=\"x y\"\n");
    task.templateName = "t";
    task.paramValues = " p=1 ";
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %program other\n  %template t\n  %param p=1\n");
}

TEST(CanonicalWriter, PayloadOfScript) {
    TaskInfo task("a", TaskProgram::script);
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %program script\n  %body << EOF\nEOF\n");
    task.keywords = "/bin/sh -e";
    task.body = "echo";
    EXPECT_EQ(
        taskText(task),
        "$a\n  %source origin\n  %program script\n  %runner \"/bin/sh -e\"\n  %body << EOF\necho\nEOF\n");
    task.runner = "bash";
    EXPECT_EQ(taskText(task),
              "$a\n  %source origin\n  %program script\n  %runner bash\n  %body << EOF\necho\nEOF\n");
}

TEST(CanonicalWriter, BlocksAfterThePayload) {
    TaskInfo task("a");
    task.whenEntries.edit() = {{"completed b", {}}, {"x == 1", {}}};
    task.preProcessCommands.edit() = {"p \"q\""};
    task.processCommands.edit() = {"c", "d"};
    task.modEntries.edit() = {
        {"charge:add", "1"}, {"basisset", "def2-TZVP role=AUXJ"}, {"geom:select", "1-3 5"}, {"solo", ""}};
    task.strucId = "s 1";
    task.keywords = "k";
    EXPECT_EQ(taskText(task),
              "$a\n  %source origin\n  %when\n    completed b\n    x == 1\n  %keywords k\n"
              "  %preprocess\n    p \"q\"\n  %process\n    c\n    d\n"
              "  %mod\n    charge add 1\n    basisset def2-TZVP role=aux-j\n    geom select 1-3 5\n"
              "    solo\n  %meta\n    strucid s 1\n");
    task = TaskInfo("a");
    task.preProcessCommands.edit() = {"a", "%b", "$c"};
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %preprocess\n    a\n    \\\n    %b\n    \\\n    $c\n");
    task = TaskInfo("a");
    task.modEntries.edit() = {{"charge", "1"}, {"spin", "2"}};
    EXPECT_EQ(taskText(task), "$a\n  %source origin\n  %mod\n    charge 1\n    spin 2\n");
}

TEST(CanonicalMatrix, IsAListWhenAnAxisHasNamesOrFollowsAnother) {
    taskdsl::TaskDocument document;
    EXPECT_EQ(matrixForm(document), MatrixForm::lines);
    document.matrixAxes.push_back({});
    EXPECT_EQ(matrixForm(document), MatrixForm::lines);
    taskdsl::MatrixAxis& axis = document.matrixAxes.front();
    axis.key = "k";
    axis.values = {"a", "b"};
    EXPECT_EQ(canonicalAxis(axis, MatrixForm::lines), "  k: a, b");
    EXPECT_EQ(canonicalAxis(axis, MatrixForm::list), "  - k: a, b");
    axis.names = {"x", "y"};
    EXPECT_EQ(matrixForm(document), MatrixForm::list);
    axis.names.clear();
    axis.map = "j";
    EXPECT_EQ(matrixForm(document), MatrixForm::list);
}

} // namespace
} // namespace morquill::views
