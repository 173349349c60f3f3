#include "taskdsl/generate/include_chain.h"

#include "fixtures/faults.h"
#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace morquill::taskdsl {
namespace {

TEST(IncludeChain, AnElementIsOnItForTheTimeOfItsEntry) {
    IncludeChain chain("fragment include");
    const auto enter = [&](const char* key, const char* shown) {
        return messageOf([&] { const IncludeChain::Entry entry(chain, key, shown); });
    };
    const IncludeChain::Entry first(chain, "1", "one");
    {
        const IncludeChain::Entry second(chain, "2", "two");
        EXPECT_EQ(enter("1", "uno"), "fragment include cycle detected: one -> two -> uno");
        EXPECT_EQ(enter("2", "due"), "fragment include cycle detected: one -> two -> due");
        EXPECT_EQ(enter("3", "tre"), "no fault");
        EXPECT_EQ(enter("3", "tre"), "no fault") << "left again";
    }
    EXPECT_EQ(enter("2", "due"), "no fault");
    EXPECT_EQ(enter("1", "uno"), "fragment include cycle detected: one -> uno");
}

TEST(IncludeChain, IsTwoHundredDeepAtMost) {
    IncludeChain chain("task include");
    std::vector<std::unique_ptr<IncludeChain::Entry>> entries;
    for (int i = 0; i < 200; ++i) {
        entries.push_back(std::make_unique<IncludeChain::Entry>(chain, std::to_string(i), ""));
    }
    EXPECT_EQ(messageOf([&] { const IncludeChain::Entry entry(chain, "200", "last.mq"); }),
              "task include is nested more than 200 deep: last.mq");
    EXPECT_EQ(messageOf([&] { const IncludeChain::Entry entry(chain, "7", "seven"); }).substr(0, 26),
              "task include cycle detecte")
        << "a cycle is told as one";
    entries.pop_back();
    EXPECT_EQ(messageOf([&] { const IncludeChain::Entry entry(chain, "200", "last.mq"); }), "no fault");
}

TEST(IncludeChain, TellsFilesApartByWhatTheyAreAndShowsThemAsWritten) {
    const TemporaryDirectory dir;
    const auto file = dir.write("a.mq", "");
    (void)dir.write("b.mq", "");
    std::filesystem::create_symlink("a.mq", dir.path("link.mq"));
    IncludeChain chain("task include");
    const IncludeChain::Entry entry(chain, file);
    EXPECT_EQ(messageOf([&] { const IncludeChain::Entry again(chain, dir.path("link.mq")); }),
              "task include cycle detected: " + file + " -> " + dir.path("link.mq"));
    EXPECT_EQ(messageOf([&] { const IncludeChain::Entry other(chain, dir.path("b.mq")); }), "no fault");
    EXPECT_EQ(messageOf([&] { const IncludeChain::Entry none(chain, dir.path("none.mq")); }), "no fault");
}

} // namespace
} // namespace morquill::taskdsl
