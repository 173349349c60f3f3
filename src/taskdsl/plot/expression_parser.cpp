#include "support/text.h"
#include "taskdsl/plot/expression.h"
#include "taskdsl/plot/statement_reader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

constexpr bool isIdentifierStart(char c) noexcept {
    return isLetter(c) || c == '_' || c == '[';
}

constexpr bool isIdentifierChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.' || c == ':' || c == '[' || c == ']';
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

    std::vector<PlotToken> read() {
        std::vector<PlotToken> tokens;
        tokens.reserve(text_.size() / 4 + 4); // most tokens are longer with the blank behind them
        do {
            tokens.push_back(next());
        } while (tokens.back().kind != PlotTokenKind::end);
        return tokens;
    }

  private:
    PlotToken next() {
        while (at_ < text_.size() && isSpace(text_[at_])) {
            ++at_;
        }
        begin_ = at_;
        if (at_ == text_.size()) {
            return {PlotTokenKind::end, {}, 0, begin_, at_};
        }
        const char c = text_[at_];
        const char following = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
        if (c == '"' || c == '\'') {
            return string(c);
        }
        if (c == '{' && following == '{') {
            return snapshot();
        }
        if (isDigit(c) || (c == '.' && isDigit(following))) {
            return number();
        }
        if (isIdentifierStart(c)) {
            at_ = std::min(
                text_.size(),
                static_cast<std::size_t>(std::find_if_not(text_.begin() + static_cast<std::ptrdiff_t>(at_),
                                                          text_.end(), isIdentifierChar) -
                                         text_.begin()));
            return {PlotTokenKind::identifier, written(), 0, begin_, at_};
        }
        for (const auto& [character, kind] : punctuation) {
            if (c == character) {
                ++at_;
                return {kind, written(), 0, begin_, at_};
            }
        }
        plotError(span_, std::string("unexpected character '") + c + "' in plot expression");
    }

    PlotToken string(char quote) {
        std::string value;
        for (++at_; at_ < text_.size(); ++at_) {
            char c = text_[at_];
            if (c == quote) {
                ++at_;
                return {PlotTokenKind::string, std::move(value), 0, begin_, at_};
            }
            if (c == '\\') {
                if (++at_ == text_.size()) {
                    break;
                }
                c = text_[at_];
                c = c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
            }
            value += c;
        }
        plotError(span_, "unterminated string in plot expression");
    }

    PlotToken snapshot() {
        const auto close = text_.find("}}", at_ + 2);
        if (close == std::string::npos) {
            plotError(span_, "unterminated '{{ ... }}' snapshot reference");
        }
        std::string inner(trim(std::string_view(text_).substr(at_ + 2, close - at_ - 2)));
        if (inner.empty()) {
            plotError(span_, "empty snapshot reference");
        }
        at_ = close + 2;
        return {PlotTokenKind::snapshot, std::move(inner), 0, begin_, at_};
    }

    PlotToken number() {
        const char* start = text_.c_str() + at_;
        char* end = nullptr;
        const double value = std::strtod(start, &end);
        if (end == start) {
            plotError(span_, "invalid number in plot expression");
        }
        at_ += static_cast<std::size_t>(end - start);
        return {PlotTokenKind::number, written(), value, begin_, at_};
    }

    [[nodiscard]] std::string written() const { return text_.substr(begin_, at_ - begin_); }

    std::string text_; // a copy, since strtod reads up to a terminator
    const SourceSpan& span_;
    std::size_t begin_ = 0;
    std::size_t at_ = 0;
};

/// Recursive descent over the tokens with one token of look-ahead.
class Parser {
  public:
    Parser(std::vector<PlotToken> tokens, const SourceSpan& span) : tokens_(std::move(tokens)), span_(span) {}

    ExprRef read() {
        if (peek().kind == PlotTokenKind::end) {
            plotError(span_, "empty plot expression");
        }
        ExprRef result = expression();
        if (peek().kind != PlotTokenKind::end) {
            plotError(span_, "unexpected token '" + peek().text + "'");
        }
        return result;
    }

  private:
    ExprRef expression() {
        ExprRef left = term();
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

    ExprRef term() {
        ExprRef left = factor();
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
        PlotToken& token = tokens_[at_];
        switch (token.kind) {
        case PlotTokenKind::number:
            ++at_;
            return makeExpression(NumberExpr{token.number});
        case PlotTokenKind::string:
            ++at_;
            return makeExpression(StringExpr{std::move(token.text)});
        case PlotTokenKind::snapshot:
            ++at_;
            return snapshot(token.text);
        case PlotTokenKind::identifier:
            ++at_;
            if (accept(PlotTokenKind::open)) {
                return call(std::move(token.text));
            }
            return makeExpression(IdentifierExpr{std::move(token.text)});
        case PlotTokenKind::open:
            ++at_;
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
            if (peek().kind == PlotTokenKind::identifier && tokens_[at_ + 1].kind == PlotTokenKind::equals) {
                argument.name = std::move(tokens_[at_].text);
                argument.named = true;
                at_ += 2;
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

    [[nodiscard]] const PlotToken& peek() const noexcept { return tokens_[at_]; }

    bool accept(PlotTokenKind kind) noexcept {
        const bool found = peek().kind == kind;
        at_ += found ? 1 : 0;
        return found;
    }

    void goDeeper() {
        if (++depth_ > maxExpressionDepth) {
            plotError(span_, "expression is nested too deeply");
        }
    }

    std::vector<PlotToken> tokens_;
    const SourceSpan& span_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
};

} // namespace

std::vector<PlotToken> lexPlotExpression(std::string_view text, const SourceSpan& span) {
    return Lexer(text, span).read();
}

ExprRef parsePlotExpression(std::string_view text, const SourceSpan& span) {
    return Parser(lexPlotExpression(text, span), span).read();
}

} // namespace morquill::taskdsl::plot
