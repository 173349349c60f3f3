#include "graph/visible_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace morquill::graph {

namespace {

struct CodePointRange {
    std::uint32_t first;
    std::uint32_t last;
};

/// Characters that are shown by their bytes.
constexpr CodePointRange hiddenRanges[] = {
    {0x00, 0x1f},     // C0 controls, line ends and tabs among them: a label has lines of its own
    {0x7f, 0x9f},     // delete and the C1 controls
    {0x2028, 0x202e}, // line and paragraph separators, embeddings and overrides of the direction
    {0x2066, 0x2069}, // isolates of the direction
    {0xfffe, 0xffff}, // no characters of XML
};

/// How a character of two, three or four bytes begins, and the smallest number that needs so many.
struct LeadByte {
    std::uint8_t mask;
    std::uint8_t bits;
    std::uint32_t smallest;
};
constexpr LeadByte leadBytes[] = {{0xe0, 0xc0, 0x80}, {0xf0, 0xe0, 0x800}, {0xf8, 0xf0, 0x10000}};

constexpr std::uint32_t byteAt(std::string_view text, std::size_t at) noexcept {
    return static_cast<unsigned char>(text[at]);
}

struct Character {
    std::size_t length = 0; ///< in bytes; 0 when there is none
    std::uint32_t codePoint = 0;
};

/// The number that the continuation bytes add to; nothing when one of them is none.
Character readLong(std::string_view text, const LeadByte& lead, std::size_t length) noexcept {
    std::uint32_t codePoint = byteAt(text, 0) & static_cast<std::uint8_t>(~lead.mask);
    if (text.size() < length) {
        return {};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xc0U) != 0x80U) {
            return {};
        }
        codePoint = (codePoint << 6U) | (byteAt(text, i) & 0x3fU);
    }
    const bool surrogate = codePoint >= 0xd800 && codePoint <= 0xdfff;
    return codePoint < lead.smallest || codePoint > 0x10ffff || surrogate ? Character{}
                                                                          : Character{length, codePoint};
}

Character readCharacter(std::string_view text) noexcept {
    if (text.empty()) {
        return {};
    }
    if (byteAt(text, 0) < 0x80) {
        return {1, byteAt(text, 0)};
    }
    for (std::size_t i = 0; i < std::size(leadBytes); ++i) {
        if ((byteAt(text, 0) & leadBytes[i].mask) == leadBytes[i].bits) {
            return readLong(text, leadBytes[i], i + 2);
        }
    }
    return {};
}

bool isShown(const Character& character) noexcept {
    return character.length > 0 &&
           std::none_of(std::begin(hiddenRanges), std::end(hiddenRanges), [&](const CodePointRange& range) {
               return character.codePoint >= range.first && character.codePoint <= range.last;
           });
}

void addBytes(std::string& out, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        out.append("\\x").append(1, digits[number / 16U]).append(1, digits[number % 16U]);
    }
}

} // namespace

std::size_t characterLength(std::string_view text) noexcept {
    return readCharacter(text).length;
}

std::string visibleStart(std::string_view text, std::size_t limit) {
    std::string out;
    for (std::size_t count = 0; !text.empty(); ++count) {
        if (count == limit) {
            return out += "...";
        }
        const Character character = readCharacter(text);
        const auto bytes = text.substr(0, std::max<std::size_t>(character.length, 1));
        if (isShown(character)) {
            out += bytes;
        } else {
            addBytes(out, bytes);
        }
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string quotedLabel(const std::vector<std::string>& lines, std::string_view lineBreak,
                        std::string (*escape)(std::string_view line)) {
    std::string label = "\"";
    for (const auto& line : lines) {
        label.append(&line == &lines.front() ? "" : lineBreak).append(escape(line));
    }
    return label += '"';
}

std::string visibleText(std::string_view text) {
    return visibleStart(text, text.size());
}

} // namespace morquill::graph
