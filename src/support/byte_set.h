#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace morquill {

/// A set of bytes, asked by table: one look per byte, however many are in the set.
class ByteSet {
  public:
    /// The bytes of a text.
    constexpr explicit ByteSet(std::string_view bytes) noexcept {
        for (const char c : bytes) {
            holds_[static_cast<unsigned char>(c)] = true;
        }
    }
    /// The bytes for which the test holds.
    constexpr explicit ByteSet(bool (*test)(char)) noexcept {
        for (std::size_t byte = 0; byte < holds_.size(); ++byte) {
            holds_[byte] = test(static_cast<char>(byte));
        }
    }

    [[nodiscard]] constexpr bool contains(char c) const noexcept {
        return holds_[static_cast<unsigned char>(c)];
    }
    /// True when a byte of the text is in the set.
    [[nodiscard]] constexpr bool meets(std::string_view text) const noexcept {
        for (const char c : text) {
            if (contains(c)) {
                return true;
            }
        }
        return false;
    }

  private:
    std::array<bool, 256> holds_{};
};

} // namespace morquill
