// Every command that writes, with each of its calls failing once: the status and the message are right, every
// file is as before or as promised, and nothing stays behind that stops the next run.

#include "faults/sandbox.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>

namespace faults {
namespace {

struct ClassRow {
    CallClass callClass;
    std::vector<std::string> kinds;
    int stride; ///< of the quick run
};

std::string of(int error) {
    return std::to_string(error);
}

const std::vector<ClassRow>& classRows() {
    static const std::vector<ClassRow> rows{
        {CallClass::open, {of(EACCES), of(EIO), of(EMFILE), of(ENOSPC), of(EINTR)}, 1},
        {CallClass::read, {of(EIO), of(EINTR), "short"}, 1},
        {CallClass::stat, {of(EIO), of(ENOMEM)}, 1},
        {CallClass::write, {of(ENOSPC), of(EIO), of(EINTR), "short", "full"}, 1},
        {CallClass::room, {of(ENOSPC), of(EIO), of(EINTR)}, 1},
        {CallClass::close, {of(EIO), of(ENOSPC), of(EINTR)}, 1},
        {CallClass::name, {of(EACCES), of(EIO), of(ENOSPC)}, 1},
        {CallClass::remove, {of(EACCES), of(EIO)}, 1},
        {CallClass::mkdir, {of(EACCES), of(ENOSPC), of(EIO)}, 1},
        {CallClass::mode, {of(EPERM), of(EIO)}, 1},
        {CallClass::fork, {of(EAGAIN), of(ENOMEM), of(EMFILE)}, 1},
        {CallClass::start, {of(EACCES), of(ENOENT), of(ENOMEM)}, 1},
        {CallClass::wait, {of(EINTR)}, 1},
        {CallClass::output, {of(ENOSPC), of(EIO)}, 1},
        {CallClass::memory, {of(ENOMEM), of(ENOMEM) + "+"}, 17},
    };
    return rows;
}

/// Fails one call; false when the command does not get to it any more.
bool failCall(Sandbox& sandbox, const Fault& fault) {
    const RunResult result = sandbox.run(fault);
    if (result.report.reached == 0) {
        return false;
    }
    const std::string complaints = sandbox.complaints(result);
    if (!complaints.empty()) {
        ADD_FAILURE() << complaints << "after " << fault.kind << " in " << result.report.call << ", call "
                      << fault.call << " of class " << fault.callClass << "; status " << result.status
                      << ", messages:\n"
                      << result.errors;
    } else if (std::getenv("MQKIT_FAULTS_LIST") != nullptr) {
        std::cout << "LIST " << sandbox.scenario().name << ' ' << fault.callClass << ' ' << fault.kind << ' '
                  << fault.call << ' ' << result.report.call << " -> " << result.status << ' '
                  << result.errors.substr(0, result.errors.find('\n')) << '\n';
    }
    return true;
}

class Faults : public ::testing::TestWithParam<std::string> {};

TEST_P(Faults, LeaveFilesAsBeforeOrAsPromised) {
    Sandbox sandbox(scenario(GetParam()));
    int runs = 0;
    for (const ClassRow& row : classRows()) {
        const std::string className = classNames[static_cast<int>(row.callClass)];
        const int stride = isThorough() ? 1 : row.stride;
        std::size_t turn = 0;
        bool isReached = true;
        for (int call = 1; isReached; call += stride) {
            isReached = false;
            // In the quick run the kinds take turns.
            const std::size_t first = isThorough() ? 0 : turn++ % row.kinds.size();
            const std::size_t end = isThorough() ? row.kinds.size() : first + 1;
            for (std::size_t kind = first; kind < end; ++kind) {
                isReached = failCall(sandbox, {className, call, row.kinds[kind]}) || isReached;
                ++runs;
            }
        }
    }
    std::cout << GetParam() << ": " << runs << " runs\n";
}

std::vector<std::string> names() {
    std::vector<std::string> list;
    for (const Scenario& row : scenarios()) {
        list.push_back(row.name);
    }
    return list;
}

INSTANTIATE_TEST_SUITE_P(Commands, Faults, ::testing::ValuesIn(names()),
                         [](const auto& row) { return row.param; });

} // namespace
} // namespace faults
