#include "lint/report.h"

#include <gtest/gtest.h>

namespace morquill::lint {
namespace {

/// Two files: one with an error that has a place and a warning that has none, one that is sound.
std::vector<LintFileReport> reports() {
    return {{"a.mq",
             {{LintSeverity::error, "a.mq", {"a.mq", 3, 2, 3, 9}, "parse-error", "say \"x\""},
              {LintSeverity::warning, "a.mq", {}, "legacy-process-alias", "old"}},
             false},
            {"b.mq", {}, true}};
}

TEST(LintSummary, CountsFilesErrorsAndWarnings) {
    const auto lenient = summariseLint(reports(), Strictness::lenient);
    EXPECT_EQ(lenient.files, 2U);
    EXPECT_EQ(lenient.errors, 1U);
    EXPECT_EQ(lenient.warnings, 1U);
    const auto strict = summariseLint(reports(), Strictness::strict);
    EXPECT_EQ(strict.errors, 2U);
    EXPECT_EQ(strict.warnings, 0U);
    EXPECT_EQ(summariseLint({}, Strictness::strict).files, 0U);
}

TEST(LintText, IsOneLinePerIssueAndTheSum) {
    const auto all = reports();
    EXPECT_EQ(renderLintText(all, summariseLint(all, Strictness::lenient), TextDetail::issues),
              "a.mq:3:2: error [parse-error] say \"x\"\n"
              "a.mq: warning [legacy-process-alias] old\n"
              "checked 2 file(s), 1 error(s), 1 warning(s)\n");
    EXPECT_EQ(renderLintText(all, summariseLint(all, Strictness::strict), TextDetail::issues),
              "a.mq:3:2: error [parse-error] say \"x\"\n"
              "a.mq: error [legacy-process-alias] old\n"
              "checked 2 file(s), 2 error(s), 0 warning(s) [strict]\n");
    EXPECT_EQ(renderLintText(all, summariseLint(all, Strictness::lenient), TextDetail::summaryOnly),
              "checked 2 file(s), 1 error(s), 1 warning(s)\n");
    const std::vector<LintFileReport> sound{{"b.mq", {}, true}};
    EXPECT_EQ(renderLintText(sound, summariseLint(sound, Strictness::lenient), TextDetail::issues),
              "no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s)\n");
}

TEST(LintText, APlaceThatTheMessageNamesIsNotRepeated) {
    const std::vector<LintFileReport> one{
        {"a.mq",
         {{LintSeverity::error, "a.mq", {"l.mqlib", 2, 1, 2, 9}, "parse-error", "l.mqlib:2: bad", true}},
         false}};
    const auto summary = summariseLint(one, Strictness::lenient);
    EXPECT_EQ(renderLintText(one, summary, TextDetail::issues),
              "a.mq: error [parse-error] l.mqlib:2: bad\n"
              "checked 1 file(s), 1 error(s), 0 warning(s)\n");
    EXPECT_NE(renderLintJson(one, summary).find("\"span\": \"l.mqlib:2:1-2:9\"\n"), std::string::npos);
}

TEST(LintJson, HoldsTheWholeResult) {
    const auto all = reports();
    EXPECT_EQ(renderLintJson(all, summariseLint(all, Strictness::lenient)), R"({
  "files": [
    {
      "path": "a.mq",
      "parsed": false,
      "issues": [
        {
          "severity": "error",
          "code": "parse-error",
          "message": "say \"x\"",
          "span": "a.mq:3:2-3:9"
        },
        {
          "severity": "warning",
          "code": "legacy-process-alias",
          "message": "old",
          "span": "a.mq"
        }
      ]
    },
    {
      "path": "b.mq",
      "parsed": true,
      "issues": [
      ]
    }
  ],
  "summary": {
    "files": 2,
    "errors": 1,
    "warnings": 1,
    "strict": false
  }
}
)");
    EXPECT_EQ(renderLintJson({}, summariseLint({}, Strictness::strict)), R"({
  "files": [
  ],
  "summary": {
    "files": 0,
    "errors": 0,
    "warnings": 0,
    "strict": true
  }
}
)");
}

} // namespace
} // namespace morquill::lint
