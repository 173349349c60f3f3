#include "taskdsl/base/scan.h"

#include "support/text.h"

#include <algorithm>

namespace morquill::taskdsl {

namespace {

/// Which kinds of quote take part in quoting on a line: those with an even number, at least two.
struct QuoteKinds {
    bool doubles = false;
    bool singles = false;
};

QuoteKinds quoteKindsOf(std::string_view line) noexcept {
    std::size_t doubles = 0;
    std::size_t singles = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\\') {
            ++i;
        } else if (line[i] == '"') {
            ++doubles;
        } else if (line[i] == '\'') {
            ++singles;
        }
    }
    return {doubles >= 2 && doubles % 2 == 0, singles >= 2 && singles % 2 == 0};
}

bool isQuotedBy(std::string_view text, char quote) noexcept {
    return text.size() >= 2 && text.front() == quote && text.back() == quote;
}

bool isEscapable(char c) noexcept {
    return c == '"' || c == '\'' || c == '\\' || isSpace(c);
}

} // namespace

std::string_view stripComment(std::string_view line) noexcept {
    if (line.find('#') == std::string_view::npos) {
        return line;
    }
    const QuoteKinds kinds = quoteKindsOf(line);
    char quote = '\0';
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quote != '\0') {
            if (c == '\\') {
                ++i;
            } else if (c == quote) {
                quote = '\0';
            }
        } else if ((c == '"' && kinds.doubles) || (c == '\'' && kinds.singles)) {
            quote = c;
        } else if (c == '#' && (i == 0 || isSpace(line[i - 1]))) {
            return line.substr(0, i);
        }
    }
    return line;
}

std::string_view cleanLine(std::string_view line) noexcept {
    return trim(stripComment(line));
}

std::string_view unquote(std::string_view text) noexcept {
    text = trim(text);
    if (isQuotedBy(text, '"') || isQuotedBy(text, '\'')) {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

bool decodeCanonicalScalar(std::string_view text, std::string& value) {
    if (!isQuotedBy(text, '"')) {
        return false;
    }
    const auto inside = text.substr(1, text.size() - 2);
    std::string decoded;
    decoded.reserve(inside.size());
    for (std::size_t i = 0; i < inside.size(); ++i) {
        char c = inside[i];
        if (c == '"') {
            return false;
        }
        if (c == '\\') {
            if (++i == inside.size()) {
                return false;
            }
            switch (inside[i]) {
            case '"':
            case '\\':
                c = inside[i];
                break;
            case 't':
                c = '\t';
                break;
            case 'n':
                c = '\n';
                break;
            case 'r':
                c = '\r';
                break;
            default:
                return false;
            }
        }
        decoded += c;
    }
    value = std::move(decoded);
    return true;
}

std::string readScalar(std::string_view text) {
    text = trim(text);
    std::string value;
    if (decodeCanonicalScalar(text, value)) {
        return value;
    }
    return std::string(unquote(text));
}

std::string_view directiveName(std::string_view text) noexcept {
    return !text.empty() && text.front() == '%' ? text.substr(1) : std::string_view{};
}

std::string_view taskHeaderName(std::string_view text) noexcept {
    if (text.empty() || text.front() != '$') {
        return {};
    }
    const auto name = trim(text.substr(1));
    return isQuotedBy(name, '"') ? name.substr(1, name.size() - 2) : name;
}

bool beginsBlock(std::string_view text, std::string_view keyword) noexcept {
    return text.starts_with(keyword) && (text.size() == keyword.size() || text[keyword.size()] == ' ');
}

bool matchWord(std::string_view text, std::string_view word) noexcept {
    return text.starts_with(word) && (text.size() == word.size() || isSpace(text[word.size()]));
}

std::vector<std::string> splitShellWords(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    char quote = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote == '\'') {
            if (c == '\'') {
                quote = '\0';
            } else {
                word += c;
            }
            continue;
        }
        if (c == '\\' && i + 1 < text.size() && isEscapable(text[i + 1])) {
            word += text[++i];
            inWord = true;
        } else if (quote == '"') {
            if (c == '"') {
                quote = '\0';
            } else {
                word += c;
            }
        } else if (c == '"' || c == '\'') {
            quote = c;
            inWord = true;
        } else if (isSpace(c)) {
            if (inWord) {
                words.push_back(std::move(word));
                word.clear();
                inWord = false;
            }
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord) {
        words.push_back(std::move(word));
    }
    return words;
}

bool isIdentifier(std::string_view text) noexcept {
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || isDigit(c) || c == '_' || c == '-';
    });
}

bool isDottedIdentifier(std::string_view text) noexcept {
    for (;;) {
        const auto dot = text.find('.');
        if (!isIdentifier(text.substr(0, dot))) {
            return false;
        }
        if (dot == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(dot + 1);
    }
}

} // namespace morquill::taskdsl
