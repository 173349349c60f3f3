#pragma once

#include "support/fault.h"
#include "taskdsl/base/source_span.h"

#include <functional>
#include <string>

namespace morquill::taskdsl {

/// A fault of the input that ends the parse. `text()` is the whole message: `<span>: error: <message>`, or
/// the bare message when the span is invalid or the message names the place itself. The parts are kept, so
/// that a tool need not take the text apart.
class DiagnosticError : public WholeTextError {
  public:
    explicit DiagnosticError(std::string message);
    DiagnosticError(SourceSpan span, std::string message);

    /// A fault whose message begins with its place in words of its own.
    [[nodiscard]] static DiagnosticError namingPlace(SourceSpan span, std::string message);

    [[nodiscard]] const SourceSpan& span() const noexcept { return span_; }
    [[nodiscard]] const std::string& message() const noexcept { return message_; }
    /// True when the place is known and whoever prints the message need not put it in front.
    [[nodiscard]] bool messageNamesPlace() const noexcept;

  private:
    DiagnosticError(const std::string& text, SourceSpan span, std::string message);

    SourceSpan span_;
    std::string message_;
};

/// Receives one warning line.
using WarningSink = std::function<void(const std::string&)>;

} // namespace morquill::taskdsl
