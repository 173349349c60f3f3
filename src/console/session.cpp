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

/// A function of its own, so that the log session is destroyed before an exception reaches the caller, which
/// may not throw: the objects of that one would not be.
[[gnu::noinline]] int runGuarded(std::string_view toolName, int argc, char** argv,
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

/// True when there was no memory for the exception itself, or none for the message about it.
bool endsForLackOfMemory() noexcept {
    if (std::current_exception() == nullptr) {
        return true;
    }
    try {
        throw;
    } catch (const std::exception& fault) {
        return isOutOfMemory(fault);
    } catch (...) {
        return false;
    }
}

[[noreturn]] void endWithoutMemory() {
    if (endsForLackOfMemory()) {
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
    return runGuarded(toolName, argc, argv, command);
}

} // namespace morquill::console
