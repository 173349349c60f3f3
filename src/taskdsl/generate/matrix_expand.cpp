#include "taskdsl/generate/matrix_expand.h"

#include "support/large_memory.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"
#include "taskdsl/generate/matrix_combinations.h"
#include "taskdsl/task/task_substitution.h"
#include "taskdsl/task/when_references.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

/// The new names of the tasks of one file, by the name as written and by the name after substitution.
class Renames {
  public:
    void add(const std::string& oldName, const std::string& newName) { names_.try_emplace(oldName, newName); }

    template <class Text>
    void apply(Text& name) const {
        if (const auto found = names_.find(std::string_view(name)); found != names_.end()) {
            name = found->second;
        }
    }

    /// A condition with its references renamed; nothing when it stays as it is. The pairs of a map are
    /// applied one after the other there, so the new names first carry a mark that no task name begins with:
    /// `a` becomes `a__x_1` and stays so beside a task `a__x_1` of its own.
    [[nodiscard]] std::optional<std::string> renamedCondition(const std::string& text) const {
        const ValueMap& marked = markedNames();
        if (marked.empty()) {
            return std::nullopt;
        }
        const std::string renamed = rewriteWhenReferences(text, marked);
        return renamed == text ? std::nullopt : std::optional(rewriteWhenReferences(renamed, unmarks_));
    }

  private:
    static constexpr char mark = '\x01';

    /// A name that stays is not a rename: a condition that mentions it keeps its spacing.
    const ValueMap& markedNames() const {
        if (!marksMade_) {
            for (const auto& [oldName, newName] : names_) {
                if (oldName != newName) {
                    marks_.emplace(oldName, mark + newName);
                    unmarks_.emplace(mark + newName, newName);
                }
            }
            marksMade_ = true;
        }
        return marks_;
    }

    ValueMap names_;
    mutable bool marksMade_ = false; ///< they are made when the first condition asks for them
    mutable ValueMap marks_;
    mutable ValueMap unmarks_;
};

bool refersToTask(const TaskInfo& task) noexcept {
    return !sourceTasks(task).empty() || hasStructuredSource(task) || !task.guessSourceTask.empty() ||
           !task.interfaceProvider.empty() || !task.whenEntries.empty();
}

void renameSource(SourceSpec& source, const Renames& renames) {
    if (auto* list = std::get_if<SourceTaskList>(&source)) {
        for (auto& name : list->names) {
            renames.apply(name);
        }
    } else if (auto* structured = std::get_if<SourceStructured>(&source)) {
        for (auto& binding : structured->bindings) {
            if (binding.sourceKind == BindingSource::task) {
                renames.apply(binding.sourceTask);
                renames.apply(binding.sourceValue);
            }
        }
    }
}

void renameReferences(TaskInfo& task, const Renames& renames) {
    renameSource(task.source, renames);
    renames.apply(task.guessSourceTask);
    renames.apply(task.interfaceProvider);
    for (std::size_t i = 0; i < task.whenEntries.size(); ++i) {
        if (auto renamed = renames.renamedCondition(task.whenEntries[i].text)) {
            task.whenEntries.edit()[i].text = *std::move(renamed);
        }
    }
}

/// The bytes of the long texts of a task: what makes variants large.
std::size_t textSize(const TaskInfo& task) {
    std::size_t size = task.name.size() + task.keywords.size() + task.args.size() +
                       task.extraKeywords.size() + task.paramValues.size() + task.body.size() +
                       task.orcaBlock.size() + sourceText(task).size() + task.runner.size() +
                       task.templateName.size() + task.guessSourceTask.size() + task.finalGeom.size();
    for (const auto* list : {&task.preProcessCommands, &task.processCommands}) {
        for (const auto& text : **list) {
            size += text.size();
        }
    }
    for (const auto& condition : task.whenEntries) {
        size += condition.text.size();
    }
    for (const auto& entry : task.modEntries) {
        size += entry.key.size() + entry.value.size();
    }
    return size;
}

struct HashText {
    [[nodiscard]] std::size_t operator()(const SharedText& text) const noexcept {
        return std::hash<std::string_view>{}(text);
    }
};

/// What is known of a template task before any combination is chosen.
struct TemplateInfo {
    const TaskInfo* task = nullptr;
    bool substitutes = false; ///< some field holds a `[`
    bool refers = false;      ///< may name other tasks
    std::size_t file = 0;     ///< number of the task's file among the files of the document
    std::string name;         ///< after substitution, in the current combination
    std::string variantName;
};

class MatrixExpansion {
  public:
    explicit MatrixExpansion(TaskDocument& target)
        : document_(target), walk_(target.matrixAxes), values_(target.defines) {
        std::map<std::string_view, std::size_t> files;
        std::size_t textOfOne = 0; // of one combination, before substitution
        for (const auto& task : document_.templateTasks) {
            const auto file = files.try_emplace(task.filePath.view(), files.size()).first->second;
            templates_.push_back({&task, holdsBrackets(task), refersToTask(task), file, {}, {}});
            anyRefers_ = anyRefers_ || templates_.back().refers;
            textOfOne += textSize(task);
        }
        fileCount_ = files.size();
        for (const auto& axis : document_.matrixAxes) {
            keys_.emplace_back(axis.key);
        }
        if (walk_.size() > limits::matrixVariants / templates_.size()) {
            throw DiagnosticError("matrix yields more than " + std::to_string(limits::matrixVariants) +
                                  " task variants");
        }
        if (textOfOne > limits::variantText / walk_.size()) {
            failText();
        }
    }

    std::vector<TaskInfo> run() {
        constexpr std::size_t variantSize = 512; // in small blocks, by rule of thumb
        std::vector<TaskInfo> variants;
        reserveHeap(walk_.size() * templates_.size() * variantSize);
        reserveLarge(variants, walk_.size() * templates_.size());
        do {
            chooseCombination();
            for (const auto& item : templates_) {
                variants.push_back(makeVariant(item));
            }
        } while (walk_.advance());
        return variants;
    }

  private:
    void chooseCombination() {
        const auto& axes = document_.matrixAxes;
        std::vector<AxisValues::Entry> chosen;
        chosen.reserve(axes.size());
        std::string suffix;
        for (std::size_t i = 0; i < axes.size(); ++i) {
            values_.insert_or_assign(axes[i].key, walk_.value(i).str());
            chosen.emplace_back(keys_[i], walk_.value(i));
            countText(axes[i].key.size() + walk_.value(i).size());
            suffix += i == 0 ? "" : "__";
            suffix += walk_.piece(i);
        }
        countText(suffix.size());
        matrixValues_ = AxisValues(std::move(chosen));
        suffix_ = suffix;
        if (walk_.size() > 1 && !suffixes_.insert(suffix_).second) {
            throw DiagnosticError("matrix variant suffix collision detected for '" + suffix + "'");
        }
        for (auto& item : templates_) {
            item.name = item.task->name;
            substituteInto(item.name, values_);
            item.variantName = walk_.size() > 1 ? item.name + "__" + suffix : item.name;
        }
        if (anyRefers_) {
            collectRenames();
        }
    }

    /// The substituted names win over the written ones: references are substituted before they are renamed.
    void collectRenames() {
        renames_.assign(fileCount_, {});
        for (const auto& item : templates_) {
            renames_[item.file].add(item.name, item.variantName);
        }
        for (const auto& item : templates_) {
            renames_[item.file].add(item.task->name, item.variantName);
        }
    }

    TaskInfo makeVariant(const TemplateInfo& item) {
        TaskInfo task = *item.task;
        if (item.substitutes) {
            substituteTask(task, values_);
        }
        task.name = item.variantName;
        task.templateTaskName = item.task->name;
        task.matrixVariantKey = suffix_;
        task.matrixValues = matrixValues_;
        if (item.refers) {
            renameReferences(task, renames_[item.file]);
        }
        if (!task.plots.empty()) {
            for (auto& plot : task.plots.edit()) {
                plot.ownerTask = task.name;
                plot.id = task.name + ":" + plot.name;
            }
        }
        // The long texts of the template are counted at the start; a substitution may have made them longer.
        countText(task.name.size() + suffix_.size() + (item.substitutes ? textSize(task) : 0));
        return task;
    }

    void countText(std::size_t bytes) {
        text_ += bytes;
        if (text_ > limits::variantText) {
            failText();
        }
    }

    [[noreturn]] static void failText() {
        throw DiagnosticError("matrix variants hold more than " + std::to_string(limits::variantText >> 20) +
                              " MiB of text");
    }

    const TaskDocument& document_;
    MatrixWalk walk_;
    ValueMap values_; ///< defines and, over them, the values of the current combination
    std::vector<TemplateInfo> templates_;
    bool anyRefers_ = false;
    std::size_t fileCount_ = 0;
    std::vector<SharedText> keys_; ///< of the axes
    SharedText suffix_;
    Shared<AxisValues> matrixValues_;
    std::vector<Renames> renames_; ///< one per file
    std::unordered_set<SharedText, HashText> suffixes_;
    std::size_t text_ = 0;
};

} // namespace

void expandMatrix(TaskDocument& document) {
    if (document.matrixAxes.empty() || document.templateTasks.empty()) {
        return;
    }
    validateMatrix(document.matrixAxes);
    // The tasks are released first: the variants need the memory.
    document.tasks.reset();
    document.tasks = MatrixExpansion(document).run();
}

} // namespace morquill::taskdsl
