#pragma once

#include "support/descriptor.h"

#include <optional>
#include <string>
#include <string_view>

/// Keeping the bytes of a file that is about to be changed on the disk that they come from.
namespace morquill::system {

/// A copy of a file without a name. It takes up its space from the start, so that it can become the file
/// again when the disk is full, and it is gone with the process, whatever ends that.
class HeldBytes {
  public:
    HeldBytes() = default;

    /// True when there is a copy that can get a name.
    [[nodiscard]] bool canReplace() const noexcept { return file_.isOpen(); }
    /// Gives the copy this name, under which nothing may lie; false when the system refuses.
    [[nodiscard]] bool linkTo(const std::string& path) const noexcept;
    /// The directory that the copy lies in, wherever that has been moved; empty when the system does not say.
    [[nodiscard]] std::string directory() const;

  private:
    friend std::optional<HeldBytes> holdBytes(const std::string& path, std::string_view bytes);
    explicit HeldBytes(Descriptor file) noexcept : file_(std::move(file)) {}

    Descriptor file_;
};

/// Holds `bytes`, those of the file at `path`, with its owner and permissions, on the disk of that file.
/// Nothing when the disk has no room for them; an empty copy where there can be none: the directory is closed
/// to us, the file system (NFS, FAT) knows no files without a name, or the descriptors are used up.
[[nodiscard]] std::optional<HeldBytes> holdBytes(const std::string& path, std::string_view bytes);

} // namespace morquill::system
