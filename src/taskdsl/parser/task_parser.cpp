#include "taskdsl/parser/task_parser.h"

#include "console/logger.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/derive/derive_substitute.h"
#include "taskdsl/generate/define_block.h"
#include "taskdsl/generate/expand_includes.h"
#include "taskdsl/generate/include_path.h"
#include "taskdsl/generate/matrix_expand.h"
#include "taskdsl/generate/prelude.h"
#include "taskdsl/generate/removed_include.h"
#include "taskdsl/parser/block_capture.h"
#include "taskdsl/parser/task_include.h"
#include "taskdsl/parser/task_passes.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/plot/substitute_plot.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/task_substitution.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

bool isQuotedHeader(std::string_view text) noexcept {
    const auto open = text.find("$\"");
    return open != std::string_view::npos && text.find('"', open + 2) != std::string_view::npos;
}

/// Tasks of a document that came from included files, as a range of indices: they are finished already.
struct IncludedTasks {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Reads the include on a line into the document.
using IncludeHandler = std::function<void(const IncludeDirective& include, const SourceLine& line)>;

/// Walks the expanded lines of one file into tasks, plots and derives.
class LineWalk {
  public:
    LineWalk(const std::vector<SourceLine>& allLines, TaskDocument& result, std::uint64_t& order,
             const WarningSink& sink, bool multiSource, const IncludeHandler& includeHandler)
        : lines(allLines), document(result), nextDocumentOrder(order), warnings(sink),
          legacyMultiSource(multiSource), readInclude(includeHandler), headerValues(result.defines) {}

    void run() {
        // An axis wins over a define of the same name: its placeholder in a task's name waits for the matrix.
        for (const auto& axis : document.matrixAxes) {
            headerValues.erase(axis.key);
        }
        document.tasks.edit().reserve(document.tasks.size() + countHeaders());
        for (index = 0; index < lines.size(); ++index) {
            walkLine();
        }
    }

  private:
    /// An upper bound that is exact for files without `$` lines in text: growing a list of tasks costs more
    /// memory than the list.
    [[nodiscard]] std::size_t countHeaders() const {
        return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [](const SourceLine& line) {
            return trimLeft(line.text).starts_with('$');
        }));
    }

    void walkLine() {
        const SourceLine& line = lines[index];
        const auto raw = trim(std::string_view(line.text));
        if (raw.empty()) {
            return;
        }
        if (isHashInclude(raw)) {
            warnHashInclude(raw, line.originPath, warnings);
            return;
        }
        const auto text = trim(stripComment(raw));
        if (beginsBlock(text, "@plot")) {
            plot::PlotBlock block;
            block.captured = captureBlock("@plot", lines, index, document.defines);
            document.plots.push_back(plot::parsePlot(block));
        } else if (beginsBlock(text, "@derive")) {
            DeriveBlock block;
            block.captured = captureBlock("@derive", lines, index, document.defines);
            block.spec = derive::parseDerive(block.captured);
            block.documentOrder = nextDocumentOrder++;
            document.derives.push_back(std::move(block));
        } else if (text == "@end") {
            throw DiagnosticError("unexpected @end without matching @plot or @derive");
        } else if (isIncludeLine(text)) {
            readInclude(parseIncludeLine(text), line);
        } else if (const auto name = taskHeaderName(text); !name.empty()) {
            walkTask(name, isQuotedHeader(text));
        }
    }

    void walkTask(std::string_view name, bool quoted) {
        const SourceLine& header = lines[index];
        TaskInfo& task = document.tasks.edit().emplace_back(substituteBrackets(name, headerValues));
        task.quoted = quoted;
        task.filePath = header.originPath;
        task.headerSpan = spanOfLine(header.originPath, header.lineNumber, header.text);
        task.documentOrder = nextDocumentOrder++;
        std::vector<TaskDirective> directives;
        while (index + 1 < lines.size()) {
            const SourceLine& line = lines[index + 1];
            const auto raw = trim(std::string_view(line.text));
            if (raw.empty() || line.directiveBoundary) {
                ++index;
                continue;
            }
            if (isHashInclude(raw)) {
                warnHashInclude(raw, line.originPath, warnings);
            }
            const auto text = trim(stripComment(raw));
            const auto directive = directiveName(text);
            if (directive.empty()) {
                if (isStructureLine(text)) {
                    break;
                }
                ++index;
                continue;
            }
            ++index;
            walkDirective(task, directive, directives);
        }
        task.directives = std::move(directives);
    }

    void walkDirective(TaskInfo& task, std::string_view directive, std::vector<TaskDirective>& directives) {
        // A tab belongs to the keyword: only a blank ends it.
        const auto blank = directive.find(' ');
        const auto keyword = directive.substr(0, blank);
        const auto value =
            blank == std::string_view::npos ? std::string_view{} : trim(directive.substr(blank));
        const SourceLine& line = lines[index];
        const SourceSpan span = spanOfLine(line.originPath, line.lineNumber, line.text);
        const DirectiveRow* row = findDirective(keyword);
        if (row == nullptr) {
            throw DiagnosticError(span, "task '" + task.name + "' contains unknown directive '%" +
                                            std::string(keyword) + "'");
        }
        DirectiveReader reader(task, lines, index, value, warnings, legacyMultiSource);
        row->handler(reader);
        directives.push_back({row->recordedName, std::string(value), span});
        index = reader.position();
    }

    const std::vector<SourceLine>& lines;
    TaskDocument& document;
    std::uint64_t& nextDocumentOrder;
    const WarningSink& warnings;
    bool legacyMultiSource;
    const IncludeHandler& readInclude;
    ValueMap headerValues; ///< the defines that go into task names
    std::size_t index = 0;
};

std::vector<SourceLine> makeSourceLines(const std::vector<std::string_view>& lines, std::size_t first,
                                        const SharedText& path) {
    std::vector<SourceLine> result;
    result.reserve(lines.size() - first);
    for (std::size_t i = first; i < lines.size(); ++i) {
        result.push_back({std::string(lines[i]), path, static_cast<std::uint32_t>(i + 1)});
    }
    return result;
}

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
Collections readExtraYaml(TaskDocument& document, const std::string& path, ParseContext& context) {
    if (!context.hasFile(resolveIncludePath("extra.yaml", path))) {
        return {};
    }
    auto extra = parseYamlInclude("extra.yaml", path, context);
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
void noteExtraTasks(TaskDocument& document, const ParseContext& context) {
    ImplicitContent& implicit = document.implicitContent;
    implicit.tasks = document.tasks.size();
    implicit.plots = document.plots.size();
    implicit.derives = document.derives.size();
    const KeySet& settings = context.document.inheritedSettings;
    implicit.settings.insert(settings.begin(), settings.end());
}

} // namespace

TaskParser::TaskParser(bool multiSource, WarningSink sink, FileOverlay files)
    : legacyMultiSource(multiSource),
      warnings(sink ? std::move(sink) : [](const std::string& text) { console::logWarning(text); }),
      overlay(std::move(files)) {}

TaskDocument TaskParser::parseFile(const std::string& path, const ValueMap& defines) {
    return parseContent(readTextFile(path), path, defines);
}

TaskDocument TaskParser::parseInput(const std::string& path) {
    return parseContent(readInputFile(path), path, {});
}

TaskDocument TaskParser::parseContent(const std::optional<std::string>& text, const std::string& path,
                                      const ValueMap& defines) {
    if (!text) {
        throw DiagnosticError("could not open file: " + path);
    }
    TaskDocument document = parseText(*text, path, defines);
    document.filePath = path;
    document.directory = std::filesystem::path(path).parent_path().string();
    return document;
}

TaskDocument TaskParser::parseText(std::string_view text, const std::string& path, const ValueMap& defines) {
    nextDocumentOrder = 0;
    ParseContext context(warnings, overlay);
    std::optional<IncludeChain::Entry> entry;
    if (!path.empty()) {
        const auto absolute = absolutePath(path);
        entry.emplace(context.taskChain, normalisedPath(absolute), absolute);
    }
    TaskDocument document = readDocument(skipByteOrderMark(text), path, defines, context);
    shareTaskNames(document);
    warnAboutDeadlocks(document, path, warnings);
    return document;
}

TaskDocument TaskParser::parseDeclaredTasks(std::string_view text) {
    nextDocumentOrder = 0;
    ParseContext context(warnings, overlay);
    context.followsIncludes = false;
    TaskDocument document;
    auto lines = makeSourceLines(splitLines(text), 0, {});
    lines = expandForeach(std::move(lines), {}, {});
    lines = expandIncludes(std::move(lines), {"", nullptr, FragmentKind::document}, context);
    LineWalk(lines, document, nextDocumentOrder, warnings, legacyMultiSource,
             [](const IncludeDirective&, const SourceLine&) {})
        .run();
    finishOwnTasks(document, {}, warnings);
    document.templateTasks = document.tasks;
    return document;
}

TaskDocument TaskParser::readDocument(std::string_view text, const std::string& path, const ValueMap& defines,
                                      ParseContext& context) {
    TaskDocument document;
    document.filePath = path;
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    document.directory = directory.string();
    mergeDefines(document, defines, NameClash::takeNew);

    std::vector<IncludedTasks> included;
    const auto includeTasks = [&](const std::string& target, const std::string& base) {
        const std::size_t begin = document.tasks.size();
        parseTaskInclude(
            target, base, document, context,
            [&](std::string_view innerText, const std::string& innerPath, const ValueMap& values) {
                return readDocument(innerText, innerPath, values, context);
            });
        included.push_back({begin, document.tasks.size()});
    };

    const bool hasDirectory = !directory.empty();
    Collections collections = hasDirectory ? readExtraYaml(document, path, context) : Collections{};
    const auto rawLines = splitLines(text);
    std::size_t next = 0;
    {
        auto prelude = parsePrelude(rawLines, 0, next, path, context);
        requireWholePrelude(rawLines, next, path);
        mergeOwnPrelude(document, prelude);
        prelude.collections.merge(collections);
        collections = std::move(prelude.collections);
    }
    if (!path.empty()) {
        context.taskFiles.insert(normalisedPath(absolutePath(path)));
    }
    if (hasDirectory) {
        const auto extra = resolveIncludePath("extra.mq", path);
        if (context.hasFile(extra) && context.taskFiles.count(normalisedPath(extra)) == 0) {
            includeTasks("extra.mq", path);
            noteExtraTasks(document, context);
        }
    }
    {
        // The lines go before the passes copy tasks: they are as large as the tasks.
        auto lines = makeSourceLines(rawLines, next, SharedText(path));
        lines = expandForeach(std::move(lines), collections, {});
        lines = expandIncludes(std::move(lines), {path, nullptr, FragmentKind::document}, context);
        LineWalk(lines, document, nextDocumentOrder, warnings, legacyMultiSource,
                 [&](const IncludeDirective& include, const SourceLine& line) {
                     includeTasks(searchName(include), line.originPath);
                 })
            .run();
    }
    finishOwnTasks(document, included, warnings);
    expandTasks(document);
    applyHeaderMetadata(document, path, context.document.inheritedSettings, warnings);
    document.includedFiles = context.document.includedFiles.names();
    document.libraryBindings = libraryBindings(context.document);
    return document;
}

} // namespace morquill::taskdsl
