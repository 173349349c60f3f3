// A signal at each call of the selector: it ends by the signal and leaves its terminal as it was.

#include "faults/fault_run.h"
#include "fixtures/temporary_directory.h"
#include "support/descriptor.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace faults {
namespace {

using morquill::Descriptor;

/// The selector in a terminal of its own, with everything typed ahead.
class TypedSelector {
  public:
    TypedSelector(const Fault& fault, const std::string& directory)
        : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)),
          report_(::memfd_create("report", 0)) {
        if (::grantpt(master_.get()) != 0 || ::unlockpt(master_.get()) != 0 ||
            ::ftruncate(report_.get(), sizeof(Report)) != 0) {
            throw std::runtime_error("no terminal");
        }
        slave_ = morquill::openFile(::ptsname(master_.get()), O_RDWR | O_NOCTTY);
        ::tcgetattr(slave_.get(), &before_);
        // Select the first template, write it to a file, leave.
        if (!morquill::writeAll(master_.get(), " \rout.mq\nq")) {
            throw std::runtime_error("nothing can be typed");
        }
        const std::string plan = fault.callClass + " " + std::to_string(fault.call) + " " + fault.kind;
        const pid_t child = ::fork();
        if (child == 0) {
            become(plan, directory);
        }
        await(child);
    }
    [[nodiscard]] int status() const noexcept { return status_; }
    [[nodiscard]] const std::string& screen() const noexcept { return screen_; }
    [[nodiscard]] bool isTerminalAsBefore() const {
        struct termios now {};
        return ::tcgetattr(slave_.get(), &now) == 0 && now.c_lflag == before_.c_lflag;
    }
    [[nodiscard]] bool isCursorShown() const {
        const auto hidden = screen_.rfind("\033[?25l");
        return hidden == std::string::npos || screen_.find("\033[?25h", hidden) != std::string::npos;
    }
    [[nodiscard]] Report report() const {
        Report report{};
        ::lseek(report_.get(), 0, SEEK_SET);
        (void)morquill::readFull(report_.get(), reinterpret_cast<char*>(&report), sizeof report);
        return report;
    }

  private:
    [[noreturn]] void become(const std::string& plan, const std::string& directory) const {
        const rlimit noCore{};
        ::setrlimit(RLIMIT_CORE, &noCore);
        ::setsid();
        ::ioctl(slave_.get(), TIOCSCTTY, 0);
        for (int fd = 0; fd < 3; ++fd) {
            ::dup2(slave_.get(), fd);
        }
        const auto program = given("MQKIT");
        ::setenv("TERM", "xterm", 1);
        ::setenv("NO_COLOR", "1", 1);
        ::setenv("HOME", directory.c_str(), 1);
        ::setenv("MORQUILL_TEMPLATE_PATH", "tpl", 1);
        ::setenv("FAULT_PLAN", plan.c_str(), 1);
        ::setenv("FAULT_REPORT", ("/proc/self/fd/" + std::to_string(report_.get())).c_str(), 1);
        ::setenv("LD_PRELOAD", given("MQKIT_INJECTOR").c_str(), 1);
        if (::chdir(directory.c_str()) == 0) {
            ::execl(program.c_str(), "mqkit", "template", "interactive", nullptr);
        }
        ::_exit(126);
    }
    void await(pid_t child) {
        int status = 0;
        pid_t ended = 0;
        for (int turn = 0; ended == 0; ++turn) {
            ended = ::waitpid(child, &status, WNOHANG);
            takeOutput();
            if (turn == 20000) { // of a millisecond at least
                ::kill(child, SIGKILL);
            }
            ::usleep(1000);
        }
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    void takeOutput() {
        char buffer[4096];
        for (ssize_t got = 0; (got = ::read(master_.get(), buffer, sizeof buffer)) > 0;) {
            screen_.append(buffer, static_cast<std::size_t>(got));
        }
    }

    Descriptor master_;
    Descriptor slave_;
    Descriptor report_;
    struct termios before_ {};
    int status_ = 0;
    std::string screen_;
};

TEST(SelectorSignals, EndItWithTheTerminalAsBefore) {
    const morquill::TemporaryDirectory directory;
    (void)directory.write("tpl/a.mq", "$opt\n  %keywords opt\n");
    constexpr int endSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGXCPU};
    const TypedSelector undisturbed({}, directory.root());
    ASSERT_EQ(undisturbed.status(), 0) << undisturbed.screen();
    EXPECT_TRUE(undisturbed.isTerminalAsBefore());
    EXPECT_TRUE(undisturbed.isCursorShown());
    EXPECT_NE(undisturbed.screen().find("wrote task file: out.mq"), std::string::npos);
    const int calls = undisturbed.report().counts[static_cast<int>(CallClass::any)];
    EXPECT_GT(calls, 20);
    for (int call = 1; call <= calls; call += isThorough() ? 1 : 3) {
        const int number = endSignals[call % 7];
        const TypedSelector disturbed({"any", call, std::to_string(-number)}, directory.root());
        const Report report = disturbed.report();
        EXPECT_EQ(disturbed.status(), 128 + number) << report.call << ", call " << call;
        EXPECT_TRUE(disturbed.isTerminalAsBefore()) << report.call << ", call " << call;
        EXPECT_TRUE(disturbed.isCursorShown()) << report.call << ", call " << call;
    }
}

} // namespace
} // namespace faults
