#include "lsp/base/framing.h"

#include "support/text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace morquill::lsp {

namespace {

constexpr std::string_view lengthField = "content-length";

/// The end of a message's header.
struct HeaderEnd {
    std::size_t header = 0; ///< bytes of the header lines
    std::size_t whole = 0;  ///< the same with the empty line
};

/// The header whose empty line is the first from `from` on; nothing when that line has not come yet.
std::optional<HeaderEnd> findHeaderEnd(std::string_view text, std::size_t from) noexcept {
    for (auto feed = text.find('\n', from); feed != std::string_view::npos;
         feed = text.find('\n', feed + 1)) {
        const auto rest = text.substr(feed + 1);
        if (rest.starts_with("\r\n")) {
            return HeaderEnd{feed + 1, feed + 3};
        }
        if (rest.starts_with("\n")) {
            return HeaderEnd{feed + 1, feed + 2};
        }
    }
    return std::nullopt;
}

/// The number behind `Content-Length:`; nothing for another line.
std::optional<std::uint64_t> lengthOf(std::string_view line) noexcept {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || !equalsNoCase(trim(line.substr(0, colon)), lengthField)) {
        return std::nullopt;
    }
    const auto digits = trim(line.substr(colon + 1));
    std::uint64_t value = 0;
    const auto end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

/// True for `name: value`.
bool isField(std::string_view line) noexcept {
    const auto colon = line.find(':');
    const auto name = line.substr(0, colon);
    return colon != std::string_view::npos && !name.empty() &&
           std::all_of(name.begin(), name.end(), isNameChar);
}

} // namespace

void FrameReader::feed(std::string_view bytes) {
    const auto skipped = std::min(skip_, bytes.size());
    skip_ -= skipped;
    buffer_ += bytes.substr(skipped);
}

void FrameReader::drop(std::size_t count) noexcept {
    begin_ += count;
    searched_ = 0;
    if (begin_ == buffer_.size() || begin_ > maxHeader) {
        buffer_.erase(0, begin_);
        begin_ = 0;
    }
}

std::optional<Frame> FrameReader::next() {
    if (!bodySize_) {
        const auto text = pending();
        const auto end = findHeaderEnd(text, searched_);
        if (!end) {
            // The end of the header may begin with the last bytes that are there.
            searched_ = text.size() < 3 ? 0 : text.size() - 3;
            if (text.size() <= maxHeader) {
                return std::nullopt;
            }
            drop(text.size());
            return FrameFault{"a header is too long"};
        }
        auto frame = readHeader(text.substr(0, end->header), end->whole);
        if (!bodySize_) {
            return frame;
        }
    }
    if (pending().size() < *bodySize_) {
        return std::nullopt;
    }
    FrameBody body{std::string(pending().substr(0, *bodySize_))};
    drop(*bodySize_);
    bodySize_.reset();
    return body;
}

/// Reads the header lines and sets the size of the body. Otherwise drops what is broken, and reports it.
Frame FrameReader::readHeader(std::string_view header, std::size_t size) {
    std::optional<std::uint64_t> length;
    std::size_t lengthAt = 0;
    std::size_t at = 0;
    bool broken = false;
    for (const auto line : splitLines(header)) {
        if (const auto value = lengthOf(line)) {
            broken = broken || length.has_value();
            length = value;
            lengthAt = at;
        } else {
            broken = broken || !isField(line);
        }
        at += line.size() + 1;
    }
    if (!length) {
        drop(size);
        return FrameFault{"a header has no Content-Length"};
    }
    if (broken && lengthAt > 0) {
        drop(lengthAt);
        return FrameFault{"a header is broken"};
    }
    drop(size);
    if (*length > maxBody) {
        const auto here = std::min<std::uint64_t>(*length, pending().size());
        drop(here);
        skip_ = *length - here;
        return FrameFault{"a message is too large"};
    }
    bodySize_ = *length;
    return FrameBody{};
}

std::string frameOf(std::string_view body) {
    std::string frame = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    frame += body;
    return frame;
}

} // namespace morquill::lsp
