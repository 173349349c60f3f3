#include "lsp/index/block_scans.h"
#include "lsp/index/expression_names.h"

#include "support/text.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/scan.h"

#include <algorithm>
#include <optional>

namespace morquill::lsp {

namespace {

using enum NameRole;

/// A leaf: `completed <task>`, `defined <name>` or a comparison.
void scanLeaf(IndexBuilder& builder, std::string_view text) {
    text = trim(text);
    for (const auto* keyword : {"completed", "defined"}) {
        if (const auto operand = taskdsl::textAfterWord(text, keyword)) {
            builder.add(NameKind::word, word, text.substr(0, std::string_view(keyword).size()));
            if (*keyword == 'd') {
                builder.addWithKeys(NameKind::property, reference, *operand);
            } else if (equalsNoCase(*operand, "allothers")) {
                builder.add(NameKind::word, word, *operand);
            } else {
                builder.addWithKeys(NameKind::task, reference, *operand);
            }
            return;
        }
    }
    std::size_t depth = 0;
    std::vector<Token> tokens;
    addTokens(text, depth, tokens);
    for (const Token& token : tokens) {
        addPlainToken(builder, token);
    }
}

/// `and` or `or` between white space at `at`; empty when neither stands there.
std::string_view joiningWord(std::string_view text, std::size_t at) noexcept {
    if (at > 0 && !isSpace(text[at - 1]) && text[at - 1] != ')') {
        return {};
    }
    for (const std::string_view joining : {"and", "or"}) {
        const auto end = at + joining.size();
        if (end <= text.size() && equalsNoCase(text.substr(at, joining.size()), joining) &&
            (end == text.size() || isSpace(text[end]) || text[end] == '(')) {
            return text.substr(at, joining.size());
        }
    }
    return {};
}

} // namespace

void scanCondition(IndexBuilder& builder, std::string_view condition) {
    QuoteWalk walk(taskdsl::quote_rules::whenCondition);
    std::size_t begin = 0;
    for (std::size_t at = 0; at < condition.size();) {
        const bool open = walk.inOpen();
        const auto joining = open ? joiningWord(condition, at) : std::string_view{};
        const bool parenthesis = open && (condition[at] == '(' || condition[at] == ')');
        if (!joining.empty() || parenthesis) {
            scanLeaf(builder, condition.substr(begin, at - begin));
            builder.add(NameKind::word, word, joining);
            begin = at + std::max<std::size_t>(joining.size(), 1);
        }
        const auto next = walk.step(condition, at);
        at = joining.empty() ? next : begin;
    }
    scanLeaf(builder, condition.substr(std::min(begin, condition.size())));
}

} // namespace morquill::lsp
