#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

/// The messages of exceptions.
namespace morquill {

/// A fault whose message keeps all its bytes: a message that quotes its input may contain a NUL byte, at
/// which the C string of `what()` ends.
class WholeTextError : public std::runtime_error {
  public:
    explicit WholeTextError(const std::string& text) : std::runtime_error(text), text_(text) {}

    /// The message with all its bytes.
    [[nodiscard]] const std::string& text() const noexcept { return text_; }

  private:
    std::string text_;
};

/// The message of an exception, with all its bytes for a `WholeTextError`.
[[nodiscard]] std::string wholeText(const std::exception& fault);

/// True for what the standard library throws when memory runs out or a container cannot become that large.
[[nodiscard]] bool isOutOfMemory(const std::exception& fault) noexcept;

/// The message of an exception for the user. Lack of memory, whose own message says nothing, becomes
/// "out of memory: <path>" with the file being processed, "out of memory" for an empty path.
[[nodiscard]] std::string faultText(const std::exception& fault, std::string_view path);

/// The system's text for an error number, a value of `errno`.
[[nodiscard]] const char* systemErrorText(int number) noexcept;

/// True for an error number that says that nothing is at a path, while others leave that open.
[[nodiscard]] bool isAbsence(int number) noexcept;

/// True for an error number of a disk that is full, over quota or broken, or that takes no file of that size:
/// another way of writing to it would meet the same fault.
[[nodiscard]] bool isFaultOfTheDisk(int number) noexcept;

/// The current `errno` as an error code.
[[nodiscard]] std::error_code lastSystemError() noexcept;

} // namespace morquill
