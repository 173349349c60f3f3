#include "taskdsl/parser/line_walk.h"

#include "support/large_memory.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/generate/removed_include.h"
#include "taskdsl/parser/block_capture.h"
#include "taskdsl/plot/plot_block.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/task/directive_reader.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace morquill::taskdsl {

namespace {

bool isQuotedHeader(std::string_view text) noexcept {
    const auto open = text.find("$\"");
    return open != std::string_view::npos && text.find('"', open + 2) != std::string_view::npos;
}

class LineWalk {
  public:
    LineWalk(const std::vector<SourceLine>& lines, TaskDocument& document, ParseContext& run,
             const IncludeHandler& readInclude)
        : lines_(lines), document_(document), run_(run), readInclude_(readInclude),
          headerValues_(document.defines) {}

    void run() {
        // An axis wins over a define of the same name: its placeholder in a task's name waits for the matrix.
        for (const auto& axis : document_.matrixAxes) {
            headerValues_.erase(axis.key);
        }
        reserveLarge(document_.tasks.edit(), document_.tasks.size() + countHeaders());
        for (index_ = 0; index_ < lines_.size(); ++index_) {
            walkLine();
        }
    }

  private:
    /// An upper bound that is exact for files without `$` lines in text: growing a list of tasks costs more
    /// memory than the list.
    [[nodiscard]] std::size_t countHeaders() const {
        return static_cast<std::size_t>(
            std::count_if(lines_.begin(), lines_.end(),
                          [](const SourceLine& line) { return line.kind() == LineKind::taskHeader; }));
    }

    void walkLine() {
        const SourceLine& line = lines_[index_];
        switch (line.kind()) {
        case LineKind::removedInclude:
            warnRemoved(line);
            break;
        case LineKind::plot: {
            plot::PlotBlock block;
            block.captured = takeBlock("@plot");
            document_.plots.push_back(plot::parsePlot(block));
            break;
        }
        case LineKind::derive: {
            DeriveBlock block;
            block.captured = takeBlock("@derive");
            block.spec = derive::parseDerive(block.captured);
            block.documentOrder = run_.nextDocumentOrder++;
            document_.derives.push_back(std::move(block));
            break;
        }
        case LineKind::end:
            throw DiagnosticError("unexpected @end without matching @plot or @derive");
        case LineKind::include:
            readInclude_(parseIncludeLine(line.clean()), line);
            break;
        case LineKind::taskHeader:
            walkTask();
            break;
        default: // has no meaning outside a task
            break;
        }
    }

    /// Takes the block whose head is at `index_`; leaves `index_` on its "@end".
    CapturedBlock takeBlock(std::string_view keyword) {
        auto block = captureBlock(keyword, lines_, index_, document_.defines);
        index_ = block.next - 1;
        return std::move(block.value);
    }

    void warnRemoved(const SourceLine& line) const {
        warnHashInclude(trim(line.text()), line.originPath, run_.options.warnings);
    }

    void walkTask() {
        const SourceLine& header = lines_[index_];
        TaskInfo& task = document_.tasks.edit().emplace_back(
            substituteBrackets(taskHeaderName(header.clean()), headerValues_));
        task.quoted = isQuotedHeader(header.clean());
        task.filePath = header.originPath;
        task.headerSpan = header.span();
        task.documentOrder = run_.nextDocumentOrder++;
        directives_.clear();
        while (index_ + 1 < lines_.size()) {
            const SourceLine& line = lines_[index_ + 1];
            if (isStructure(line.kind()) && line.kind() != LineKind::directive) {
                break;
            }
            ++index_;
            if (line.kind() == LineKind::removedInclude) {
                warnRemoved(line);
            } else if (line.kind() == LineKind::directive) {
                walkDirective(task);
            }
        }
        // Just as long as it has to be: every task keeps its list.
        task.directives = std::vector<TaskDirective>(std::make_move_iterator(directives_.begin()),
                                                     std::make_move_iterator(directives_.end()));
    }

    /// Reads the directive at `index_`; leaves it on the directive's last line.
    void walkDirective(TaskInfo& task) {
        const SourceLine& line = lines_[index_];
        // A tab belongs to the keyword: only a blank ends it.
        const WrittenDirective directive = splitDirective(line.clean());
        const SourceSpan span = line.span();
        const DirectiveRow* row = findDirective(directive.keyword);
        if (row == nullptr) {
            throw DiagnosticError(span, "task '" + task.name + "' contains unknown directive '%" +
                                            std::string(directive.keyword) + "'");
        }
        DirectiveReader reader(task, lines_, index_, directive.value,
                               {run_.options.warnings, run_.options.legacyMultiSource});
        row->handler(reader);
        directives_.push_back({row->recordedName, line.slice(directive.value), span});
        index_ = reader.position();
    }

    const std::vector<SourceLine>& lines_;
    TaskDocument& document_;
    ParseContext& run_;
    const IncludeHandler& readInclude_;
    ValueMap headerValues_; ///< the defines that go into task names
    std::size_t index_ = 0;
    std::vector<TaskDirective> directives_; ///< of the task that is being read
};

} // namespace

void walkLines(const std::vector<SourceLine>& lines, TaskDocument& document, ParseContext& run,
               const IncludeHandler& readInclude) {
    LineWalk(lines, document, run, readInclude).run();
}

} // namespace morquill::taskdsl
