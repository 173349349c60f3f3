#include "system/termination.h"

#include "fixtures/scratch_tree.h"

namespace morquill::system {
namespace {

using ::testing::ElementsAre;

TEST(Termination, EveryProgramHasItsMarkers) {
    EXPECT_THAT(terminationMarkers(LogProgram::orca), ElementsAre("****ORCA TERMINATED NORMALLY****"));
    EXPECT_THAT(terminationMarkers(LogProgram::gamess),
                ElementsAre("EXECUTION OF GAMESS TERMINATED NORMALLY", "ddikick.x: exited gracefully."));
    EXPECT_THAT(terminationMarkers(LogProgram::amesp), ElementsAre("Normal termination of Amesp!"));
    EXPECT_THAT(terminationMarkers(LogProgram::other), ElementsAre("Normal termination", "Program ended:"));
}

TEST(Termination, AMarkerIsAPlainSubstring) {
    EXPECT_TRUE(hasTerminationMarker(" x ****ORCA TERMINATED NORMALLY**** y\n", LogProgram::orca));
    EXPECT_FALSE(hasTerminationMarker("ORCA TERMINATED NORMALLY\n", LogProgram::orca));
    EXPECT_TRUE(hasTerminationMarker("ddikick.x: exited gracefully.", LogProgram::gamess));
    EXPECT_FALSE(hasTerminationMarker("Normal termination of Gaussian 16", LogProgram::amesp));
    EXPECT_TRUE(hasTerminationMarker("Normal termination of Gaussian 16", LogProgram::other));
    EXPECT_FALSE(hasTerminationMarker("normal termination", LogProgram::other));
    EXPECT_FALSE(hasTerminationMarker("", LogProgram::other));
}

using TerminationOfALog = ScratchTree;

TEST_F(TerminationOfALog, IsRecognisedByMarkersAndForOrcaReported) {
    write("orca.log",
          "...\n                             ****ORCA TERMINATED NORMALLY****\nTOTAL RUN TIME: 0\n");
    write("killed.log", "ORCA was killed\n");
    write("g.log", " Normal termination of Gaussian 16\n");
    struct Row {
        const char* log;
        LogProgram program;
        bool terminated;
        std::string message;
    };
    const Row rows[] = {
        {"orca.log", LogProgram::orca, true, "Found ORCA termination flag in log: " + at("orca.log")},
        {"orca.log", LogProgram::gamess, false, ""},
        {"killed.log", LogProgram::orca, false, ""},
        {"g.log", LogProgram::other, true, ""},
    };
    for (const auto& row : rows) {
        const auto check = checkTermination(at(row.log), row.program);
        EXPECT_EQ(check.terminated, row.terminated) << row.log;
        EXPECT_EQ(check.message, row.message) << row.log;
    }
}

TEST_F(TerminationOfALog, IsUnknownWhenTheLogIsEmptyOrCannotBeRead) {
    write("empty.log");
    write("secret.log", "****ORCA TERMINATED NORMALLY****");
    mode("secret.log", 0);
    dir("dir.log");
    const Unprivileged user;
    for (const char* name : {"empty.log", "secret.log", "dir.log", "none.log"}) {
        const auto check = checkTermination(at(name), LogProgram::orca);
        EXPECT_FALSE(check.terminated) << name;
        EXPECT_EQ(check.message, "Log file is empty or unreadable: " + at(name));
    }
}

} // namespace
} // namespace morquill::system
