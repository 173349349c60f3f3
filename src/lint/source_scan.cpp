#include "lint/source_scan.h"

#include "lint/rules.h"
#include "support/text.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/scan.h"

#include <optional>

namespace morquill::lint {

namespace {

/// Simpler than the parser's idea of a comment: a `#` outside quotes that no backslash precedes.
std::string_view stripRawComment(std::string_view line) noexcept {
    if (line.find('#') == std::string_view::npos) {
        return line;
    }
    QuoteWalk walk(taskdsl::quote_rules::rawComment);
    for (std::size_t at = 0; at < line.size(); at = walk.step(line, at)) {
        if (line[at] == '#' && walk.inOpen() && (at == 0 || line[at - 1] != '\\')) {
            return line.substr(0, at);
        }
    }
    return line;
}

/// The block that a line is in.
enum class OpenBlock { none, control, process };

/// Follows the blocks from line to line and marks the part of each line that is inside one.
class BlockWalk {
  public:
    void read(RawLine& line) noexcept {
        const auto statement = line.statement;
        const bool marked = marks.find(statement.front()) != std::string_view::npos;
        if (!marked) {
            readInside(line);
        } else if (const auto control = taskdsl::textAfterWord(statement, "%control")) {
            open_ = control->empty() ? OpenBlock::control : OpenBlock::none;
            line.controlText = *control;
        } else if (const auto process = textAfterProcess(statement)) {
            open_ = process->empty() ? OpenBlock::process : OpenBlock::none;
            line.processText = *process;
        } else {
            open_ = OpenBlock::none;
        }
    }

  private:
    static constexpr std::string_view marks = "$%@";

    void readInside(RawLine& line) const noexcept {
        if (open_ == OpenBlock::control) {
            line.controlText = line.statement;
        } else if (open_ == OpenBlock::process) {
            line.processText = line.statement;
        }
    }

    /// `%preprocess` opens a block only when it is alone on its line.
    static std::optional<std::string_view> textAfterProcess(std::string_view statement) noexcept {
        return equalsNoCase(statement, "%preprocess") ? std::string_view{}
                                                      : taskdsl::textAfterWord(statement, "%process");
    }

    OpenBlock open_ = OpenBlock::none;
};

} // namespace

std::string_view rawDslVersion(const std::vector<std::string_view>& lines) noexcept {
    for (const auto raw : lines) {
        const auto line = trim(raw);
        if (line.starts_with('$')) {
            break;
        }
        const auto colon = line.find(':');
        if (!line.starts_with('#') && colon != std::string_view::npos &&
            trim(line.substr(0, colon)) == "dsl_version") {
            return trim(line.substr(colon + 1));
        }
    }
    return {};
}

std::vector<PendingLineIssue> scanRawLines(const std::vector<std::string_view>& lines,
                                           const SharedText& path) {
    std::vector<PendingLineIssue> pending;
    BlockWalk walk;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        RawLine line{path, i + 1, lines[i], {}, {}, {}};
        if (line.text.ends_with('\r')) {
            line.text.remove_suffix(1);
        }
        // A line that begins with an include of the old form is a comment from its first byte on.
        line.statement = trim(stripRawComment(line.text));
        if (!line.statement.empty()) {
            walk.read(line);
        }
        applyRules(line, [&](const LintRule& rule, LintFinding finding) {
            pending.push_back({std::move(finding.span), rule.code, lintMessage(rule, finding)});
        });
    }
    return pending;
}

} // namespace morquill::lint
