#include "graph/study_graph.h"

#include "graph/graph_draft.h"
#include "graph/visible_text.h"
#include "support/fault.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/task_references.h"
#include "taskdsl/plot/task_references.h"
#include "taskdsl/task/when_expr.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace morquill::graph {

using taskdsl::DeriveBlock;
using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

namespace {

using NodesByName = std::unordered_map<std::string_view, std::size_t>;

/// "opt", or "opt x 8" for several.
std::string counted(std::string_view text, std::size_t count) {
    std::string line(text);
    return count > 1 ? line.append(" x ").append(std::to_string(count)) : line;
}

std::string shortened(std::string_view text) {
    return visibleStart(text, maxLabelLength);
}

/// The rows that a derive takes from many tasks, as they are written.
std::string tasksSourceText(const taskdsl::derive::TasksSource& source) {
    std::string text = "tasks(";
    for (const auto& pattern : source.patterns) {
        text += &pattern == &source.patterns.front() ? "\"" : ", \"";
        text.append(pattern) += '"';
    }
    if (!source.program.empty()) {
        text.append(", program=\"").append(source.program) += '"';
    }
    return text += ')';
}

/// Draws the tasks first, then derives and plots, and joins them when all have their place.
class StudyDrawing {
  public:
    StudyDrawing(const TaskDocument& source, VariantView view)
        : document_(source), declaredCount_(source.templateTasks.size()),
          combinations_(declaredCount_ == 0 ? 0 : source.tasks.size() / declaredCount_),
          collapsed_(view == VariantView::collapsed) {}

    StudyGraph draw() {
        addTasks();
        addDerives();
        addPlots();
        for (std::size_t i = 0; i < document_.tasks.size(); ++i) {
            joinTask(i);
        }
        for (std::size_t i = 0; i < document_.derives.size(); ++i) {
            joinDerive(document_.derives[i], firstDerive_ + i);
        }
        for (const auto& [plot, node] : plots_) {
            joinPlot(*plot, node);
        }
        return draft_.take();
    }

  private:
    /// Every combination has one variant of each declared task, in their order.
    [[nodiscard]] const TaskInfo& declaredOf(std::size_t taskIndex) const {
        return document_.templateTasks[taskIndex % declaredCount_];
    }
    [[nodiscard]] std::size_t nodeOfTask(std::size_t taskIndex) const noexcept {
        return collapsed_ ? taskIndex % declaredCount_ : taskIndex;
    }
    /// True for the first task that its box stands for.
    [[nodiscard]] bool leads(std::size_t taskIndex) const noexcept {
        return nodeOfTask(taskIndex) == taskIndex;
    }

    void addTasks() {
        const std::size_t count = collapsed_ ? combinations_ : 1;
        for (std::size_t i = 0; i < document_.tasks.size(); ++i) {
            const TaskInfo& task = document_.tasks[i];
            if (leads(i)) {
                const std::string& name = collapsed_ ? declaredOf(i).name : task.name;
                draft_.addNode({NodeKind::task,
                                task.program,
                                {visibleText(name), counted(taskdsl::programName(task.program), count)}});
            }
            runningTasks_.try_emplace(task.name, nodeOfTask(i));
        }
        for (std::size_t i = 0; i < declaredCount_; ++i) {
            declaredTasks_.try_emplace(document_.templateTasks[i].name, i);
        }
        if (!collapsed_ && combinations_ > 1) {
            addClusters();
        }
    }

    void addClusters() {
        for (std::size_t i = 0; i < document_.tasks.size(); i += declaredCount_) {
            GraphCluster cluster{shortened(document_.tasks[i].matrixVariantKey), {}};
            for (std::size_t node = i; node < i + declaredCount_; ++node) {
                cluster.nodes.push_back(node);
            }
            draft_.addCluster(std::move(cluster));
        }
    }

    void addDerives() {
        firstDerive_ = collapsed_ ? declaredCount_ : document_.tasks.size();
        for (const DeriveBlock& block : document_.derives) {
            derives_.try_emplace(
                block.spec.name,
                draft_.addNode({NodeKind::derive, {}, {visibleText(block.spec.name), "derive"}}));
        }
    }

    /// The plots of all variants of a task are one in the collapsed view.
    void addPlots() {
        std::vector<std::size_t> firstPlots(declaredCount_); // of each declared task
        for (std::size_t i = 0; i < document_.tasks.size(); ++i) {
            const auto& ofTask = document_.tasks[i].plots;
            if (leads(i)) {
                firstPlots[i % declaredCount_] = plots_.size();
            }
            for (std::size_t k = 0; k < ofTask.size(); ++k) {
                const auto& shown = collapsed_ ? declaredOf(i).plots[k] : ofTask[k];
                const std::size_t node = leads(i) ? addPlot(shown, collapsed_ ? combinations_ : 1)
                                                  : plots_[firstPlots[i % declaredCount_] + k].second;
                plots_.emplace_back(&ofTask[k], node);
                draft_.addEdge(nodeOfTask(i), node, EdgeKind::use);
            }
        }
        for (const auto& plot : document_.plots) {
            plots_.emplace_back(&plot, addPlot(plot, 1));
        }
    }

    std::size_t addPlot(const taskdsl::plot::PlotSpec& plot, std::size_t count) {
        const std::string kind(taskdsl::plot::plotKindName(plot.kind));
        return draft_.addNode({NodeKind::plot, {}, {visibleText(plot.name), counted(kind + " plot", count)}});
    }

    void joinTask(std::size_t taskIndex) {
        const TaskInfo& task = document_.tasks[taskIndex];
        const std::size_t node = nodeOfTask(taskIndex);
        for (const auto& name : sourceTasks(task)) {
            draft_.addEdge(taskNamed(name), node, EdgeKind::source);
        }
        for (const auto& binding : sourceBindings(task)) {
            if (binding.sourceKind == taskdsl::BindingSource::task) {
                draft_.addEdge(taskNamed(binding.sourceTask), node, EdgeKind::source, shortened(binding.key));
            }
        }
        // One text for all variants: the condition as it is written.
        const auto& shown = collapsed_ ? declaredOf(taskIndex).whenEntries : task.whenEntries;
        for (std::size_t i = 0; i < task.whenEntries.size(); ++i) {
            joinCondition(task.whenEntries[i], shortened(shown[i].text), taskIndex);
        }
    }

    /// A condition joins every task that it names; one that names none is a line in the box.
    void joinCondition(const taskdsl::TaskWhenEntry& entry, const std::string& shown, std::size_t taskIndex) {
        bool namesTask = false;
        const auto join = [&](std::size_t from) {
            draft_.addEdge(from, nodeOfTask(taskIndex), EdgeKind::condition, shown);
            namesTask = true;
        };
        const taskdsl::TaskWhenExpr condition = parseCondition(entry);
        for (const auto& target : collectCompletedTargets(condition)) {
            join(completedTarget(target));
        }
        for (const auto& placeholder : collectPlaceholders(condition)) {
            const auto dot = placeholder.find('.');
            if (dot != std::string::npos) {
                join(taskNamed(trim(std::string_view(placeholder).substr(0, dot))));
            }
        }
        if (!namesTask && leads(taskIndex)) {
            draft_.addLine(nodeOfTask(taskIndex), "when " + shown);
        }
    }

    static taskdsl::TaskWhenExpr parseCondition(const taskdsl::TaskWhenEntry& entry) {
        try {
            return taskdsl::parseWhenExpr(entry.text);
        } catch (const taskdsl::DiagnosticError& fault) {
            throw taskdsl::DiagnosticError(entry.span, wholeText(fault));
        }
    }

    std::size_t completedTarget(const std::string& target) {
        if (equalsNoCase(target, "allothers")) {
            return draft_.nodeOf(NodeKind::selection, "all other tasks");
        }
        return hasWildcard(target) && !runningTasks_.contains(target)
                   ? draft_.nodeOf(NodeKind::selection, target, "every match")
                   : taskNamed(target);
    }

    /// The box of a task by the name that it runs under or was declared with.
    std::size_t taskNamed(std::string_view name) {
        if (const auto found = runningTasks_.find(name); found != runningTasks_.end()) {
            return found->second;
        }
        return variantsOf(name);
    }

    /// The box that stands for all variants of a declared task.
    std::size_t variantsOf(std::string_view name) {
        const auto declared = declaredTasks_.find(name);
        if (declared == declaredTasks_.end()) {
            const auto found = runningTasks_.find(name);
            return found != runningTasks_.end()
                       ? found->second
                       : draft_.nodeOf(NodeKind::missing, std::string(name), "not in this file");
        }
        if (collapsed_ || combinations_ == 1) {
            return declared->second;
        }
        // One box between the variants and all that use them, so that not each is joined with each.
        const auto [box, isNew] = variantBoxes_.try_emplace(declared->second, 0);
        if (isNew) {
            box->second = draft_.nodeOf(NodeKind::selection, std::string(name), "all variants");
            for (std::size_t i = declared->second; i < document_.tasks.size(); i += declaredCount_) {
                draft_.addEdge(i, box->second, EdgeKind::use);
            }
        }
        return box->second;
    }

    std::size_t deriveNamed(std::string_view name) {
        const auto found = derives_.find(name);
        return found != derives_.end()
                   ? found->second
                   : draft_.nodeOf(NodeKind::missing, std::string(name), "no derive of this file");
    }

    void joinDerive(const DeriveBlock& block, std::size_t node) {
        for (const auto& name : collectDeriveTaskReferences(block.spec)) {
            draft_.addEdge(taskNamed(name), node, EdgeKind::use);
        }
        for (const auto& statement : block.spec.statements) {
            const auto* from = std::get_if<taskdsl::derive::FromStatement>(&statement);
            if (from == nullptr) {
                continue;
            }
            if (const auto* tasks = std::get_if<taskdsl::derive::TasksSource>(&from->source)) {
                joinTasksSource(*tasks, node);
            } else if (const auto* table = std::get_if<taskdsl::derive::DerivedTableSource>(&from->source)) {
                draft_.addEdge(deriveNamed(table->derive), node, EdgeKind::use);
            }
        }
    }

    void joinTasksSource(const taskdsl::derive::TasksSource& source, std::size_t node) {
        if (!source.templateName.empty()) {
            draft_.addEdge(variantsOf(source.templateName), node, EdgeKind::use);
        } else if (std::any_of(source.patterns.begin(), source.patterns.end(), hasWildcard)) {
            const auto selection = draft_.nodeOf(NodeKind::selection, shortened(tasksSourceText(source)));
            draft_.addEdge(selection, node, EdgeKind::use);
        } else {
            for (const auto& name : source.patterns) {
                draft_.addEdge(taskNamed(name), node, EdgeKind::use);
            }
        }
    }

    void joinPlot(const taskdsl::plot::PlotSpec& plot, std::size_t node) {
        for (const auto& name : collectPlotTaskReferences(plot)) {
            draft_.addEdge(taskNamed(name), node, EdgeKind::use);
        }
        if (plot.sourceKind == taskdsl::plot::PlotSourceKind::variants) {
            draft_.addEdge(variantsOf(plot.sourceArgument), node, EdgeKind::use);
        } else if (plot.sourceKind == taskdsl::plot::PlotSourceKind::derived) {
            const auto derive =
                std::string_view(plot.sourceArgument).substr(0, plot.sourceArgument.find('.'));
            draft_.addEdge(deriveNamed(derive), node, EdgeKind::use);
        }
    }

    const TaskDocument& document_;
    std::size_t declaredCount_;
    std::size_t combinations_; ///< of the matrix; 1 without one
    bool collapsed_;
    GraphDraft draft_;
    NodesByName runningTasks_; ///< of several with one name the first
    NodesByName declaredTasks_;
    NodesByName derives_;
    std::unordered_map<std::size_t, std::size_t> variantBoxes_; ///< by the place of the declared task
    std::size_t firstDerive_ = 0;
    std::vector<std::pair<const taskdsl::plot::PlotSpec*, std::size_t>> plots_; ///< with their boxes
};

bool standsAtFoot(const GraphNode& node) noexcept {
    return node.kind == NodeKind::plot || node.kind == NodeKind::derive;
}

} // namespace

std::vector<std::size_t> footNodes(const StudyGraph& graph) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
        if (standsAtFoot(graph.nodes[i])) {
            places.push_back(i);
        }
    }
    return places;
}

std::vector<std::size_t> looseNodes(const StudyGraph& graph) {
    std::vector<bool> clustered(graph.nodes.size());
    for (const auto& cluster : graph.clusters) {
        for (const std::size_t place : cluster.nodes) {
            clustered[place] = true;
        }
    }
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
        if (!clustered[i] && !standsAtFoot(graph.nodes[i])) {
            places.push_back(i);
        }
    }
    return places;
}

StudyGraph buildStudyGraph(const TaskDocument& document, VariantView view) {
    return StudyDrawing(document, view).draw();
}

} // namespace morquill::graph
