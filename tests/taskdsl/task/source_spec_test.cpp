#include "taskdsl/task/source_spec.h"

#include "fixtures/faults.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/task/task_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

std::string bindingFault(const std::string& line) {
    return messageOf<DiagnosticError>([&] { (void)parseSourceBinding(line); });
}

std::string printed(std::string_view text) {
    return formatSourceSpec(parseSourceText(text));
}

TEST(InlineSource, KindsAreToldApart) {
    EXPECT_EQ(parseSourceText(" \t"), SourceSpec(SourceNone{}));
    EXPECT_EQ(parseSourceText(" origin "), SourceSpec(SourceOrigin{}));
    EXPECT_EQ(parseSourceText("restart"), SourceSpec(SourceRestart{}));
    EXPECT_EQ(parseSourceText("Origin"), SourceSpec(SourceTaskList{{"Origin"}}));
    EXPECT_EQ(parseSourceText("a , b,,c"), SourceSpec(SourceTaskList{{"a", "b", "c"}}));
    EXPECT_EQ(parseSourceText("a b"), SourceSpec(SourceTaskList{{"a b"}}));
    EXPECT_EQ(parseSourceText(", ,"), SourceSpec(SourceTaskList{{", ,"}}));
    EXPECT_EQ(parseSourceText("xyz=a,b.xyz"), SourceSpec(SourceXyz{"a,b.xyz", 0, false, {}}));
    EXPECT_EQ(parseSourceText("xyz=a.xyz frame=3"), SourceSpec(SourceXyz{"a.xyz", 3, true, {}}));
    EXPECT_EQ(SourceSpec(SourceStructured{}).index(), 5U);
}

TEST(InlineSource, TheFirstFrameCountsAndOtherWordsAreKept) {
    EXPECT_EQ(parseSourceText("xyz=a.xyz x frame=2 y frame=9"),
              SourceSpec(SourceXyz{"a.xyz", 2, true, {"x", "y", "frame=9"}}));
    EXPECT_EQ(printed("xyz=a.xyz x frame=2 y frame=9"), "xyz=a.xyz frame=2 x y frame=9");
    EXPECT_EQ(printed("xyz=a.xyz frame=007"), "xyz=a.xyz frame=7");
}

TEST(InlineSource, AFrameIsAPositiveInteger) {
    for (const auto* frame : {"0", "-1", "+1", "x", "", "1.5", "2147483648", "[f]"}) {
        EXPECT_EQ(messageOf<DiagnosticError>(
                      [&] { (void)parseSourceText("xyz=a.xyz frame=" + std::string(frame)); }),
                  "%source xyz frame selector must be a positive integer")
            << frame;
    }
    EXPECT_EQ(printed("xyz=a.xyz frame=2147483647"), "xyz=a.xyz frame=2147483647");
}

TEST(InlineSource, FileNamesAreQuotedOnlyWhenNeeded) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"xyz=", R"(xyz="")"},
        {R"(xyz="")", R"(xyz="")"},
        {R"(xyz="a b.xyz")", R"(xyz="a b.xyz")"},
        {"xyz='a b.xyz' frame=2", R"(xyz="a b.xyz" frame=2)"},
        {R"(xyz=it\'s.xyz)", R"(xyz="it's.xyz")"},
        {R"(xyz=a\"b)", R"(xyz="a\"b")"},
        {R"(xyz=a\b)", R"(xyz=a\b)"},
        {R"(xyz=a\\\\b)", R"(xyz="a\\\\b")"},
        {R"(xyz='a\' frame=1)", R"(xyz="a\\" frame=1)"},
        {R"(xyz=a#b:c,d)", R"(xyz=a#b:c,d)"},
        {R"(xyz='"a"')", "xyz=a"},
        {R"(xyz='""a""')", "xyz=a"},
        {R"(xyz=a 'b c' '' d\"e)", R"(xyz=a "b c" "d\"e")"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(printed(text), expected) << text;
        EXPECT_EQ(printed(expected), expected);
    }
    EXPECT_EQ(parseInlineSource("xyz='a\nb'"), SourceSpec(SourceXyz{"a\nb", 0, false, {}}));
}

TEST(SourceText, WithALineEndItIsStructuredAndChecked) {
    EXPECT_EQ(printed("geom a\n\n  aux.density b kind=fchk "), "geom a\naux.density b kind=fchk");
    EXPECT_EQ(messageOf<DiagnosticError>([] { (void)parseSourceText("geom a\ngeom.main b"); }),
              "structured %source declares geometry slot 'main' more than once");
    EXPECT_EQ(
        messageOf<DiagnosticError>([] { (void)parseSourceText("geom xyz=a frame=[f]\naux b"); }),
        "structured %source binding 'geom' has an invalid frame selector; frame must be a positive integer");
}

TEST(SourceBinding, GeometryKeysNameASlot) {
    EXPECT_EQ(parseSourceBinding("geom.main task1"), parseSourceBinding("geom task1"));
    const auto main = parseSourceBinding("geom task1");
    EXPECT_EQ(main.key, "geom");
    EXPECT_EQ(main.slot, "main");
    EXPECT_EQ(main.role, BindingRole::geometry);
    EXPECT_EQ(main.sourceKind, BindingSource::task);
    EXPECT_EQ(main.sourceTask, "task1");
    EXPECT_EQ(main.sourceValue, "task1");
    const auto other = parseSourceBinding(" geom.ts-1\trestart ");
    EXPECT_EQ(other.key, "geom.ts-1");
    EXPECT_EQ(other.slot, "ts-1");
    EXPECT_EQ(other.sourceKind, BindingSource::restart);
}

TEST(SourceBinding, OtherKeysAreAuxiliary) {
    const auto binding = parseSourceBinding("aux.density task2 kind=fchk a.b=' x ' q=1=2");
    EXPECT_EQ(binding.role, BindingRole::auxiliary);
    EXPECT_EQ(binding.key, "aux.density");
    EXPECT_THAT(binding.selectors, ElementsAre(Pair("kind", "fchk"), Pair("a.b", "x"), Pair("q", "1=2")));
    EXPECT_EQ(parseSourceBinding("geometry origin").role, BindingRole::auxiliary);
    EXPECT_EQ(formatSourceBinding(binding), "aux.density task2 kind=fchk a.b=x q=1=2");
}

TEST(SourceBinding, XyzFrames) {
    const auto binding = parseSourceBinding("geom xyz=\"a b.xyz\" kind=x frame=2");
    EXPECT_EQ(binding.sourceKind, BindingSource::xyz);
    EXPECT_EQ(binding.sourceValue, "a b.xyz");
    EXPECT_EQ(binding.frameIndex, 2);
    EXPECT_TRUE(binding.hasFrame);
    EXPECT_THAT(binding.selectors, ElementsAre(Pair("kind", "x")));
    EXPECT_EQ(formatSourceBinding(binding), "geom xyz=\"a b.xyz\" frame=2 kind=x");
    const auto open = parseSourceBinding("geom xyz=a.xyz frame=[f]");
    EXPECT_FALSE(open.hasFrame);
    EXPECT_THAT(open.selectors, ElementsAre(Pair("frame", "[f]")));
    // For another source `frame` is a selector like any other.
    EXPECT_THAT(parseSourceBinding("geom a frame=0 frame=x").selectors,
                ElementsAre(Pair("frame", "0"), Pair("frame", "x")));
}

TEST(SourceBinding, Faults) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {" geom ",
         "structured %source entry must have '<binding-key> <source> [selector=value ...]': 'geom'"},
        {"", "structured %source entry must have '<binding-key> <source> [selector=value ...]': ''"},
        {"1a b",
         "invalid structured %source binding key '1a'; use dot-separated identifiers beginning with a "
         "letter"},
        {"geom. b", "invalid structured %source binding key 'geom.'; use dot-separated identifiers beginning "
                    "with a letter"},
        {"'' b", "invalid structured %source binding key ''; use dot-separated identifiers beginning with a "
                 "letter"},
        {"geom.a.b c", "invalid geometry binding key 'geom.a.b'; expected geom or geom.<slot>"},
        {"geom.main.b c", "invalid geometry binding key 'geom.main.b'; expected geom or geom.<slot>"},
        {"geom ''", "structured %source binding 'geom' has an empty source reference"},
        {"geom.main xyz=", "structured %source binding 'geom' is missing the file name after xyz="},
        {"aux xyz=\"''\"", "structured %source binding 'aux' is missing the file name after xyz="},
        {"geom a b", "invalid structured %source selector 'b'; expected selector=value"},
        {"geom a =b", "invalid structured %source selector '=b'; expected selector=value"},
        {"geom a b=", "invalid structured %source selector 'b='; expected selector=value"},
        {"geom a b=''", "invalid structured %source selector 'b='; expected selector=value"},
        {"geom a b=\" \"", "structured %source selector 'b' has an empty value"},
        {"geom a 1=b", "invalid structured %source selector key '1'; use dot-separated identifiers beginning "
                       "with a letter"},
        {"geom xyz=a frame=2 frame=3", "structured %source binding 'geom' has more than one frame= selector"},
        {"geom xyz=a frame=[f] frame=3",
         "structured %source binding 'geom' has more than one frame= selector"},
        {"geom xyz=a frame=0", "structured %source frame selector must be a positive integer"},
        {"geom xyz=a frame=-2", "structured %source frame selector must be a positive integer"},
        {"geom xyz=a frame=99999999999", "structured %source frame selector must be a positive integer"},
    };
    for (const auto& [line, fault] : cases) {
        EXPECT_EQ(bindingFault(line), fault) << line;
    }
}

TEST(SourceBinding, WhatIsPrintedReadsBack) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"geom 'a b'", R"(geom "a b")"},
        {"geom.x it\\'s", R"(geom.x "it's")"},
        {"geom a#b", R"(geom "a#b")"},
        {R"(geom a\b k='x\y')", R"(geom "a\\b" k="x\\y")"},
        {R"(geom 'a"b')", R"(geom "a\"b")"},
        {"geom a,b:c", "geom a,b:c"},
        {"geom origin k=\"a # b\"", "geom origin k=\"a # b\""},
        {"aux xyz='a#b' frame=1", "aux xyz=\"a#b\" frame=1"},
        {R"(aux b k='" x "')", "aux b k=x"},
        {"geom xyz=a frame=[f]", "geom xyz=a frame=[f]"},
    };
    for (const auto& [line, expected] : cases) {
        const auto binding = parseSourceBinding(line);
        EXPECT_EQ(formatSourceBinding(binding), expected) << line;
        EXPECT_EQ(parseSourceBinding(cleanLine("    " + expected)), binding) << line;
    }
}

TEST(SourceBinding, RecordsFilledByHandPrintToo) {
    SourceBinding binding;
    EXPECT_EQ(formatSourceBinding(binding), "geom origin");
    binding.slot = "ts";
    binding.sourceTask = "a";
    binding.selectors = {{"", "dropped"}, {"k", ""}};
    EXPECT_EQ(formatSourceBinding(binding), "geom.ts a k=\"\"");
}

SourceBinding bindingWith(const std::function<void(SourceBinding&)>& change) {
    auto binding = parseSourceBinding("geom xyz=a");
    change(binding);
    return binding;
}

TEST(ValidateStructuredSource, Faults) {
    using Bindings = std::vector<SourceBinding>;
    const auto fault = [](const Bindings& bindings, Placeholders placeholders = Placeholders::allowed) {
        return messageOf<DiagnosticError>([&] { validateStructuredSource(bindings, placeholders); });
    };
    const auto one = [&](const std::function<void(SourceBinding&)>& change,
                         Placeholders placeholders = Placeholders::allowed) {
        return fault({bindingWith(change)}, placeholders);
    };
    const auto lines = [&](const std::vector<std::string>& texts) {
        Bindings bindings;
        for (const auto& text : texts) {
            bindings.push_back(parseSourceBinding(text));
        }
        return fault(bindings);
    };
    EXPECT_EQ(fault({}), "structured %source must contain at least one binding");
    EXPECT_EQ(one([](auto& b) { b.key = "a b"; }), "structured %source contains an invalid binding key");
    EXPECT_EQ(one([](auto& b) { b.key = ""; }), "structured %source contains an invalid binding key");
    EXPECT_EQ(one([](auto& b) { b.sourceValue = ""; }),
              "structured %source binding 'geom' has an empty source reference");
    EXPECT_EQ(one([](auto& b) {
                  b.sourceValue = "";
                  b.sourceTask = "t";
              }),
              "no fault");
    EXPECT_EQ(one([](auto& b) { b.hasFrame = true; }),
              "structured %source binding 'geom' has an invalid frame index");
    const auto openFrame = [](auto& b) { b.selectors = {{"frame", "[f]"}}; };
    EXPECT_EQ(one(openFrame), "no fault");
    EXPECT_EQ(
        one(openFrame, Placeholders::refused),
        "structured %source binding 'geom' has an invalid frame selector; frame must be a positive integer");
    EXPECT_EQ(one([](auto& b) {
                  b.selectors = {{"k", ""}};
              }),
              "structured %source binding 'geom' has an invalid selector");
    EXPECT_EQ(one([](auto& b) {
                  b.selectors = {{"1", "a"}};
              }),
              "structured %source binding 'geom' has an invalid selector");
    EXPECT_EQ(
        one([](auto& b) { b.slot = "1"; }),
        "invalid geometry slot '1'; slots must begin with a letter and contain only letters, digits, '_' or "
        "'-'");
    EXPECT_EQ(lines({"geom a", "geom.x b", "geom.x c"}),
              "structured %source declares geometry slot 'x' more than once");
    EXPECT_EQ(lines({"geom.a b"}),
              "structured %source with auxiliary geometry bindings must also declare geom");
    EXPECT_EQ(lines({"geom.a b", "geom c"}), "no fault");
    EXPECT_EQ(lines({"aux b"}), "no fault");
}

TEST(SourceBlock, FaultsCarryTheTaskAndThePlaceOfTheLineOrTheDirective) {
    const SourceSpan directive{"t.mq", 2, 3, 2, 10};
    const auto fault = [&](const std::vector<std::string>& texts) {
        std::vector<SourceEntryLine> lines;
        for (const auto& text : texts) {
            const auto number = static_cast<std::int32_t>(lines.size()) + 3;
            lines.push_back({text, {"t.mq", number, 5, number, 9}});
        }
        return messageOf<DiagnosticError>([&] { (void)parseSourceBlock(lines, "ts", directive); });
    };
    EXPECT_EQ(fault({"geom a", "", "aux xyz=b.xyz frame=[f]"}), "no fault");
    EXPECT_EQ(
        fault({"geom a", "aux"}),
        "t.mq:4:5-4:9: error: task 'ts' has invalid structured %source entry: structured %source entry must "
        "have '<binding-key> <source> [selector=value ...]': 'aux'");
    EXPECT_EQ(
        fault({"1 a"}),
        "t.mq:3:5-3:9: error: task 'ts' has invalid structured %source entry: invalid structured %source "
        "binding key '1'; use dot-separated identifiers beginning with a letter");
    EXPECT_EQ(
        fault({"geom.x a"}),
        "t.mq:2:3-2:10: error: task 'ts' has invalid structured %source: structured %source with auxiliary "
        "geometry bindings must also declare geom");
    EXPECT_EQ(fault({"", ""}),
              "t.mq:2:3-2:10: error: task 'ts' has empty %source; provide an inline source or one "
              "or more structured bindings");
}

TEST(RereadBinding, SeesWhatASubstitutionHasMadeOfIt) {
    std::vector<SourceBinding> bindings{parseSourceBinding("geom xyz=a k=1 frame=[f]"),
                                        parseSourceBinding("aux xyz=a frame=[g]"),
                                        parseSourceBinding("aux.b t frame=3"),
                                        parseSourceBinding("aux.c [s]"), parseSourceBinding("aux.d [s]")};
    bindings[0].selectors[1].second = "12";
    bindings[3].sourceValue = "origin";
    bindings[4].sourceValue = "xyz=b.xyz";
    std::for_each(bindings.begin(), bindings.end(), rereadBinding);
    EXPECT_EQ(formatSourceSpec(SourceStructured{bindings}),
              "geom xyz=a frame=12 k=1\naux xyz=a frame=[g]\naux.b t frame=3\naux.c origin\naux.d xyz=b.xyz");
    EXPECT_TRUE(bindings[0].hasFrame);
    EXPECT_FALSE(bindings[1].hasFrame);
    EXPECT_EQ(bindings[3].sourceKind, BindingSource::origin);
    EXPECT_EQ(bindings[3].sourceTask, "");
    EXPECT_EQ(bindings[4].sourceKind, BindingSource::xyz);
}

TEST(TaskSource, IsLookedAtInThreeWays) {
    struct Row {
        SourceSpec source;
        const char* text;
        const char* upstream;
        std::vector<std::string> tasks;
        bool isSimple;
    };
    const Row rows[] = {
        {SourceNone{}, "", "", {}, false},
        {SourceOrigin{}, "origin", "", {}, true},
        {SourceRestart{}, "restart", "", {}, true},
        {SourceTaskList{{"a"}}, "a", "a", {"a"}, true},
        {SourceTaskList{{"a", "b"}}, "a", "a", {"a", "b"}, true},
        {SourceTaskList{{"", "b"}}, "", "", {"", "b"}, false},
        {parseSourceText("xyz='a b' frame=2"), "xyz=\"a b\" frame=2", "", {}, true},
        {SourceStructured{{parseSourceBinding("geom x")}}, "", "", {}, false},
    };
    TaskInfo task;
    EXPECT_EQ(task.source, SourceSpec(SourceOrigin{}));
    for (const auto& row : rows) {
        task.source = row.source;
        EXPECT_EQ(sourceText(task), row.text);
        EXPECT_EQ(upstreamTask(task), row.upstream);
        EXPECT_EQ(sourceTasks(task), row.tasks);
        EXPECT_EQ(hasSimpleSource(task), row.isSimple);
        EXPECT_EQ(hasStructuredSource(task), std::holds_alternative<SourceStructured>(row.source));
    }
    ASSERT_EQ(sourceBindings(task).size(), 1U);
    EXPECT_EQ(formatSourceBinding(sourceBindings(task)[0]), "geom x");
}

TEST(TaskSource, WithoutANameOrABindingIsNone) {
    TaskInfo task;
    applySource(task, parseSourceText("a,b"));
    EXPECT_EQ(task.source, SourceSpec(SourceTaskList{{"a", "b"}}));
    applySource(task, SourceTaskList{});
    EXPECT_EQ(task.source, SourceSpec(SourceNone{}));
    applySource(task, SourceRestart{});
    applySource(task, SourceStructured{});
    EXPECT_EQ(task.source, SourceSpec(SourceNone{}));
}

TEST(InlineSource, AFrameThatIsNoNumberIsLeftForTheCheck) {
    const std::string fault = "%source xyz frame selector must be a positive integer";
    const auto read = [](const char* text) { return readInlineSource(text); };
    const auto check = [&](const char* text) {
        return messageOf<DiagnosticError>([&] { requireNumericFrame(read(text)); });
    };
    EXPECT_EQ(formatSourceSpec(read("xyz=a.xyz b frame=x frame=2")), "xyz=a.xyz b frame=x frame=2");
    EXPECT_EQ(check("xyz=a.xyz b frame=x frame=2"), fault);
    EXPECT_EQ(check("xyz=a.xyz frame=0"), fault);
    EXPECT_EQ(check("xyz=a.xyz frame=2 frame=x"), "no fault") << "the first counts";
    EXPECT_EQ(check("xyz=frame=x"), "no fault");
    EXPECT_EQ(check("frame=x"), "no fault") << "a task";
    EXPECT_EQ(messageOf<DiagnosticError>([] { (void)parseInlineSource("xyz=a.xyz frame=x"); }), fault);
}

TEST(Reread, AnInlineFileTakesWhatAValueHasBrought) {
    SourceXyz xyz{"'a.xyz'", 0, false, {"", "frame=3", "frame=4"}};
    rereadXyz(xyz);
    EXPECT_EQ(xyz, (SourceXyz{"a.xyz", 3, true, {"frame=4"}}));
    SourceXyz framed{"a.xyz", 2, true, {"frame=3"}};
    rereadXyz(framed);
    EXPECT_EQ(framed, (SourceXyz{"a.xyz", 2, true, {"frame=3"}}));
}

} // namespace
} // namespace morquill::taskdsl
