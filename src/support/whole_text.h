#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// Messages that quote their input may hold a NUL byte, where the C string of `what()` ends.
namespace morquill {

/// A fault whose message keeps all its bytes.
class WholeTextError : public std::runtime_error {
  public:
    explicit WholeTextError(const std::string& text) : std::runtime_error(text), text_(text) {}

    /// What `what()` returns, to the last byte.
    [[nodiscard]] const std::string& text() const noexcept { return text_; }

  private:
    std::string text_;
};

/// The message of an exception with all its bytes, as far as the exception has kept them.
[[nodiscard]] inline std::string wholeText(const std::exception& fault) {
    const auto* whole = dynamic_cast<const WholeTextError*>(&fault);
    return whole != nullptr ? whole->text() : fault.what();
}

} // namespace morquill
