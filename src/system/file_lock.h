#pragma once

#include "support/descriptor.h"

#include <optional>
#include <string>

/// Keeping a second process of this program out of files that the first one is changing.
namespace morquill::system {

enum class LockKind { shared, exclusive };

/// Locks a file or a directory until the descriptor is closed or the process ends, however that comes about;
/// children do not inherit it. Nothing when another process holds a lock that excludes this one. Where there
/// is no file, or no lock to be had (NFS locks no directories), the descriptor is closed and nothing is
/// locked.
[[nodiscard]] std::optional<Descriptor> tryLock(const std::string& path, LockKind kind);

} // namespace morquill::system
