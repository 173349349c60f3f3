#include "taskdsl/parser/task_include.h"

#include "support/text.h"
#include "taskdsl/generate/include_path.h"

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
                      ParseContext& context, const IncludedTextReader& read) {
    const auto path = resolveIncludePath(target, base);
    if (path.empty()) {
        context.warnings("Warning: Empty path in &INCLUDE directive.");
        return;
    }
    const auto entry = enterFile(context.taskChain, path);
    if (!context.hasFile(path)) {
        context.warnings("Warning: Included task file not found: " + path);
        return;
    }
    const auto text = context.readFile(path);
    if (!text) {
        context.warnings("Warning: Cannot open included task file: " + path);
        return;
    }
    context.countInclude();
    context.document.includedFiles.add(path);

    DocumentContext outer = std::exchange(context.document, {});
    TaskDocument inner = read(skipByteOrderMark(*text), path, document.defines);
    for (const auto& file : inner.includedFiles) {
        outer.includedFiles.add(file);
    }
    context.document = std::move(outer);

    for (auto& [key, value] : inner.settings) {
        if (document.settings.try_emplace(key, std::move(value)).second) {
            context.document.inheritedSettings.insert(key);
        }
    }
    // The written form of an included task is of no use: only what it became is taken over.
    inner.templateTasks.reset();
    append(document.tasks.edit(), inner.tasks.edit());
    append(document.plots, inner.plots);
    append(document.derives, inner.derives);
}

} // namespace morquill::taskdsl
