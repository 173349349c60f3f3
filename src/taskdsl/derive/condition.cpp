#include "taskdsl/derive/condition.h"

#include "support/cursor.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/derive/derive_words.h"
#include "taskdsl/expr/statement_reader.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace morquill::taskdsl::derive {

using plot::plotError;

namespace {

enum class MarkKind : std::uint8_t { open, close, comma, orWord, andWord, comparison };

constexpr std::size_t noMark = std::numeric_limits<std::size_t>::max();

/// A token in the text of a condition that sets its structure.
struct Mark {
    MarkKind kind;
    std::size_t begin;
    std::size_t end;
    DeriveCompareOp op = DeriveCompareOp::truthy; ///< of a comparison
    std::size_t match = noMark;                   ///< of an open bracket: index of its partner
};

/// What a word of the text means for its structure: kind and operator; nothing for an ordinary word.
std::optional<std::pair<MarkKind, DeriveCompareOp>> meaningOf(std::string_view word) {
    if (const auto op = compareOpWords.find(word); op && op != DeriveCompareOp::truthy) {
        return std::pair(MarkKind::comparison, *op);
    }
    const auto kind = conditionKindWords.find(word);
    if (kind == DeriveConditionKind::disjunction) {
        return std::pair(MarkKind::orWord, DeriveCompareOp::truthy);
    }
    if (kind == DeriveConditionKind::conjunction) {
        return std::pair(MarkKind::andWord, DeriveCompareOp::truthy);
    }
    return std::nullopt;
}

/// All marks of the text outside quotes and snapshots, found in one pass. Parentheses and square brackets are
/// one kind of level.
std::vector<Mark> findMarks(std::string_view text) {
    std::vector<Mark> marks;
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < text.size();) {
        if (const auto after = skipOpaque(text, i); after != i) {
            i = after;
            continue;
        }
        const char c = text[i];
        if (isDottedWordChar(c)) {
            const auto begin = i;
            const auto name = Cursor(text, begin).takeWhile(isDottedWordChar);
            i += name.size();
            if (const auto meaning = meaningOf(name)) {
                marks.push_back({meaning->first, begin, i, meaning->second});
            }
            continue;
        }
        if (c == '(' || c == '[') {
            open.push_back(marks.size());
            marks.push_back({MarkKind::open, i, i + 1});
        } else if ((c == ')' || c == ']') && !open.empty()) {
            marks[open.back()].match = marks.size();
            open.pop_back();
            marks.push_back({MarkKind::close, i, i + 1});
        } else if (c == ',') {
            marks.push_back({MarkKind::comma, i, i + 1});
        } else if (const auto* row = compareOpWords.atFront(text.substr(i))) {
            marks.push_back({MarkKind::comparison, i, i + row->word.size(), row->value});
            i += row->word.size() - 1;
        }
        ++i;
    }
    return marks;
}

/// Part of the condition's text, trimmed, with the marks in it.
struct Range {
    std::size_t begin;
    std::size_t end;
    std::size_t firstMark;
    std::size_t endMark;
};

/// A part that is still to be read, and where its condition goes.
struct PendingPart {
    Range range;
    std::size_t depth;
    DeriveCondition* out; ///< element of a list of children that does not grow any more
};

/// Works through the levels of a condition with a list of pending parts, not by recursion; the next
/// one to the right is the last in the list.
class ConditionParser {
  public:
    ConditionParser(std::string_view text, DeriveSurface& surface, const SourceSpan& span)
        : text_(text), marks_(findMarks(text)), surface_(surface), span_(span) {}

    DeriveCondition parse() {
        DeriveCondition condition;
        pendingParts_.push_back({{0, text_.size(), 0, marks_.size()}, 0, &condition});
        while (!pendingParts_.empty()) {
            const PendingPart pending = pendingParts_.back();
            pendingParts_.pop_back();
            parseLevel(pending);
        }
        return condition;
    }

  private:
    std::string_view textOf(const Range& range) const {
        return text_.substr(range.begin, range.end - range.begin);
    }

    Range trimmed(Range range) const {
        const auto inside = textOf(range);
        const auto kept = trim(inside);
        if (!kept.empty()) {
            range.begin += static_cast<std::size_t>(kept.data() - inside.data());
        }
        range.end = range.begin + kept.size();
        return range;
    }

    Range between(std::size_t begin, std::size_t end, std::size_t firstMark, std::size_t endMark) const {
        return trimmed({begin, end, firstMark, endMark});
    }

    /// Throws past the bound on nesting.
    std::size_t deeper(std::size_t depth) const {
        if (depth >= maxConditionDepth) {
            plotError(span_, "condition is nested too deeply");
        }
        return depth + 1;
    }

    /// The inside of a range that one pair of this kind of bracket encloses; nothing for any other range.
    std::optional<Range> insideOf(const Range& range, char open) const {
        if (range.firstMark == range.endMark) {
            return std::nullopt;
        }
        const Mark& first = marks_[range.firstMark];
        if (first.begin != range.begin || text_[first.begin] != open || first.match != range.endMark - 1 ||
            marks_[first.match].end != range.end ||
            text_[marks_[first.match].begin] != (open == '(' ? ')' : ']')) {
            return std::nullopt;
        }
        return between(range.begin + 1, range.end - 1, range.firstMark + 1, range.endMark - 1);
    }

    /// Calls `take` with the index of every mark of the range at its own level;
    /// stops when that returns false.
    template <class Take>
    void forEachMark(const Range& range, Take take) const {
        for (auto i = range.firstMark; i < range.endMark; ++i) {
            if (marks_[i].kind == MarkKind::open) {
                if (marks_[i].match == noMark) {
                    return; // never closed: everything after it is one level down
                }
                i = marks_[i].match;
            } else if (!take(i)) {
                return;
            }
        }
    }

    /// The parts of the range between the marks of one kind; one part more than marks.
    std::vector<Range> splitAt(const Range& range, MarkKind kind) const {
        std::vector<Range> parts;
        auto begin = range.begin;
        auto firstMark = range.firstMark;
        forEachMark(range, [&](std::size_t i) {
            if (marks_[i].kind == kind) {
                parts.push_back(between(begin, marks_[i].begin, firstMark, i));
                begin = marks_[i].end;
                firstMark = i + 1;
            }
            return true;
        });
        parts.push_back(between(begin, range.end, firstMark, range.endMark));
        return parts;
    }

    /// Reads the range as far as its own level goes; what is a level below becomes a pending part.
    void parseLevel(PendingPart pending) {
        pending.range = trimmed(pending.range);
        while (const auto inside = insideOf(pending.range, '(')) {
            pending.range = *inside;
            pending.depth = deeper(pending.depth);
        }
        if (textOf(pending.range).empty()) {
            plotError(span_, "condition cannot be empty");
        }
        if (!parseChain(pending, MarkKind::orWord, DeriveConditionKind::disjunction) &&
            !parseChain(pending, MarkKind::andWord, DeriveConditionKind::conjunction)) {
            parseOperand(pending);
        }
    }

    /// False when the word is not in the range.
    bool parseChain(const PendingPart& pending, MarkKind word, DeriveConditionKind kind) {
        const auto parts = splitAt(pending.range, word);
        if (parts.size() == 1) {
            return false;
        }
        const auto firstPending = pendingParts_.size();
        DeriveCondition* node = pending.out;
        for (const auto& part : parts) {
            if (&part == &parts.back()) {
                pendingParts_.push_back({part, pending.depth, node});
                break;
            }
            node->kind = kind;
            node->children.resize(2);
            pendingParts_.push_back({part, pending.depth, &node->children[0]});
            node = &node->children[1];
        }
        std::reverse(pendingParts_.begin() + static_cast<std::ptrdiff_t>(firstPending), pendingParts_.end());
        return true;
    }

    void parseOperand(PendingPart pending) {
        while (equalsNoCase(textOf(pending.range).substr(0, 4), "not ")) {
            pending.depth = deeper(pending.depth);
            pending.out->kind = DeriveConditionKind::negation;
            pending.out->children.resize(1);
            pending.out = &pending.out->children[0];
            // The rest has no `or` and no `and` at its own level, unless parentheses open a new one.
            pending.range = between(pending.range.begin + 4, pending.range.end, pending.range.firstMark,
                                    pending.range.endMark);
            if (insideOf(pending.range, '(')) {
                pendingParts_.push_back(pending);
                return;
            }
        }
        parseComparison(pending.range, *pending.out);
    }

    void parseComparison(const Range& range, DeriveCondition& leaf) {
        std::size_t at = noMark;
        forEachMark(range, [&](std::size_t i) {
            at = marks_[i].kind == MarkKind::comparison ? i : noMark;
            return at == noMark;
        });
        if (at == noMark) {
            leaf.left = read(range);
            return;
        }
        const Mark& mark = marks_[at];
        const Range left = between(range.begin, mark.begin, range.firstMark, at);
        const Range right = between(mark.end, range.end, at + 1, range.endMark);
        if (textOf(left).empty()) {
            plotError(span_, "condition has an empty left side");
        }
        if (textOf(right).empty()) {
            plotError(span_, "comparison has an empty right side");
        }
        leaf.op = mark.op;
        const auto values = mark.op == DeriveCompareOp::in ? splitList(right) : std::vector<Range>{};
        leaf.left = read(left);
        for (const auto& value : values) {
            leaf.list.push_back(read(value));
        }
        if (values.empty()) {
            leaf.right = read(right);
        }
    }

    std::vector<Range> splitList(const Range& range) const {
        const auto brackets = insideOf(range, '[');
        const auto inside = brackets ? brackets : insideOf(range, '(');
        if (!inside || textOf(*inside).empty()) {
            plotError(span_, "in condition requires a non-empty list");
        }
        auto values = splitAt(*inside, MarkKind::comma);
        if (std::any_of(values.begin(), values.end(),
                        [&](const Range& value) { return textOf(value).empty(); })) {
            plotError(span_, "in condition contains an empty value");
        }
        return values;
    }

    ExprRef read(const Range& range) { return readDeriveExpression(textOf(range), surface_, span_); }

    std::string_view text_;
    std::vector<Mark> marks_;
    std::vector<PendingPart> pendingParts_;
    DeriveSurface& surface_;
    const SourceSpan& span_;
};

} // namespace

DeriveCondition parseDeriveCondition(std::string_view text, DeriveSurface& surface, const SourceSpan& span) {
    return ConditionParser(text, surface, span).parse();
}

} // namespace morquill::taskdsl::derive
