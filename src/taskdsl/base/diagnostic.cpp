#include "taskdsl/base/diagnostic.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

std::string wholeMessage(const SourceSpan& span, const std::string& message) {
    return isValidSpan(span) ? formatSpan(span) + ": error: " + message : message;
}

} // namespace

DiagnosticError::DiagnosticError(const std::string& text, SourceSpan span, std::string message)
    : WholeTextError(text), span_(std::move(span)), message_(std::move(message)) {}

DiagnosticError::DiagnosticError(std::string message)
    : WholeTextError(message), message_(std::move(message)) {}

DiagnosticError::DiagnosticError(SourceSpan span, std::string message)
    : WholeTextError(wholeMessage(span, message)), span_(std::move(span)), message_(std::move(message)) {}

DiagnosticError DiagnosticError::namingPlace(SourceSpan span, std::string message) {
    const std::string text = message;
    return {text, std::move(span), std::move(message)};
}

bool DiagnosticError::messageNamesPlace() const noexcept {
    return isValidSpan(span_) && text().size() == message_.size();
}

} // namespace morquill::taskdsl
