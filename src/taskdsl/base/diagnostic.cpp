#include "taskdsl/base/diagnostic.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

std::string wholeMessage(const SourceSpan& span, const std::string& message) {
    return isValidSpan(span) ? formatSpan(span) + ": error: " + message : message;
}

} // namespace

DiagnosticError::DiagnosticError(std::string message)
    : WholeTextError(message), message_(std::move(message)) {}

DiagnosticError::DiagnosticError(SourceSpan span, std::string message)
    : WholeTextError(wholeMessage(span, message)), span_(std::move(span)), message_(std::move(message)) {}

} // namespace morquill::taskdsl
