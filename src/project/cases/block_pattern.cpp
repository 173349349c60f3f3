#include "project/cases/block_pattern.h"

#include "support/directory.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/paths.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fnmatch.h>

namespace morquill::project {

namespace {

std::string normalisedPattern(std::string_view pattern) {
    std::string text(pattern);
    std::replace(text.begin(), text.end(), '\\', '/');
    text.erase(text.find_last_not_of('/') + 1);
    return text;
}

std::vector<std::string> matchNames(const std::string& blockDir, const std::string& pattern,
                                    MatchedKind kind) {
    auto names = listDirectoryEntries(blockDir, pattern);
    if (kind == MatchedKind::directories) {
        std::erase_if(names, [&](const std::string& name) { return !lookUpDirectory(joinPath(blockDir, name)); });
    }
    return names;
}

std::vector<std::string> matchTree(const std::string& blockDir, const std::string& pattern) {
    std::vector<std::string> matches;
    if (!lookUpDirectory(blockDir)) {
        return matches;
    }
    const std::size_t prefix = joinPath(blockDir, "").size();
    walkTree(blockDir, WalkOrder::byName, [&](const std::string& path, EntryKind kind) {
        const bool maybeFile = kind == EntryKind::file || kind == EntryKind::link;
        if (maybeFile && ::fnmatch(pattern.c_str(), path.c_str() + prefix, FNM_PATHNAME) == 0 &&
            lookUpRegularFile(path)) {
            matches.push_back(path.substr(prefix));
        }
        if (kind == EntryKind::unreadable && errno != ENOENT && errno != ENOTDIR) {
            throw std::system_error(lastSystemError(), "could not read directory " + path);
        }
        return true;
    });
    std::sort(matches.begin(), matches.end());
    return matches;
}

} // namespace

std::vector<std::string> expandBlockPattern(const std::string& blockDir, std::string_view pattern,
                                            MatchedKind kind) {
    const auto normalised = normalisedPattern(pattern);
    if (normalised.empty()) {
        return {};
    }
    return normalised.find('/') == std::string::npos ? matchNames(blockDir, normalised, kind)
                                                     : matchTree(blockDir, normalised);
}

} // namespace morquill::project
