// The walk over the lines of a file: which block each belongs to, by the parser's tests of a line.

#include "lsp/index/block_scans.h"
#include "lsp/index/directive_scan.h"
#include "lsp/index/file_index.h"

#include "support/text.h"
#include "taskdsl/base/foreach_header.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/line_kind.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/fragment_header.h"
#include "taskdsl/task/directive_reader.h"

#include <algorithm>

namespace morquill::lsp {

using taskdsl::beginsBlock;
using taskdsl::cleanLine;
using taskdsl::FragmentKind;
using taskdsl::LineKind;

namespace {

using enum NameRole;

class FileScan {
  public:
    FileScan(std::string_view text, FileForm form)
        : builder_(text), lines_(splitLines(skipByteOrderMark(text))), form_(form) {}

    FileIndex run() {
        if (form_ == FileForm::tasks || form_ == FileForm::values) {
            readPrelude();
        }
        if (form_ != FileForm::values) {
            for (; at_ < lines_.size(); ++at_) {
                readLine();
            }
        }
        return builder_.take();
    }

  private:
    void readPrelude() {
        if (lines_.empty()) {
            return;
        }
        const auto block = builder_.open(BlockKind::prelude, lines_.front());
        at_ = scanPrelude(builder_, lines_);
        builder_.closeTo(block);
    }

    void noteLine() {
        const auto line = lines_[at_];
        builder_.addComment(line.substr(taskdsl::stripComment(line).size()));
        builder_.noteFilled(line);
    }

    void readLine() {
        const auto text = cleanLine(lines_[at_]);
        if (text.empty()) {
            builder_.addComment(lines_[at_]);
            return;
        }
        if (beginsBlock(text, "&FRAGMENT") && form_ != FileForm::tasks) {
            openFragment();
        } else if (beginsBlock(text, "&INCLUDE")) {
            if (lines_[at_].starts_with('&')) {
                endDirective(); // an indented include stands for lines of the block
            }
            at_ = scanInclude(builder_, lines_, at_);
        } else if (beginsBlock(text, "@plot") || beginsBlock(text, "@derive")) {
            readBlock(text);
        } else if (const auto loop = taskdsl::parseForeachHeader(text)) {
            openLoop(text, *loop);
        } else if (text == "@end") {
            closeLoop(text);
        } else if (const auto name = taskdsl::taskHeaderName(text); !name.empty()) {
            openTask(name);
        } else if (const auto directive = taskdsl::directiveName(text); !directive.empty()) {
            readDirective(directive);
        } else {
            noteLine();
            (*blockLine_)(builder_, text);
        }
    }

    void endDirective() {
        endBlock(BlockKind::directive);
        blockLine_ = &ignoreLine_;
    }
    void endTask() {
        endDirective();
        endBlock(BlockKind::task);
    }
    /// Closes the innermost open block when it is of that kind.
    void endBlock(BlockKind kind) {
        const auto block = builder_.current();
        if (block != 0 && builder_.kindOf(block) == kind) {
            builder_.close();
        }
    }

    void openTask(std::string_view name) {
        endTask();
        const auto block = builder_.open(BlockKind::task, lines_[at_]);
        builder_.setName(block, builder_.addWithKeys(NameKind::task, definition, name));
        noteLine();
    }

    /// A fragment ends the one before it. Its kind says what its lines are.
    void openFragment() {
        builder_.closeTo(1);
        builder_.loops.clear();
        const auto header = cleanLine(lines_[at_]).substr(std::string_view("&FRAGMENT").size());
        const auto words = trim(header);
        const auto kind = taskdsl::parseFragmentKind(words.substr(0, words.find_first_of(" \t(")));
        at_ = scanFragmentHeader(builder_, lines_, at_);
        const auto name = kind == FragmentKind::text ? std::string_view("body") : fragmentKindName(kind);
        const bool inBlock = kind != FragmentKind::document && kind != FragmentKind::task_body;
        blockLine_ = inBlock ? &directiveScan(name).line : &ignoreLine_;
    }

    void openLoop(std::string_view text, const taskdsl::ForeachHeader& loop) {
        endTask();
        const auto keyword = text.substr(0, text.find_first_of(" \t"));
        // Deeper than this, loops are read as if they stood side by side: nobody has meant them, and blocks
        // are walked by recursion.
        constexpr std::size_t maxDepth = 100;
        const bool isDeep = builder_.loops.size() >= maxDepth;
        const auto block = isDeep ? builder_.addScope(BlockKind::formula, lines_[at_])
                                  : builder_.open(BlockKind::loop, lines_[at_]);
        builder_.add(NameKind::statement, word, keyword);
        const auto name = loop.name;
        const auto number = loop.source ? builder_.add(NameKind::loop, definition, name, block)
                                        : builder_.add(NameKind::collection, reference, name);
        builder_.setName(block, number);
        if (loop.source) {
            const auto source =
                trim(text.substr(static_cast<std::size_t>(name.data() - text.data()) + name.size()));
            builder_.add(NameKind::word, word, source.substr(0, 2));
            builder_.add(NameKind::string, word, trim(source.substr(2)));
        }
        builder_.loops.push_back({name, loop.source.has_value(), block});
        noteLine();
    }

    void closeLoop(std::string_view text) {
        endTask();
        builder_.add(NameKind::statement, word, text);
        noteLine();
        if (!builder_.loops.empty()) {
            const auto block = builder_.loops.back().block;
            if (builder_.kindOf(block) == BlockKind::loop) {
                builder_.closeTo(block);
            }
            builder_.loops.pop_back();
        }
    }

    void readDirective(std::string_view directive) {
        endDirective();
        const auto keyword = directive.substr(0, directive.find(' '));
        const auto value = trim(directive.substr(keyword.size()));
        const auto name = builder_.add(NameKind::directive, word, keyword);
        builder_.open(BlockKind::directive, lines_[at_], name);
        noteLine();
        const auto& row = directiveScan(keyword);
        blockLine_ = &row.line;
        if (keyword == "plot") {
            readTaskPlot(value);
        } else if (row.heredoc == Heredoc::taken && taskdsl::opensHeredoc(value)) {
            readHeredoc(value);
        } else if (!value.empty()) {
            row.value(builder_, value);
        }
    }

    static bool endsTaskPlot(LineKind kind) noexcept {
        return taskdsl::isStructure(kind) || kind == LineKind::loop;
    }

    void readTaskPlot(std::string_view header) {
        const auto block = builder_.open(BlockKind::plot, lines_[at_]);
        Lines body;
        while (at_ + 1 < lines_.size() &&
               !endsTaskPlot(taskdsl::kindOfCleanLine(cleanLine(lines_[at_ + 1])))) {
            notePlotLine(lines_[++at_]);
            body.push_back(lines_[at_]);
        }
        scanPlot(builder_, header, body);
        builder_.closeTo(block);
    }

    void notePlotLine(std::string_view line) {
        const auto text = taskdsl::plot::stripPlotComment(line);
        if (text.empty()) {
            builder_.addComment(line);
            return;
        }
        const auto end = static_cast<std::size_t>(text.data() - line.data()) + text.size();
        builder_.addComment(line.substr(end));
        builder_.noteFilled(line);
    }

    void readHeredoc(std::string_view value) {
        const auto block = builder_.open(BlockKind::heredoc, lines_[at_]);
        builder_.add(NameKind::word, word, value);
        const auto terminator = taskdsl::heredocTerminator(value);
        std::size_t end = at_ + 1;
        while (end < lines_.size() && trim(lines_[end]) != terminator) {
            ++end;
        }
        if (end == lines_.size()) {
            // While its end is being typed, the text goes no further than the next task.
            end = at_ + 1;
            while (end < lines_.size() && !lines_[end].starts_with('$')) {
                ++end;
            }
            --end;
        } else {
            builder_.add(NameKind::word, word, trim(lines_[end]));
        }
        while (at_ < end) {
            ++at_;
            builder_.addKeys(lines_[at_]);
            if (!trim(lines_[at_]).empty()) {
                builder_.noteFilled(lines_[at_]);
            }
        }
        builder_.closeTo(block);
        endDirective();
    }

    /// `@plot` or `@derive` up to its `@end`.
    void readBlock(std::string_view text) {
        endTask();
        const bool isPlot = beginsBlock(text, "@plot");
        const auto keyword = text.substr(0, isPlot ? 5 : 7);
        const auto block = builder_.open(isPlot ? BlockKind::plot : BlockKind::derive, lines_[at_]);
        builder_.add(NameKind::statement, word, keyword);
        noteLine();
        Lines body;
        bool ended = false;
        while (!ended && at_ + 1 < lines_.size()) {
            const auto next = cleanLine(lines_[at_ + 1]);
            ended = next == "@end";
            // While its end is being typed, a block goes no further than the next task or block.
            if (!ended && (!taskdsl::taskHeaderName(next).empty() || beginsBlock(next, keyword))) {
                break;
            }
            ++at_;
            notePlotLine(lines_[at_]);
            if (ended) {
                builder_.add(NameKind::statement, word, next);
            } else {
                body.push_back(lines_[at_]);
            }
        }
        const auto header = trim(text.substr(keyword.size()));
        (isPlot ? scanPlot : scanDerive)(builder_, header, body);
        builder_.closeTo(block);
    }

    using LineScan = void (*)(IndexBuilder&, std::string_view);
    static void passOver(IndexBuilder& /*builder*/, std::string_view /*text*/) {}
    LineScan ignoreLine_ = passOver;

    IndexBuilder builder_;
    Lines lines_;
    FileForm form_;
    std::size_t at_ = 0;
    const LineScan* blockLine_ = &ignoreLine_; ///< reads a line of the block that is open
};

} // namespace

FileIndex indexFile(std::string_view text, FileForm form) {
    return FileScan(text, form).run();
}

} // namespace morquill::lsp
