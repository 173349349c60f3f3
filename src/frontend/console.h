#pragma once

#include <string>
#include <string_view>

/// What every command needs to speak to the user: colour wrappers, the error tag, and small questions about
/// the argument vector.
namespace morquill::frontend {

/// Console colours; the number is the colour's code.
enum class ConsoleColor { red = 1, yellow, green, white, blue, cyan, magenta };

/// The terminal escape sequence of a colour; empty for a value outside the enumeration.
[[nodiscard]] std::string_view colorSequence(ConsoleColor color) noexcept;
inline constexpr std::string_view resetSequence = "\033[0m";
inline constexpr std::string_view boldSequence = "\033[1m";

/// Takes the run's colour decision once, from `NO_COLOR` (any value, also empty) and "--no-color" anywhere in
/// the arguments. Gives true when colour is allowed.
bool decideColor(int argc, const char* const* argv);
/// Forgets the decision, as before the first `decideColor`.
void forgetColorDecision() noexcept;

/// True when output to standard error (`toError`) or standard output may carry colour: no decision against
/// it (before one was taken: no `NO_COLOR`), `TERM` other than "dumb", and the stream is a terminal.
[[nodiscard]] bool colorEnabled(bool toError);

/// `text` between the escape sequences when colour is enabled for the stream, otherwise `text` itself.
[[nodiscard]] std::string styled(std::string_view text, ConsoleColor color, bool bold, bool toError);

[[nodiscard]] std::string cyanHeading(std::string_view text);   ///< bold cyan, standard output
[[nodiscard]] std::string greenText(std::string_view text);     ///< green, standard output
[[nodiscard]] std::string yellowHeading(std::string_view text); ///< bold yellow, standard output

/// "[<toolName>][ERROR]" in bold red for standard error; an empty name counts as "mqkit".
[[nodiscard]] std::string errorTag(std::string_view toolName = "mqkit");

/// True for exactly "-h", "help" or "--help".
[[nodiscard]] bool isHelpToken(std::string_view token) noexcept;
/// True when an exact copy of `flag` stands anywhere in `argv[1..]`, also behind "--".
[[nodiscard]] bool isFlagPresent(int argc, const char* const* argv, std::string_view flag) noexcept;
/// The program name of usage lines: trailing "/" and "\" removed, then the part behind the last "/" or "\";
/// "program" when nothing is left.
[[nodiscard]] std::string toolBaseName(std::string_view path);

} // namespace morquill::frontend
