#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What every command needs to speak to the user: the two output streams, colour wrappers, the error tag, and
/// small questions about the argument vector.
///
/// Output goes through `writeOut` and `writeErr` and nothing else (no iostream, no printf). Standard output
/// is buffered; `writeErr` brings it out first, so that both streams keep their order when they lead to one
/// place. Call `flushOut` before a child process starts, before the program waits for a key or a line, and
/// wherever the user should see progress. Pass whole lines or whole documents rather than single characters.
namespace morquill::console {

/// Adds to standard output. Never fails its caller: what a closed reader or a full disk did not take is known
/// to `finishOutput`.
void writeOut(std::string_view text) noexcept;
/// Writes to standard error at once, after everything that was given to `writeOut` before.
void writeErr(std::string_view text) noexcept;
/// Brings out what `writeOut` has kept back.
void flushOut() noexcept;

/// Readies the process for broken and closed streams. A standard stream that the caller closed is opened on
/// /dev/null, so that no file of the user gets its number and child programs can do their work; what
/// `writeOut` is given for a closed standard output is lost all the same. A reader that went away and a file
/// that may not grow no longer kill the program in the middle of its work on disk (children keep the system's
/// default). Called once, by `main`.
void prepareStandardStreams() noexcept;
/// Brings standard output out at the end of a run and returns the exit status to use. Output that was lost
/// turns a status of 0 into 1 and is reported, but for a reader that went away: it did not want the rest.
[[nodiscard]] int finishOutput(int status);

/// Console colours; the number is the colour's code.
enum class ConsoleColor { red = 1, yellow, green, white, blue, cyan, magenta };

/// The terminal escape sequence of a colour; empty for a value outside the enumeration.
[[nodiscard]] std::string_view colorSequence(ConsoleColor color) noexcept;
inline constexpr std::string_view resetSequence = "\033[0m";
inline constexpr std::string_view boldSequence = "\033[1m";

/// Takes the run's colour decision once, from `NO_COLOR` (any value, also empty) and "--no-color" anywhere in
/// the arguments. Returns true when colour is allowed.
bool decideColor(int argc, const char* const* argv);
/// Forgets the decision, as before the first `decideColor`.
void forgetColorDecision() noexcept;

enum class Stream : std::uint8_t { output, error };
enum class Weight : std::uint8_t { normal, bold };

/// True when what goes to the stream may carry colour: no decision against it (before one was taken: no
/// `NO_COLOR`), `TERM` other than "dumb", and the stream is a terminal.
[[nodiscard]] bool colorEnabled(Stream stream);

/// `text` between the escape sequences when colour is enabled for the stream, otherwise `text` itself.
[[nodiscard]] std::string styled(std::string_view text, ConsoleColor color, Weight weight, Stream stream);

[[nodiscard]] std::string cyanHeading(std::string_view text);   ///< bold cyan, standard output
[[nodiscard]] std::string greenText(std::string_view text);     ///< green, standard output
[[nodiscard]] std::string yellowHeading(std::string_view text); ///< bold yellow, standard output

/// "[<toolName>][ERROR]" in bold red for standard error; an empty name counts as "mqkit".
[[nodiscard]] std::string errorTag(std::string_view toolName = "mqkit");

/// True for exactly "-h", "help" or "--help".
[[nodiscard]] bool isHelpToken(std::string_view token) noexcept;
/// True when an exact copy of `flag` is anywhere in `argv[1..]`, also behind "--".
[[nodiscard]] bool isFlagPresent(int argc, const char* const* argv, std::string_view flag) noexcept;
/// The program name of usage lines: trailing "/" and "\" removed, then the part behind the last "/" or "\";
/// "program" when nothing is left.
[[nodiscard]] std::string toolBaseName(std::string_view path);

} // namespace morquill::console
