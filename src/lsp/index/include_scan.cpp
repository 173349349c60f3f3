#include "lsp/index/block_scans.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/include_line.h"

#include <algorithm>
#include <optional>

namespace morquill::lsp {

using taskdsl::cleanLine;
using taskdsl::IncludeTarget;

namespace {

using enum NameRole;

constexpr std::string_view includeKeyword = "&INCLUDE";
constexpr std::string_view fragmentKeyword = "&FRAGMENT";

/// A header or include over its lines: the cleaned pieces, each a part of the file.
struct Gathered {
    Lines pieces;
    std::size_t last = 0;
};

Gathered gather(IndexBuilder& builder, const Lines& lines, std::size_t first) {
    Gathered gathered{{}, first};
    taskdsl::ParenthesisCount count;
    for (std::size_t i = first; i < lines.size(); ++i) {
        const auto piece = cleanLine(lines[i]);
        // While an argument list is being typed, the next task is no part of it.
        if (i != first && (piece.starts_with('$') || piece.starts_with('&') || piece.starts_with('@'))) {
            break;
        }
        gathered.pieces.push_back(piece);
        gathered.last = i;
        builder.addComment(lines[i].substr(taskdsl::stripComment(lines[i]).size()));
        if (!piece.empty()) {
            builder.noteFilled(lines[i]);
        }
        if (!count.read(piece) || count.balanced()) {
            break;
        }
    }
    if (!count.balanced() && gathered.last > first) {
        gathered = {{gathered.pieces.front()}, first};
    }
    return gathered;
}

/// The bytes behind the first `(` of the pieces, up to the last `)`, one text per piece.
Lines insideParentheses(const Lines& pieces) {
    Lines inside;
    bool open = false;
    for (auto piece : pieces) {
        if (!open) {
            const auto at = piece.find('(');
            if (at == std::string_view::npos) {
                continue;
            }
            open = true;
            piece.remove_prefix(at + 1);
        }
        inside.push_back(piece);
    }
    if (!inside.empty()) {
        inside.back() = inside.back().substr(0, inside.back().rfind(')'));
    }
    return inside;
}

/// The parts between the commas of a list over several texts, without those that are empty.
Lines listParts(const Lines& texts) {
    Lines parts;
    for (const auto text : texts) {
        const auto found = taskdsl::splitArguments(text);
        parts.insert(parts.end(), found.begin(), found.end());
    }
    return parts;
}

/// What stands between quotes or angle brackets, or the whole.
std::string_view bareTarget(std::string_view text) noexcept {
    if (!text.empty() && (text.front() == '"' || text.front() == '\'' || text.front() == '<')) {
        const auto close = text.find(text.front() == '<' ? '>' : text.front(), 1);
        return text.substr(1, close == std::string_view::npos ? close : close - 1);
    }
    return text;
}

FileLink::Kind linkKind(IncludeTarget kind) noexcept {
    switch (kind) {
    case IncludeTarget::taskFile:
        return FileLink::Kind::taskFile;
    case IncludeTarget::yamlFile:
        return FileLink::Kind::yamlFile;
    case IncludeTarget::library:
        return FileLink::Kind::library;
    case IncludeTarget::fragmentFile:
        return FileLink::Kind::fragmentFile;
    default:
        return FileLink::Kind::otherFile;
    }
}

class IncludeScan {
  public:
    IncludeScan(IndexBuilder& builder, const Lines& pieces) : builder_(builder), pieces_(pieces) {}

    void run() {
        const auto first = pieces_.front();
        builder_.add(NameKind::statement, word, first.substr(0, includeKeyword.size()));
        const auto include = read();
        if (!include) {
            builder_.addKeys(first);
            return;
        }
        const auto text = trim(first.substr(includeKeyword.size()));
        const bool isName =
            include->kind == IncludeTarget::reference || include->kind == IncludeTarget::fragmentName;
        if (isName) {
            readReference(text.substr(0, text.find('(')), *include);
        } else {
            readFile(text, *include);
        }
    }

  private:
    /// The include as the parser reads it; nothing while it is not whole.
    [[nodiscard]] std::optional<taskdsl::IncludeDirective> read() const {
        std::string text;
        for (const auto piece : pieces_) {
            text += text.empty() ? "" : " ";
            text += piece;
        }
        try {
            return taskdsl::parseIncludeLine(text);
        } catch (const taskdsl::DiagnosticError&) {
            return std::nullopt;
        }
    }

    void readReference(std::string_view target, const taskdsl::IncludeDirective& include) {
        target = trim(target);
        const auto dot = target.find('.');
        std::uint32_t owner = noIndex;
        if (dot != std::string_view::npos) {
            owner = builder_.add(NameKind::library, reference, target.substr(0, dot));
            target.remove_prefix(dot + 1);
        } else if (!include.hasArguments) {
            // A bare name may also be that of a file.
            builder_.addLink(FileLink::Kind::otherFile, target, include.target);
        }
        const auto fragment = builder_.add(NameKind::fragment, reference, target, 0, owner);
        for (const auto part : listParts(insideParentheses(pieces_))) {
            const auto equals = part.find('=');
            if (equals != std::string_view::npos) {
                builder_.add(NameKind::parameter, reference, trim(part.substr(0, equals)), 0, fragment);
                builder_.addKeys(part.substr(equals + 1));
            }
        }
    }

    void readFile(std::string_view text, const taskdsl::IncludeDirective& include) {
        const auto target = bareTarget(text);
        std::string_view name = target;
        std::uint32_t alias = noIndex;
        if (!include.alias.empty()) {
            const auto at = text.rfind(include.alias);
            alias = builder_.add(NameKind::library, definition, text.substr(at, include.alias.size()));
            if (target.data() == text.data()) {
                name = text.substr(0, text.find_first_of(" \t"));
            }
            const auto asWord = trim(text.substr(0, at));
            builder_.add(NameKind::word, word, asWord.substr(asWord.size() - 2));
        }
        name = trim(name);
        builder_.addWithKeys(NameKind::path, reference, name);
        builder_.addLink(linkKind(include.kind), name, searchName(include), alias);
    }

    IndexBuilder& builder_;
    const Lines& pieces_;
};

} // namespace

std::size_t scanInclude(IndexBuilder& builder, const Lines& lines, std::size_t first) {
    const auto gathered = gather(builder, lines, first);
    if (gathered.last > first) {
        builder.open(BlockKind::include, lines[first]);
        builder.noteFilled(lines[gathered.last]);
        builder.close();
    }
    IncludeScan(builder, gathered.pieces).run();
    return gathered.last;
}

std::size_t scanFragmentHeader(IndexBuilder& builder, const Lines& lines, std::size_t first) {
    const auto block = builder.open(BlockKind::fragment, lines[first]);
    builder.fragmentBlock = block;
    builder.parameters.clear();
    const auto gathered = gather(builder, lines, first);
    const auto text = gathered.pieces.front();
    builder.add(NameKind::statement, word, text.substr(0, fragmentKeyword.size()));
    auto rest = trim(text.substr(fragmentKeyword.size()));
    const auto kind = rest.substr(0, rest.find_first_of(" \t("));
    builder.add(NameKind::word, word, kind);
    rest.remove_prefix(kind.size());
    const auto name = trim(rest.substr(0, rest.find('(')));
    builder.setName(block, builder.add(NameKind::fragment, definition, name));
    const auto parts = listParts(insideParentheses(gathered.pieces));
    for (const auto part : parts) {
        builder.parameters.insert(trim(part.substr(0, part.find('='))));
    }
    for (const auto part : parts) {
        const auto equals = part.find('=');
        builder.add(NameKind::parameter, definition, trim(part.substr(0, equals)), block);
        if (equals != std::string_view::npos) {
            builder.addKeys(part.substr(equals + 1));
        }
    }
    return gathered.last;
}

} // namespace morquill::lsp
