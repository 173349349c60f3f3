#include "taskdsl/task_parser.h"

#include "frontend/logger.h"
#include "support/file.h"
#include "support/text.h"
#include "taskdsl/block_capture.h"
#include "taskdsl/directive_reader.h"
#include "taskdsl/scan.h"
#include "taskdsl/task_passes.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// The removed `#INCLUDE` form: the keyword in any case, followed by white space or the end. `trimmed` is the raw
/// line without surrounding blanks.
bool isHashInclude(std::string_view trimmed) noexcept {
    constexpr std::string_view word = "#INCLUDE";
    return trimmed.size() >= word.size() && trimmed.front() == '#' &&
           equalsNoCase(trimmed.substr(0, word.size()), word) &&
           (trimmed.size() == word.size() || isSpace(trimmed[word.size()]));
}

void warnHashInclude(const SourceLine& line, const WarningSink& warn) {
    const auto rest = trim(std::string_view(line.text)).substr(std::string_view("#INCLUDE").size());
    const std::string target(unquote(stripComment(rest)));
    const std::string file = std::filesystem::path(line.originPath.str()).filename().string();
    std::string message = "context '" + (file.empty() ? "<memory>" : file) +
                          "' uses the removed '#INCLUDE' syntax; replace it with '&INCLUDE'";
    if (!target.empty()) {
        message += " (original path: " + target + ")";
    }
    // The message ends in an ideographic full stop (U+3002).
    warn(message + "\xE3\x80\x82");
}

bool isQuotedHeader(std::string_view text) noexcept {
    const auto open = text.find("$\"");
    return open != std::string_view::npos && text.find('"', open + 2) != std::string_view::npos;
}

/// Walks the expanded lines of one file into tasks, plots and derives.
class LineWalk {
  public:
    LineWalk(const std::vector<SourceLine>& allLines, TaskDocument& result, std::uint64_t& order,
             const WarningSink& sink, bool multiSource)
        : lines(allLines), document(result), nextDocumentOrder(order), warnings(sink),
          legacyMultiSource(multiSource) {}

    void run() {
        document.tasks.reserve(document.tasks.size() + countHeaders());
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
            warnHashInclude(line, warnings);
            return;
        }
        const auto text = trim(stripComment(raw));
        if (beginsBlock(text, "@plot")) {
            plot::PlotBlock block;
            block.captured = captureBlock("@plot", lines, index, document.defines);
            document.plots.push_back(std::move(block));
        } else if (beginsBlock(text, "@derive")) {
            DeriveBlock block;
            block.captured = captureBlock("@derive", lines, index, document.defines);
            block.documentOrder = nextDocumentOrder++;
            document.derives.push_back(std::move(block));
        } else if (text == "@end") {
            throw DiagnosticError("unexpected @end without matching @plot or @derive");
        } else if (const auto name = taskHeaderName(text); !name.empty()) {
            walkTask(name, isQuotedHeader(text));
        }
    }

    void walkTask(std::string_view name, bool quoted) {
        const SourceLine& header = lines[index];
        TaskInfo& task = document.tasks.emplace_back(substituteBrackets(name, document.defines));
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
                warnHashInclude(line, warnings);
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
        const auto value = blank == std::string_view::npos ? std::string_view{} : trim(directive.substr(blank));
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

} // namespace

TaskParser::TaskParser(bool multiSource, WarningSink sink)
    : legacyMultiSource(multiSource),
      warnings(sink ? std::move(sink) : [](const std::string& text) { frontend::logWarning(text); }) {}

TaskDocument TaskParser::parseFile(const std::string& path, const ValueMap& defines) {
    const auto text = readTextFile(path);
    if (!text) {
        throw DiagnosticError("could not open file: " + path);
    }
    TaskDocument document = parseText(*text, path, defines);
    document.filePath = path;
    document.directory = std::filesystem::path(path).parent_path().string();
    return document;
}

TaskDocument TaskParser::parseText(std::string_view text, const std::string& path, const ValueMap& defines) {
    TaskDocument document;
    document.filePath = path;
    document.defines = defines;
    nextDocumentOrder = 0;
    {
        // The lines go before the passes copy tasks: they are as large as the tasks.
        const std::vector<SourceLine> lines = makeSourceLines(splitLines(text), 0, SharedText(path));
        LineWalk(lines, document, nextDocumentOrder, warnings, legacyMultiSource).run();
    }
    for (TaskInfo& task : document.tasks) {
        finishTask(task, document.matrixAxes, warnings);
    }
    document.templateTasks = document.tasks;
    applyHeaderMetadata(document, path, warnings);
    shareTaskNames(document);
    warnAboutDeadlocks(document, path, warnings);
    return document;
}

} // namespace morquill::taskdsl
