#include "lsp/semantic_tokens.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace morquill::lsp {

namespace {

/// In the order of the legend.
enum class TokenType : std::uint32_t {
    classType,
    variable,
    enumeration,
    parameter,
    property,
    nameSpace,
    function,
    structure,
    keyword,
    enumMember,
    string,
    number,
    comment,
    macro,
};

/// The type of a kind of name; nothing for one that is shown as the text around it.
std::optional<TokenType> tokenType(NameKind kind) noexcept {
    using enum NameKind;
    switch (kind) {
    case task:
        return TokenType::classType;
    case define:
    case key:
    case setting:
    case let:
    case emitted:
    case column:
    case alias:
        return TokenType::variable;
    case axis:
    case collection:
        return TokenType::enumeration;
    case loop:
    case parameter:
        return TokenType::parameter;
    case itemKey:
    case property:
    case controlKey:
    case argument:
        return TokenType::property;
    case library:
        return TokenType::nameSpace;
    case fragment:
        return TokenType::macro;
    case formula:
    case function:
        return TokenType::function;
    case plot:
    case derive:
    case table:
    case profile:
        return TokenType::structure;
    case directive:
    case statement:
    case word:
        return TokenType::keyword;
    case program:
    case plotItem:
        return TokenType::enumMember;
    case path:
    case string:
        return TokenType::string;
    case number:
        return TokenType::number;
    case comment:
        return TokenType::comment;
    }
    return std::nullopt;
}

/// A coloured piece of the text.
struct Piece {
    std::size_t begin = 0;
    std::size_t end = 0;
    const Occurrence* of = nullptr;
};

/// The pieces of a range of the text, in order, none over another: an inner name cuts the one around it.
std::vector<Piece> piecesOf(const FileIndex& index, ByteRange range) {
    std::vector<Piece> pieces;
    std::vector<const Occurrence*> open;
    std::size_t at = 0;
    const auto emit = [&](std::size_t end) {
        if (!open.empty() && at < end && end > range.begin && at < range.end) {
            pieces.push_back({at, end, open.back()});
        }
        at = std::max(at, end);
    };
    const auto closeBefore = [&](std::size_t begin) {
        while (!open.empty() && open.back()->end() <= begin) {
            emit(open.back()->end());
            open.pop_back();
        }
    };
    for (const auto& o : index.occurrences) {
        if (o.begin >= range.end) {
            break;
        }
        closeBefore(o.begin);
        emit(o.begin);
        at = std::max<std::size_t>(at, o.begin);
        // Of two that share a place the later one says more.
        if (!open.empty() && open.back()->begin == o.begin && open.back()->length == o.length) {
            open.back() = &o;
        } else {
            open.push_back(&o);
        }
    }
    closeBefore(static_cast<std::size_t>(-1));
    return pieces;
}

/// The pieces as the protocol has them: five numbers each, lines and characters counted from the piece
/// before.
std::vector<std::uint32_t> encode(const SourceFile& file, PositionUnit unit, ByteRange range) {
    std::vector<std::uint32_t> data;
    PositionWalk walk(*file.buffer, unit);
    Position last;
    for (const auto& piece : piecesOf(file.index, range)) {
        const auto type = tokenType(piece.of->kind);
        const auto start = walk.at(piece.begin);
        const auto end = walk.at(piece.end);
        if (!type || end.line != start.line || end.character == start.character) {
            continue;
        }
        const auto line = start.line - last.line;
        data.insert(data.end(), {line, line == 0 ? start.character - last.character : start.character,
                                 end.character - start.character, static_cast<std::uint32_t>(*type),
                                 piece.of->role == NameRole::definition ? 1U : 0U});
        last = start;
    }
    return data;
}

std::vector<std::uint32_t> encodeAll(const Session& session, const SourceFile& file) {
    return encode(file, session.client.unit, {0, file.text().size()});
}

/// Keeps an answer, so that the next one may be a difference to it.
std::string keep(Session& session, const std::string& uri, std::vector<std::uint32_t> data) {
    auto& sent = session.sentTokens[uri];
    sent.id = std::to_string(++session.tokenCount);
    sent.data = std::move(data);
    return sent.id;
}

Json fullAnswer(Session& session, const std::string& uri, std::vector<std::uint32_t> data) {
    Json answer{{"data", data}};
    answer["resultId"] = keep(session, uri, std::move(data));
    return answer;
}

} // namespace

Json semanticTokensFull(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    return fullAnswer(session, text.uri, encodeAll(session, session.sources.of(text)));
}

Json semanticTokensDelta(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    auto data = encodeAll(session, session.sources.of(text));
    const auto sent = session.sentTokens.find(text.uri);
    if (sent == session.sentTokens.end() || sent->second.id != textMember(params, "previousResultId")) {
        return fullAnswer(session, text.uri, std::move(data));
    }
    const auto& old = sent->second.data;
    const auto [oldFirst, first] = std::mismatch(old.begin(), old.end(), data.begin(), data.end());
    const auto [oldLast, last] = std::mismatch(old.rbegin(), std::make_reverse_iterator(oldFirst),
                                               data.rbegin(), std::make_reverse_iterator(first));
    Json edits = Json::array();
    if (oldFirst != old.end() || first != data.end()) {
        edits.push_back({{"start", oldFirst - old.begin()},
                         {"deleteCount", oldLast.base() - oldFirst},
                         {"data", std::vector<std::uint32_t>(first, last.base())}});
    }
    Json answer{{"edits", std::move(edits)}};
    answer["resultId"] = keep(session, text.uri, std::move(data));
    return answer;
}

Json semanticTokensRange(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto range = readRange(member(params, "range"), text.buffer, session.client.unit);
    if (!range) {
        throw ResponseError(ErrorCode::invalidParams, "range expected");
    }
    return {{"data", encode(session.sources.of(text), session.client.unit, *range)}};
}

} // namespace morquill::lsp
