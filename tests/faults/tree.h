#pragma once

#include <map>
#include <optional>
#include <string>

#include <sys/types.h>

/// A directory as a value: taken, compared and put back.
namespace faults {

/// What stands under one name.
struct Entry {
    mode_t kind = 0;     ///< S_IFREG, S_IFDIR or S_IFLNK
    mode_t mode = 0;     ///< permission bits; 0 for a link
    std::string content; ///< of a file; the target of a link

    bool operator==(const Entry&) const = default;
};

[[nodiscard]] Entry file(std::string content, mode_t mode = 0644);
[[nodiscard]] Entry program(std::string shellText);
[[nodiscard]] Entry directory();
[[nodiscard]] Entry link(std::string target);

/// By path below the top, without the top itself; parents come before what is in them.
using Tree = std::map<std::string, Entry>;

/// Everything below a directory. Throws `std::filesystem::filesystem_error`.
[[nodiscard]] Tree takeTree(const std::string& top);

/// Makes a directory hold exactly `wanted`; only what differs is touched. Throws.
void putTree(const std::string& top, const Tree& wanted);

/// What stands under a path; nothing when there is nothing.
[[nodiscard]] std::optional<Entry> at(const Tree& tree, const std::string& path);

/// One line: what an entry is, for a message.
[[nodiscard]] std::string describe(const std::optional<Entry>& entry);

} // namespace faults
