#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

/// Lines for the user: one function per kind of message, so that each tag is spelled once.
namespace morquill::console {

/// Writes a line to standard output; without a text an empty one.
void printLine(std::string_view text = {});
/// Writes a line to standard error, behind everything that was printed before; without a text an empty one.
void printErrorLine(std::string_view text = {});

/// The kinds of message, known by their tag.
enum class MessageKind : std::uint8_t { note, skip, dryRun, warning, error };

/// The tag of a kind: "[mqkit]", "[mqkit][SKIP]", "[mqkit][DRY-RUN]", "[mqkit][WARN]", "[mqkit][ERROR]".
[[nodiscard]] std::string_view messageTag(MessageKind kind) noexcept;
/// The tag of a kind, a blank and the text, without a line end.
[[nodiscard]] std::string tagged(MessageKind kind, std::string_view text);

/// Whether a workflow takes its steps or only shows them.
enum class RunMode : std::uint8_t { apply, dryRun };

/// The mode that an option asks for.
[[nodiscard]] constexpr RunMode runMode(bool dryRun) noexcept {
    return dryRun ? RunMode::dryRun : RunMode::apply;
}
/// The kind of a message about a step.
[[nodiscard]] MessageKind stepKind(RunMode mode) noexcept;

/// Writes a message of any kind to standard output, one line.
void printMessage(MessageKind kind, std::string_view text);
/// Writes what was done or found, one line on standard output.
void printNote(std::string_view text);
/// Writes what was passed over, one line on standard output.
void printSkip(std::string_view text);
/// Writes a question to standard output, without a line end.
void printQuestion(std::string_view text);

/// What precedes an error message: nothing, "[mqkit][ERROR] ", or the same in red where the stream takes
/// colour.
enum class ErrorTag : std::uint8_t { none, plain, coloured };

/// Writes a warning, one line on standard error.
void reportWarning(std::string_view text);
/// Writes an error with the plain tag, one line on standard error.
void reportError(std::string_view text);
/// Writes an error with the given tag, one line on standard error.
void reportError(ErrorTag tag, std::string_view text);
/// Writes an error with the plain tag, one line on standard error, without asking for memory: for places that
/// run when there may be none.
void reportErrorInPieces(std::initializer_list<std::string_view> pieces) noexcept;

} // namespace morquill::console
