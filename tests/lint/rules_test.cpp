#include "lint/rules.h"

#include "lint/file_check.h"
#include "taskdsl/task/when_expr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace morquill::lint {
namespace {

TEST(LintRules, HaveTheirCodesAndSeverities) {
    std::set<std::string_view> warnings;
    std::set<std::string_view> errors;
    for (const auto& rule : lintRules()) {
        (rule.severity == LintSeverity::error ? errors : warnings).insert(rule.code);
    }
    EXPECT_THAT(errors,
                ::testing::ElementsAre("duplicate-task", "missing-completed-target", "missing-guess-task",
                                       "missing-keywords", "missing-placeholder-task", "missing-script-body",
                                       "missing-script-runner", "missing-source-task", "missing-template",
                                       "parse-error"));
    EXPECT_THAT(warnings, ::testing::ElementsAre(
                              "allothers-deadlock", "ambiguous-placeholder", "guess-false-is-task",
                              "ignored-guess", "ignored-non-xtb-args", "legacy-control-gpu-alias",
                              "legacy-fragment-kind-alias", "legacy-hash-include", "legacy-implicit-xtb-args",
                              "legacy-keyword-brace-expansion", "legacy-multi-source",
                              "legacy-other-keywords", "legacy-process-alias", "legacy-script-runner",
                              "legacy-source-guess", "legacy-xtb-keywords", "unknown-dsl-version"));
}

/// Every issue as `<W|E> <span without path, or -> <code> | <message>`, one per line.
std::string lint(std::string_view text) {
    const auto report = lintText(text, "t.mq", [](const std::string&) {});
    std::string found;
    for (const auto& issue : report.issues) {
        EXPECT_EQ(issue.file, "t.mq");
        auto span = issue.span;
        span.path = {};
        found += issue.severity == LintSeverity::error ? "E " : "W ";
        found += (isValidSpan(span) ? formatSpan(span) : "-") + " ";
        found += std::string(issue.code) + " | " + issue.message + "\n";
    }
    return found;
}

const std::string a = "$a\n%keywords k\n"; ///< a sound task in two lines
const std::string b = "$b\n%keywords k\n";

struct LintRow {
    std::string text;
    std::string result;
};

void expectIssues(const std::vector<LintRow>& rows) {
    for (const auto& row : rows) {
        EXPECT_EQ(lint(row.text), row.result) << row.text;
    }
}

TEST(LintRules, LookAtTheFile) {
    const std::string removed = "parse-error | task 'c' uses removed multi-dependency '%source a,b,...' "
                                "syntax; keep the first task in "
                                "%source and move the rest into '%when completed ...'\n";
    const std::string list = "$c\n%keywords k\n%source a,b\n";
    expectIssues({
        {"", ""},
        {a, ""},
        {"$a\n%foo\n", "E 2:1-2:5 parse-error | task 'a' contains unknown directive '%foo'\n"},
        {"define:\n  source: x\n" + a,
         "E - parse-error | define key 'source' is reserved for runtime %source placeholders\n"},
        {"$a\n%control\ntotgpu 1\n%foo\n", // issues of the lines are reported although the file does not
                                           // parse
         "W 3:1-3:7 legacy-control-gpu-alias | %control totgpu is legacy; use gpus\n"
         "E 4:1-4:5 parse-error | task 'a' contains unknown directive '%foo'\n"},
        {"dsl_version: 3\n" + a, "W - unknown-dsl-version | unexpected dsl_version '3'\n"},
        {"dsl_version: 2 # note\n" + a, "W - unknown-dsl-version | unexpected dsl_version '2 # note'\n"},
        {"dsl_version: \"2\"\n" + a, "W - unknown-dsl-version | unexpected dsl_version '\"2\"'\n"},
        {"dsl_version: 2\n" + a, ""},
        {"dsl_version:\n" + a, ""},
        {"dsl_version: 1\n" + a + b + list,
         "W 8:1-8:12 legacy-multi-source | deprecated multi-source syntax should be migrated for DSL2\n"},
        {"dsl_version: 1\n" + a + b + "$c\n%keywords k\n%source b\n", ""},
        {"dsl_version: 2\n" + a + b + list, "E 8:1-8:12 " + removed},
        {"dsl_version: 3\n" + a + b + list, "E 8:1-8:12 " + removed},
        {a + "$a\n", "E 3:1-3:3 duplicate-task | duplicate task block: a\n"
                     "E 3:1-3:3 missing-keywords | keywords are not set\n"},
    });
}

TEST(LintRules, LookAtGuesses) {
    const std::string suffix =
        "legacy-source-guess | deprecated '%source ... guess' syntax should move into %control\n";
    const std::string move = "legacy-source-guess | move source guess syntax to %control guess\n";
    const std::string explicitGuess =
        "ignored-guess | explicit %control guess overrides legacy source guess suffix\n";
    const std::string both = "ignored-guess | legacy source-guess marker and explicit control guess are both "
                             "present; source marker is ignored\n";
    const std::string isTask =
        "guess-false-is-task | 'guess false' is parsed as a task name; use 'guess true' or a "
        "real task name\n";
    const std::string missing = "missing-guess-task | guess source task does not exist: ";
    expectIssues({
        {a + b + "%source a guess\n", "W 5:1-5:16 " + suffix + "W 5:1-5:16 " + move},
        {a + b + "  %source a gues\n", "W 5:3-5:17 " + suffix},
        {a + b + "%source a\n", ""},
        {a + b + "%source a guess\n%control\n guess false\n",
         "W 5:1-5:16 " + suffix + "W 5:1-5:16 " + move +
             "W 6:1-6:9 guess-false-is-task | control guess false is parsed as task name under current "
             "DSL\n" +
             "W 6:1-6:9 " + explicitGuess + "W 6:1-6:9 " + isTask + "E 6:1-6:9 " + missing + "false\n"},
        {a + b + "%source a guess\n%control\n guess a\n",
         "W 5:1-5:16 " + suffix + "W 5:1-5:16 " + move + "W 6:1-6:9 " + explicitGuess + "W 6:1-6:9 " + both},
        {a + b + "%source a guess\n%control\n guess true\n",
         "W 5:1-5:16 " + suffix + "W 5:1-5:16 " + move + "W 6:1-6:9 " + explicitGuess},
        // Resources from the head of the file declare the control, too; there is no directive to point at.
        {"totcore: 4\n" + b + "%source origin guess\n",
         "W 4:1-4:21 " + suffix + "W 4:1-4:21 " + move + "W 2:1-2:3 " + explicitGuess},
        {a + b + "%source a\n%control\n guess false\n",
         "W 6:1-6:9 " + isTask + "E 6:1-6:9 " + missing + "false\n"},
        {"$false\n%keywords k\n" + b + "%control\n guess false\n", "W 5:1-5:9 " + isTask},
        {a + b + "%source a\n%control\n guess False\n", "E 6:1-6:9 " + missing + "False\n"},
        {a + b + "%control\n guess a\n", ""},
        {a + b + "%control\n guess true\n", ""},
    });
}

TEST(LintRules, LookAtTheProgramsInput) {
    const std::string missing = "E 1:1-1:3 missing-keywords | keywords are not set\n";
    const std::string braces =
        "legacy-keyword-brace-expansion | Gaussian/ORCA keyword brace expansion is legacy; use matrix:\n";
    const std::string ignored = "ignored-non-xtb-args | %args is only canonical for XTB tasks\n";
    const std::string otherKeywords =
        "legacy-other-keywords | other task template parameters should be written with %template/%param\n";
    std::vector<LintRow> rows{
        {"$a\n%program other\n%keywords job=x\n", "W 3:1-3:16 " + otherKeywords},
        {"$a\n%program other\n%keywords x\n",
         "W 3:1-3:12 " + otherKeywords + "E 1:1-1:3 missing-template | template is not set for other task\n"},
        {"$a\n%program other\n", "E 1:1-1:3 missing-template | template is not set for other task\n"},
        {"$a\n%program other\n%template x\n", ""},
        {"$a\n%program script\n%keywords sh\n%body x\n",
         "W 3:1-3:13 legacy-script-runner | script task runner should be written with %runner\n"},
        {"$a\n%program script\n%runner sh\n%keywords k\n%body x\n", ""},
        {"$a\n%program script\n%body x\n",
         "E 1:1-1:3 missing-script-runner | runner is not set for script task\n"},
        {"$a\n%program script\n%runner sh\n",
         "E 1:1-1:3 missing-script-body | body is not set for script task\n"},
        {"$a\n%program xtb\n%keywords --opt\n",
         "W 3:1-3:16 legacy-xtb-keywords | %program xtb with %keywords is legacy; use %args\n"},
        {"$a\n%program xtb\n%args --opt\n%keywords k\n", ""},
        {"$a\n%args x\n",
         "W 2:1-2:8 legacy-implicit-xtb-args | implicit XTB from %args is legacy; add %program xtb\n"},
        {"$a\n%program xtb\n%args x\n", ""},
        {a + "%args x\n", "W 3:1-3:8 " + ignored},
        {a + "%args\n", "W 3:1-3:6 " + ignored},
        {"$a\n%keywords {b3lyp,pbe}/x\n", "W 2:1-2:24 " + braces},
        {"$a\n%program orca\n%keywords {a} {b {c,d} {e,f}\n", "W 3:1-3:29 " + braces},
        {"$a\n%keywords {a} b,c {d, e\n", ""},
        {"$a\n%keywords {a}{b} },{\n", ""},
        {"$a\n%program mrcc\n%keywords {a,b}\n", ""},
        {"$a\n", missing},
        {"$a\n%control\n externalinp\n", ""},
        {"$a\n%extrainput x\n", missing},
        {"$a\n%program orca\n%extrainput x\n", missing},
        {"$a\n%program gamess\n%extrainput x\n", missing},
        {"$a\n%program xtb\n", missing},
        {"$a\n%program xtb\n%extrainput x\n", ""},
        {"$a\n%program xtb\n%mod\n charge 1\n", ""},
        {"$a\n%mod\n charge 1\n", missing},
        {"$a\n%program fcclasses\n%source\n state1 origin\n", missing},
        {"$a\n%program fcclasses\n%source\n state1 origin\n%extrainput x\n", ""},
    };
    for (const std::string program : {"mrcc", "maple", "amesp", "bdf", "mopac"}) {
        rows.push_back({"$a\n%program " + program + "\n", missing});
        rows.push_back({"$a\n%program " + program + "\n%extrainput x\n", ""});
        rows.push_back({"$a\n%program " + program + "\n%keywords x\n", ""});
    }
    expectIssues(rows);
}

TEST(LintRules, LookForTheTasksThatATaskNeeds) {
    const std::string source = "missing-source-task | source task does not exist: ";
    const std::string completed = "missing-completed-target | completed target does not exist: ";
    const std::string tasks = a + "$sp_1\n%keywords k\n$sp_2\n%keywords k\n" + b; // $b is line 7
    expectIssues({
        {a + "%source b\n", "E 3:1-3:10 " + source + "b\n"},
        {a + "%source Origin\n", "E 3:1-3:15 " + source + "Origin\n"},
        {a + "%source b\n" + b, ""},
        {a + "%source origin\n", ""},
        {a + "%source restart\n", ""},
        {a + "%source xyz=x.xyz\n", ""},
        {a + "%control\n guess b\n", "E 3:1-3:9 missing-guess-task | guess source task does not exist: b\n"},
        {a + "%when completed b\n", "E 3:1-3:18 " + completed + "b\n"},
        {a + "%when\n\n    (completed b or completed A) and completed b\n",
         "E 5:5-5:49 " + completed + "b\nE 5:5-5:49 " + completed + "A\nE 5:5-5:49 " + completed + "b\n"},
        {a + "%when completed b\n" + b, ""},
        {a + "%when completed\n", ""},
        {a + "%when completed allOthers\n", ""},
        {tasks +
             "%when completed sp_*\n completed sp_[12]\n completed sp_?\n completed *\n completed [s]p_1\n",
         ""},
        {tasks + "%when completed sp_1*\n completed s*_2\n completed sp\\_[2]\n", ""},
        {tasks + "%when completed SP_*\n completed sp_[34]\n completed sp?\n completed x*\n",
         "E 9:1-9:21 " + completed + "SP_*\nE 10:2-10:19 " + completed + "sp_[34]\nE 11:2-11:15 " +
             completed + "sp?\nE 12:2-12:14 " + completed + "x*\n"},
    });
}

TEST(LintRules, LookAtPlaceholders) {
    const std::string missing = "missing-placeholder-task | placeholder task does not exist: ";
    const auto bare = [](const std::string& name) {
        return "ambiguous-placeholder | placeholder '{{ " + name +
               " }}' should be qualified with a task name\n";
    };
    const std::string many = "ambiguous-placeholder | unqualified placeholder '{{ energy }}' is ambiguous in "
                             "multi-task conditions\n";
    const std::string ab = a + b + "$c\n%keywords k\n";
    const std::string note = "# {{ energy }}\n";
    expectIssues({
        {a + "%when {{ b.energy }} < 1\n", "E 3:1-3:25 " + missing + "b\n"},
        {a + "%when {{ a.energy }} < {{a}}\n", ""},
        {a + "%when {{ Energy }} = 1\n", "E 3:1-3:23 " + missing + "Energy\n"},
        {a + "%when 1 = {{ .x }}\n", "E 3:1-3:19 " + missing + "\n"},
        {a + "%when {{ x.a }} < {{ value }}\n", "E 3:1-3:30 " + missing + "x\nW 3:1-3:30 " + bare("value")},
        {a + "%when {{ status.a }} < {{ x }} and {{ x }} = 1\n",
         "W 3:1-3:47 " + bare("status") + "E 3:1-3:47 " + missing + "x\nE 3:1-3:47 " + missing + "x\n"},
        {a + "%when {{ energy }} < 1\n", "W 3:1-3:23 " + bare("energy")},
        {a + "%when defined {{ x.energy }}\n", ""},
        {ab + "%when {{ a.energy }} < {{ b.energy }}\n", ""},
        {ab + "%when {{ a.energy }} < {{ b.energy }}\n" + note, "W 7:1-7:38 " + many},
        {ab + "%when {{ a.energy }} < {{ a.x }}\n" + note, ""},
        {ab + "%when {{ a.energy }} < {{ b.energy }}\n# {{energy}}\n", ""},
        {ab + "%when completed a and {{ b.x }} = 1\n" + note, "W 7:1-7:36 " + many},
        {ab + "%when completed ?\n" + note, "W 7:1-7:18 " + many},
        {ab + "%when completed a\n completed b\n completed c*\n" + note, ""},
        {ab + "%when completed allothers\n" + note, ""},
        {ab + "%when completed x and {{ a.x }} = {{ energy }}\n",
         "E 7:1-7:47 missing-completed-target | completed target does not exist: x\nW 7:1-7:47 " +
             bare("energy")},
    });
}

TEST(LintRules, LookForTasksThatWaitForEachOther) {
    const std::string message =
        "allothers-deadlock | multiple tasks use 'completed allothers'; potential deadlock: ";
    const std::string waits = "%when completed allothers\n";
    expectIssues({
        {a + waits + b + waits, "W 3:1-3:26 " + message + "a, b\n"},
        {a + waits + " completed ALLOTHERS or defined x\n", "W 3:1-3:26 " + message + "a, a\n"},
        {a + waits + b, ""},
        {a + "%when completed allothers and completed allothers\n", ""},
    });
}

TEST(LintRules, CheckWhatIsWrittenAndNotWhatTheMatrixMakesOfIt) {
    expectIssues({{"matrix:\n  basis: sto-3g, 6-31g\n" + a + b + "%source a\n%when completed a\n", ""}});
}

TEST(LintRules, SurviveAnyText) {
    EXPECT_EQ(lint("$a\n%when " + std::string(1u << 17u, '(') + "\n"),
              "E 1:1-1:3 missing-keywords | keywords are not set\n");
    EXPECT_EQ(lint(a + "%extrainput " + std::string(1u << 17u, '{') + "\n%keywords " +
                   std::string(1u << 17u, '{') + "\n"),
              "");
    EXPECT_EQ(
        lint("$a\n%keywords k\n@fragment " + std::string(1u << 17u, '"') + std::string("\n\0\xff\x01\n", 5)),
        "");
    std::string nested = "defined x";
    for (int i = 0; i < 200; ++i) {
        nested = "(" + nested + (i % 2 == 0 ? ") and defined y" : ") or defined y");
    }
    EXPECT_EQ(lint(a + "%when " + nested + "\n"),
              "E - parse-error | %when condition nests groups more than " +
                  std::to_string(taskdsl::maxWhenNesting) + " levels deep\n");
}

} // namespace
} // namespace morquill::lint
