#include "lint/source_scan.h"

#include "lint/rules.h"
#include "support/text.h"

#include <optional>

namespace morquill::lint {

namespace {

/// Simpler than what the parser takes for a comment: a `#` outside quotes that has no backslash in front.
std::string_view stripRawComment(std::string_view line) noexcept {
    char quote = '\0';
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '#' && (i == 0 || line[i - 1] != '\\')) {
            return line.substr(0, i);
        }
    }
    return line;
}

/// The trimmed text behind a word at the front (any case, white space or the end behind it).
std::optional<std::string_view> behindWord(std::string_view text, std::string_view word) noexcept {
    const auto rest = text.substr(std::min(word.size(), text.size()));
    if (!equalsNoCase(text.substr(0, word.size()), word) || (!rest.empty() && !isSpace(rest.front()))) {
        return std::nullopt;
    }
    return trim(rest);
}

/// Which block the lines are in.
enum class OpenBlock { none, control, process };

/// Follows the blocks from line to line and tells of each line what stands in one.
class BlockWalk {
  public:
    void read(RawLine& line) noexcept {
        const auto statement = line.statement;
        if (const auto control = behindWord(statement, "%control")) {
            open = control->empty() ? OpenBlock::control : OpenBlock::none;
            line.controlText = *control;
        } else if (const auto process = behindProcess(statement)) {
            open = process->empty() ? OpenBlock::process : OpenBlock::none;
            line.processText = *process;
        } else if (marks.find(statement.front()) != std::string_view::npos) {
            open = OpenBlock::none;
        } else if (open == OpenBlock::control) {
            line.controlText = statement;
        } else if (open == OpenBlock::process) {
            line.processText = statement;
        }
    }

  private:
    static constexpr std::string_view marks = "$%@";

    /// `%preprocess` opens a block only when it stands alone on its line.
    static std::optional<std::string_view> behindProcess(std::string_view statement) noexcept {
        return equalsNoCase(statement, "%preprocess") ? std::string_view{}
                                                      : behindWord(statement, "%process");
    }

    OpenBlock open = OpenBlock::none;
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
        // A line that begins with an include of the old form is all comment to what follows.
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
