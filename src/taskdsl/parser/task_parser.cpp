#include "taskdsl/parser/task_parser.h"

#include "support/file.h"
#include "support/large_memory.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/extra_files.h"
#include "taskdsl/derive/derive_substitute.h"
#include "taskdsl/generate/define_block.h"
#include "taskdsl/generate/expand_includes.h"
#include "taskdsl/generate/matrix_expand.h"
#include "taskdsl/generate/parse_context.h"
#include "taskdsl/generate/prelude.h"
#include "taskdsl/parser/line_walk.h"
#include "taskdsl/parser/task_include.h"
#include "taskdsl/parser/task_passes.h"
#include "taskdsl/plot/substitute_plot.h"
#include "taskdsl/task/task_substitution.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// Tasks of a document that came from included files, as a range of indices: they are finished already.
struct IncludedTasks {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Finishes the tasks of the file itself. Those of included files were finished with them.
void finishOwnTasks(TaskDocument& document, const std::vector<IncludedTasks>& included,
                    const WarningSink& warnings) {
    std::size_t i = 0;
    auto& tasks = document.tasks.edit();
    const auto finishUpTo = [&](std::size_t end) {
        for (; i < end; ++i) {
            finishTask(tasks[i], document.matrixAxes, warnings);
        }
    };
    for (const auto& range : included) {
        finishUpTo(range.begin);
        i = range.end;
    }
    finishUpTo(tasks.size());
}

/// Puts the defines into the tasks, plots and derives. When a matrix follows, the tasks wait for it: it makes
/// them anew from the templates, with the defines and its own values in one pass.
void substituteDefines(TaskDocument& document) {
    if (document.matrixAxes.empty() &&
        std::any_of(document.tasks.begin(), document.tasks.end(), holdsBrackets)) {
        for (auto& task : document.tasks.edit()) {
            substituteTask(task, document.defines);
        }
    }
    for (auto& plot : document.plots) {
        plot::substitutePlot(plot, document.defines);
    }
    for (auto& derive : document.derives) {
        derive::substituteDerive(derive.spec, document.defines);
    }
}

/// From the tasks as written to those that run.
void expandTasks(TaskDocument& document) {
    document.templateTasks = document.tasks;
    substituteDefines(document);
    expandMatrix(document);
}

/// Reads the "extra.yaml" beside the file, when there is one, into a document that holds the caller's defines
/// and nothing else yet. Returns its collections.
Collections readExtraYaml(TaskDocument& document, const std::string& path, DocumentContext& context) {
    if (!context.run.options.isFile(joinPath(document.directory, extraValuesName))) {
        return {};
    }
    auto extra = parseYamlInclude(std::string(extraValuesName), path, context);
    ImplicitContent& implicit = document.implicitContent;
    for (const auto& [key, value] : extra.settings) {
        implicit.settings.insert(key);
    }
    for (const auto& [key, value] : extra.defines) {
        if (!document.defines.contains(key)) {
            implicit.defines.insert(key);
        }
    }
    for (const auto& axis : extra.matrixAxes) {
        implicit.axes.insert(axis.key);
    }
    mergePrelude(document, extra, NameClash::keepOld);
    return std::move(extra.collections);
}

/// Reads the prelude off the front of a file's lines; those of its body stay.
PreludeResult takePrelude(std::vector<SourceLine>& lines, const std::string& path, DocumentContext& context) {
    auto prelude = parsePrelude(lines, path, context);
    requireWholePrelude(lines, prelude.next, path);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(prelude.next));
    return std::move(prelude.value);
}

/// Puts the file's own prelude into the document: what it says itself did not come from beside it.
void mergeOwnPrelude(TaskDocument& document, const PreludeResult& prelude) {
    mergePrelude(document, prelude, NameClash::takeNew);
    ImplicitContent& implicit = document.implicitContent;
    for (const auto& [key, value] : prelude.settings) {
        implicit.settings.erase(key);
    }
    for (const auto& [key, value] : prelude.defines) {
        implicit.defines.erase(key);
    }
    for (const auto& axis : prelude.matrixAxes) {
        implicit.axes.erase(axis.key);
    }
}

/// Remembers what the "extra.mq" beside the file has brought: the only task file included so far.
void noteExtraTasks(TaskDocument& document, const DocumentContext& context) {
    ImplicitContent& implicit = document.implicitContent;
    implicit.tasks = document.tasks.size();
    implicit.plots = document.plots.size();
    implicit.derives = document.derives.size();
    const KeySet& settings = context.inheritedSettings;
    implicit.settings.insert(settings.begin(), settings.end());
}

/// Reads one task file through all stages. `context` is that file's own; included task files come here too.
TaskDocument readDocument(const TextSlice& text, const std::string& path, const ValueMap& defines,
                          DocumentContext& context) {
    TaskDocument document;
    document.filePath = path;
    document.directory = parentPath(path);
    mergeDefines(document, defines, NameClash::takeNew);

    std::vector<IncludedTasks> included;
    const auto includeTasks = [&](const std::string& target, const std::string& base) {
        const std::size_t begin = document.tasks.size();
        parseTaskInclude(target, base, document, context, readDocument);
        included.push_back({begin, document.tasks.size()});
    };

    const bool hasDirectory = !document.directory.empty();
    Collections collections = hasDirectory ? readExtraYaml(document, path, context) : Collections{};
    std::vector<SourceLine> lines = makeSourceLines(text, SharedText(path));
    {
        auto prelude = takePrelude(lines, path, context);
        mergeOwnPrelude(document, prelude);
        prelude.collections.merge(collections);
        collections = std::move(prelude.collections);
    }
    ParseContext& run = context.run;
    if (!path.empty()) {
        run.taskFiles.add(path);
    }
    if (hasDirectory) {
        const auto extra = joinPath(document.directory, extraTasksName);
        if (run.options.isFile(extra) && !run.taskFiles.contains(extra)) {
            includeTasks(std::string(extraTasksName), path);
            noteExtraTasks(document, context);
        }
    }
    lines = expandForeach(std::move(lines), collections, {});
    lines = expandIncludes(std::move(lines), {path, nullptr, FragmentKind::document}, context);
    walkLines(lines, document, run, [&](const IncludeDirective& include, const SourceLine& line) {
        includeTasks(searchName(include), line.originPath.str());
    });
    // The lines go before the passes copy tasks: they are as large as the tasks.
    std::vector<SourceLine>().swap(lines);
    finishOwnTasks(document, included, run.options.warnings);
    expandTasks(document);
    applyHeaderMetadata(document, path, context.inheritedSettings, run.options.warnings);
    document.includedFiles = context.includedFiles.names();
    document.libraryBindings = libraryBindings(context);
    return document;
}

} // namespace

TaskParser::TaskParser(ParserOptions options) : options_(std::move(options)) {}

TaskDocument TaskParser::parseFile(const std::string& path, const ValueMap& defines) const {
    return parseContent(readTextFile(path), path, defines);
}

TaskDocument TaskParser::parseInput(const std::string& path) const {
    return parseContent(readInputFile(path), path, {});
}

TaskDocument TaskParser::parseContent(std::optional<std::string> text, const std::string& path,
                                      const ValueMap& defines) const {
    if (!text) {
        throw DiagnosticError("could not open file: " + path);
    }
    constexpr std::size_t bytesPerByte = 6; // in small blocks, by rule of thumb
    reserveHeap(text->size() * bytesPerByte);
    const SharedText whole(*text);
    text.reset(); // one copy of a large file is enough
    TaskDocument document = parse(whole, path, defines);
    document.filePath = path;
    document.directory = parentPath(path);
    return document;
}

TaskDocument TaskParser::parseText(std::string_view text, const std::string& path,
                                   const ValueMap& defines) const {
    return parse(text, path, defines);
}

TaskDocument TaskParser::parse(const TextSlice& text, const std::string& path,
                               const ValueMap& defines) const {
    ParseContext run(options_);
    std::optional<IncludeChain::Entry> entry;
    if (!path.empty()) {
        entry.emplace(run.taskChain, absolutePath(path));
    }
    DocumentContext context(run);
    TaskDocument document = readDocument(text.slice(skipByteOrderMark(text)), path, defines, context);
    shareTaskNames(document);
    warnAboutDeadlocks(document, path, run.options.warnings);
    return document;
}

TaskDocument TaskParser::parseDeclaredTasks(std::string_view text) const {
    ParseContext run(options_);
    run.followsIncludes = false;
    DocumentContext context(run);
    TaskDocument document;
    auto lines = makeSourceLines(text, {});
    lines = expandForeach(std::move(lines), {}, {});
    lines = expandIncludes(std::move(lines), {"", nullptr, FragmentKind::document}, context);
    walkLines(lines, document, run, [](const IncludeDirective&, const SourceLine&) {});
    finishOwnTasks(document, {}, run.options.warnings);
    document.templateTasks = document.tasks;
    return document;
}

} // namespace morquill::taskdsl
