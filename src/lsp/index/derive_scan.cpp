#include "lsp/index/block_scans.h"
#include "lsp/index/expression_names.h"

#include "support/text.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <span>

namespace morquill::lsp {

namespace {

using enum NameRole;
using Tokens = std::span<const Token>;

class DeriveScan {
  public:
    DeriveScan(IndexBuilder& builder, std::uint32_t block) : builder_(builder), block_(block) {}

    void read(const StatementTokens& statement);

    void readLet(Tokens tokens) {
        const auto value = behindSign(tokens, "=");
        scan(value, {});
        define(NameKind::let, tokens);
    }

    void readFormula(Tokens tokens) {
        if (tokens.empty()) {
            return;
        }
        builder_.add(NameKind::formula, definition, tokens.front().text, block_);
        const auto formula = builder_.addScope(BlockKind::formula, line_);
        const auto body = behindSign(tokens, "=", 0);
        std::map<std::string_view, Known> own;
        for (const Token& token : tokens.first(tokens.size() - body.size()).subspan(1)) {
            if (token.kind == Token::Kind::name) {
                builder_.add(NameKind::parameter, definition, token.text, formula);
                own[token.text] = {NameKind::parameter, formula};
            }
        }
        std::swap(known_, own);
        addFormulas(own);
        scan(body, {});
        std::swap(known_, own);
        known_[tokens.front().text] = {NameKind::formula, block_};
    }

    /// `profile <name> for <function> = (<arguments>)`
    void readProfile(Tokens tokens) {
        define(NameKind::profile, tokens);
        const auto arguments = behindSign(tokens, "=", 0);
        for (const Token& token : tokens.first(tokens.size() - arguments.size())) {
            if (token.kind == Token::Kind::name && &token != &tokens.front()) {
                builder_.add(equalsNoCase(token.text, "for") ? NameKind::word : NameKind::function, word,
                             token.text);
            }
        }
        scanPairs(arguments);
    }

    /// `bind thermo(<arguments>) to (<name> = <quantity>, ...)`
    void readBind(Tokens tokens) {
        const auto to = findWord(tokens, "to");
        scan(tokens.first(to), {});
        if (to == tokens.size()) {
            return;
        }
        builder_.add(NameKind::word, word, tokens[to].text);
        const auto pairs = tokens.subspan(to + 1);
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            if (pairs[i].kind != Token::Kind::name) {
                continue;
            }
            const bool isTarget = i + 1 < pairs.size() && pairs[i + 1].isSign("=");
            if (isTarget) {
                define(NameKind::let, pairs.subspan(i));
            } else {
                builder_.add(NameKind::property, reference, pairs[i].text);
            }
        }
    }

    void readCondition(Tokens tokens) { scan(tokens, {"and", "or", "not", "in", "matches", "else"}); }

    void readReport(Tokens tokens) {
        const auto value = behindSign(tokens, "=");
        for (const Token& token : tokens.first(tokens.size() - value.size())) {
            addPlainToken(builder_, token);
        }
        scan(value, {});
    }

    void readEmit(Tokens tokens);

    void readFrom(Tokens tokens) {
        const auto as = findWord(tokens, "as");
        scan(tokens.first(as), {});
        readAlias(tokens.subspan(as));
    }

    void readSelect(Tokens tokens) {
        forEachEntry(tokens, [this](Tokens entry) { readColumn(entry, Bare::defines); });
    }

    void readGroup(Tokens tokens) {
        if (!tokens.empty() && equalsNoCase(tokens.front().text, "by")) {
            builder_.add(NameKind::word, word, tokens.front().text);
            tokens = tokens.subspan(1);
        }
        forEachEntry(tokens, [this](Tokens entry) { readColumn(entry, Bare::refers); });
    }

    void readSort(Tokens tokens) { scan(tokens, {"by", "asc", "desc"}); }

    void readPlain(Tokens tokens) {
        for (const Token& token : tokens) {
            addPlainToken(builder_, token);
        }
    }

  private:
    struct Known {
        NameKind kind = NameKind::let;
        std::uint32_t scope = 0;
    };
    /// What an entry of a list does that is a name alone.
    enum class Bare { defines, refers };

    /// The tokens behind the first sign outside parentheses, from token `from` on.
    static Tokens behindSign(Tokens tokens, std::string_view sign, std::size_t from = 1) noexcept {
        for (std::size_t i = from; i < tokens.size(); ++i) {
            if (tokens[i].depth == 0 && tokens[i].isSign(sign)) {
                return tokens.subspan(i + 1);
            }
        }
        return tokens.last(0);
    }

    /// The place of a word outside parentheses; the end when there is none.
    static std::size_t findWord(Tokens tokens, std::string_view wanted) noexcept {
        const auto found = std::find_if(tokens.begin(), tokens.end(), [&](const Token& token) {
            return token.depth == 0 && token.kind == Token::Kind::name && equalsNoCase(token.text, wanted);
        });
        return static_cast<std::size_t>(found - tokens.begin());
    }

    template <class Read>
    static void forEachEntry(Tokens tokens, const Read& read) {
        std::size_t begin = 0;
        for (std::size_t i = 0; i <= tokens.size(); ++i) {
            if (i == tokens.size() || (tokens[i].depth == 0 && tokens[i].isSign(","))) {
                read(tokens.subspan(begin, i - begin));
                begin = i + 1;
            }
        }
    }

    void addFormulas(const std::map<std::string_view, Known>& outer) {
        for (const auto& [name, known] : outer) {
            if (known.kind == NameKind::formula || known.kind == NameKind::profile) {
                known_.try_emplace(name, known);
            }
        }
    }

    /// Defines the name at the front, and knows it from here on.
    void define(NameKind kind, Tokens tokens) {
        if (!tokens.empty() && tokens.front().kind == Token::Kind::name) {
            builder_.add(kind, definition, tokens.front().text, block_);
            known_[tokens.front().text] = {kind, block_};
        }
    }

    bool readName(const Token& token) {
        const auto known = known_.find(token.text);
        if (known != known_.end() && known->second.kind != NameKind::formula) {
            builder_.add(known->second.kind, reference, token.text, known->second.scope);
            return true;
        }
        const auto dot = token.text.find('.');
        const auto alias =
            dot == std::string_view::npos ? known_.end() : known_.find(token.text.substr(0, dot));
        if (alias != known_.end() && alias->second.kind == NameKind::alias) {
            const auto owner = builder_.add(NameKind::alias, reference, token.text.substr(0, dot), block_);
            builder_.add(NameKind::property, reference, token.text.substr(dot + 1), 0, owner);
            return true;
        }
        return false;
    }

    void scan(Tokens tokens, std::initializer_list<std::string_view> words) {
        const NameReader reader = [this](const Token& token) { return readName(token); };
        scanExpression({builder_, reader, words}, tokens);
        // Calls of the block's own formulas, and profiles behind `using=`, are references of these.
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            const bool isCall = i + 1 < tokens.size() && tokens[i + 1].isSign("(");
            const auto known = known_.find(tokens[i].text);
            if (isCall && known != known_.end() && known->second.kind == NameKind::formula) {
                builder_.add(NameKind::formula, reference, tokens[i].text, block_);
            }
        }
    }

    /// `(name=value, ...)`
    void scanPairs(Tokens tokens) {
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i].kind == Token::Kind::name && i + 1 < tokens.size() && tokens[i + 1].isSign("=")) {
                builder_.add(NameKind::argument, word, tokens[i].text);
            } else {
                addPlainToken(builder_, tokens[i]);
            }
        }
    }

    void readAlias(Tokens tokens) {
        if (tokens.empty()) {
            return;
        }
        builder_.add(NameKind::word, word, tokens.front().text);
        define(NameKind::alias, tokens.subspan(1));
        for (const Token& token : tokens.subspan(std::min<std::size_t>(2, tokens.size()))) {
            const bool isOn = equalsNoCase(token.text, "on");
            builder_.add(isOn ? NameKind::word : NameKind::property, isOn ? word : reference, token.text);
        }
    }

    /// `name = expression`, `expression as name`, or one name.
    void readColumn(Tokens entry, Bare bare) {
        if (entry.empty()) {
            return;
        }
        if (entry.size() > 1 && entry[1].isSign("=") && entry[0].depth == 0) {
            scan(entry.subspan(2), {});
            define(NameKind::column, entry);
            return;
        }
        const auto as = findWord(entry, "as");
        if (as + 1 < entry.size()) {
            scan(entry.first(as), {});
            builder_.add(NameKind::word, word, entry[as].text);
            define(NameKind::column, entry.subspan(as + 1));
        } else if (entry.size() == 1 && bare == Bare::defines) {
            define(NameKind::column, entry);
        } else {
            scan(entry, {});
        }
    }

    void readEmitTable(Tokens tokens);
    void readEmitSink(Tokens tokens);
    void readSinkTail(Tokens tokens);

    IndexBuilder& builder_;
    std::uint32_t block_;
    std::string_view line_;
    std::map<std::string_view, Known> known_; ///< names that a statement has given
};

/// The rest of a sink: words, a format, a path.
void DeriveScan::readSinkTail(Tokens tokens) {
    for (const Token& token : tokens) {
        if (token.kind == Token::Kind::name) {
            builder_.add(NameKind::word, word, token.text);
        } else {
            addPlainToken(builder_, token);
        }
    }
}

void DeriveScan::readEmitTable(Tokens tokens) {
    if (!tokens.empty() && tokens.front().kind == Token::Kind::name) {
        builder_.add(NameKind::table, definition, tokens.front().text, block_);
        readSinkTail(tokens.subspan(1));
    }
}

/// `<target> from <expression> [as <property>]`
void DeriveScan::readEmitSink(Tokens tokens) {
    const auto from = findWord(tokens, "from");
    const auto as = findWord(tokens, "as");
    readSinkTail(tokens.first(std::min({from + 1, as, tokens.size()})));
    if (from < as) {
        scan(tokens.subspan(from + 1, as - from - 1), {});
    }
    if (as < tokens.size()) {
        builder_.add(NameKind::word, word, tokens[as].text);
        for (const Token& token : tokens.subspan(as + 1)) {
            addPlainToken(builder_, token);
        }
    }
}

void DeriveScan::readEmit(Tokens tokens) {
    if (tokens.empty() || tokens.front().kind != Token::Kind::name) {
        readPlain(tokens);
        return;
    }
    const auto first = tokens.front().text;
    const auto is = [first](std::string_view wanted) { return equalsNoCase(first, wanted); };
    const bool hasObject = tokens.size() > 1 && !tokens[1].isSign("=");
    if (hasObject && (is("table") || is("kv") || is("artifact") || is("value") || is("report"))) {
        builder_.add(NameKind::word, word, first);
        const auto rest = tokens.subspan(1);
        if (is("table")) {
            readEmitTable(rest);
        } else if (is("kv") || is("artifact")) {
            readEmitSink(rest);
        } else if (is("value")) {
            builder_.add(NameKind::emitted, reference, rest.front().text, block_);
            readSinkTail(rest.subspan(1));
        } else {
            readSinkTail(rest);
        }
        return;
    }
    if (hasObject && is("atomvec")) {
        builder_.add(NameKind::word, word, first);
        tokens = tokens.subspan(1);
    }
    const auto value = behindSign(tokens, "=");
    if (value.empty()) {
        // Without an expression, the value of that name.
        if (!readName(tokens.front())) {
            builder_.add(NameKind::property, reference, tokens.front().text);
        }
        scan(tokens.subspan(1), {"unit"});
        return;
    }
    scan(value, {"unit"});
    builder_.add(NameKind::emitted, definition, tokens.front().text, block_);
}

struct DeriveStatementRow {
    std::string_view word;
    void (DeriveScan::*read)(Tokens);
};

constexpr std::array<DeriveStatementRow, 17> deriveRows{{
    {"let", &DeriveScan::readLet},
    {"formula", &DeriveScan::readFormula},
    {"profile", &DeriveScan::readProfile},
    {"bind", &DeriveScan::readBind},
    {"require", &DeriveScan::readCondition},
    {"assert", &DeriveScan::readCondition},
    {"report", &DeriveScan::readReport},
    {"emit", &DeriveScan::readEmit},
    {"from", &DeriveScan::readFrom},
    {"join", &DeriveScan::readFrom},
    {"where", &DeriveScan::readCondition},
    {"select", &DeriveScan::readSelect},
    {"group", &DeriveScan::readGroup},
    {"aggregate", &DeriveScan::readSelect},
    {"reduce", &DeriveScan::readSelect},
    {"sort", &DeriveScan::readSort},
    {"limit", &DeriveScan::readPlain},
}};

void DeriveScan::read(const StatementTokens& statement) {
    line_ = statement.line;
    builder_.add(NameKind::statement, word, statement.word);
    const auto row = std::find_if(deriveRows.begin(), deriveRows.end(), [&](const DeriveStatementRow& r) {
        return equalsNoCase(r.word, statement.word);
    });
    (this->*(row == deriveRows.end() ? &DeriveScan::readPlain : row->read))(statement.tokens);
}

} // namespace

void scanDerive(IndexBuilder& builder, std::string_view header, const Lines& body) {
    const bool quoted = header.starts_with('"') || header.starts_with('\'');
    const auto name =
        builder.addWithKeys(NameKind::derive, definition, quoted ? trim(insideQuotes(header)) : header);
    if (name != noIndex) {
        builder.setName(builder.current(), name);
    }
    DeriveScan scan(builder, builder.current());
    for (const auto& statement : readStatements(body)) {
        scan.read(statement);
    }
}

} // namespace morquill::lsp
