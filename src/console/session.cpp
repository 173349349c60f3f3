#include "console/session.h"

#include "console/console.h"
#include "console/logger.h"
#include "console/messages.h"
#include "support/fault.h"

#include <cstdlib>
#include <exception>
#include <system_error>

namespace morquill::console {

namespace {

/// Kept apart from its caller: the stack is unwound up to a function that may not throw, but that function's
/// own objects are not destroyed.
[[gnu::noinline]] int runUnguarded(std::string_view toolName, int argc, char** argv,
                                   int (*command)(int argc, char** argv)) {
    const LogSession session(toolName, argc, argv, LogLevel::Warning, LogLevel::Skip);
    try {
        return finishOutput(command(argc, argv));
    } catch (const std::exception& fault) {
        // Neither a lack of memory nor a failing file system is a fault of the program; whatever else gets
        // here is one and ends it.
        if (!isOutOfMemory(fault) && dynamic_cast<const std::system_error*>(&fault) == nullptr) {
            throw;
        }
        reportError(ErrorTag::coloured, faultText(fault, {}));
        return finishOutput(1);
    }
}

std::terminate_handler usualEnd = nullptr;

/// Called without an exception when there was no memory even for the exception.
[[noreturn]] void endWithoutMemory() {
    if (std::current_exception() == nullptr) {
        reportErrorInPieces({"out of memory"});
        std::_Exit(1);
    }
    usualEnd();
    std::abort();
}

} // namespace

int runInSession(std::string_view toolName, int argc, char** argv,
                 int (*command)(int argc, char** argv)) noexcept {
    prepareStandardStreams();
    usualEnd = std::set_terminate(endWithoutMemory);
    return runUnguarded(toolName, argc, argv, command);
}

} // namespace morquill::console
