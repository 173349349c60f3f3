#include "templates/library/template_library.h"

#include "fixtures/temporary_directory.h"
#include "fixtures/unprivileged.h"
#include "support/file.h"
#include "templates/library/template_walk.h"
#include "templates/library/variable_template.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace morquill::templates {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class Library : public ::testing::Test {
  protected:
    void put(const std::string& name, const std::string& text) const {
        fs::create_directories((root / name).parent_path());
        ASSERT_TRUE(writeTextFile((root / name).string(), text));
    }
    [[nodiscard]] std::string at(const std::string& name) const { return (root / name).string(); }
    /// "name (category)" of every template; the order of one directory is that of the file system.
    [[nodiscard]] static std::vector<std::string> rows(const TemplateLibrary& library) {
        std::vector<std::string> result;
        for (const auto& entry : library.templates) {
            result.push_back(entry.name + " (" + entry.category + ")");
        }
        std::sort(result.begin(), result.end());
        return result;
    }
    /// Loads with what went to standard error.
    static TemplateLibrary load(const std::string& pathList, const std::string& errors = "") {
        ::testing::internal::CaptureStderr();
        auto library = loadTemplateLibrary(pathList);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), errors);
        return library;
    }

    TemporaryDirectory directory;
    fs::path root = directory.root();
};

TEST_F(Library, TheCategoryIsTheDirectoryOfTheFile) {
    put("tpl/root.mq", "$a\n");
    put("tpl/opt/opt.mq", "$a\n");
    put("tpl/deep/er/x.y.mq", "$a\n");
    EXPECT_THAT(rows(load(at("tpl"))), ElementsAre("opt (opt)", "root (General)", "x.y (er)"));
    EXPECT_THAT(rows(load(at("tpl/"))), ElementsAre("opt (opt)", "root (General)", "x.y (er)"));
}

TEST_F(Library, AnEntryKnowsItsTextVariablesAndBlocks) {
    put("a.mq", "totcore: 8\n$opt\n  %keywords \"[func]/[basis] [inputname]\"\n");
    const auto library = load(root.string());
    ASSERT_EQ(library.templates.size(), 1U);
    const auto& entry = library.templates.front();
    EXPECT_EQ(entry.content, "totcore: 8\n$opt\n  %keywords \"[func]/[basis] [inputname]\"\n");
    EXPECT_THAT(entry.variables, ElementsAre("basis", "func"));
    const auto blocks = entry.blocks();
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_THAT(blocks.at("opt"), ElementsAre("$opt", "  %keywords \"[func]/[basis] [inputname]\"", ""));
}

TEST_F(Library, OnlyRegularFilesWithTheExactExtensionCount) {
    put("a.MQ", "");
    put("a.projmq", "");
    put(".mq", "");
    put("dir.mq/inner.mq", "");
    put("real.mq", "");
    ASSERT_EQ(::mkfifo(at("pipe.mq").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", at("device.mq"));
    fs::create_symlink("nowhere", at("dangling.mq"));
    fs::create_symlink("real.mq", at("link.mq"));
    EXPECT_THAT(rows(load(root.string())), ElementsAre("inner (dir.mq)", "link (General)", "real (General)"));
}

TEST_F(Library, LinksToDirectoriesAreNotFollowed) {
    put("a/x.mq", "");
    fs::create_directory_symlink("..", at("a/up"));
    EXPECT_THAT(rows(load(root.string())), ElementsAre("x (a)"));
    // The start directory itself may be a link.
    fs::create_directory_symlink("a", at("b"));
    EXPECT_THAT(rows(load(at("b"))), ElementsAre("x (General)"));
}

TEST_F(Library, AnUnreadableDirectoryDoesNotStopTheWalk) {
    put("a/x.mq", "");
    put("closed/y.mq", "");
    put("z/z.mq", "");
    ASSERT_EQ(::chmod(at("closed").c_str(), 0), 0);
    {
        const Unprivileged nobody;
        EXPECT_THAT(rows(load(root.string())), ElementsAre("x (a)", "z (z)"));
    }
    ASSERT_EQ(::chmod(at("closed").c_str(), 0700), 0);
}

TEST_F(Library, SourcesAreSearchedInOrderAndTheFirstNameWins) {
    put("one/x.mq", "first");
    put("two/x.mq", "second");
    const auto library = load(at("one") + ": :" + at("two"));
    ASSERT_EQ(library.templates.size(), 2U);
    EXPECT_EQ(library.sources.size(), 2U);
    ASSERT_NE(findTemplate(library, "x"), nullptr);
    EXPECT_EQ(findTemplate(library, "x")->content, "first");
    EXPECT_EQ(findTemplate(library, "X"), nullptr);
}

TEST_F(Library, MissingSourcesAreReportedAndPassedOver) {
    put("one/x.mq", "");
    const std::string odd = at("a\"b\\c");
    const auto library = load(odd + ":" + at("one") + ":" + at("one/x.mq"),
                              "[mqkit][ERROR] template directory does not exist: \"" + root.string() +
                                  "/a\\\"b\\\\c\"\n"
                                  "[mqkit][ERROR] template directory does not exist: \"" +
                                  root.string() + "/one/x.mq\"\n");
    EXPECT_THAT(rows(library), ElementsAre("x (General)"));
    EXPECT_EQ(library.sources.size(), 3U);
}

TEST_F(Library, AnEmptyListIsReported) {
    for (const char* list : {"", ":", " : "}) {
        EXPECT_TRUE(load(list, "[mqkit][ERROR] template directory is empty\n").templates.empty());
    }
}

TEST_F(Library, SourcesKeepTheirTextAndAreExpanded) {
    ::setenv("MQKIT_TEST_TEMPLATES", root.c_str(), 1);
    const auto sources = splitTemplateSources(" $MQKIT_TEST_TEMPLATES/a :b");
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(sources[0].path, "$MQKIT_TEST_TEMPLATES/a");
    EXPECT_EQ(sources[0].directory, at("a"));
    EXPECT_EQ(sources[1].directory, "b");
    ::unsetenv("MQKIT_TEST_TEMPLATES");
}

TEST_F(Library, VariableTemplatesAreFoundInAllDirectories) {
    put("one/a.yaml", "variables:\n  x: 1\n");
    put("one/sub/b.yml", "name: B\n");
    put("one/c.YAML", "");
    put("one/dir.yaml/d.yml", "");
    put("two/e.yaml", "");
    ASSERT_EQ(::mkfifo(at("one/pipe.yaml").c_str(), 0600), 0);
    ::testing::internal::CaptureStderr();
    const auto templates = loadVariableTemplates(at("one") + ":" + at("missing") + ":" + at("two"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    std::vector<std::string> found;
    for (const auto& entry : templates) {
        found.push_back(entry.name + "=" + fs::path(entry.path).lexically_relative(root).string());
    }
    EXPECT_THAT(found, UnorderedElementsAre("a=one/a.yaml", "B=one/sub/b.yml", "d=one/dir.yaml/d.yml",
                                            "e=two/e.yaml"));
    EXPECT_EQ(found.back(), "e=two/e.yaml");
}

TEST_F(Library, AVariableTemplateThatCannotBeReadIsReported) {
    put("a.yaml", "");
    put("b.yaml", "");
    ASSERT_EQ(::chmod(at("a.yaml").c_str(), 0), 0);
    ::testing::internal::CaptureStderr();
    {
        const Unprivileged nobody;
        EXPECT_EQ(loadVariableTemplates(root.string()).size(), 1U);
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "[mqkit][ERROR] failed to load variable template \"" +
                                                            at("a.yaml") + "\": could not open file\n");
}

TemplateLibrary libraryOf(const std::vector<std::pair<std::string, std::string>>& rows) {
    TemplateLibrary library;
    for (const auto& [name, category] : rows) {
        library.templates.push_back({name, "", category, {}});
    }
    return library;
}

TEST(TemplateViews, AnEmptyLibraryHasOneLine) {
    EXPECT_EQ(formatTemplateList({}), "[mqkit] no templates found.\n");
    EXPECT_EQ(formatTemplateCategories({}), "[mqkit] no templates found.\n");
}

TEST(TemplateViews, TheListKeepsTheOrderOfTheLibrary) {
    EXPECT_EQ(formatTemplateList(libraryOf({{"z", "opt"}, {"a", "General"}, {"m", ""}})),
              "Available templates:\n  z (opt)\n  a (General)\n  m\n");
}

TEST(TemplateViews, CategoriesAreSortedByByteAndKeepTheOrderInside) {
    EXPECT_EQ(
        formatTemplateCategories(libraryOf({{"z", "opt"}, {"a", "General"}, {"b", "opt"}, {"c", "Zn"}})),
        "General:\n  a\n\nZn:\n  c\n\nopt:\n  z\n  b\n\n");
}

} // namespace
} // namespace morquill::templates
