#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What every target needs: its input as text, and a way to say which law is broken. An exception that leaves
/// a target ends it as well, so a target catches nothing but what its reader promises.
namespace morquill::fuzz {

/// Returns the input as text.
[[nodiscard]] inline std::string_view textOf(const std::uint8_t* data, std::size_t size) noexcept {
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the program with the law that is broken and the text that breaks it.
[[noreturn]] inline void fail(std::string_view law, std::string_view text) {
    (void)std::fprintf(stderr, "broken: %.*s\n%.*s\n", static_cast<int>(law.size()), law.data(),
                       static_cast<int>(text.size()), text.data());
    std::abort();
}

/// Fails unless the law holds.
inline void require(bool holds, std::string_view law, std::string_view text) {
    if (!holds) {
        fail(law, text);
    }
}

} // namespace morquill::fuzz
