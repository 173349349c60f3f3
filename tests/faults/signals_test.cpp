// A signal at each call of the workflows and of the selector: the program ends by it, the status files and
// the terminal are as before, and the next run finishes the work.

#include "faults/sandbox.h"

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>

namespace faults {
namespace {

constexpr int endSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGXCPU};

Fault signalAt(int call, int number) {
    return {"any", call, std::to_string(-number)};
}

std::string context(const Fault& fault, const Report& report) {
    return "after " + fault.kind + " at " + report.call + ", call " + std::to_string(fault.call);
}

class Signals : public ::testing::TestWithParam<std::string> {};

/// The signals of one call: all, or one of them in turn.
template <std::size_t N>
std::vector<int> turn(const int (&all)[N], int call) {
    if (isThorough()) {
        return {all, all + N};
    }
    return {all[static_cast<std::size_t>(call) % N]};
}

TEST_P(Signals, EndTheProgramWithItsFilesInOrder) {
    Sandbox sandbox(scenario(GetParam()));
    int calls = 0;
    for (bool isReached = true; isReached; ++calls) {
        isReached = false;
        for (const int number : turn(endSignals, calls)) {
            const Fault fault = signalAt(calls + 1, number);
            const RunResult result = sandbox.run(fault);
            if (result.report.reached == 0) {
                continue;
            }
            isReached = true;
            EXPECT_EQ(result.status, 128 + number) << context(fault, result.report) << "\n" << result.errors;
            EXPECT_EQ(sandbox.complaintsOfFiles(Children::ended), "") << context(fault, result.report) << "\n"
                                                                      << result.errors;
        }
    }
    EXPECT_GT(calls, 40);
    std::cout << GetParam() << ": " << calls << " calls\n";
}

TEST_P(Signals, AStopAndABrokenPipeChangeNothing) {
    Sandbox sandbox(scenario(GetParam()));
    constexpr int harmless[] = {SIGTSTP, SIGPIPE, SIGCONT};
    for (int call = 1;; ++call) {
        bool isReached = false;
        for (const int number : turn(harmless, call)) {
            const Fault fault = signalAt(call, number);
            const RunResult result = sandbox.run(fault);
            if (result.report.reached == 0) {
                continue;
            }
            isReached = true;
            EXPECT_EQ(result.status, 0) << context(fault, result.report) << "\n" << result.errors;
            EXPECT_EQ(result.stops, number == SIGTSTP ? 1 : 0) << context(fault, result.report);
            EXPECT_EQ(sandbox.complaints(result), "") << context(fault, result.report);
        }
        if (!isReached) {
            break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Workflows, Signals,
                         ::testing::Values("update", "update_run", "rebuild", "exec", "collect", "add"),
                         [](const auto& row) { return row.param; });

} // namespace
} // namespace faults
