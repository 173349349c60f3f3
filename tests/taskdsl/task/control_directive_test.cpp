#include "fixtures/parse_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

ParsedText control(const std::string& lines) {
    return parse("$a\n%control ignored\n" + lines + "\n");
}

const TaskInfo& taskOf(const ParsedText& parsed) {
    return parsed.document.tasks.at(0);
}

TEST(Control, ReadsResources) {
    const auto parsed =
        control("  totcore 8 # cores\n\n totmem 16000 MB\n gpus 2\n gpu_type  NVIDIA A100\n gpu_mem 40000");
    const TaskInfo& task = taskOf(parsed);
    EXPECT_EQ(task.totalCores, 8);
    EXPECT_EQ(task.totalMemory, 16000);
    EXPECT_EQ(task.gpuCount, 2);
    EXPECT_EQ(task.gpuType, "NVIDIA A100");
    EXPECT_EQ(task.gpuMemory, 40000);
    EXPECT_TRUE(task.controlDeclared);
    EXPECT_THAT(parsed.warnings, IsEmpty());
}

TEST(Control, PassesOverWhatItDoesNotKnow) {
    const auto parsed = control("unknown 1\ngpu_type\ntotcore\nguess\ngpusx 1");
    EXPECT_FALSE(taskOf(parsed).controlDeclared);
    EXPECT_FALSE(taskOf(parsed).guessEnabled);
    EXPECT_THAT(parsed.warnings, IsEmpty());
}

TEST(Control, AnInvalidIntegerWarnsAndKeepsTheEarlierValue) {
    const std::pair<const char*, const char*> rows[] = {
        {"totcore x", "task 'a' has invalid %control totcore value 'x'; ignoring it."},
        {"totcore  8", "task 'a' has invalid %control totcore value ''; ignoring it."},
        {"totmem 99999999999", "task 'a' has invalid %control totmem value '99999999999'; ignoring it."},
        {"gpus -1", "task 'a' has invalid %control gpus value '-1'; ignoring it."},
        {"gpu_mem lots", "task 'a' has invalid %control gpu_mem value 'lots'; ignoring it."},
    };
    for (const auto& [line, warning] : rows) {
        const auto parsed = control("totcore 4\ntotmem 5\ngpus 6\ngpu_mem 7\n" + std::string(line));
        EXPECT_THAT(parsed.warnings, ElementsAre(warning));
        EXPECT_EQ(taskOf(parsed).totalCores, 4);
        EXPECT_EQ(taskOf(parsed).totalMemory, 5);
        EXPECT_EQ(taskOf(parsed).gpuCount, 6);
        EXPECT_EQ(taskOf(parsed).gpuMemory, 7);
    }
    EXPECT_FALSE(taskOf(control("gpus -1")).controlDeclared);
}

TEST(Control, NegativeCoresAreStored) {
    EXPECT_EQ(taskOf(control("totcore -4")).totalCores, -4);
}

TEST(Control, LegacyNamesWarnAndWork) {
    const auto parsed = control("totgpu 2\ngputype a100\ngpumem 40\nguessconverter MOKIT");
    EXPECT_THAT(parsed.warnings, ElementsAre("task 'a' uses legacy %control totgpu; use %control gpus.",
                                             "task 'a' uses legacy %control gputype; use %control gpu_type.",
                                             "task 'a' uses legacy %control gpumem; use %control gpu_mem.",
                                             "task 'a' uses legacy %control guessconverter; use %control "
                                             "guess_converter."));
    EXPECT_EQ(taskOf(parsed).gpuCount, 2);
    EXPECT_EQ(taskOf(parsed).gpuType, "a100");
    EXPECT_EQ(taskOf(parsed).gpuMemory, 40);
    EXPECT_EQ(taskOf(parsed).guessConverter, "mokit");
    EXPECT_THAT(control("totgpu x").warnings,
                ElementsAre("task 'a' uses legacy %control totgpu; use %control gpus.",
                            "task 'a' has invalid %control totgpu value 'x'; ignoring it."));
}

TEST(Control, FinalGeomTakesTheFirstWord) {
    EXPECT_EQ(taskOf(control("finalgeom 'a b.xyz'")).finalGeom, "a b.xyz");
    const auto extra = control("finalgeom a b");
    EXPECT_EQ(taskOf(extra).finalGeom, "a");
    EXPECT_THAT(extra.warnings,
                ElementsAre("task 'a' has extra tokens after %control finalgeom value; ignoring them."));
    for (const char* line : {"finalgeom", "finalgeom ''", "finalgeom \"\""}) {
        EXPECT_THAT(control(line).warnings,
                    ElementsAre("task 'a' has empty %control finalgeom value; ignoring it."));
    }
}

TEST(Control, GuessConverterKnowsTwoTools) {
    for (const char* word : {"multiwfn", "Multi-WFN", "mwfn"}) {
        EXPECT_EQ(taskOf(control("guess_converter " + std::string(word))).guessConverter, "multiwfn");
    }
    for (const char* word : {"none", "FALSE", "off", "no", "0"}) {
        EXPECT_EQ(
            taskOf(control("guess_converter mokit\nguess_converter " + std::string(word))).guessConverter,
            "");
    }
    EXPECT_THAT(control("guess_converter").warnings,
                ElementsAre("task 'a' has empty %control guess_converter value; ignoring it."));
    const auto unknown = control("guess_converter Molden now");
    EXPECT_THAT(
        unknown.warnings,
        ElementsAre("task 'a' has unsupported %control guess_converter 'molden'; supported values are mokit "
                    "and multiwfn; ignoring it.",
                    "task 'a' has extra tokens after %control guess_converter value; ignoring them."));
    EXPECT_TRUE(taskOf(unknown).controlDeclared);
}

TEST(Control, GuessNamesATaskOrIsTrue) {
    const auto named = control("guess Task1");
    EXPECT_TRUE(taskOf(named).guessEnabled);
    EXPECT_EQ(taskOf(named).guessSourceTask, "Task1");
    const auto plain = control("guess Task1\nguess TRUE");
    EXPECT_TRUE(taskOf(plain).guessEnabled);
    EXPECT_EQ(taskOf(plain).guessSourceTask, "");
    EXPECT_EQ(taskOf(control("guess false")).guessSourceTask, "false");
}

TEST(Control, LenientFlagsAreFalseOnlyForAPlainNo) {
    for (const char* word : {"false", "NO", "off", "0", "n"}) {
        const auto parsed =
            control("waitfreq " + std::string(word) + "\nalert " + word + "\nexternalinp " + word);
        EXPECT_FALSE(taskOf(parsed).waitFreq) << word;
        EXPECT_FALSE(taskOf(parsed).alert) << word;
        EXPECT_FALSE(taskOf(parsed).externalInput) << word;
    }
    const auto odd = control("waitfreq maybe\nalertno\nexternalinput false");
    EXPECT_TRUE(taskOf(odd).waitFreq);
    EXPECT_FALSE(taskOf(odd).alert) << "what follows the letters of the key counts";
    EXPECT_TRUE(taskOf(odd).externalInput);
    EXPECT_TRUE(taskOf(control("externalinp")).externalInput);
    EXPECT_THAT(odd.warnings, IsEmpty());
}

TEST(Control, LocalFirstIsStrict) {
    for (const char* word : {"", " true", " 1", " ON", " y", " yes"}) {
        EXPECT_TRUE(taskOf(control("localfirst" + std::string(word))).localFirst) << word;
    }
    for (const char* word : {"false", "0", "no", "off", "N"}) {
        EXPECT_FALSE(taskOf(control("localfirst\nlocalfirst " + std::string(word))).localFirst) << word;
    }
    const auto odd = control("localfirst Maybe");
    EXPECT_THAT(odd.warnings,
                ElementsAre("task 'a' has invalid %control localfirst value 'Maybe'; ignoring it."));
    EXPECT_FALSE(taskOf(odd).controlDeclared);
}

TEST(Control, VerbosityAndGeomKeepKnownValuesOnly) {
    EXPECT_EQ(taskOf(control("verbosity p")).verbosity, "p");
    for (const char* line : {"verbosity P", "verbosity", "verbosity  t", "verbosity x"}) {
        EXPECT_EQ(taskOf(control("verbosity t\n" + std::string(line))).verbosity, "") << line;
    }
    EXPECT_EQ(taskOf(control("geom CHECK")).gaussianGeomControl, "check");
    EXPECT_EQ(taskOf(control("geom check\ngeom")).gaussianGeomControl, "");
    const auto odd = control("geom All");
    EXPECT_THAT(odd.warnings,
                ElementsAre("task 'a' has unsupported %control geom value 'All'; only 'check' is "
                            "currently supported; ignoring it."));
    EXPECT_FALSE(taskOf(odd).controlDeclared);
}

TEST(Control, RunIfIsRemoved) {
    EXPECT_EQ(faultOf("$a\n%control\nrunifdef x\n"), "task 'a' uses removed '%control runifdef' syntax; move "
                                                     "the condition into a standalone '%when' block.");
    EXPECT_EQ(
        faultOf("$a\n%control\nrunif x\n"),
        "task 'a' uses removed '%control runif' syntax; move the condition into a standalone '%when' block.");
}

} // namespace
} // namespace morquill::taskdsl
