#pragma once

#include "support/descriptor.h"

#include <optional>
#include <string>
#include <string_view>

/// Keeps the bytes of a file that is about to change, on the same disk.
namespace morquill::system {

/// A copy of a file that has no name. It occupies its space from the start, so it can become the file again
/// even on a full disk, and it disappears with the process, however that ends.
class HeldBytes {
  public:
    HeldBytes() = default;

    /// True when there is a copy, which can be given a name.
    [[nodiscard]] bool canReplace() const noexcept { return file_.isOpen(); }
    /// Names the copy `path`, where nothing may exist; false when the system refuses.
    [[nodiscard]] bool linkTo(const std::string& path) const noexcept;
    /// The directory of the copy, even after that was moved; empty when the system does not report it.
    [[nodiscard]] std::string directory() const;

  private:
    friend std::optional<HeldBytes> holdBytes(const std::string& path, std::string_view bytes);
    explicit HeldBytes(Descriptor file) noexcept : file_(std::move(file)) {}

    Descriptor file_;
};

/// Keeps `bytes`, the content of the file at `path`, with that file's owner and
/// permissions, on its disk. Returns nothing when the disk has no room; returns an
/// object without a copy when none can be made: the directory is not writable, the
/// file system (NFS, FAT) has no files without a name, or the descriptors are used up.
[[nodiscard]] std::optional<HeldBytes> holdBytes(const std::string& path, std::string_view bytes);

} // namespace morquill::system
