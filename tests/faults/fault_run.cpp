#include "faults/fault_run.h"

#include "support/descriptor.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {

namespace {

using morquill::Descriptor;

/// A file without a name, of the descriptors that a child inherits.
Descriptor memoryFile(const std::string& content = {}) {
    Descriptor file(::memfd_create("fault", 0));
    if (!file.isOpen() || !morquill::writeAll(file.get(), content) || ::lseek(file.get(), 0, SEEK_SET) != 0) {
        throw std::runtime_error("no file in memory");
    }
    return file;
}

std::string contentOf(const Descriptor& file) {
    ::lseek(file.get(), 0, SEEK_SET);
    return morquill::readToEnd(file.get()).value_or("");
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> list;
    list.reserve(texts.size() + 1);
    for (const auto& text : texts) {
        list.push_back(const_cast<char*>(text.c_str())); // exec never writes to them
    }
    list.push_back(nullptr);
    return list;
}

[[noreturn]] void become(const std::vector<char*>& arguments, const std::vector<char*>& environment,
                         const char* directory, const int (&streams)[3]) {
    for (int number = 1; number < NSIG; ++number) {
        std::signal(number, SIG_DFL);
    }
    const rlimit noCore{};
    ::setrlimit(RLIMIT_CORE, &noCore);
    ::setpgid(0, 0); // a stop works only where somebody of the session is outside of the group
    for (int i = 0; i < 3; ++i) {
        ::dup2(streams[i], i);
    }
    if (::chdir(directory) == 0) {
        ::execve(arguments.front(), arguments.data(), environment.data());
    }
    ::_exit(126);
}

constexpr int hadToBeKilled = 1000;

/// Waits for the end of the child and lets it go on after every stop.
void await(pid_t child, RunResult& result) {
    using std::chrono::steady_clock;
    const auto latest = steady_clock::now() + std::chrono::seconds(60);
    for (;;) {
        int status = 0;
        const pid_t changed = ::waitpid(child, &status, WNOHANG | WUNTRACED);
        if (changed == child && WIFSTOPPED(status)) {
            result.stops += 1;
            ::kill(-child, SIGCONT);
            continue;
        }
        if (changed == child) {
            result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            return;
        }
        if (steady_clock::now() > latest) {
            ::kill(-child, SIGKILL);
            ::waitpid(child, &status, 0);
            result.status = hadToBeKilled;
            return;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

} // namespace

RunResult runWith(const Fault& fault, const Command& command) {
    const Descriptor input = memoryFile(command.input);
    const Descriptor output = memoryFile();
    const Descriptor errors = memoryFile();
    const Descriptor shared = memoryFile(std::string(sizeof(Report), '\0'));
    std::vector<std::string> words{given("MQKIT")};
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    auto environment = command.environment;
    environment.push_back("LD_PRELOAD=" + given("MQKIT_INJECTOR"));
    environment.push_back("FAULT_REPORT=/proc/self/fd/" + std::to_string(shared.get()));
    environment.push_back("FAULT_PLAN=" + fault.callClass + " " + std::to_string(fault.call) + " " +
                          fault.kind);
    const auto wordList = pointers(words);
    const auto environmentList = pointers(environment);

    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("no child process");
    }
    if (child == 0) {
        become(wordList, environmentList, command.directory.c_str(),
               {input.get(), output.get(), errors.get()});
    }
    RunResult result;
    await(child, result);
    result.output = contentOf(output);
    result.errors = contentOf(errors);
    ::lseek(shared.get(), 0, SEEK_SET);
    (void)morquill::readFull(shared.get(), reinterpret_cast<char*>(&result.report), sizeof result.report);
    return result;
}

bool isThorough() {
    const char* const value = std::getenv("MQKIT_FAULTS");
    return value != nullptr && std::string_view(value) == "all";
}

std::string given(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') {
        throw std::runtime_error(std::string(variable) + " is not set");
    }
    return value;
}

} // namespace faults
