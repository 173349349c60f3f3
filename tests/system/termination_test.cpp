#include "system/termination.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

} // namespace
} // namespace morquill::system
