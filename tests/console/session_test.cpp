#include "console/session.h"

#include "console/console.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>
#include <unistd.h>

namespace morquill::console {
namespace {

/// A run of the program with the one argument "mqkit".
int runAlone(int (*command)(int argc, char** argv)) {
    char program[] = "mqkit";
    char* argv[] = {program, nullptr};
    return runInSession("mqkit", 1, argv, command);
}

TEST(RunInSession, GivesTheStatusOfTheCommand) {
    EXPECT_EXIT(std::_Exit(runAlone([](int argc, char**) { return 40 + argc; })),
                ::testing::ExitedWithCode(41), "^$");
}

TEST(RunInSession, AnExceptionEndsTheProgramAfterTheSessionWasClosed) {
    // What was written before shows that the session was closed: an abnormal end drops kept output.
    const auto throwing = [](int, char**) -> int {
        writeOut("kept\n");
        throw std::runtime_error("no command caught this");
    };
    EXPECT_EXIT(
        {
            ::dup2(STDERR_FILENO, STDOUT_FILENO);
            (void)runAlone(throwing);
        },
        ::testing::KilledBySignal(SIGABRT), "^kept\n(.|\n)*no command caught this");
}

TEST(RunInSession, ALackOfMemoryThatNoCommandCaughtIsToldAndFails) {
    const char* message = "^\\[mqkit\\]\\[ERROR\\] out of memory\n$";
    const auto throwing = [](int, char**) -> int { throw std::bad_alloc(); };
    EXPECT_EXIT(std::_Exit(runAlone(throwing)), ::testing::ExitedWithCode(1), message);
    // What the C++ library does when there is no memory for the exception either.
    const auto withoutException = [](int, char**) -> int { std::terminate(); };
    EXPECT_EXIT(std::_Exit(runAlone(withoutException)), ::testing::ExitedWithCode(1), message);
}

} // namespace
} // namespace morquill::console
