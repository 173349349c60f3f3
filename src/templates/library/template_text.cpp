#include "templates/library/template_text.h"

#include "support/text.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/define_block.h"

#include <algorithm>
#include <set>

namespace morquill::templates {

namespace {

/// The names that are filled in for every task when it is run.
constexpr std::string_view taskNames[] = {"inputname", "taskname", "rootname", "originname"};

bool isBuiltIn(std::string_view name) {
    return isOneOf(name, taskNames) || taskdsl::isReservedKey(name);
}

std::string_view headerName(std::string_view line) noexcept {
    // Most lines are not headers; only those that may be are stripped of their comment.
    return trimLeft(line).starts_with('$') ? taskdsl::taskHeaderName(taskdsl::cleanLine(line))
                                           : std::string_view{};
}

/// True for an unindented `autorun:` line, with or without blanks before the colon.
bool isAutorun(std::string_view line) noexcept {
    constexpr std::string_view key = "autorun";
    return line.starts_with(key) && trimLeft(line.substr(key.size())).starts_with(':');
}

} // namespace

bool HeredocWalk::takesLine(std::string_view line) {
    if (terminator_) {
        if (trim(line) == *terminator_) {
            terminator_.reset();
        }
        return true;
    }
    if (!trimLeft(line).starts_with('%')) {
        return false;
    }
    const auto directive = taskdsl::cleanLine(line);
    const auto value = trim(directive.substr(std::min(directive.find(' '), directive.size())));
    if (taskdsl::opensHeredoc(value)) {
        terminator_ = taskdsl::heredocTerminator(value);
    }
    return false;
}

TemplateParts splitTemplateBlocks(std::string_view text) {
    TemplateParts parts;
    std::vector<std::string>* current = &parts.headLines;
    HeredocWalk heredoc;
    for (auto& line : splitOn(text, '\n')) {
        const bool quoted = current != &parts.headLines && heredoc.takesLine(line);
        if (const auto name = quoted ? std::string_view{} : headerName(line); !name.empty()) {
            const auto [block, isNew] = parts.blocks.try_emplace(std::string(name));
            if (isNew) {
                parts.blockOrder.push_back(block->first);
            }
            current = &block->second;
            current->clear();
        }
        current->push_back(std::move(line));
    }
    return parts;
}

std::vector<std::string> scanPlaceholders(std::string_view text, BuiltIns builtIns) {
    std::set<std::string_view> names;
    for (auto open = text.find('['); open != std::string_view::npos;) {
        const auto close = text.find(']', open + 1);
        if (close == std::string_view::npos) {
            break; // no later bracket is closed either
        }
        const auto name = text.substr(open + 1, close - open - 1);
        if (!name.empty() && !(builtIns == BuiltIns::drop && isBuiltIn(name))) {
            names.insert(name);
        }
        open = text.find('[', close);
    }
    return {names.begin(), names.end()};
}

std::string withAutorun(std::string_view text) {
    constexpr std::string_view setting = "autorun: true";
    std::string head;
    bool seen = false;
    bool empty = true;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto line = text.substr(0, end);
        if (!headerName(line).empty()) {
            break;
        }
        empty = false;
        const auto whole = text.substr(0, end == std::string_view::npos ? end : end + 1);
        if (!isAutorun(line)) {
            head += whole;
        } else if (!seen) {
            seen = true;
            head += setting;
            head += whole.substr(line.size());
        }
        text.remove_prefix(whole.size());
    }
    if (empty) {
        head = std::string(setting) + (text.empty() ? "\n" : "\n\n");
    }
    return head.append(text);
}

} // namespace morquill::templates
