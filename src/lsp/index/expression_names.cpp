#include "lsp/index/expression_names.h"

#include "support/text.h"
#include "taskdsl/expr/task_names.h"

#include <algorithm>

namespace morquill::lsp {

namespace {

using enum NameRole;

bool isNameOrString(const Token& token) noexcept {
    return token.kind == Token::Kind::name || token.kind == Token::Kind::string;
}

/// Functions beside those of the parser's list whose first argument is a task.
bool isTaskCall(std::string_view name) {
    return taskdsl::plot::takesTask(name) || equalsNoCase(name, "atoms") || equalsNoCase(name, "tasks") ||
           equalsNoCase(name, "thermo") || equalsNoCase(name, "thermochemistry") ||
           equalsNoCase(name, "rethermo");
}

/// Arguments that name a task when they are named.
bool isTaskArgument(std::string_view name) {
    return name == "task" || name == "template" || name == "template_task" || name == "pattern";
}

/// One call that is open.
struct OpenCall {
    std::string_view function;
    std::size_t depth = 0;          ///< of its parenthesis
    bool first = true;              ///< no comma yet
    std::string_view argument = {}; ///< the name of the argument that is being read
    std::uint32_t owner = noIndex;  ///< the derive that `derived(...)` names
};

/// The dot between a name and what is behind it; npos when there is none. A `[key]` may hold dots.
std::size_t findDot(std::string_view name) noexcept {
    std::size_t depth = 0;
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] == '.' && depth == 0) {
            return at;
        }
        depth += name[at] == '[' ? 1 : 0;
        depth -= name[at] == ']' && depth > 0 ? 1 : 0;
    }
    return std::string_view::npos;
}

class Walk {
  public:
    Walk(const ExpressionScan& scan, std::span<const Token> tokens) : scan_(scan), tokens_(tokens) {}

    void run() {
        for (at_ = 0; at_ < tokens_.size(); ++at_) {
            readToken(tokens_[at_]);
        }
    }

  private:
    [[nodiscard]] bool nextIs(std::string_view sign) const noexcept {
        return at_ + 1 < tokens_.size() && tokens_[at_ + 1].isSign(sign);
    }

    void readToken(const Token& token) {
        IndexBuilder& builder = scan_.builder;
        switch (token.kind) {
        case Token::Kind::sign:
            readSign(token);
            return;
        case Token::Kind::snapshot:
            addSnapshot(builder, token.text);
            return;
        case Token::Kind::number:
            builder.add(NameKind::number, word, token.text);
            return;
        case Token::Kind::name:
        case Token::Kind::string:
            break;
        }
        if (token.kind == Token::Kind::name && nextIs("(")) {
            builder.add(NameKind::function, word, token.text);
            calls_.push_back({.function = token.text, .depth = token.depth});
        } else if (token.kind == Token::Kind::name && nextIs("=") && !calls_.empty()) {
            builder.add(NameKind::argument, word, token.text);
            calls_.back().argument = token.text;
        } else if (!readArgument(token)) {
            readPlain(token);
        }
    }

    void readSign(const Token& token) {
        if (calls_.empty()) {
            return;
        }
        if (token.text == ")" && token.depth == calls_.back().depth) {
            calls_.pop_back();
        } else if (token.text == "," && token.depth == calls_.back().depth + 1) {
            calls_.back().first = false;
            calls_.back().argument = {};
        }
    }

    /// True for an argument that is the name of something: it stands alone between commas.
    bool readArgument(const Token& token) {
        if (calls_.empty() || token.depth != calls_.back().depth + 1 || !standsAlone()) {
            return false;
        }
        OpenCall& call = calls_.back();
        const bool positional = call.argument.empty();
        if (equalsNoCase(call.function, "derived")) {
            if (positional && call.first) {
                call.owner = addDerivedTable(scan_.builder, token);
            } else {
                scan_.builder.add(NameKind::table, reference, tokenName(token), 0, call.owner);
            }
            return true;
        }
        if (equalsNoCase(call.function, "matrix_value") && positional && call.first) {
            scan_.builder.add(NameKind::key, reference, tokenName(token));
            return true;
        }
        const bool everyArgument = equalsNoCase(call.function, "tasks");
        const bool isTask = positional ? (call.first || everyArgument) && isTaskCall(call.function)
                                       : isTaskCall(call.function) && isTaskArgument(call.argument);
        return isTask && addTaskToken(scan_.builder, token);
    }

    /// True when the token is the whole argument.
    [[nodiscard]] bool standsAlone() const noexcept {
        const bool begins = at_ == 0 || tokens_[at_ - 1].isSign("(") || tokens_[at_ - 1].isSign(",") ||
                            tokens_[at_ - 1].isSign("=");
        return begins && (at_ + 1 == tokens_.size() || nextIs(")") || nextIs(","));
    }

    void readPlain(const Token& token) {
        if (token.kind == Token::Kind::string) {
            addPlainToken(scan_.builder, token);
            return;
        }
        const bool isWord = token.depth == 0 &&
                            std::any_of(scan_.words.begin(), scan_.words.end(), [&](std::string_view option) {
                                return equalsNoCase(option, token.text);
                            });
        if (isWord) {
            scan_.builder.add(NameKind::word, word, token.text);
        } else if (!scan_.readName(token)) {
            scan_.builder.addWithKeys(NameKind::property, reference, token.text);
        }
    }

    const ExpressionScan& scan_;
    std::span<const Token> tokens_;
    std::vector<OpenCall> calls_;
    std::size_t at_ = 0;
};

} // namespace

void scanExpression(const ExpressionScan& scan, std::span<const Token> tokens) {
    Walk(scan, tokens).run();
}

bool addTaskToken(IndexBuilder& builder, const Token& token) {
    if (!isNameOrString(token)) {
        return false;
    }
    const auto name = tokenName(token);
    if (equalsNoCase(name, "self")) {
        builder.add(NameKind::word, word, name);
    } else {
        builder.addWithKeys(NameKind::task, reference, name);
    }
    return true;
}

std::uint32_t addDerivedTable(IndexBuilder& builder, const Token& token) {
    const auto name = tokenName(token);
    const auto dot = name.find('.');
    const auto owner = builder.add(NameKind::derive, reference, trim(name.substr(0, dot)));
    if (dot != std::string_view::npos) {
        builder.add(NameKind::table, reference, trim(name.substr(dot + 1)), 0, owner);
    }
    return owner;
}

void addPlainToken(IndexBuilder& builder, const Token& token) {
    if (token.kind == Token::Kind::number) {
        builder.add(NameKind::number, word, token.text);
    } else if (token.kind == Token::Kind::string) {
        builder.addWithKeys(NameKind::string, word, token.text);
    } else if (token.kind == Token::Kind::snapshot) {
        addSnapshot(builder, token.text);
    } else {
        builder.addKeys(token.text);
    }
}

void addSnapshot(IndexBuilder& builder, std::string_view snapshot) {
    const auto inside = insideSnapshot(snapshot);
    const auto dot = findDot(inside);
    const auto task = builder.addWithKeys(NameKind::task, reference, trim(inside.substr(0, dot)));
    if (dot != std::string_view::npos) {
        const auto key = trim(inside.substr(dot + 1));
        builder.addKeys(key);
        builder.add(NameKind::property, reference, key, 0, task);
    }
}

std::string_view tokenName(const Token& token) noexcept {
    return token.kind == Token::Kind::string ? trim(insideQuotes(token.text)) : token.text;
}

} // namespace morquill::lsp
