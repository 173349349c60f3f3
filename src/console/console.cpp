#include "console/console.h"

#include "console/messages.h"
#include "support/fault.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace morquill::console {

namespace {

// The decision and whether it was made; written once, by the session guard of `main`.
bool colorDecided = false;
bool colorAllowed = true;

// The first failure of standard output; 0 while all was written. Nothing is written after a failure.
int outputError = 0;
bool outputClosed = false;

extern "C" void ignoreSignal(int /*signal*/) {}

/// Turns a signal that would end the program into a failed write. A handler rather than SIG_IGN, because a
/// child program starts with the default again.
void leaveToTheWrite(int signal) noexcept {
    struct sigaction current {};
    if (::sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_DFL) {
        current.sa_handler = ignoreSignal;
        current.sa_flags = SA_RESTART;
        (void)::sigaction(signal, &current, nullptr);
    }
}

} // namespace

void writeOut(std::string_view text) noexcept {
    if (outputError != 0 || text.empty()) {
        return;
    }
    if (outputClosed) {
        outputError = EBADF;
    } else if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        outputError = errno;
    }
}

void writeErr(std::string_view text) noexcept {
    flushOut();
    (void)std::fwrite(text.data(), 1, text.size(), stderr);
}

void flushOut() noexcept {
    if (std::fflush(stdout) != 0 && outputError == 0) {
        outputError = errno;
    }
}

void prepareStandardStreams() noexcept {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) < 0) {
            // `open` takes the lowest free number, which is this one.
            (void)::open("/dev/null", O_RDWR);
            outputClosed = outputClosed || fd == STDOUT_FILENO;
        }
    }
    leaveToTheWrite(SIGPIPE);
    leaveToTheWrite(SIGXFSZ);
}

int finishOutput(int status) {
    flushOut();
    if (outputError == 0) {
        return status;
    }
    if (outputError != EPIPE) {
        reportError(ErrorTag::coloured,
                    std::string("could not write to standard output: ") + systemErrorText(outputError));
    }
    return status == 0 ? 1 : status;
}

std::string_view colorSequence(ConsoleColor color) noexcept {
    switch (color) {
    case ConsoleColor::red:
        return "\033[31m";
    case ConsoleColor::yellow:
        return "\033[33m";
    case ConsoleColor::green:
        return "\033[32m";
    case ConsoleColor::white:
        return "\033[37m";
    case ConsoleColor::blue:
        return "\033[34m";
    case ConsoleColor::cyan:
        return "\033[36m";
    case ConsoleColor::magenta:
        return "\033[35m";
    }
    return {};
}

bool decideColor(int argc, const char* const* argv) {
    colorAllowed = std::getenv("NO_COLOR") == nullptr && !isFlagPresent(argc, argv, "--no-color");
    colorDecided = true;
    return colorAllowed;
}

void forgetColorDecision() noexcept {
    colorDecided = false;
    colorAllowed = true;
}

bool colorEnabled(Stream stream) {
    if (colorDecided ? !colorAllowed : std::getenv("NO_COLOR") != nullptr) {
        return false;
    }
    const char* term = std::getenv("TERM");
    if (term != nullptr && std::string_view(term) == "dumb") {
        return false;
    }
    return ::isatty(stream == Stream::error ? STDERR_FILENO : STDOUT_FILENO) == 1;
}

std::string styled(std::string_view text, ConsoleColor color, Weight weight, Stream stream) {
    if (!colorEnabled(stream)) {
        return std::string(text);
    }
    std::string result;
    if (weight == Weight::bold) {
        result += boldSequence;
    }
    result += colorSequence(color);
    result += text;
    result += resetSequence;
    return result;
}

std::string cyanHeading(std::string_view text) {
    return styled(text, ConsoleColor::cyan, Weight::bold, Stream::output);
}

std::string greenText(std::string_view text) {
    return styled(text, ConsoleColor::green, Weight::normal, Stream::output);
}

std::string yellowHeading(std::string_view text) {
    return styled(text, ConsoleColor::yellow, Weight::bold, Stream::output);
}

std::string errorTag(std::string_view toolName) {
    const std::string name(toolName.empty() ? "mqkit" : toolName);
    return styled("[" + name + "][ERROR]", ConsoleColor::red, Weight::bold, Stream::error);
}

bool isHelpToken(std::string_view token) noexcept {
    return token == "-h" || token == "help" || token == "--help";
}

bool isFlagPresent(int argc, const char* const* argv, std::string_view flag) noexcept {
    for (int i = 1; i < argc; ++i) {
        if (flag == argv[i]) {
            return true;
        }
    }
    return false;
}

std::string toolBaseName(std::string_view path) {
    while (!path.empty() && (path.back() == '/' || path.back() == '\\')) {
        path.remove_suffix(1);
    }
    if (const auto slash = path.find_last_of("/\\"); slash != std::string_view::npos) {
        path.remove_prefix(slash + 1);
    }
    return path.empty() ? "program" : std::string(path);
}

} // namespace morquill::console
