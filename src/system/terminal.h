#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <csignal>

/// Keys and lines from a terminal, without a screen library. Input is read byte by byte and never ahead, so
/// that keys and lines may alternate; an end of input is not remembered.
namespace morquill::system {

/// A key is a byte value, an arrow, or the end of input.
namespace key {
inline constexpr std::int32_t endOfInput = -1;
inline constexpr std::int32_t lineFeed = 10;
inline constexpr std::int32_t carriageReturn = 13;
inline constexpr std::int32_t escape = 27;
inline constexpr std::int32_t up = 1001;
inline constexpr std::int32_t down = 1002;
inline constexpr std::int32_t right = 1003;
inline constexpr std::int32_t left = 1004;
} // namespace key

inline constexpr std::string_view hideCursor = "\033[?25l";
inline constexpr std::string_view showCursor = "\033[?25h";

/// Shows again what the program last showed. Called while input is awaited, after the program was stopped and
/// has the terminal back.
using Redraw = std::function<void()>;

/// One key: a byte value, an arrow or the end of input (`key`). The terminal hands over
/// keys unechoed while this waits and is as before when it returns. A lone Esc waits for one more key, which
/// is lost. Input that is no terminal is read plainly.
[[nodiscard]] std::int32_t readKey(int descriptor, const Redraw& redraw = {});

/// One line without its line end; nothing at the end of input.
[[nodiscard]] std::optional<std::string> readLine(int descriptor, const Redraw& redraw = {});

/// Clears the screen with the system's `clear` command; nothing happens when there is none.
void clearScreen();

/// Returns when the terminal is the program's: one that was started in the background is stopped, as if it
/// had read from the terminal, until its job is called to the front. Needs a session.
void awaitTerminal(int descriptor);

/// While it lives, a signal that ends the program first puts the terminal's attributes back and shows the
/// cursor; only while the terminal is the program's, for otherwise both are another's. The stop key acts
/// while input is awaited and gives the terminal back in the same way. Signals that are ignored or already
/// handled stay so. One at a time.
class TerminalSession {
  public:
    TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;
    ~TerminalSession();

  private:
    void handle(int signal, void (*handler)(int), int flags);

    struct Previous {
        int signal;
        struct sigaction action;
    };
    std::vector<Previous> previous_;
    std::vector<char> handlerStack_;
    stack_t previousStack_{};
};

} // namespace morquill::system
