#include "taskdsl/parser/task_include.h"

#include "support/text.h"

#include <iterator>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

template <class T>
void append(std::vector<T>& target, std::vector<T>& source) {
    target.insert(target.end(), std::make_move_iterator(source.begin()),
                  std::make_move_iterator(source.end()));
}

} // namespace

void parseTaskInclude(const std::string& target, const std::string& base, TaskDocument& document,
                      DocumentContext& context, const IncludedTextReader& read) {
    const auto path = context.run.resolveIncludePath(target, base);
    if (path.empty()) {
        context.run.options.warnings("Warning: Empty path in &INCLUDE directive.");
        return;
    }
    const IncludeChain::Entry entry(context.run.taskChain, path);
    if (!context.run.options.isFile(path)) {
        context.run.options.warnings("Warning: Included task file not found: " + path);
        return;
    }
    const auto text = context.run.readFile(path);
    if (!text) {
        context.run.options.warnings("Warning: Cannot open included task file: " + path);
        return;
    }
    context.run.countInclude();
    context.includedFiles.add(path);

    DocumentContext innerContext(context.run);
    TaskDocument inner = read(skipByteOrderMark(*text), path, document.defines, innerContext);
    for (const auto& file : inner.includedFiles) {
        context.includedFiles.add(file);
    }

    for (auto& [key, value] : inner.settings) {
        if (document.settings.try_emplace(key, std::move(value)).second) {
            context.inheritedSettings.insert(key);
        }
    }
    // Only what an included task became is taken over: its written form is of no use here.
    inner.templateTasks.reset();
    append(document.tasks.edit(), inner.tasks.edit());
    append(document.plots, inner.plots);
    append(document.derives, inner.derives);
}

} // namespace morquill::taskdsl
