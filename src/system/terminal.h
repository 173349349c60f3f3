#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <csignal>

/// Keys and lines from a terminal, without a screen library. Input is read byte by byte and never ahead, so
/// keys and lines may alternate; the end of input is not remembered.
namespace morquill::system {

/// Keys that have a name; any other key is its byte value.
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

inline constexpr std::string_view hideCursor = "\033[?25l"; ///< escape sequence
inline constexpr std::string_view showCursor = "\033[?25h"; ///< escape sequence

/// Draws the screen again. Called while input is awaited, after
/// the program was stopped and has regained the terminal.
using Redraw = std::function<void()>;

/// Waits for a key and returns it: a byte value, an arrow or the end of input (see `key`). Meanwhile, the
/// terminal delivers keys one by one and without echo; afterwards, it is as before. A lone Esc waits for one
/// more key, which is lost. Input other than a terminal is read plainly.
[[nodiscard]] std::int32_t readKey(int descriptor, const Redraw& redraw = {});

/// Reads a line, without its line end; nothing at the end of input.
[[nodiscard]] std::optional<std::string> readLine(int descriptor, const Redraw& redraw = {});

/// Clears the screen with the system's `clear` command; does nothing when there is none.
void clearScreen();

/// Returns once the terminal belongs to the program. A program in the background is stopped, as if it had
/// read from the terminal, until its job is brought to the foreground. Needs a `TerminalSession`.
void awaitTerminal(int descriptor);

/// While it lives, a signal that ends the program first restores the terminal's
/// attributes and shows the cursor, unless the terminal belongs to another job. The
/// stop key acts only while input is awaited and restores the terminal in the same way.
/// Signals that are ignored or already handled stay so. There may be one at a time.
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
