#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <csignal>

/// Keys and lines from a terminal, without a screen library. Input is read byte by byte and never ahead, so
/// that keys and lines may alternate; an end of input is not remembered.
namespace morquill::system {

/// One key: a byte value, an arrow or the end of input (`key` in selector_state.h). The terminal hands over
/// keys unechoed while this waits and is as before when it returns. A lone Esc waits for one more key, which
/// is lost. Input that is no terminal is read plainly.
[[nodiscard]] std::int32_t readKey(int descriptor);

/// One line without its line end; nothing at the end of input.
[[nodiscard]] std::optional<std::string> readLine(int descriptor);

/// Clears the screen with the system's `clear` command; nothing happens when there is none.
void clearScreen();

/// While it lives, a signal that ends or stops the program first puts the terminal's attributes back and
/// shows the cursor. Signals that are ignored stay ignored. One at a time.
class TerminalSession {
  public:
    TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;
    ~TerminalSession();

    static constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};

  private:
    struct sigaction previous[std::size(signals)];
};

} // namespace morquill::system
