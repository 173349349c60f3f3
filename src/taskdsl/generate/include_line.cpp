#include "taskdsl/generate/include_line.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/scan.h"

#include <algorithm>
#include <array>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view includeKeyword = "&INCLUDE";

/// The position of the `as` that divides the target from its alias; `npos` without one.
std::size_t findAlias(std::string_view text) noexcept {
    return findAtTop(text, quote_rules::includeLine, [text](std::size_t at) {
        return at > 0 && isSpace(text[at - 1]) && matchWord(text.substr(at), "as");
    });
}

void readQuotedTarget(IncludeDirective& include, std::string_view text) {
    QuoteWalk walk(quote_rules::includeTarget);
    std::size_t i = walk.step(text, 0);
    while (i < text.size()) {
        const std::size_t next = walk.step(text, i);
        if (!walk.inQuotes()) {
            break;
        }
        include.target += text[next - 1]; // a protected byte comes without its backslash
        i = next;
    }
    if (i >= text.size()) {
        throw DiagnosticError("unterminated quoted &INCLUDE target");
    }
    if (const auto rest = trim(text.substr(i + 1)); !rest.empty()) {
        throw DiagnosticError("unexpected text after quoted &INCLUDE target: '" + std::string(rest) + "'");
    }
}

void readAngleTarget(IncludeDirective& include, std::string_view text) {
    const auto close = text.find('>');
    if (close == std::string_view::npos) {
        throw DiagnosticError("unterminated angle-bracket &INCLUDE target");
    }
    if (const auto rest = trim(text.substr(close + 1)); !rest.empty()) {
        throw DiagnosticError("unexpected text after angle-bracket &INCLUDE target: '" + std::string(rest) +
                              "'");
    }
    include.target = trim(text.substr(1, close - 1));
    if (include.target.empty()) {
        throw DiagnosticError("empty angle-bracket &INCLUDE target");
    }
    include.isAngle = true;
}

void readPlainTarget(IncludeDirective& include, std::string_view text) {
    const auto open = text.find('(');
    if (open != std::string_view::npos) {
        if (text.back() != ')') {
            throw DiagnosticError("unterminated argument list in &INCLUDE '" + std::string(text) + "'");
        }
        include.hasArguments = true;
        include.argumentText = text.substr(open + 1, text.size() - open - 2);
    }
    include.target = trim(text.substr(0, open));
    if (include.target.empty()) {
        throw DiagnosticError("empty &INCLUDE target");
    }
}

struct ExtensionRow {
    std::string_view extension;
    IncludeTarget kind;
};
constexpr std::array<ExtensionRow, 11> extensions{{
    {".mq", IncludeTarget::taskFile},
    {".projmq", IncludeTarget::taskFile},
    {".mqfrag", IncludeTarget::fragmentFile},
    {".mqlib", IncludeTarget::library},
    {".yaml", IncludeTarget::yamlFile},
    {".yml", IncludeTarget::yamlFile},
    {".inp", IncludeTarget::otherFile},
    {".txt", IncludeTarget::otherFile},
    {".json", IncludeTarget::otherFile},
    {".sh", IncludeTarget::otherFile},
    {".toml", IncludeTarget::otherFile},
}};

/// `[A-Za-z_][A-Za-z0-9_-]*(\.[A-Za-z_][A-Za-z0-9_-]*)+`
bool isDottedName(std::string_view text) noexcept {
    return text.find('.') != std::string_view::npos && allDottedParts(text, isFragmentName);
}

IncludeTarget targetKind(const IncludeDirective& include) {
    if (const auto kind = kindOfPath(include.target)) {
        return *kind;
    }
    if (include.isAngle || include.target.find_first_of("/\\") != std::string::npos) {
        return IncludeTarget::otherFile;
    }
    if (isDottedName(include.target)) {
        return IncludeTarget::reference;
    }
    return isFragmentName(include.target) ? IncludeTarget::fragmentName : IncludeTarget::otherFile;
}

void readArguments(IncludeDirective& include) {
    for (const auto part : splitArguments(include.argumentText)) {
        const auto equals = part.find('=');
        if (equals == std::string_view::npos) {
            throw DiagnosticError("fragment arguments must use name=value syntax: '" + std::string(part) +
                                  "'");
        }
        std::string name(trim(part.substr(0, equals)));
        if (!isFragmentName(name)) {
            throw DiagnosticError("invalid fragment argument name '" + name + "'");
        }
        const auto [entry, isNew] =
            include.arguments.try_emplace(std::move(name), unquote(part.substr(equals + 1)));
        if (!isNew) {
            throw DiagnosticError("duplicate fragment argument '" + entry->first + "'");
        }
    }
}

} // namespace

std::optional<IncludeTarget> kindOfPath(std::string_view path) noexcept {
    for (const auto& row : extensions) {
        const auto size = row.extension.size();
        if (path.size() >= size && equalsNoCase(path.substr(path.size() - size), row.extension)) {
            return row.kind;
        }
    }
    return std::nullopt;
}

IncludeDirective parseIncludeLine(std::string_view text) {
    text = cleanLine(text);
    IncludeDirective include;
    if (!beginsBlock(text, includeKeyword)) {
        return include;
    }
    include.isInclude = true;
    text = trim(text.substr(includeKeyword.size()));
    if (text.empty()) {
        throw DiagnosticError("empty &INCLUDE target");
    }
    const auto as = findAlias(text);
    if (as != std::string_view::npos) {
        include.alias = trim(text.substr(as + 2));
        if (include.alias.empty()) {
            throw DiagnosticError("missing namespace alias after 'as'");
        }
        if (!isFragmentName(include.alias)) {
            throw DiagnosticError("invalid &INCLUDE namespace alias '" + include.alias + "'");
        }
        text = trim(text.substr(0, as));
    }
    if (text.front() == '"' || text.front() == '\'') {
        readQuotedTarget(include, text);
    } else if (text.front() == '<') {
        readAngleTarget(include, text);
    } else {
        readPlainTarget(include, text);
    }
    include.kind = targetKind(include);
    include.isLibraryReference =
        include.kind == IncludeTarget::reference || include.kind == IncludeTarget::library;
    if (include.hasArguments) {
        if (include.kind != IncludeTarget::reference && include.kind != IncludeTarget::fragmentName) {
            throw DiagnosticError("file &INCLUDE targets do not accept arguments");
        }
        readArguments(include);
    }
    if (as != std::string_view::npos && include.kind != IncludeTarget::library) {
        throw DiagnosticError("'as <namespace>' is only valid when including a library file");
    }
    return include;
}

std::optional<IncludeDirective> parsePreludeInclude(std::string_view text) {
    ParenthesisCount parentheses;
    if (!parentheses.read(text) || !parentheses.balanced()) {
        return std::nullopt;
    }
    auto include = parseIncludeLine(text);
    const bool isFollowed = include.kind == IncludeTarget::yamlFile ||
                            (include.kind == IncludeTarget::library && !include.alias.empty());
    return isFollowed ? std::optional(std::move(include)) : std::nullopt;
}

std::string searchName(const IncludeDirective& include) {
    return include.isAngle ? "<" + include.target + ">" : include.target;
}

bool isFragmentName(std::string_view text) noexcept {
    return !text.empty() && isWordStart(text.front()) && std::all_of(text.begin(), text.end(), isNameChar);
}

std::vector<std::string_view> splitArguments(std::string_view text) {
    std::vector<std::string_view> parts;
    for (const auto field : splitAtTop(text, quote_rules::includeArguments, ',')) {
        if (const auto part = trim(field); !part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

bool ParenthesisCount::read(std::string_view text) noexcept {
    for (std::size_t at = 0; at < text.size(); at = walk_.step(text, at)) {
        if (text[at] == ')' && walk_.atTop()) {
            return false;
        }
    }
    return true;
}

GatheredLines gatherParentheses(const std::vector<SourceLine>& lines, std::size_t first) {
    GatheredLines gathered;
    ParenthesisCount count;
    for (std::size_t i = first; i < lines.size(); ++i) {
        const auto piece = lines[i].clean();
        if (i != first) {
            gathered.text += ' ';
        }
        gathered.text += piece;
        gathered.last = i;
        if (!count.read(piece)) {
            gathered.end = GatherEnd::unmatched;
            break;
        }
        if (count.balanced()) {
            gathered.end = GatherEnd::balanced;
            break;
        }
    }
    return gathered;
}

} // namespace morquill::taskdsl
