#include "console/messages.h"

#include "console/console.h"

#include <array>

namespace morquill::console {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, 5> messageTags{"[mqkit]", "[mqkit][SKIP]", "[mqkit][DRY-RUN]",
                                                      "[mqkit][WARN]", "[mqkit][ERROR]"};

/// One write per line, so that lines of programs that share a terminal do not mix.
std::string line(std::string_view text) {
    std::string whole;
    whole.reserve(text.size() + 1);
    return whole.append(text).append(1, '\n');
}

} // namespace

void printLine(std::string_view text) {
    writeOut(line(text));
}

void printErrorLine(std::string_view text) {
    writeErr(line(text));
}

std::string_view messageTag(MessageKind kind) noexcept {
    return messageTags[static_cast<std::size_t>(kind)];
}

std::string tagged(MessageKind kind, std::string_view text) {
    std::string whole(messageTag(kind));
    return whole.append(1, ' ').append(text);
}

MessageKind stepKind(RunMode mode) noexcept {
    return mode == RunMode::dryRun ? MessageKind::dryRun : MessageKind::note;
}

void printMessage(MessageKind kind, std::string_view text) {
    printLine(tagged(kind, text));
}

void printNote(std::string_view text) {
    printMessage(MessageKind::note, text);
}

void printSkip(std::string_view text) {
    printMessage(MessageKind::skip, text);
}

void printQuestion(std::string_view text) {
    writeOut(tagged(MessageKind::note, text));
}

void reportWarning(std::string_view text) {
    printErrorLine(tagged(MessageKind::warning, text));
}

void reportError(std::string_view text) {
    reportError(ErrorTag::plain, text);
}

void reportError(ErrorTag tag, std::string_view text) {
    switch (tag) {
    case ErrorTag::none:
        printErrorLine(text);
        break;
    case ErrorTag::plain:
        printErrorLine(tagged(MessageKind::error, text));
        break;
    case ErrorTag::coloured:
        printErrorLine(errorTag().append(1, ' ').append(text));
        break;
    }
}

void reportErrorInPieces(std::initializer_list<std::string_view> pieces) noexcept {
    writeErr(messageTag(MessageKind::error));
    writeErr(" ");
    for (const std::string_view piece : pieces) {
        writeErr(piece);
    }
    writeErr("\n");
}

} // namespace morquill::console
