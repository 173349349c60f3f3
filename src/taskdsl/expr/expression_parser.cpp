#include "support/text.h"
#include "taskdsl/base/escape.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/expr/expression.h"
#include "taskdsl/expr/statement_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// Kinds of the tokens that expression text is made of.
enum class PlotTokenKind : std::int32_t {
    end = 0,
    number = 1,
    identifier = 2,
    string = 3,
    snapshot = 4,
    plus = 5,
    minus = 6,
    star = 7,
    slash = 8,
    open = 9,
    close = 10,
    comma = 11,
    equals = 12
};

/// One token. The views point into the expression text.
struct PlotToken {
    PlotTokenKind kind = PlotTokenKind::end;
    std::string_view text; ///< as written; of a snapshot the part between the braces
    std::string decoded;   ///< of a string
    double number = 0;     ///< of a number
};

constexpr bool isIdentifierStart(char c) noexcept {
    return isWordStart(c) || c == '[';
}

/// The whole UTF-8 character that begins at `at`; the one byte where none begins.
std::string_view characterAt(std::string_view text, std::size_t at) noexcept {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    std::size_t end = at + 1;
    while (end < text.size() && end - at < length && (byte(end) & 0xC0) == 0x80) {
        ++end;
    }
    return text.substr(at, end - at == length ? length : 1);
}

struct Punctuation {
    char character;
    PlotTokenKind kind;
};
constexpr std::array punctuation{
    Punctuation{'+', PlotTokenKind::plus},  Punctuation{'-', PlotTokenKind::minus},
    Punctuation{'*', PlotTokenKind::star},  Punctuation{'/', PlotTokenKind::slash},
    Punctuation{'(', PlotTokenKind::open},  Punctuation{')', PlotTokenKind::close},
    Punctuation{',', PlotTokenKind::comma}, Punctuation{'=', PlotTokenKind::equals},
};

/// Takes expression text apart, token by token.
class Lexer {
  public:
    Lexer(std::string_view text, const SourceSpan& span) : text_(text), span_(span) {}

    /// The next token; of kind `end` for ever when the text is used up.
    PlotToken next() {
        at_ = skipSpace(text_, at_);
        if (at_ == text_.size()) {
            return {};
        }
        const char c = text_[at_];
        const char following = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
        if (c == '"' || c == '\'') {
            return string();
        }
        if (c == '{' && following == '{') {
            return snapshot();
        }
        if (isDigit(c) || (c == '.' && isDigit(following))) {
            return number();
        }
        if (isIdentifierStart(c)) {
            std::size_t end = at_ + 1;
            while (end < text_.size() && isExpressionNameChar(text_[end])) {
                ++end;
            }
            return {PlotTokenKind::identifier, take(end), {}, 0};
        }
        for (const auto& [character, kind] : punctuation) {
            if (c == character) {
                return {kind, take(at_ + 1), {}, 0};
            }
        }
        plotError(span_,
                  "unexpected character '" + std::string(characterAt(text_, at_)) + "' in plot expression");
    }

    /// True when the token that comes next is "=".
    [[nodiscard]] bool atEquals() const noexcept {
        const std::size_t at = skipSpace(text_, at_);
        return at < text_.size() && text_[at] == '=';
    }

  private:
    PlotToken string() {
        PlotToken token{PlotTokenKind::string, {}, {}, 0};
        QuoteWalk walk(quote_rules::expressionString);
        for (std::size_t at = walk.step(text_, at_); at < text_.size();) {
            const std::size_t next = walk.step(text_, at);
            if (!walk.inQuotes()) {
                token.text = take(next);
                return token;
            }
            const char c = text_[next - 1];
            token.decoded += next == at + 2 ? escapedByte(c).value_or(c) : c;
            at = next;
        }
        plotError(span_, "unterminated string in plot expression");
    }

    PlotToken snapshot() {
        const auto close = text_.find("}}", at_ + 2);
        if (close == std::string_view::npos) {
            plotError(span_, "unterminated '{{ ... }}' snapshot reference");
        }
        const auto inner = trim(text_.substr(at_ + 2, close - at_ - 2));
        if (inner.empty()) {
            plotError(span_, "empty snapshot reference");
        }
        at_ = close + 2;
        return {PlotTokenKind::snapshot, inner, {}, 0};
    }

    /// What C's strtod reads: decimal and hexadecimal numbers, "inf" past the range and 0 below it.
    PlotToken number() {
        const char* const begin = text_.data() + at_;
        const char* const last = text_.data() + text_.size();
        const bool hexadecimal = *begin == '0' && begin + 1 != last && lowerChar(begin[1]) == 'x';
        double value = 0;
        auto [end, fault] = std::from_chars(begin, last, value);
        if (hexadecimal || fault == std::errc::result_out_of_range) {
            // A copy that ends where no number goes on, since strtod reads up to a terminator.
            const char* stop = hexadecimal ? begin : end;
            while (stop != last &&
                   (isDigit(*stop) || isLetter(*stop) || *stop == '.' || *stop == '+' || *stop == '-')) {
                ++stop;
            }
            const std::string copy(begin, stop);
            char* copyEnd = nullptr;
            value = std::strtod(copy.c_str(), &copyEnd);
            end = begin + (copyEnd - copy.c_str());
        }
        if (end == begin) {
            plotError(span_, "invalid number in plot expression");
        }
        return {PlotTokenKind::number, take(static_cast<std::size_t>(end - text_.data())), {}, value};
    }

    /// The text from here to `end`, which becomes the place of the next token.
    std::string_view take(std::size_t end) noexcept {
        const auto taken = text_.substr(at_, end - at_);
        at_ = end;
        return taken;
    }

    std::string_view text_;
    const SourceSpan& span_;
    std::size_t at_ = 0;
};

/// Recursive descent with one token of look-ahead.
class Parser {
  public:
    Parser(std::string_view text, const SourceSpan& span) : lexer_(text, span), span_(span) { advance(); }

    ExprRef read() {
        if (token_.kind == PlotTokenKind::end) {
            plotError(span_, "empty plot expression");
        }
        return whole(expression());
    }

    /// The name of the function is not part of the text.
    ExprRef readCall(std::string name) {
        if (!accept(PlotTokenKind::open)) {
            plotError(span_, "expected '(' in plot expression");
        }
        return whole(sumFrom(productFrom(call(std::move(name)))));
    }

  private:
    /// The result when the text ends after it.
    ExprRef whole(ExprRef result) const {
        if (token_.kind != PlotTokenKind::end) {
            const bool string = token_.kind == PlotTokenKind::string;
            plotError(span_,
                      "unexpected token '" + (string ? token_.decoded : std::string(token_.text)) + "'");
        }
        return result;
    }

    ExprRef expression() { return sumFrom(term()); }

    ExprRef term() { return productFrom(factor()); }

    ExprRef sumFrom(ExprRef left) {
        for (;;) {
            if (accept(PlotTokenKind::plus)) {
                left = makeExpression(BinaryExpr{BinaryOp::add, std::move(left), term()});
            } else if (accept(PlotTokenKind::minus)) {
                left = makeExpression(BinaryExpr{BinaryOp::subtract, std::move(left), term()});
            } else {
                return left;
            }
        }
    }

    ExprRef productFrom(ExprRef left) {
        for (;;) {
            if (accept(PlotTokenKind::star)) {
                left = makeExpression(BinaryExpr{BinaryOp::multiply, std::move(left), factor()});
            } else if (accept(PlotTokenKind::slash)) {
                left = makeExpression(BinaryExpr{BinaryOp::divide, std::move(left), factor()});
            } else {
                return left;
            }
        }
    }

    /// Signs are gathered in a loop: they cost depth, but no stack.
    ExprRef factor() {
        const std::size_t outerDepth = depth_;
        std::vector<UnaryOp> signs;
        for (;;) {
            if (accept(PlotTokenKind::plus)) {
                signs.push_back(UnaryOp::plus);
            } else if (accept(PlotTokenKind::minus)) {
                signs.push_back(UnaryOp::minus);
            } else {
                break;
            }
            goDeeper();
        }
        ExprRef result = primary();
        for (auto sign = signs.rbegin(); sign != signs.rend(); ++sign) {
            result = makeExpression(UnaryExpr{*sign, std::move(result)});
        }
        depth_ = outerDepth;
        return result;
    }

    ExprRef primary() {
        PlotToken token = std::move(token_);
        switch (token.kind) {
        case PlotTokenKind::number:
            advance();
            return makeExpression(NumberExpr{token.number});
        case PlotTokenKind::string:
            advance();
            return makeExpression(StringExpr{std::move(token.decoded)});
        case PlotTokenKind::snapshot: {
            auto reference = snapshot(token.text);
            advance();
            return reference;
        }
        case PlotTokenKind::identifier:
            advance();
            if (accept(PlotTokenKind::open)) {
                return call(std::string(token.text));
            }
            return makeExpression(IdentifierExpr{std::string(token.text)});
        case PlotTokenKind::open:
            advance();
            return parenthesized();
        default:
            plotError(span_, "expected a number, identifier, string, function call, or '('");
        }
    }

    ExprRef parenthesized() {
        goDeeper();
        ExprRef inner = expression();
        if (!accept(PlotTokenKind::close)) {
            plotError(span_, "expected ')' in plot expression");
        }
        --depth_;
        return inner;
    }

    ExprRef call(std::string name) {
        goDeeper();
        CallExpr result{std::move(name), {}};
        bool more = !accept(PlotTokenKind::close);
        while (more) {
            PlotCallArgument argument;
            if (token_.kind == PlotTokenKind::identifier && lexer_.atEquals()) {
                argument.name = token_.text;
                argument.named = true;
                advance();
                advance();
            }
            argument.value = expression();
            result.arguments.push_back(std::move(argument));
            more = accept(PlotTokenKind::comma);
            if (!more && !accept(PlotTokenKind::close)) {
                plotError(span_, "expected ',' or ')' after function argument");
            }
        }
        --depth_;
        return makeExpression(std::move(result));
    }

    ExprRef snapshot(std::string_view text) {
        const auto dot = text.find('.');
        if (dot == std::string_view::npos || dot == 0 || dot + 1 == text.size()) {
            plotError(span_, "snapshot reference must be '{{ task.key }}'");
        }
        return makeExpression(
            SnapshotExpr{std::string(text.substr(0, dot)), std::string(trim(text.substr(dot + 1)))});
    }

    void advance() { token_ = lexer_.next(); }

    bool accept(PlotTokenKind kind) {
        const bool found = token_.kind == kind;
        if (found) {
            advance();
        }
        return found;
    }

    void goDeeper() {
        if (++depth_ > maxExpressionDepth) {
            plotError(span_, "expression is nested too deeply");
        }
    }

    Lexer lexer_;
    const SourceSpan& span_;
    PlotToken token_;
    std::size_t depth_ = 0;
};

} // namespace

bool isExpressionName(std::string_view text) noexcept {
    return !text.empty() && isIdentifierStart(text.front()) &&
           std::all_of(text.begin(), text.end(), isExpressionNameChar);
}

ExprRef parsePlotExpression(std::string_view text, const SourceSpan& span) {
    return Parser(text, span).read();
}

ExprRef parseCallOf(std::string name, std::string_view text, const SourceSpan& span) {
    return Parser(text, span).readCall(std::move(name));
}

} // namespace morquill::taskdsl::plot
