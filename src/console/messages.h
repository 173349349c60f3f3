#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

/// Messages to the user: one function per kind, so that each tag is spelled once.
namespace morquill::console {

/// Writes a line to standard output, an empty one without a text.
void printLine(std::string_view text = {});
/// Writes a line to standard error, after everything printed before; an empty one without a text.
void printErrorLine(std::string_view text = {});

/// The kinds of message, each with a tag of its own.
enum class MessageKind : std::uint8_t { note, skip, dryRun, warning, error };

/// The tag of a kind: "[mqkit]", "[mqkit][SKIP]", "[mqkit][DRY-RUN]", "[mqkit][WARN]", "[mqkit][ERROR]".
[[nodiscard]] std::string_view messageTag(MessageKind kind) noexcept;
/// Returns the tag of a kind, a blank and the text, without a line end.
[[nodiscard]] std::string tagged(MessageKind kind, std::string_view text);

/// Whether a workflow performs its steps or only shows them.
enum class RunMode : std::uint8_t { apply, dryRun };

/// The mode that a "--dry-run" option selects.
[[nodiscard]] constexpr RunMode runMode(bool dryRun) noexcept {
    return dryRun ? RunMode::dryRun : RunMode::apply;
}
/// The kind of a message about a step: a note, or what a dry run would do.
[[nodiscard]] MessageKind stepKind(RunMode mode) noexcept;

/// Writes a message of any kind as a line on standard output.
void printMessage(MessageKind kind, std::string_view text);
/// Writes what was done or found as a line on standard output.
void printNote(std::string_view text);
/// Writes what was skipped as a line on standard output.
void printSkip(std::string_view text);
/// Writes a question to standard output, without a line end.
void printQuestion(std::string_view text);

/// What precedes an error message: nothing, the tag "[mqkit][ERROR]"
/// and a blank, or the same in red where the stream allows colour.
enum class ErrorTag : std::uint8_t { none, plain, coloured };

/// Writes a warning as a line on standard error.
void reportWarning(std::string_view text);
/// Writes an error with the plain tag as a line on standard error.
void reportError(std::string_view text);
/// Writes an error with the given tag as a line on standard error.
void reportError(ErrorTag tag, std::string_view text);
/// Writes an error with the plain tag as a line on standard error without allocating memory, for code that
/// runs when there may be none.
void reportErrorInPieces(std::initializer_list<std::string_view> pieces) noexcept;

} // namespace morquill::console
