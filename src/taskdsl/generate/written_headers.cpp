#include "taskdsl/generate/written_headers.h"

#include "support/text.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/task/directive_reader.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

bool takesCommands(const WrittenDirective& directive) noexcept {
    const FragmentKind scope = scopeAfter(directive);
    return scope == FragmentKind::process || scope == FragmentKind::preprocess;
}

/// Walks the lines as written; what decides is whether a line belongs to something that takes lines
/// as they are.
class HeaderScan {
  public:
    explicit HeaderScan(std::string_view text) : lines_(makeSourceLines(text, {})) {}

    std::vector<WrittenHeader> run() {
        for (; index_ < lines_.size(); ++index_) {
            readLine(lines_[index_]);
        }
        return std::move(headers_);
    }

  private:
    void readLine(const SourceLine& line) {
        const LineKind kind = line.kind();
        if (line.clean().empty() || kind == LineKind::loop || kind == LineKind::end) {
            return; // loop lines are gone before commands are read: a continued command goes on after them
        }
        if (continued_) {
            continued_ = isContinuedCommand(line.clean());
        } else if (opensBlock(kind)) {
            inTask_ = false;
            inCommands_ = false;
            index_ = findBlockEnd(lines_, index_, lines_.size()).index;
        } else if (kind == LineKind::taskHeader) {
            headers_.push_back({std::string(taskHeaderName(line.clean())), index_ + 1});
            inTask_ = true;
            inCommands_ = false;
        } else if (kind == LineKind::directive && inTask_) {
            readDirective(splitDirective(line.clean()));
        } else {
            continued_ = inCommands_ && kind != LineKind::include && isContinuedCommand(line.clean());
        }
    }

    void readDirective(const WrittenDirective& directive) {
        inCommands_ = takesCommands(directive);
        if (scopeAfter(directive) == FragmentKind::text && opensHeredoc(directive.value)) {
            index_ = findHeredocEnd(lines_, index_, heredocTerminator(directive.value)).index;
        }
    }

    std::vector<SourceLine> lines_;
    std::vector<WrittenHeader> headers_;
    std::size_t index_ = 0;
    bool inTask_ = false;
    bool inCommands_ = false; ///< after %process or %preprocess
    bool continued_ = false;  ///< the last command ended in a backslash
};

} // namespace

std::vector<WrittenHeader> listWrittenHeaders(std::string_view text) {
    return HeaderScan(skipByteOrderMark(text)).run();
}

} // namespace morquill::taskdsl
