#include "console/runtime_config.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/golden.h"
#include "fixtures/temporary_directory.h"
#include "support/file.h"
#include "support/text.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::console {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using testing::ScopedEnv;

/// A test with a working directory and a home of its own, and without the variables that the tests set.
class RuntimeConfigTest : public ::testing::Test {
  protected:
    RuntimeConfigTest() {
        fs::create_directories(root + "/here");
        fs::create_directories(root + "/home/.morq/task");
        fs::create_directories(root + "/home/.morquill");
        fs::current_path(root + "/here");
    }
    ~RuntimeConfigTest() override { fs::current_path(before); }

    void put(const std::string& path, const std::string& text, bool executable = false) const {
        ASSERT_TRUE(writeTextFile(root + "/" + path, text));
        if (executable) {
            fs::permissions(root + "/" + path, fs::perms::owner_all);
        }
    }

    fs::path before = fs::current_path();
    TemporaryDirectory directory;
    std::string root = directory.root();
    ScopedEnv unset{"MQKIT_TEST_UNSET", std::nullopt};
    ScopedEnv empty{"MQKIT_TEST_EMPTY", ""};
    ScopedEnv set{"MQKIT_TEST_SET", "value"};
    ScopedEnv user{"USER", "ada"};
    ScopedEnv runner{"MORQUILL_MQRUN_PATH", std::nullopt};
    ScopedEnv home{"HOME", "/home/ada"};
};

TEST_F(RuntimeConfigTest, EveryKeyHasItsDefault) {
    const std::string table = golden::text("config_defaults.txt");
    std::size_t keys = 0;
    for (const auto line : splitLines(table)) {
        const auto middle = line.find('=');
        ASSERT_NE(middle, std::string_view::npos) << line;
        EXPECT_EQ(defaultConfigValue(line.substr(0, middle)), line.substr(middle + 1)) << line;
        ++keys;
    }
    EXPECT_EQ(keys, 31U);
    for (const char* other : {"morquill_gnuplot", "OTHER", ""}) { // keys are compared exactly
        EXPECT_EQ(defaultConfigValue(other), "") << other;
    }
}

TEST_F(RuntimeConfigTest, PathsAreExpanded) {
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"plain/path", "plain/path"},
        {"~", "/home/ada"},
        {"~/a", "/home/ada/a"},
        {"~\\a", "/home/ada\\a"},
        {"~user/a", "~user/a"},
        {"~~", "~~"},
        {"a/~", "a/~"},
        {" ~", " ~"},
        {"$HOME/a", "/home/ada/a"},
        {"${HOME}a", "/home/adaa"},
        {"$USER.x", "ada.x"},
        {"$PWD/x", root + "/here/x"},
        {"${PWD}", root + "/here"},
        {"$MQKIT_TEST_SET", "value"},
        {"a${MQKIT_TEST_SET}b$MQKIT_TEST_SET-c", "avaluebvalue-c"},
        {"$MQKIT_TEST_SETx", "$MQKIT_TEST_SETx"}, // the name is as long as it can be
        {"$MQKIT_TEST_UNSET/a", "$MQKIT_TEST_UNSET/a"},
        {"${MQKIT_TEST_UNSET}/a", "${MQKIT_TEST_UNSET}/a"},
        {"${MQKIT_TEST_EMPTY}/$MQKIT_TEST_EMPTY", "${MQKIT_TEST_EMPTY}/$MQKIT_TEST_EMPTY"},
        {"${MQKIT_TEST_SET", "${MQKIT_TEST_SET"},
        {"${}", "${}"},
        {"${MQKIT_TEST_SET=value}", "${MQKIT_TEST_SET=value}"},
        {"${a${MQKIT_TEST_SET}}", "${a${MQKIT_TEST_SET}}"}, // up to the first brace; no such name
        {"}${MQKIT_TEST_SET}${", "}value${"},
        {"$", "$"},
        {"$$MQKIT_TEST_SET$", "$value$"},
        {"$1a", "$1a"},
        {"$-", "$-"},
        {"$\xc3\xa9", "$\xc3\xa9"},
    };
    for (const auto& [text, expanded] : rows) {
        EXPECT_EQ(expandPath(text), expanded) << text;
    }
    EXPECT_EQ(expandPath(std::string_view("${HO\0ME}", 8)), std::string("${HO\0ME}", 8));
}

TEST_F(RuntimeConfigTest, NamesMayHoldDigitsAndUnderscores) {
    const ScopedEnv odd("_9a_", "odd");
    EXPECT_EQ(expandPath("$_9a_/x"), "odd/x");
}

TEST_F(RuntimeConfigTest, WithoutAHomeTheTildeStays) {
    for (const auto& value : {std::optional<std::string>(), std::optional<std::string>("")}) {
        const ScopedEnv none("HOME", value);
        EXPECT_EQ(expandPath("~"), "~");
        EXPECT_EQ(expandPath("~/$HOME/${HOME}"), "~/$HOME/${HOME}");
    }
}

TEST_F(RuntimeConfigTest, AHomeMayBeExpandedWithoutItsReferences) {
    EXPECT_EQ(expandHome("~"), "/home/ada");
    EXPECT_EQ(expandHome("~/$USER"), "/home/ada/$USER");
    EXPECT_EQ(expandHome("~\\a"), "/home/ada\\a");
    EXPECT_EQ(expandHome("~ada/a"), "~ada/a");
    EXPECT_EQ(expandHome("a/~"), "a/~");
    EXPECT_EQ(expandHome(""), "");
}

TEST_F(RuntimeConfigTest, PwdIsTheCurrentDirectoryWhateverTheEnvironmentSays) {
    const ScopedEnv lie("PWD", "/elsewhere");
    EXPECT_EQ(expandPath("$PWD"), root + "/here");
}

TEST_F(RuntimeConfigTest, HundredsOfThousandsOfReferencesExpandInAStraightLine) {
    for (const char* reference : {"${", "$MQKIT_TEST_UNSET"}) {
        std::string text;
        for (int i = 0; i < 100'000; ++i) {
            text += reference;
        }
        EXPECT_EQ(expandPath(text), text);
        EXPECT_EQ(expandPath("}" + text), "}" + text);
        EXPECT_EQ(expandPath(text + "}"), text + "}");
    }
}

TEST_F(RuntimeConfigTest, LinesAreKeysAndValues) {
    const auto config = parseConfigText("\n"
                                        "# comment = no\n"
                                        "   # indented = no\n"
                                        "[section]\n"
                                        "A=1\r\n"
                                        "  B \t=  two words # kept \n"
                                        "C=\n"
                                        "D = a = b\n"
                                        "a=lower\n"
                                        "E=first\n"
                                        "E=~/$USER",
                                        "");
    EXPECT_THAT(config, ElementsAre(Pair("A", "1"), Pair("B", "two words # kept"), Pair("C", ""),
                                    Pair("D", "a = b"), Pair("E", "/home/ada/ada"), Pair("a", "lower")));
    EXPECT_THAT(parseConfigText("", ""), IsEmpty());
}

TEST_F(RuntimeConfigTest, TheDirectoryOfTheFileHasThreeSpellings) {
    const std::string text = "A=$MORQUILL_CONFIG_DIR/a:${MORQUILL_CONFIG_DIR}/b:%MORQUILL_CONFIG_DIR%/c\n"
                             "B=$MORQUILL_CONFIG_DIRECTORY\n";
    EXPECT_THAT(parseConfigText(text, "/etc/morquill"),
                ElementsAre(Pair("A", "/etc/morquill/a:/etc/morquill/b:/etc/morquill/c"),
                            Pair("B", "/etc/morquillECTORY")));
    const ScopedEnv none("MORQUILL_CONFIG_DIR", std::nullopt);
    EXPECT_THAT(
        parseConfigText(text, ""),
        ElementsAre(Pair("A", "$MORQUILL_CONFIG_DIR/a:${MORQUILL_CONFIG_DIR}/b:%MORQUILL_CONFIG_DIR%/c"),
                    Pair("B", "$MORQUILL_CONFIG_DIRECTORY")));
}

TEST_F(RuntimeConfigTest, TheEnvironmentWinsUnexpandedThenTheFileThenTheDefault) {
    const RuntimeConfig config{
        {"MORQUILL_GNUPLOT", "~/bin/gnuplot"}, {"MORQUILL_MQLIB_PATH", ""}, {"OWN", "$USER"}};
    {
        const ScopedEnv env("MORQUILL_GNUPLOT", "~/$USER");
        EXPECT_EQ(getConfigValue(config, "MORQUILL_GNUPLOT"), "~/$USER");
    }
    {
        const ScopedEnv env("MORQUILL_GNUPLOT", "");
        EXPECT_EQ(getConfigValue(config, "MORQUILL_GNUPLOT"), "/home/ada/bin/gnuplot");
    }
    const ScopedEnv library("MORQUILL_MQLIB_PATH", std::nullopt);
    const ScopedEnv gnuplot("MORQUILL_GNUPLOT", std::nullopt);
    EXPECT_EQ(getConfigValue({}, "MORQUILL_GNUPLOT"), "gnuplot");
    EXPECT_EQ(getConfigValue({}, "MORQUILL_MQLIB_PATH"), "/home/ada/.morq/task/mqlib");
    EXPECT_EQ(getConfigValue(config, "MORQUILL_MQLIB_PATH"), ""); // set to nothing is set
    EXPECT_EQ(getConfigValue(config, "OWN"), "ada");
    EXPECT_EQ(getConfigValue(config, "own"), "");
}

TEST_F(RuntimeConfigTest, AnEnvironmentValueMayBeEmpty) {
    EXPECT_EQ(getEnvOrDefault("MQKIT_TEST_UNSET", "fallback"), "fallback");
    EXPECT_EQ(getEnvOrDefault("MQKIT_TEST_EMPTY", "fallback"), "");
    EXPECT_EQ(getEnvOrDefault("MQKIT_TEST_SET", "fallback"), "value");
    EXPECT_EQ(getEnvOrDefault("", "fallback"), "fallback");
}

TEST_F(RuntimeConfigTest, PathListsAreTrimmedExpandedAndFreeOfEmptyPieces) {
    EXPECT_THAT(splitPathList(" ~/a : :$USER::/b c:$MQKIT_TEST_UNSET"),
                ElementsAre("/home/ada/a", "ada", "/b c", "$MQKIT_TEST_UNSET"));
    EXPECT_THAT(splitPathList(""), IsEmpty());
    EXPECT_THAT(splitPathList(" : "), IsEmpty());
}

TEST_F(RuntimeConfigTest, TheProgramKnowsItsDirectory) {
    EXPECT_EQ(executableDirectory(), fs::read_symlink("/proc/self/exe").parent_path().string());
}

TEST_F(RuntimeConfigTest, FilesAreSearchedHereAtHomeBesideTheProgramAndInEtc) {
    const std::string beside =
        fs::read_symlink("/proc/self/exe").parent_path().parent_path().string() + "/share/morquill/conf";
    EXPECT_THAT(configSearchDirs(),
                ElementsAre(".", "/home/ada/.morq/task", "/home/ada/.morquill", beside, "/etc/morquill"));
    for (const auto& value : {std::optional<std::string>(), std::optional<std::string>("")}) {
        const ScopedEnv none("HOME", value);
        EXPECT_THAT(configSearchDirs(), ElementsAre(".", beside, "/etc/morquill"));
    }
}

TEST_F(RuntimeConfigTest, TheFirstReadableFileEndsTheSearch) {
    const ScopedEnv own("HOME", root + "/home");
    EXPECT_THAT(loadConfig("some.conf"), IsEmpty());
    put("home/.morquill/some.conf", "A=$MORQUILL_CONFIG_DIR/last\nB=2\n");
    EXPECT_THAT(loadConfig("some.conf"),
                ElementsAre(Pair("A", root + "/home/.morquill/last"), Pair("B", "2")));
    put("home/.morq/task/some.conf", "A=home\n");
    EXPECT_THAT(loadConfig("some.conf"), ElementsAre(Pair("A", "home"))); // nothing of a later file
    fs::create_directory("some.conf");
    EXPECT_THAT(loadConfig("some.conf"), ElementsAre(Pair("A", "home"))); // a directory is passed over
    fs::remove("some.conf");
    put("here/some.conf", "A=%MORQUILL_CONFIG_DIR%/here\n");
    EXPECT_THAT(loadConfig("some.conf"), ElementsAre(Pair("A", "./here")));
    put("here/some.conf", "");
    EXPECT_THAT(loadConfig("some.conf"), IsEmpty()); // an empty file ends the search, too
}

TEST_F(RuntimeConfigTest, TheRunnerIsLookedForInItsSources) {
    fs::create_directories(root + "/bin/runner"); // a directory is no program
    fs::create_directories(root + "/bin2");
    put("bin2/runner", "", true);
    put("bin2/plain", "");
    put("here/local", "", true);
    const ScopedEnv path("PATH", root + "/bin:" + root + "/bin2::");
    struct Row {
        std::string value;
        std::string path;
        std::string_view source;
    };
    const Row rows[] = {
        {"", "mqrun", "fallback"},
        {root + "/none", "mqrun", "fallback"},
        {root + "/bin/runner", "mqrun", "fallback"},
        {root + "/none:" + root + "/bin2/plain", root + "/bin2/plain", "MORQUILL_MQRUN_PATH"},
        {"$PWD/local", root + "/here/local", "MORQUILL_MQRUN_PATH"},
        {"./local", "./local", "MORQUILL_MQRUN_PATH"},
        {"runner", root + "/bin2/runner", "MORQUILL_MQRUN_PATH"},
        {"plain", "mqrun", "fallback"},
        {"plain:runner", root + "/bin2/runner", "MORQUILL_MQRUN_PATH"},
        {"local", "./local", "MORQUILL_MQRUN_PATH"}, // through the empty entry of PATH
    };
    for (const auto& row : rows) {
        const RuntimeConfig config{{"MORQUILL_MQRUN_PATH", row.value}};
        const auto found = locateRunner(config);
        EXPECT_EQ(found.path, row.path) << row.value;
        EXPECT_EQ(found.source, row.source) << row.value;
        EXPECT_EQ(findRunnerProgram(config), row.path) << row.value;
    }
    const ScopedEnv none("PATH", std::nullopt);
    EXPECT_EQ(findRunnerProgram({{"MORQUILL_MQRUN_PATH", "local"}}), "mqrun");
    const ScopedEnv env("MORQUILL_MQRUN_PATH", "~/../" + root + "/here/local");
    const ScopedEnv anyHome("HOME", "/");
    EXPECT_EQ(findRunnerProgram({{"MORQUILL_MQRUN_PATH", "runner"}}), "//../" + root + "/here/local");
}

TEST_F(RuntimeConfigTest, LooksThingsUpForAnotherWorkingDirectory) {
    const std::string there = root + "/there";
    fs::create_directories(there + "/tools");
    fs::create_directories(root + "/here/tools");
    put("there/some.conf", "A=$MORQUILL_CONFIG_DIR/a\nB=$PWD/b\n");
    put("there/tools/runner", "", true);
    put("here/some.conf", "A=here\n");
    put("here/tools/runner", "", true);
    EXPECT_THAT(loadConfig("some.conf", there), ElementsAre(Pair("A", "./a"), Pair("B", there + "/b")));
    EXPECT_EQ(expandPath("${PWD}/x", there), there + "/x");
    EXPECT_THAT(splitPathList("$PWD:y", there), ElementsAre(there, "y"));
    EXPECT_EQ(getConfigValue({{"OWN", "$PWD"}}, "OWN", there), there);
    const ScopedEnv path("PATH", "tools");
    EXPECT_EQ(findRunnerProgram({{"MORQUILL_MQRUN_PATH", "tools/runner"}}, there), there + "/tools/runner");
    EXPECT_EQ(findRunnerProgram({{"MORQUILL_MQRUN_PATH", "runner"}}, there), there + "/tools/runner");
    EXPECT_EQ(findRunnerProgram({{"MORQUILL_MQRUN_PATH", "none"}}, there), "mqrun");
}

TEST_F(RuntimeConfigTest, ARunnerBesideTheProgramComesBeforeTheBareName) {
    const std::string beside = executableDirectory() + "/mqrun";
    ASSERT_FALSE(fs::exists(beside));
    ASSERT_TRUE(writeTextFile(beside, ""));
    const auto found = locateRunner({});
    fs::remove(beside);
    EXPECT_EQ(found.path, beside);
    EXPECT_EQ(found.source, "executable_dir");
}

TEST_F(RuntimeConfigTest, ARunnerIsAvailableAsAFileOrAsABareName) {
    put("here/runner", "");
    const std::pair<std::string, bool> rows[] = {{"", false},         {"mqrun", true},     {"C:mqrun", false},
                                                 {"./runner", true},  {"./none", false},   {".", true},
                                                 {root + "/", false}, {"a\\runner", false}};
    for (const auto& [path, available] : rows) {
        EXPECT_EQ(isRunnerAvailable(path), available) << path;
    }
}

} // namespace
} // namespace morquill::console
