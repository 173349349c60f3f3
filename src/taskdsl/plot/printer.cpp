#include "taskdsl/plot/printer.h"

#include "support/byte_set.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/escape.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/plot/reading.h"

#include <algorithm>

namespace morquill::taskdsl::plot {

namespace {

/// The bytes that no walk through a statement stops at.
constexpr ByteSet plainBytes([](char c) {
    return isWordChar(c) || static_cast<unsigned char>(c) >= 0x80 ||
           std::string_view(".-/^%+*:[]").find(c) != std::string_view::npos;
});

std::string inParentheses(std::string_view text) {
    return "(" + std::string(text) + ")";
}

} // namespace

Printer& Printer::line(std::string_view text) {
    out_.open(text);
    return *this;
}

Printer& Printer::word(std::string_view text) {
    out_.add(" ", text);
    return *this;
}

Printer& Printer::quoted(std::string_view text) {
    out_.add(" ").addWith([text](std::string& out) { appendQuoted(out, text); });
    return *this;
}

Printer& Printer::quotedOption(std::string_view keyword, std::string_view text) {
    return text.empty() ? *this : word(keyword).quoted(text);
}

void Printer::quotedLine(std::string_view keyword, std::string_view text) {
    if (!text.empty()) {
        line(keyword).quoted(text).end();
    }
}

void Printer::lineIf(bool condition, std::string_view text) {
    if (condition) {
        line(text).end();
    }
}

Printer& Printer::name(std::string_view text) {
    return piece(!isPlainWord(text), text, inQuotes);
}

Printer& Printer::nameOption(std::string_view keyword, std::string_view text) {
    return text.empty() ? *this : word(keyword).name(text);
}

Printer& Printer::expression(const PrintedValue& value, std::initializer_list<std::string_view> keywords,
                             bool colonOpensBody) {
    const bool doubtful = value.reads && (value.odd || (colonOpensBody && value.text.ends_with(':')) ||
                                          !splitKeywordOptions(value.text, keywords).options.empty());
    return piece(doubtful, value.text, inParentheses);
}

PrintedValue Printer::valueOf(const ExprRef& expression) {
    auto printed = printExpression(expression);
    const ExprRef reads = readPrinted(expression, printed);
    if (!printed.loss.empty()) {
        lose(std::move(printed.loss));
    }
    return {std::move(printed.text), reads, printed.oddReference};
}

std::string Printer::number(double value) {
    auto [text, readsBack] = printPlotNumber(value);
    if (!readsBack) {
        lose(plotNumberLoss(value));
    }
    return std::move(text);
}

void Printer::lose(std::string reason) {
    constexpr std::size_t mostReasons = 8; // the line stays short, and the search too
    if (losses_.size() < mostReasons && std::find(losses_.begin(), losses_.end(), reason) == losses_.end()) {
        losses_.push_back(std::move(reason));
    }
}

std::optional<std::string> Printer::faultOf(std::string_view lines, const PlotData& expected) const {
    try {
        if (readBody(kind_, lines).data == expected) {
            return std::nullopt;
        }
    } catch (const DiagnosticError& fault) {
        return fault.message();
    }
    return "'" + std::string(trim(lines)) + "' reads as something else";
}

bool Printer::isPlainWord(std::string_view word) noexcept {
    const bool isPlain = std::all_of(word.begin(), word.end(), [](char c) { return plainBytes.contains(c); });
    if (word.empty() || !isPlain || std::string_view("*+,-/:").find(word.back()) != std::string_view::npos) {
        return false;
    }
    const auto run = word.substr(0, word.find_first_of(".-/^%+*:[]"));
    return !isPlotOptionWord(run);
}

Printer& Printer::piece(bool doubtful, std::string_view plain, std::string (*guard)(std::string_view)) {
    const bool guarded = (guarded_ & piece_) != 0;
    doubtful_ |= doubtful ? piece_ : 0U;
    piece_ <<= 1U;
    return guarded ? word(guard(plain)) : word(plain);
}

std::string Printer::inQuotes(std::string_view text) {
    return quotePlotText(text);
}

} // namespace morquill::taskdsl::plot
