#include "taskdsl/plot/task_references.h"

#include "taskdsl/expr/task_names.h"

namespace morquill::taskdsl::plot {

namespace {

/// Adds the tasks of whatever it is given, down to the expressions. The fields are found by their names, so
/// that a record takes part by having them.
struct Collector {
    std::set<std::string>& names;

    void operator()(const ExprRef& expression) const { addTaskNames(expression, names); }
    void operator()(double /*value of a threshold*/) const {}

    template <class T>
    void operator()(const std::vector<T>& list) const {
        for (const auto& entry : list) {
            (*this)(entry);
        }
    }

    template <class Record>
    void operator()(const Record& record) const {
        // clang-format off
        if constexpr (requires { record.expression; }) { (*this)(record.expression); }
        if constexpr (requires { record.property; }) { (*this)(record.property); }
        if constexpr (requires { record.value; }) { (*this)(record.value); }
        if constexpr (requires { record.task; }) { addTaskName(record.task, names); }
        if constexpr (requires { record.x; }) { (*this)(record.x); }
        if constexpr (requires { record.y; }) { (*this)(record.y); }
        if constexpr (requires { record.z; }) { (*this)(record.z); }
        if constexpr (requires { record.yerr; }) { (*this)(record.yerr); }
        if constexpr (requires { record.points; }) { (*this)(record.points); }
        if constexpr (requires { record.series; }) { (*this)(record.series); }
        if constexpr (requires { record.thresholds; }) { (*this)(record.thresholds); }
        if constexpr (requires { record.columns; }) { (*this)(record.columns); }
        // clang-format on
    }
};

} // namespace

std::set<std::string> collectPlotTaskReferences(const PlotSpec& plot) {
    std::set<std::string> names;
    if (plot.sourceKind == PlotSourceKind::task) {
        addTaskName(plot.sourceArgument, names);
    }
    std::visit(Collector{names}, plot.data);
    return names;
}

} // namespace morquill::taskdsl::plot
