// Any bytes as a task file that is linted: no exception ever, a file that the parser refuses has an error in
// the report and any other was parsed, and the JSON of the report is JSON.

#include "fuzz_input.h"
#include "json_law.h"
#include "lint/file_check.h"

#include <algorithm>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace morquill;
    const auto text = fuzz::textOf(data, size);
    const std::vector reports{lint::lintText(text, "", [](const std::string&) {})};
    const auto& report = reports.front();
    const bool hasError = std::any_of(report.issues.begin(), report.issues.end(), [](const auto& issue) {
        return issue.severity == lint::LintSeverity::error;
    });
    fuzz::require(report.parsed || hasError, "a text that does not parse has an error", text);
    for (const auto& issue : report.issues) {
        fuzz::require(!issue.code.empty() && !issue.message.empty(), "an issue has a code and a message",
                      text);
    }
    const auto summary = lint::summariseLint(reports, lint::Strictness::lenient);
    fuzz::require(summary.errors + summary.warnings == report.issues.size(), "every issue is counted", text);
    fuzz::holdJson(lint::renderLintJson(reports, summary));
    fuzz::require(!lint::renderLintText(reports, summary, lint::TextDetail::issues).empty(),
                  "the report has a text", text);
    return 0;
}
