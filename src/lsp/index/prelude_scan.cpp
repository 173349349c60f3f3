#include "lsp/index/block_scans.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/line_kind.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/include_line.h"

#include <algorithm>
#include <vector>

namespace morquill::lsp {

using taskdsl::cleanLine;
using taskdsl::LineKind;

namespace {

using enum NameRole;

/// True for the cleaned line that ends the prelude.
bool beginsBody(std::string_view text) noexcept {
    return taskdsl::beginsBody(taskdsl::kindOfCleanLine(text));
}

bool isInclude(std::string_view text) noexcept {
    return taskdsl::kindOfCleanLine(text) == LineKind::include;
}

class PreludeScan {
  public:
    PreludeScan(IndexBuilder& builder, const Lines& lines) : builder_(builder), lines_(lines) {}

    std::size_t run() {
        while (at_ < lines_.size() && readLine()) {
        }
        return at_;
    }

  private:
    [[nodiscard]] std::string_view clean() const { return cleanLine(lines_[at_]); }

    void noteLine() {
        const auto line = lines_[at_];
        builder_.addComment(line.substr(taskdsl::stripComment(line).size()));
        if (!clean().empty()) {
            builder_.noteFilled(line);
        }
    }

    bool readLine() {
        const auto text = clean();
        if (text.empty()) {
            noteLine();
            ++at_;
            return true;
        }
        if (beginsBody(text) || text.starts_with("&FRAGMENT") || text.starts_with('%')) {
            return false;
        }
        if (isInclude(text)) {
            return readInclude(text);
        }
        if (text.starts_with("define:")) {
            readPairs(BlockKind::defines, NameKind::define);
            return true;
        }
        if (text.starts_with("matrix:")) {
            readPairs(BlockKind::matrix, NameKind::axis);
            return true;
        }
        if (taskdsl::isIndented(lines_[at_]) || text.find(':') == std::string_view::npos) {
            return false;
        }
        readSection();
        return true;
    }

    /// An include that the prelude does not follow begins the body. While one is being typed, the lines below
    /// it keep their meaning.
    bool readInclude(std::string_view text) {
        bool belongs = true;
        try {
            belongs = taskdsl::parsePreludeInclude(text).has_value();
        } catch (const taskdsl::DiagnosticError&) {
        }
        if (belongs) {
            at_ = scanInclude(builder_, lines_, at_) + 1;
        }
        return belongs;
    }

    /// `define:` or `matrix:` and the lines below it that begin with two blanks.
    void readPairs(BlockKind block, NameKind kind) {
        const auto keyword = clean();
        builder_.open(block, lines_[at_],
                      builder_.add(NameKind::statement, word, keyword.substr(0, keyword.find(':'))));
        noteLine();
        for (++at_; at_ < lines_.size(); ++at_) {
            const auto text = clean();
            if (!text.empty() && (!lines_[at_].starts_with("  ") || beginsBody(text))) {
                break;
            }
            noteLine();
            readPair(text, kind);
        }
        builder_.close();
    }

    void readPair(std::string_view text, NameKind kind) {
        const bool isItem = text.starts_with('-');
        if (isItem) {
            text = trim(text.substr(1));
        }
        const auto colon = text.find(':');
        const auto key = trim(text.substr(0, colon));
        if (colon == std::string_view::npos || key.empty()) {
            return;
        }
        const auto value = trim(text.substr(colon + 1));
        if (kind == NameKind::axis && !isItem && listSyntax_) {
            builder_.add(NameKind::word, word, key);
            if (key == "map") {
                builder_.add(NameKind::key, reference, taskdsl::unquote(value));
                return;
            }
        } else {
            listSyntax_ = kind == NameKind::axis && isItem;
            builder_.add(kind, definition, key);
        }
        builder_.addWithKeys(NameKind::string, word, value);
    }

    [[nodiscard]] bool endsSection(std::string_view line) const {
        const auto text = cleanLine(line);
        return beginsBody(text) || isInclude(text) || line.starts_with("define:") ||
               line.starts_with("matrix:") || line.starts_with('%');
    }

    /// A key at the margin: a collection when a list follows, otherwise a setting.
    [[nodiscard]] NameKind kindOfKey(std::string_view value) const {
        if (!value.empty()) {
            return value.starts_with('[') ? NameKind::collection : NameKind::setting;
        }
        for (auto next = at_ + 1; next < lines_.size(); ++next) {
            const auto text = cleanLine(lines_[next]);
            if (!text.empty()) {
                return text.starts_with('-') ? NameKind::collection : NameKind::setting;
            }
        }
        return NameKind::setting;
    }

    void readSection() {
        const auto first = lines_[at_];
        const auto text = clean();
        const auto colon = text.find(':');
        const auto value = trim(text.substr(colon + 1));
        const auto kind = kindOfKey(value);
        const auto block = builder_.open(BlockKind::section, first);
        const auto name = builder_.add(kind, definition, taskdsl::unquote(text.substr(0, colon)));
        builder_.setName(block, name);
        builder_.add(NameKind::string, word, value); // YAML: brackets make a list
        noteLine();
        for (++at_; at_ < lines_.size() && !endsSection(lines_[at_]); ++at_) {
            const auto inner = clean();
            // The next key at the margin has a section of its own; a list may stand at the margin.
            if (!inner.empty() && !taskdsl::isIndented(lines_[at_]) && !inner.starts_with('-')) {
                break;
            }
            noteLine();
            readItem(inner, name);
        }
        builder_.close();
    }

    void readItem(std::string_view text, std::uint32_t owner) {
        if (text.starts_with('-')) {
            text = trim(text.substr(1));
        }
        const auto colon = text.find(':');
        if (colon == std::string_view::npos) {
            builder_.add(NameKind::string, word, text);
            return;
        }
        builder_.add(NameKind::itemKey, definition, taskdsl::unquote(text.substr(0, colon)), 0, owner);
        builder_.add(NameKind::string, word, trim(text.substr(colon + 1)));
    }

    IndexBuilder& builder_;
    const Lines& lines_;
    std::size_t at_ = 0;
    bool listSyntax_ = false;
};

} // namespace

std::size_t scanPrelude(IndexBuilder& builder, const Lines& lines) {
    return PreludeScan(builder, lines).run();
}

} // namespace morquill::lsp
