#include "lsp/index/block_scans.h"
#include "lsp/index/expression_names.h"

#include "support/text.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace morquill::lsp {

namespace {

using enum NameRole;
using Tokens = std::span<const Token>;

class PlotScan {
  public:
    PlotScan(IndexBuilder& builder, std::uint32_t block) : builder_(builder), block_(block) {}

    void read(const StatementTokens& statement);

    /// Data: an expression with options.
    void readExpression(Tokens tokens) { scanOptions(tokens, Options::expression); }
    /// Words, numbers and texts.
    void readPlain(Tokens tokens) { scanOptions(tokens, Options::plain); }

    void readFrom(Tokens tokens) {
        if (tokens.empty()) {
            return;
        }
        const Token& source = tokens.front();
        if (equalsNoCase(source.text, "derived")) {
            scanAll(tokens);
            return;
        }
        builder_.add(NameKind::word, word, source.text);
        const bool named = equalsNoCase(source.text, "task") || equalsNoCase(source.text, "variants") ||
                           equalsNoCase(source.text, "matrix");
        if (named && tokens.size() > 1) {
            addTaskToken(builder_, joined(tokens.subspan(1)));
        }
    }

    void readPoint(Tokens tokens) {
        addItem(tokens, definition);
        scanOptions(rest(tokens), Options::value);
    }

    void readSeries(Tokens tokens) {
        addItem(tokens, definition);
        auto value = rest(tokens);
        if (!value.empty() && value.front().isSign("=")) {
            value = value.subspan(1);
        }
        readExpression(value);
    }

    void readColumn(Tokens tokens) {
        const bool hasTask = std::any_of(tokens.begin(), tokens.end(), [](const Token& token) {
            return token.kind == Token::Kind::name && equalsNoCase(token.text, "task");
        });
        addItem(tokens, definition);
        if (!hasTask && !tokens.empty()) {
            addTaskToken(builder_, tokens.front()); // the column is called after its task
        }
        scanOptions(rest(tokens), Options::task);
    }

    void readRelative(Tokens tokens) {
        if (tokens.size() > 1 && equalsNoCase(tokens.front().text, "to")) {
            builder_.add(NameKind::word, word, tokens.front().text);
            addItem(tokens.subspan(1), reference);
        } else {
            readPlain(tokens);
        }
    }

    void readOrder(Tokens tokens) {
        for (const Token& token : tokens) {
            addItem(Tokens(&token, 1), reference);
        }
    }

    /// `from <column> root <n> to <column> root <n>`
    void readArrow(Tokens tokens) {
        bool columnNext = false;
        for (const Token& token : tokens) {
            const bool opens = equalsNoCase(token.text, "from") || equalsNoCase(token.text, "to") ||
                               token.isSign("->") || token.isSign("=>");
            if (columnNext && !opens) {
                addItem(Tokens(&token, 1), reference);
            } else if (token.kind == Token::Kind::name) {
                builder_.add(NameKind::word, word, token.text);
            } else {
                addPlainToken(builder_, token);
            }
            columnNext = opens;
        }
    }

  private:
    /// What follows the option whose value is a name or an expression.
    enum class Options { expression, plain, value, task };

    static Tokens rest(Tokens tokens) noexcept { return tokens.empty() ? tokens : tokens.subspan(1); }

    void scanAll(Tokens tokens) {
        const NameReader nobody = [](const Token&) { return false; };
        scanExpression({builder_, nobody}, tokens);
    }

    void addItem(Tokens tokens, NameRole role) {
        if (!tokens.empty() &&
            (tokens.front().kind == Token::Kind::name || tokens.front().kind == Token::Kind::string)) {
            builder_.add(NameKind::plotItem, role, tokenName(tokens.front()), block_);
        }
    }

    /// A name of several tokens, such as `two-words`, as one.
    static Token joined(Tokens tokens) noexcept {
        Token all = tokens.front();
        for (const Token& token : tokens.subspan(1)) {
            if (token.text.data() != all.text.data() + all.text.size()) {
                break;
            }
            all.text = std::string_view(all.text.data(), all.text.size() + token.text.size());
        }
        return all;
    }

    static bool isOption(const Token& token) noexcept {
        return token.kind == Token::Kind::name && token.depth == 0 &&
               taskdsl::plot::isPlotOptionWord(token.text);
    }

    void scanOptions(Tokens tokens, Options options) {
        std::size_t begin = 0;
        std::string_view option;
        for (std::size_t i = 0; i <= tokens.size(); ++i) {
            if (i < tokens.size() && !isOption(tokens[i])) {
                continue;
            }
            scanValue(tokens.subspan(begin, i - begin), option, options);
            if (i < tokens.size()) {
                builder_.add(NameKind::word, word, tokens[i].text);
                option = tokens[i].text;
                begin = i + 1;
            }
        }
    }

    /// The tokens behind an option; those before the first one when `option` is empty.
    void scanValue(Tokens tokens, std::string_view option, Options options) {
        const bool isExpression = (option.empty() && options == Options::expression) ||
                                  (options == Options::value && equalsNoCase(option, "value"));
        if (isExpression) {
            scanAll(tokens);
        } else if (options == Options::task && equalsNoCase(option, "task") && !tokens.empty()) {
            addTaskToken(builder_, joined(tokens));
        } else {
            for (const Token& token : tokens) {
                addPlainToken(builder_, token);
            }
        }
    }

    IndexBuilder& builder_;
    std::uint32_t block_;
};

struct PlotStatementRow {
    std::string_view word;
    void (PlotScan::*read)(Tokens);
};

constexpr std::array<PlotStatementRow, 23> plotRows{{
    {"from", &PlotScan::readFrom},         {"x", &PlotScan::readExpression},
    {"y", &PlotScan::readExpression},      {"intensity", &PlotScan::readExpression},
    {"z", &PlotScan::readExpression},      {"yerr", &PlotScan::readExpression},
    {"yerror", &PlotScan::readExpression}, {"error", &PlotScan::readExpression},
    {"series", &PlotScan::readSeries},     {"threshold", &PlotScan::readExpression},
    {"point", &PlotScan::readPoint},       {"value", &PlotScan::readExpression},
    {"column", &PlotScan::readColumn},     {"system", &PlotScan::readColumn},
    {"relative", &PlotScan::readRelative}, {"order", &PlotScan::readOrder},
    {"arrow", &PlotScan::readArrow},       {"transition", &PlotScan::readArrow},
    {"title", &PlotScan::readPlain},       {"output", &PlotScan::readPlain},
    {"label", &PlotScan::readPlain},       {"unit", &PlotScan::readPlain},
    {"metrics", &PlotScan::readPlain},
}};

void PlotScan::read(const StatementTokens& statement) {
    builder_.add(NameKind::statement, word, statement.word);
    const auto row = std::find_if(plotRows.begin(), plotRows.end(), [&](const PlotStatementRow& r) {
        return equalsNoCase(r.word, statement.word);
    });
    (this->*(row == plotRows.end() ? &PlotScan::readPlain : row->read))(statement.tokens);
}

} // namespace

void scanPlot(IndexBuilder& builder, std::string_view header, const Lines& body) {
    const auto [kind, rest] = taskdsl::plot::splitFirstWord(header);
    builder.add(NameKind::word, word, kind);
    const auto nameWord = taskdsl::plot::splitFirstWord(rest).word;
    const bool quoted = nameWord.starts_with('"') || nameWord.starts_with('\'');
    const auto name =
        builder.addWithKeys(NameKind::plot, definition, quoted ? insideQuotes(nameWord) : nameWord);
    if (name != noIndex) {
        builder.setName(builder.current(), name);
    }
    PlotScan scan(builder, builder.current());
    for (const auto& statement : readStatements(body)) {
        scan.read(statement);
    }
}

} // namespace morquill::lsp
