#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What every command needs to talk to the user: the two output streams, colours, the error tag, and small
/// questions about the argument vector.
///
/// All output goes through `writeOut` and `writeErr`, never through iostream or printf. Standard output is
/// buffered; `writeErr` flushes it first, so that both streams keep their order when they lead to the same
/// place. Call `flushOut` before starting a child process, before waiting for a key or a line, and wherever
/// the user should see progress. Pass whole lines or whole documents rather than single characters.
namespace morquill::console {

/// Writes to standard output. Never fails its caller: output lost
/// to a closed reader or a full disk is noted for `finishOutput`.
void writeOut(std::string_view text) noexcept;
/// Writes to standard error at once, after everything passed to `writeOut` before.
void writeErr(std::string_view text) noexcept;
/// Writes what `writeOut` has buffered.
void flushOut() noexcept;

/// Prepares the process for broken and closed streams. Called once, by `main`.
///
/// A standard stream that the caller closed is opened on /dev/null, so that no file of the user gets its
/// number and child programs can work; output to a closed standard output still counts as lost. A reader that
/// went away and a file that may not grow no longer kill the program in the middle of its work on disk;
/// children keep the system's default.
void prepareStandardStreams() noexcept;
/// Flushes standard output at the end of a run and returns the exit status to use. Lost output turns a status
/// of 0 into 1; it is reported, but not where the reader went away, which did not want the rest.
[[nodiscard]] int finishOutput(int status);

/// Console colours; the values are the codes of `ConsoleStyle::color`.
enum class ConsoleColor { red = 1, yellow, green, white, blue, cyan, magenta };

/// The terminal escape sequence of a colour; empty for a value outside the enumeration.
[[nodiscard]] std::string_view colorSequence(ConsoleColor color) noexcept;
inline constexpr std::string_view resetSequence = "\033[0m"; ///< ends colour and bold
inline constexpr std::string_view boldSequence = "\033[1m";

/// Makes the run's colour decision from `NO_COLOR` (any value, even an empty one) and
/// "--no-color" anywhere in the arguments, and returns true when it allows colour.
bool decideColor(int argc, const char* const* argv);
/// Forgets the decision, as before the first `decideColor`.
void forgetColorDecision() noexcept;

/// A standard stream for output.
enum class Stream : std::uint8_t { output, error };
/// The weight of styled text.
enum class Weight : std::uint8_t { normal, bold };

/// True when output to the stream may be coloured: the decision allows it (before there is one: `NO_COLOR` is
/// not set), `TERM` is not "dumb", and the stream is a terminal.
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
/// True when `flag` itself is anywhere in `argv[1..]`, even after "--".
[[nodiscard]] bool isFlagPresent(int argc, const char* const* argv, std::string_view flag) noexcept;
/// The program name for usage lines: without trailing "/" and "\", the part after the last "/" or "\";
/// "program" when nothing is left.
[[nodiscard]] std::string toolBaseName(std::string_view path);

} // namespace morquill::console
