#include "templates/sample_workspace.h"

#include "fixtures/golden.h"
#include "fixtures/scratch_tree.h"
#include "support/text.h"

namespace morquill::templates {
namespace {

using ::testing::ElementsAre;

TEST(SampleGeometry, IsAWaterMoleculeInAngstrom) {
    const auto lines = splitLines(sampleGeometry());
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0], "3");   // atoms
    EXPECT_EQ(lines[1], "0 1"); // charge and multiplicity
    std::string elements;
    for (std::size_t i = 2; i < lines.size(); ++i) {
        elements += lines[i].front();
    }
    EXPECT_EQ(elements, "OHH");
    EXPECT_TRUE(sampleGeometry().ends_with('\n'));
}

TEST(SampleTexts, AreTheFilesByteForByte) {
    EXPECT_EQ(sampleTaskFile(), golden::sourceText("src/templates/sample/test.mq"));
    EXPECT_EQ(sampleGeometry(), golden::sourceText("src/templates/sample/test.xyz"));
}

class SampleWorkspace : public ScratchTree {
  protected:
    Output create() {
        return run("", [] { return createSampleWorkspace(); });
    }
};

TEST_F(SampleWorkspace, HoldsBothFilesAndReplacesWhatIsThere) {
    write("test/test.mq", "older, and much longer than nothing");
    write("test/mine", "kept");
    for (int round = 0; round < 2; ++round) {
        const Output output = create();
        EXPECT_EQ(output.status, 0);
        EXPECT_EQ(output.out, "[mqkit] Test workspace created: test/\n");
        EXPECT_EQ(output.err, "");
        EXPECT_THAT(tree("test"), ElementsAre("mine = kept", "test.mq = " + std::string(sampleTaskFile()),
                                              "test.xyz = " + std::string(sampleGeometry())));
    }
}

TEST_F(SampleWorkspace, ReportsWhatIsInTheWay) {
    write("test", "a file");
    Output output = create();
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "[mqkit][ERROR] could not create directory: test/\n");
    std::filesystem::remove(at("test"));
    dir("test/test.mq/full");
    output = create();
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[mqkit][ERROR] could not write file: test/test.mq\n");
}

} // namespace
} // namespace morquill::templates
