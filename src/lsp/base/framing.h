#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// The frames in which messages travel: header lines, an empty line, and as many bytes as `Content-Length`
/// says.
namespace morquill::lsp {

/// The body of one message.
struct FrameBody {
    std::string text;
};

/// Bytes that are no frame; they have been passed over.
struct FrameFault {
    std::string_view reason; ///< a text with static lifetime
};

using Frame = std::variant<FrameBody, FrameFault>;

/// Takes a stream of bytes apart. A broken frame costs itself and nothing behind it: reading goes on with the
/// next line that begins a header.
class FrameReader {
  public:
    /// The largest body that is taken, in bytes. A larger one is passed over as it comes, and held nowhere.
    static constexpr std::size_t maxBody = 64U << 20U;
    /// The most bytes of one header.
    static constexpr std::size_t maxHeader = 8U << 10U;

    /// Adds bytes of the stream.
    void feed(std::string_view bytes);
    /// The next frame; nothing until more bytes have come.
    [[nodiscard]] std::optional<Frame> next();

  private:
    [[nodiscard]] std::string_view pending() const noexcept {
        return std::string_view(buffer_).substr(begin_);
    }
    void drop(std::size_t count) noexcept;
    Frame readHeader(std::string_view header, std::size_t size);

    std::string buffer_;
    std::size_t begin_ = 0;               ///< bytes of the buffer that are done with
    std::size_t searched_ = 0;            ///< pending bytes that hold no end of a header
    std::size_t skip_ = 0;                ///< bytes to come of a body that is too large
    std::optional<std::size_t> bodySize_; ///< of the frame whose header has been read
};

/// A body in its frame.
[[nodiscard]] std::string frameOf(std::string_view body);

} // namespace morquill::lsp
