#include "graph/study_graph.h"

#include "fixtures/faults.h"
#include "fixtures/parse_text.h"
#include "support/text.h"

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

constexpr std::string_view kindNames[] = {"task", "missing", "selection", "plot", "derive"};
constexpr std::string_view arrowNames[] = {" -> ", " ?> ", " .> "};

/// A line for every box (kind and lines), every arrow and every cluster. A box is named by its first line.
std::string printed(const StudyGraph& graph) {
    std::string out;
    const auto name = [&](std::size_t place) { return graph.nodes.at(place).lines.front(); };
    for (const GraphNode& node : graph.nodes) {
        out.append(kindNames[static_cast<std::size_t>(node.kind)]).append(" ");
        out.append(join(node.lines, " | ")).append("\n");
    }
    for (const GraphEdge& edge : graph.edges) {
        out.append(name(edge.from)).append(arrowNames[static_cast<std::size_t>(edge.kind)]);
        out.append(name(edge.to)).append(edge.lines.empty() ? "" : ": ");
        out.append(join(edge.lines, " | ")).append("\n");
    }
    for (const GraphCluster& cluster : graph.clusters) {
        out.append("[").append(cluster.title).append("]");
        for (const std::size_t place : cluster.nodes) {
            out.append(" ").append(name(place));
        }
        out.append("\n");
    }
    return out;
}

std::string drawn(std::string_view text, VariantView view = VariantView::collapsed) {
    return printed(buildStudyGraph(taskdsl::parse(text, true).document, view));
}

std::string expanded(std::string_view text) {
    return drawn(text, VariantView::expanded);
}

TEST(StudyGraph, ADocumentWithoutTasks) {
    EXPECT_EQ(drawn(""), "");
    EXPECT_EQ(expanded("matrix:\n  a: 1, 2\n"), "");
}

TEST(StudyGraph, SourcesThatAreNoTaskAreNotDrawn) {
    EXPECT_EQ(drawn("$a\n%source origin\n$b\n%source restart\n$c\n%source xyz=c.xyz\n$d\n"),
              "task a | gaussian\ntask b | gaussian\ntask c | gaussian\ntask d | gaussian\n");
}

TEST(StudyGraph, EveryNameOfAListIsASource) {
    EXPECT_EQ(drawn("$a\n$b\n$c\n%source \"b,a\"\n"),
              "task a | gaussian\ntask b | gaussian\ntask c | gaussian\nb -> c\na -> c\n"
              "a ?> c: completed a\n"); // the condition that such a list stands for
}

TEST(StudyGraph, BindingsOfOneTaskAreOneArrowWithTheirKeys) {
    EXPECT_EQ(drawn("$a\n$b\n%source\n  geom a\n  geom.x xyz=x.xyz\n  density a kind=fchk\n"),
              "task a | gaussian\ntask b | gaussian\na -> b: geom | density\n");
}

TEST(StudyGraph, ATaskThatTheFileLacksIsABoxOfItsOwn) {
    EXPECT_EQ(drawn("$a\n%source gone\n$b\n%source gone\n%when completed lost\n"),
              "task a | gaussian\ntask b | gaussian\nmissing gone | not in this file\n"
              "missing lost | not in this file\ngone -> a\ngone -> b\nlost ?> b: completed lost\n");
}

TEST(StudyGraph, OfTasksWithOneNameTheFirstIsMeant) {
    const StudyGraph graph =
        buildStudyGraph(taskdsl::parse("$a\n$a\n$b\n%source a\n").document, VariantView::collapsed);
    EXPECT_EQ(graph.edges, (std::vector<GraphEdge>{{0, 2, EdgeKind::source, {}}}));
}

TEST(StudyGraph, AConditionIsAnArrowFromEveryTaskThatItNames) {
    EXPECT_EQ(drawn("$a\n$b\n$c\n%when\n  completed a or {{ b.energy }} < {{ a.energy }}\n  Completed b\n"),
              "task a | gaussian\ntask b | gaussian\ntask c | gaussian\n"
              "a ?> c: completed a or {{ b.energy }} < {{ a.energy }}\n"
              "b ?> c: completed a or {{ b.energy }} < {{ a.energy }} | Completed b\n");
}

TEST(StudyGraph, AConditionThatNamesNoTaskIsALineInTheBox) {
    EXPECT_EQ(drawn("$a\n%when\n  defined force\n  {{ energy }} < 1\n  completed\n"),
              "task a | gaussian | when defined force | when {{ energy }} < 1 | when completed\n");
    EXPECT_EQ(drawn("matrix:\n  k: 1, 2\n$a\n%when defined force\n"),
              "task a | gaussian x 2 | when defined force\n");
}

TEST(StudyGraph, APlaceholderOfATaskThatTheFileLacks) {
    EXPECT_EQ(drawn("$a\n%when {{ gone.energy }} < 1\n"), "task a | gaussian\n"
                                                          "missing gone | not in this file\n"
                                                          "gone ?> a: {{ gone.energy }} < 1\n");
}

TEST(StudyGraph, AllOthersAndPatternsAreOneBoxEach) {
    EXPECT_EQ(drawn("$a\n%when completed AllOthers\n$b\n%when\n  completed allothers\n  completed a?\n"
                    "$c\n%when completed a?\n$\"b*\"\n$d\n%when completed b*\n"),
              "task a | gaussian\ntask b | gaussian\ntask c | gaussian\ntask b* | gaussian\n"
              "task d | gaussian\nselection all other tasks\nselection a? | every match\n"
              "all other tasks ?> a: completed AllOthers\n"
              "all other tasks ?> b: completed allothers\na? ?> b: completed a?\na? ?> c: completed a?\n"
              "b* ?> d: completed b*\n");
}

TEST(StudyGraph, ALongConditionIsCut) {
    const std::string boxes = "task a | gaussian\ntask b | gaussian\n";
    const std::string whole = "completed a and defined " + std::string(56, 'x'); // 80 characters
    EXPECT_EQ(drawn("$a\n$b\n%when " + whole + "\n"), boxes + "a ?> b: " + whole + "\n");
    EXPECT_EQ(drawn("$a\n$b\n%when " + whole + "x\n"), boxes + "a ?> b: " + whole + "...\n");
}

TEST(StudyGraph, AConditionThatNestsTooDeepIsAFaultWithItsPlace) {
    std::string text = "a";
    for (int i = 0; i < 60; ++i) {
        text = i % 2 == 0 ? "(b or " + text + ")" : "(b and " + text + ")";
    }
    const auto document = taskdsl::parse("$a\n%when " + text + "\n").document;
    const auto message = taskdsl::messageOf([&] { (void)buildStudyGraph(document, VariantView::collapsed); });
    EXPECT_EQ(message.substr(0, message.find("1-") + 1), "t.mq:2:1");
    EXPECT_NE(message.find(": error: %when condition nests groups more than 50 levels deep"),
              std::string::npos)
        << message;
}

TEST(StudyGraph, NamesAreMadeVisible) {
    EXPECT_EQ(drawn(std::string_view("$a\0b\xff\n%source \x1b\n", 19)),
              "task a\\x00b\\xff | gaussian\nmissing \\x1b | not in this file\n\\x1b -> a\\x00b\\xff\n");
}

// Variants.

constexpr std::string_view twoVariants = "matrix:\n  k: 1, 2\n";

TEST(StudyGraph, VariantsAreCountedOrDrawn) {
    const std::string text = std::string(twoVariants) + "$a\n$b\n%source a\n%when completed a\n";
    EXPECT_EQ(drawn(text), "task a | gaussian x 2\ntask b | gaussian x 2\na -> b\na ?> b: completed a\n");
    EXPECT_EQ(expanded(text), "task a__k_1 | gaussian\ntask b__k_1 | gaussian\n"
                              "task a__k_2 | gaussian\ntask b__k_2 | gaussian\n"
                              "a__k_1 -> b__k_1\na__k_1 ?> b__k_1: completed a__k_1\n"
                              "a__k_2 -> b__k_2\na__k_2 ?> b__k_2: completed a__k_2\n"
                              "[k_1] a__k_1 b__k_1\n[k_2] a__k_2 b__k_2\n");
}

TEST(StudyGraph, OneCombinationIsNoMatrix) {
    const std::string text = "matrix:\n  k: 1\n$a_[k]\n$b\n%source a_[k]\n@plot bar p\nfrom variants a_[k]\n"
                             "x k\ny e\n@end\n";
    EXPECT_EQ(drawn(text), "task a_[k] | gaussian\ntask b | gaussian\nplot p | bar plot\n"
                           "a_[k] -> b\na_[k] .> p\n");
    EXPECT_EQ(expanded(text), "task a_1 | gaussian\ntask b | gaussian\nplot p | bar plot\n"
                              "a_1 -> b\na_1 .> p\n");
}

TEST(StudyGraph, ReferencesAreThoseOfTheVariants) {
    // What is written names no task; what it becomes does.
    EXPECT_EQ(drawn("define:\n  x: a\nmatrix:\n  k: a, b\n$a\n$b\n$c\n%source [k]\n%when completed [x]\n"),
              "task a | gaussian x 2\ntask b | gaussian x 2\ntask c | gaussian x 2\n"
              "a -> c\na ?> c: completed [x]\nb -> c\n");
    EXPECT_EQ(drawn("define:\n  x: a\n$a\n$c\n%source [x]\n"),
              "task a | gaussian\ntask c | gaussian\na -> c\n");
}

// Plots and derives.

TEST(StudyGraph, PlotsOfTasksAndOfTheFile) {
    EXPECT_EQ(drawn("$a\n%plot histogram\nx e\n$b\n@plot barrier path\npoint x value {{ b.e }}\n"
                    "point y value energy(gone)\n@end\n@plot bar t\nfrom task a\nx k\ny e\n@end\n"),
              "task a | gaussian\ntask b | gaussian\nplot histogram | histogram plot\n"
              "plot path | barrier plot\nplot t | bar plot\nmissing gone | not in this file\n"
              "a .> histogram\nb .> path\ngone .> path\na .> t\n");
}

TEST(StudyGraph, PlotsOfVariants) {
    const std::string text = std::string(twoVariants) +
                             "$b\n$a\n%plot histogram p_[k]\nx {{ b.e }}\n%plot bar q\n"
                             "x k\ny e\n";
    EXPECT_EQ(drawn(text), "task b | gaussian x 2\ntask a | gaussian x 2\n"
                           "plot p_[k] | histogram plot x 2\nplot q | bar plot x 2\n"
                           "a .> p_[k]\na .> q\nb .> p_[k]\n");
    EXPECT_EQ(expanded(text), "task b__k_1 | gaussian\ntask a__k_1 | gaussian\n"
                              "task b__k_2 | gaussian\ntask a__k_2 | gaussian\n"
                              "plot p_1 | histogram plot\nplot q | bar plot\n"
                              "plot p_2 | histogram plot\nplot q | bar plot\nselection b | all variants\n"
                              "a__k_1 .> p_1\na__k_1 .> q\na__k_2 .> p_2\na__k_2 .> q\n"
                              "b__k_1 .> b\nb__k_2 .> b\nb .> p_1\nb .> p_2\n"
                              "[k_1] b__k_1 a__k_1\n[k_2] b__k_2 a__k_2\n");
}

TEST(StudyGraph, DerivesOfTasksAndOfDerives) {
    EXPECT_EQ(
        drawn("$a\n$b\n@derive d\nlet x = energy(a) - {{ b.e }}\nemit x = x\n@end\n"
              "@derive t\nfrom derived(d.rows)\nselect x = x\nemit table rows\n@end\n"
              "@derive u\nfrom derived(nothing.rows)\nselect x = x\nemit table rows\n@end\n"),
        "task a | gaussian\ntask b | gaussian\nderive d | derive\nderive t | derive\nderive u | derive\n"
        "missing nothing | no derive of this file\na .> d\nb .> d\nd .> t\nnothing .> u\n");
}

TEST(StudyGraph, TasksThatADeriveTakesTogether) {
    const auto rows = [](const std::string& source) {
        return drawn("$a\n$b\n@derive d\nfrom " + source +
                     "\nselect x = energy(self)\nemit table rows\n@end\n")
            .substr(std::string_view("task a | gaussian\ntask b | gaussian\nderive d | derive\n").size());
    };
    EXPECT_EQ(rows("tasks()"), "selection tasks(\"*\")\ntasks(\"*\") .> d\n");
    EXPECT_EQ(rows("tasks(\"a\", \"b\")"), "a .> d\nb .> d\n");
    EXPECT_EQ(rows("tasks(\"a\", \"b?\", program=\"orca\")"),
              "selection tasks(\"a\", \"b?\", program=\"orca\")\n"
              "tasks(\"a\", \"b?\", program=\"orca\") .> d\n");
    EXPECT_EQ(rows("tasks(\"*\", template=\"b\")"), "b .> d\n");
    EXPECT_EQ(rows("atoms(a) as x\njoin atoms(b) as y on atom.id"), "a .> d\nb .> d\n");
}

TEST(StudyGraph, ManyUsesOfManyVariantsAreFewArrows) {
    std::string values = "1";
    std::string plots;
    for (int i = 2; i <= 100; ++i) {
        values += ", " + std::to_string(i);
    }
    for (int i = 0; i < 100; ++i) {
        plots += "@plot bar p" + std::to_string(i) + "\nfrom variants a\nx k\ny e\n@end\n";
    }
    const StudyGraph graph = buildStudyGraph(
        taskdsl::parse("matrix:\n  k: " + values + "\n$a\n" + plots).document, VariantView::expanded);
    EXPECT_EQ(graph.nodes.size(), 201U);
    EXPECT_EQ(graph.edges.size(), 200U);
}

TEST(NodeGroups, TheFootAndWhatIsLoose) {
    StudyGraph graph;
    graph.nodes = {{NodeKind::task, {}, {}},      {NodeKind::derive, {}, {}}, {NodeKind::task, {}, {}},
                   {NodeKind::selection, {}, {}}, {NodeKind::plot, {}, {}},   {NodeKind::missing, {}, {}}};
    graph.clusters = {{"c", {2}}};
    EXPECT_EQ(footNodes(graph), (std::vector<std::size_t>{1, 4}));
    EXPECT_EQ(looseNodes(graph), (std::vector<std::size_t>{0, 3, 5}));
}

} // namespace
} // namespace morquill::graph
