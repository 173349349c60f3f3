#include "lsp/index/block_scans.h"
#include "lsp/index/expression_names.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/task/when_expr.h"

#include <vector>

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

/// A condition as the parser takes it apart. `depth` counts the groups around it: what lies deeper than the
/// parser reads is a fault there and names nothing here.
void scanGroup(IndexBuilder& builder, std::string_view condition, int depth) {
    const auto split = taskdsl::splitWhen(condition);
    const auto text = split.text;
    if (split.parts.empty()) {
        scanLeaf(builder, text);
        return;
    }
    if (depth >= taskdsl::maxWhenNesting) {
        return;
    }
    const auto addJoining = [&](std::size_t begin, std::size_t end) {
        for (const auto joining : splitBlank(text.substr(begin, end - begin))) {
            builder.add(NameKind::word, word, joining);
        }
    };
    std::size_t done = 0;
    for (const auto part : split.parts) {
        const auto begin = static_cast<std::size_t>(part.data() - text.data());
        addJoining(done, begin);
        scanGroup(builder, part, depth + 1);
        done = begin + part.size();
    }
    addJoining(done, text.size());
}

} // namespace

void scanCondition(IndexBuilder& builder, std::string_view condition) {
    scanGroup(builder, condition, 0);
}

} // namespace morquill::lsp
