#include "lsp/session.h"

namespace morquill::lsp {

const OpenText& requireText(const Session& session, const Json& params) {
    const Json& document = member(params, "textDocument");
    const auto uri = textMember(document, "uri");
    const OpenText* text = session.texts.find(uri);
    if (text == nullptr) {
        throw ResponseError(ErrorCode::invalidParams, "not open: " + uri);
    }
    if (const auto version = integerMember(document, "version"); version && *version != text->version) {
        throw ResponseError(ErrorCode::contentModified, "the text has changed");
    }
    return *text;
}

std::size_t requireOffset(const Session& session, const OpenText& text, const Json& params) {
    const auto position = readPosition(member(params, "position"));
    if (!position) {
        throw ResponseError(ErrorCode::invalidParams, "position expected");
    }
    return text.buffer.offsetAt(*position, session.client.unit);
}

Json positionJson(Position position) {
    return {{"line", position.line}, {"character", position.character}};
}

Json rangeJson(PositionWalk& walk, ByteRange range) {
    auto start = positionJson(walk.at(range.begin));
    return {{"start", std::move(start)}, {"end", positionJson(walk.at(range.end))}};
}

} // namespace morquill::lsp
