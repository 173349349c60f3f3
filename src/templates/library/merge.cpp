#include "templates/library/merge.h"

#include "support/text.h"
#include "templates/library/supersequence.h"
#include "templates/library/template_text.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>

namespace morquill::templates {

namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view commandDirectives[] = {"%preprocess", "%process"};
constexpr std::string_view commandIndent = "        ";

/// A directive line with the lines that belong to it. The word is empty for the lines before the first
/// directive, which include the `$name` line.
struct Section {
    std::string_view word;
    std::size_t begin = 0;
    std::size_t end = 0;
};

std::vector<Section> sectionsOf(const Lines& lines) {
    std::vector<Section> sections{{}};
    HeredocWalk heredoc;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (const auto text = trim(lines[i]); !heredoc.takesLine(lines[i]) && text.starts_with('%')) {
            sections.push_back({splitBlank(text).front(), i, i});
        }
        sections.back().end = i + 1;
    }
    return sections;
}

std::vector<Section> sectionsNamed(const std::vector<Section>& sections, std::string_view word) {
    std::vector<Section> found;
    std::copy_if(sections.begin(), sections.end(), std::back_inserter(found),
                 [&](const Section& section) { return section.word == word; });
    return found;
}

/// The trimmed lines after the directive lines of all these sections, without the empty ones.
std::vector<std::string_view> commandsOf(const Lines& lines, const std::vector<Section>& sections) {
    std::vector<std::string_view> commands;
    for (const auto& section : sections) {
        for (std::size_t i = section.begin + 1; i < section.end; ++i) {
            if (const auto command = trim(lines[i]); !command.empty()) {
                commands.push_back(command);
            }
        }
    }
    return commands;
}

void append(Lines& target, const Lines& lines, const Section& section) {
    target.insert(target.end(), lines.begin() + static_cast<std::ptrdiff_t>(section.begin),
                  lines.begin() + static_cast<std::ptrdiff_t>(section.end));
}

bool isBlankLine(const std::string& line) {
    return trim(line).empty();
}

void appendHead(Lines& head, Lines&& lines) {
    const auto first = std::find_if_not(lines.begin(), lines.end(), isBlankLine);
    const auto last = std::find_if_not(lines.rbegin(), std::make_reverse_iterator(first), isBlankLine).base();
    if (first == last) {
        return;
    }
    if (!head.empty() && !isBlankLine(head.back())) {
        head.emplace_back();
    }
    head.insert(head.end(), std::make_move_iterator(first), std::make_move_iterator(last));
}

void addBlock(MergedGroup& group, Lines&& lines) {
    auto variant = makeVariant(std::move(lines));
    const auto same = std::find_if(group.variants.begin(), group.variants.end(),
                                   [&](const auto& known) { return sameCalculation(known, variant); });
    if (same == group.variants.end()) {
        group.variants.push_back(std::move(variant));
    } else {
        // Both have the same source and keywords, so those of `same` remain right.
        same->lines = foldLines(same->lines, variant.lines);
    }
}

} // namespace

MergedVariant makeVariant(Lines lines) {
    MergedVariant variant{std::move(lines), {}, {}};
    bool hasSource = false;
    bool hasKeywords = false;
    HeredocWalk heredoc;
    for (const auto& line : variant.lines) {
        const auto text = trim(line);
        const auto blank = text.find(' ');
        if (heredoc.takesLine(line) || blank == std::string_view::npos) {
            continue;
        }
        if (!hasSource && text.starts_with("%source")) {
            hasSource = true;
            variant.source = trim(text.substr(blank));
        } else if (!hasKeywords && text.starts_with("%keywords")) {
            hasKeywords = true;
            variant.keywords = trim(text.substr(blank));
        }
    }
    return variant;
}

bool sameCalculation(const MergedVariant& left, const MergedVariant& right) {
    return left.source == right.source && left.keywords == right.keywords;
}

Lines foldLines(const Lines& base, const Lines& addition) {
    const auto own = sectionsOf(base);
    const auto other = sectionsOf(addition);
    Lines result;
    std::set<std::string_view> seen;
    for (const auto& section : own) {
        const bool isFirst = seen.insert(section.word).second;
        const bool takesCommands = isOneOf(section.word, commandDirectives);
        const auto others = takesCommands ? sectionsNamed(other, section.word) : std::vector<Section>{};
        if (others.empty()) {
            append(result, base, section);
        } else if (isFirst) {
            // A repeated directive counts as one list of commands,
            // which is written in the place of the first.
            result.push_back(base[section.begin]);
            for (const auto command : shortestCommonSupersequence(
                     commandsOf(base, sectionsNamed(own, section.word)), commandsOf(addition, others))) {
                result.emplace_back(commandIndent).append(command);
            }
        }
    }
    for (const auto& section : other) {
        if (!section.word.empty() && !seen.contains(section.word)) {
            append(result, addition, section);
        }
    }
    return result;
}

std::string mergeTemplateTexts(const std::vector<std::string_view>& texts) {
    Lines lines;
    std::vector<MergedGroup> groups;
    std::map<std::string, std::size_t, std::less<>> groupOf;
    for (const auto text : texts) {
        auto parts = splitTemplateBlocks(text);
        appendHead(lines, std::move(parts.headLines));
        for (const auto& name : parts.blockOrder) {
            const auto [place, isNew] = groupOf.try_emplace(name, groups.size());
            if (isNew) {
                groups.push_back({name, {}});
            }
            addBlock(groups[place->second], std::move(parts.blocks[name]));
        }
    }
    if (!lines.empty() && !isBlankLine(lines.back())) {
        lines.emplace_back();
    }
    for (auto& group : groups) {
        for (std::size_t i = 0; i < group.variants.size(); ++i) {
            auto& variant = group.variants[i].lines;
            variant.front() = "$" + group.name + (i == 0 ? "" : "_" + std::to_string(i + 1));
            lines.insert(lines.end(), std::make_move_iterator(variant.begin()),
                         std::make_move_iterator(variant.end()));
            lines.emplace_back();
        }
    }
    return join(lines, "\n");
}

} // namespace morquill::templates
