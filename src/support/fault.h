#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

/// What faults say to the user.
namespace morquill {

/// A fault whose message keeps all its bytes: one that quotes its input may hold a NUL byte, where the C
/// string of `what()` ends.
class WholeTextError : public std::runtime_error {
  public:
    explicit WholeTextError(const std::string& text) : std::runtime_error(text), text_(text) {}

    /// What `what()` returns, to the last byte.
    [[nodiscard]] const std::string& text() const noexcept { return text_; }

  private:
    std::string text_;
};

/// The message of an exception with all its bytes, as far as the exception has kept them.
[[nodiscard]] std::string wholeText(const std::exception& fault);

/// True for what the standard library throws when the memory runs out or a size cannot be had at all.
[[nodiscard]] bool isOutOfMemory(const std::exception& fault) noexcept;

/// What a fault says to the user. A lack of memory says nothing by itself: it becomes "out of memory: <path>"
/// with the file that was worked on, "out of memory" without one.
[[nodiscard]] std::string faultText(const std::exception& fault, std::string_view path);

/// The system's own words for an error number, those of `errno`.
[[nodiscard]] const char* systemErrorText(int number) noexcept;

/// What `errno` says now, as a value.
[[nodiscard]] std::error_code lastSystemError() noexcept;

} // namespace morquill
