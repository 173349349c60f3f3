#include "taskdsl/generate/fragment_library.h"

#include "fixtures/temporary_directory.h"
#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

const WarningSink noWarnings = [](const std::string& text) { ADD_FAILURE() << text; };

TEST(LoadLibrary, ReadsNamedFragmentsWithTheirBodies) {
    const TemporaryDirectory dir;
    const auto path = dir.write("l.mqlib", "# a library\n\n"
                                           "&FRAGMENT process clean\n"
                                           "# comment\n"
                                           "rm x # now\n"
                                           "\n"
                                           "rm y\n"
                                           "  # end\n"
                                           "&FRAGMENT text note(a=1)\n"
                                           "\n"
                                           "# kept\n"
                                           "last\n"
                                           "   \n"
                                           "&FRAGMENT control none\n");
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    const auto library = loadLibrary("l.mqlib", dir.path("t.mq"), context);
    EXPECT_EQ(library->path.str(), path);
    ASSERT_EQ(library->fragments.size(), 3U);
    const auto& clean = library->fragments.at("clean");
    EXPECT_EQ(textOf(clean.lines), "rm x # now\n\nrm y\n");
    EXPECT_EQ(clean.lines[0].lineNumber, 5U);
    EXPECT_EQ(clean.lines[0].originPath.str(), path);
    EXPECT_EQ(clean.path.str(), path);
    EXPECT_EQ(textOf(library->fragments.at("note").lines), "# kept\nlast\n");
    EXPECT_EQ(textOf(library->fragments.at("none").lines), "");
    EXPECT_EQ(loadLibrary(path, "", context), library); // read once
    EXPECT_THAT(context.includedFiles.names(), ElementsAre(path));
}

TEST(LoadLibrary, LoadsWhatItNames) {
    const TemporaryDirectory dir;
    (void)dir.write("a.mqlib", "&INCLUDE \"sub/b.mqlib\" as b\n&FRAGMENT text x\n1\n");
    (void)dir.write("sub/b.mqlib", "&INCLUDE c.mqlib as c # beside it\n");
    (void)dir.write("sub/c.mqlib", "&FRAGMENT text y\n2\n");
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    const auto library = loadLibrary("a.mqlib", dir.path("t.mq"), context);
    EXPECT_EQ(textOf(library->dependencies.at("b")->dependencies.at("c")->fragments.at("y").lines), "2\n");
    EXPECT_THAT(context.includedFiles.names(),
                ElementsAre(dir.path("a.mqlib"), dir.path("sub/b.mqlib"), dir.path("sub/c.mqlib")));
}

TEST(LoadLibrary, TellsWhatIsNoLibrary) {
    const TemporaryDirectory dir;
    const std::string path = dir.path("l.mqlib");
    const std::vector<std::pair<std::string, std::string>> rows{
        {"x\n", path + ":1: expected &FRAGMENT declaration"},
        {"\n&INCLUDE a.mqlib\n",
         path + ":2: library dependencies must use '&INCLUDE \"file.mqlib\" as namespace'"},
        {"&INCLUDE a.mq\n",
         path + ":1: library dependencies must use '&INCLUDE \"file.mqlib\" as namespace'"},
        {"&INCLUDE e.mqlib as a\n&INCLUDE e.mqlib as a\n", path + ":2: duplicate library namespace 'a'"},
        {"&FRAGMENT text a\n&FRAGMENT control a\n", "duplicate fragment name 'a'"},
        {"&FRAGMENT text\n", "library fragments must have a name"},
        {"&INCLUDE none.mqlib as a\n", "fragment library not found: " + dir.path("none.mqlib")},
        {"&INCLUDE l.mqlib as a\n", "fragment library include cycle detected: " + path + " -> " + path},
    };
    (void)dir.write("e.mqlib", "");
    for (const auto& [text, message] : rows) {
        (void)dir.write("l.mqlib", text);
        ParseContext run({.warnings = noWarnings});
        DocumentContext context(run);
        EXPECT_EQ(messageOf([&] { (void)loadLibrary("l.mqlib", dir.path("t.mq"), context); }), message)
            << text;
    }
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    EXPECT_EQ(messageOf([&] { (void)loadLibrary("", path, context); }), "empty fragment library path");
    std::filesystem::create_directory(dir.path("d.mqlib"));
    EXPECT_EQ(messageOf([&] { (void)loadLibrary("d.mqlib", path, context); }),
              "fragment library not found: " + dir.path("d.mqlib"));
}

TEST(LoadLibrary, ASymbolicLinkDoesNotHideACycle) {
    const TemporaryDirectory dir;
    const auto a = dir.write("a.mqlib", "&INCLUDE \"d/b.mqlib\" as b\n");
    std::filesystem::create_directory_symlink(".", dir.path("d"));
    std::filesystem::create_symlink("a.mqlib", dir.path("b.mqlib"));
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    EXPECT_EQ(messageOf([&] { (void)loadLibrary(a, "", context); }),
              "fragment library include cycle detected: " + a + " -> " + dir.path("d/b.mqlib"));
}

TEST(LoadLibrary, DeepChainsEnd) {
    const TemporaryDirectory dir;
    for (int i = 0; i < 300; ++i) {
        (void)dir.write("l" + std::to_string(i) + ".mqlib",
                        "&INCLUDE l" + std::to_string(i + 1) + ".mqlib as n\n");
    }
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    EXPECT_EQ(messageOf([&] { (void)loadLibrary("l0.mqlib", dir.path("t.mq"), context); }),
              "fragment library include is nested more than 200 deep: " + dir.path("l200.mqlib"));
}

TEST(BindLibrary, TheSameFileMayBeBoundAgain) {
    const TemporaryDirectory dir;
    const auto a = dir.write("a.mqlib", "");
    (void)dir.write("b.mqlib", "");
    std::filesystem::create_symlink("a.mqlib", dir.path("c.mqlib"));
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    const auto bind = [&](const char* name) { return bindLibrary("x", name, dir.path("t.mq"), context); };
    EXPECT_EQ(bind("a.mqlib"), std::nullopt);
    EXPECT_EQ(bind("./a.mqlib"), std::nullopt);
    EXPECT_EQ(bind("c.mqlib"), std::nullopt);
    EXPECT_EQ(libraryBindings(context), (ValueMap{{"x", a}}));
    EXPECT_EQ(bind("b.mqlib"), "namespace 'x' is already bound to '" + a + "'");
}

TEST(LoadFragmentFile, WithoutAHeaderItIsOfTheKindOfTheScope) {
    const TemporaryDirectory dir;
    const auto path = dir.write("f.mqfrag", "\na\n");
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    const auto fragment = loadFragmentFile("f.mqfrag", dir.path("t.mq"), FragmentKind::control, context);
    EXPECT_EQ(fragment.kind, FragmentKind::control);
    EXPECT_EQ(fragment.name, "f.mqfrag");
    EXPECT_EQ(fragment.path.str(), path);
    EXPECT_EQ(textOf(fragment.lines), "\na\n");
    EXPECT_THAT(context.includedFiles.names(), ElementsAre(path));
}

TEST(LoadFragmentFile, AHeaderCountsOnlyInAFragmentFileOutsideTextScope) {
    const TemporaryDirectory dir;
    const std::string text = "# a\n&FRAGMENT process f(a,\n b=1)\nx\n\n";
    (void)dir.write("f.mqfrag", text);
    (void)dir.write("f.txt", text);
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    const auto load = [&](const char* name, FragmentKind scope) {
        return loadFragmentFile(name, dir.path("t.mq"), scope, context);
    };
    const auto fragment = load("f.mqfrag", FragmentKind::task_body);
    EXPECT_EQ(fragment.kind, FragmentKind::process);
    EXPECT_EQ(fragment.name, "f.mqfrag");
    EXPECT_EQ(fragment.parameters.size(), 2U);
    EXPECT_EQ(textOf(fragment.lines), "x\n\n");
    EXPECT_EQ(fragment.lines[0].lineNumber, 4U);
    EXPECT_EQ(textOf(load("f.mqfrag", FragmentKind::text).lines), text);
    EXPECT_EQ(textOf(load("f.txt", FragmentKind::process).lines), text);
}

TEST(LoadFragmentFile, TellsWhatCannotBeLoaded) {
    const TemporaryDirectory dir;
    ParseContext run({.warnings = noWarnings});
    DocumentContext context(run);
    const auto load = [&](const std::string& name) {
        return messageOf(
            [&] { (void)loadFragmentFile(name, dir.path("t.mq"), FragmentKind::task_body, context); });
    };
    EXPECT_EQ(load(""), "empty fragment include path");
    EXPECT_EQ(load("none.inp"), "included fragment file not found: " + dir.path("none.inp"));
    std::filesystem::create_directory(dir.path("d.inp"));
    EXPECT_EQ(load("d.inp"), "included fragment file not found: " + dir.path("d.inp"));
    const auto two = dir.write("two.mqfrag", "&FRAGMENT control\na\n&FRAGMENT text b\n");
    EXPECT_EQ(load("two.mqfrag"),
              two + ":3: standalone fragment files may contain only one &FRAGMENT; use a .mqlib "
                    "for named libraries");
    (void)dir.write("bad.mqfrag", "&FRAGMENT foo\n");
    EXPECT_EQ(load("bad.mqfrag"), "unknown fragment kind 'foo'");
}

} // namespace
} // namespace morquill::taskdsl
