#include "lint/report.h"

#include "support/json.h"

namespace morquill::lint {

namespace {

bool isError(const LintIssue& issue, bool strict) noexcept {
    return strict || issue.severity == LintSeverity::error;
}

std::string_view severityText(const LintIssue& issue, bool strict) noexcept {
    return isError(issue, strict) ? "error" : "warning";
}

template <class... Pieces>
void addLine(std::string& out, const Pieces&... pieces) {
    (out.append(std::string_view(pieces)), ...);
    out += '\n';
}

void addIssueText(std::string& out, const LintIssue& issue, bool strict) {
    out += issue.file;
    if (isValidSpan(issue.span) && !issue.messageNamesPlace) {
        out += ':' + std::to_string(issue.span.line) + ':' + std::to_string(issue.span.column);
    }
    addLine(out, ": ", severityText(issue, strict), " [", issue.code, "] ", issue.message);
}

/// The issue's place; its file when no place is known.
std::string placeText(const LintIssue& issue) {
    return isValidSpan(issue.span) || issue.file.empty() ? formatSpan(issue.span) : issue.file;
}

void addIssueJson(std::string& out, const LintIssue& issue, bool strict) {
    addLine(out, "        {");
    addLine(out, "          \"severity\": ", jsonString(severityText(issue, strict)), ",");
    addLine(out, "          \"code\": ", jsonString(issue.code), ",");
    addLine(out, "          \"message\": ", jsonString(issue.message), ",");
    addLine(out, "          \"span\": ", jsonString(placeText(issue)));
    out += "        }";
}

/// The elements one after the other, with a comma at the end of all but the last.
template <class List, class Add>
void addList(std::string& out, const List& list, const Add& add) {
    for (const auto& element : list) {
        add(element);
        addLine(out, &element == &list.back() ? "" : ",");
    }
}

} // namespace

LintSummary summariseLint(const std::vector<LintFileReport>& reports, bool strict) {
    LintSummary summary{reports.size(), 0, 0, strict};
    for (const auto& report : reports) {
        for (const auto& issue : report.issues) {
            ++(isError(issue, strict) ? summary.errors : summary.warnings);
        }
    }
    return summary;
}

std::string renderLintText(const std::vector<LintFileReport>& reports, const LintSummary& summary,
                           bool quiet) {
    std::string out;
    if (!quiet) {
        for (const auto& report : reports) {
            for (const auto& issue : report.issues) {
                addIssueText(out, issue, summary.strict);
            }
        }
        if (out.empty()) {
            addLine(out, "no issues found");
        }
    }
    addLine(out, "checked ", std::to_string(summary.files), " file(s), ", std::to_string(summary.errors),
            " error(s), ", std::to_string(summary.warnings), " warning(s)",
            summary.strict ? " [strict]" : "");
    return out;
}

std::string renderLintJson(const std::vector<LintFileReport>& reports, const LintSummary& summary) {
    std::string out;
    addLine(out, "{");
    addLine(out, "  \"files\": [");
    addList(out, reports, [&](const LintFileReport& report) {
        addLine(out, "    {");
        addLine(out, "      \"path\": ", jsonString(report.path), ",");
        addLine(out, "      \"parsed\": ", report.parsed ? "true" : "false", ",");
        addLine(out, "      \"issues\": [");
        addList(out, report.issues,
                [&](const LintIssue& issue) { addIssueJson(out, issue, summary.strict); });
        addLine(out, "      ]");
        out += "    }";
    });
    addLine(out, "  ],");
    addLine(out, "  \"summary\": {");
    addLine(out, "    \"files\": ", std::to_string(summary.files), ",");
    addLine(out, "    \"errors\": ", std::to_string(summary.errors), ",");
    addLine(out, "    \"warnings\": ", std::to_string(summary.warnings), ",");
    addLine(out, "    \"strict\": ", summary.strict ? "true" : "false");
    addLine(out, "  }");
    addLine(out, "}");
    return out;
}

} // namespace morquill::lint
