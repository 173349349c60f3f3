#include "lint/report.h"

#include "support/json.h"
#include "support/line_builder.h"

namespace morquill::lint {

namespace {

bool isError(const LintIssue& issue, bool strict) noexcept {
    return strict || issue.severity == LintSeverity::error;
}

std::string_view severityText(const LintIssue& issue, bool strict) noexcept {
    return isError(issue, strict) ? "error" : "warning";
}

void addIssueText(LineBuilder& out, const LintIssue& issue, bool strict) {
    out.open(issue.file);
    if (isValidSpan(issue.span) && !issue.messageNamesPlace) {
        out.add(":", std::to_string(issue.span.line), ":", std::to_string(issue.span.column));
    }
    out.add(": ", severityText(issue, strict), " [", issue.code, "] ", issue.message).close();
}

/// The place of an issue; its file when no place is known.
std::string placeText(const LintIssue& issue) {
    return isValidSpan(issue.span) || issue.file.empty() ? formatSpan(issue.span) : issue.file;
}

/// Writes the elements as JSON objects one level deeper, with a comma after all but the last. `add` writes
/// the lines between the braces.
template <class List, class Add>
void addObjects(LineBuilder& out, const List& list, const Add& add) {
    out.deeper();
    for (const auto& element : list) {
        out.line("{");
        out.deeper();
        add(element);
        out.shallower();
        out.line("}", &element == &list.back() ? "" : ",");
    }
    out.shallower();
}

void addIssueJson(LineBuilder& out, const LintIssue& issue, bool strict) {
    out.line("\"severity\": ", jsonString(severityText(issue, strict)), ",");
    out.line("\"code\": ", jsonString(issue.code), ",");
    out.line("\"message\": ", jsonString(issue.message), ",");
    out.line("\"span\": ", jsonString(placeText(issue)));
}

void addReportJson(LineBuilder& out, const LintFileReport& report, bool strict) {
    out.line("\"path\": ", jsonString(report.path), ",");
    out.line("\"parsed\": ", report.parsed ? "true" : "false", ",");
    out.line("\"issues\": [");
    addObjects(out, report.issues, [&](const LintIssue& issue) { addIssueJson(out, issue, strict); });
    out.line("]");
}

void addSummaryJson(LineBuilder& out, const LintSummary& summary) {
    out.line("\"files\": ", std::to_string(summary.files), ",");
    out.line("\"errors\": ", std::to_string(summary.errors), ",");
    out.line("\"warnings\": ", std::to_string(summary.warnings), ",");
    out.line("\"strict\": ", summary.strict ? "true" : "false");
}

} // namespace

LintSummary summariseLint(const std::vector<LintFileReport>& reports, Strictness strictness) {
    const bool strict = strictness == Strictness::strict;
    LintSummary summary{reports.size(), 0, 0, strict};
    for (const auto& report : reports) {
        for (const auto& issue : report.issues) {
            ++(isError(issue, strict) ? summary.errors : summary.warnings);
        }
    }
    return summary;
}

std::string renderLintText(const std::vector<LintFileReport>& reports, const LintSummary& summary,
                           TextDetail detail) {
    LineBuilder out;
    if (detail == TextDetail::issues) {
        for (const auto& report : reports) {
            for (const auto& issue : report.issues) {
                addIssueText(out, issue, summary.strict);
            }
        }
        if (out.empty()) {
            out.line("no issues found");
        }
    }
    out.line("checked ", std::to_string(summary.files), " file(s), ", std::to_string(summary.errors),
             " error(s), ", std::to_string(summary.warnings), " warning(s)",
             summary.strict ? " [strict]" : "");
    return out.take();
}

std::string renderLintJson(const std::vector<LintFileReport>& reports, const LintSummary& summary) {
    LineBuilder out;
    out.line("{");
    out.deeper();
    out.line("\"files\": [");
    addObjects(out, reports,
               [&](const LintFileReport& report) { addReportJson(out, report, summary.strict); });
    out.line("],");
    out.line("\"summary\": {");
    out.deeper();
    addSummaryJson(out, summary);
    out.shallower();
    out.line("}");
    out.shallower();
    out.line("}");
    return out.take();
}

} // namespace morquill::lint
