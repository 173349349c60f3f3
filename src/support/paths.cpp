#include "support/paths.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace morquill {

namespace fs = std::filesystem;

namespace {

/// The path appended to the current directory, as written; nothing when that directory no longer exists.
std::optional<fs::path> belowCurrentDirectory(std::string_view path) {
    std::error_code error;
    auto absolute = fs::absolute(fs::path(path), error);
    if (error && error != std::errc::no_such_file_or_directory && error != std::errc::invalid_argument) {
        // Taken as it is, the path would lead somewhere else.
        throw std::system_error(error, "could not find out the current directory");
    }
    return error ? std::nullopt : std::optional(std::move(absolute));
}

/// True for an absolute path that is lexically normal: it has no empty component, no "." and no "..".
bool isPlainPath(std::string_view path) noexcept {
    if (!path.starts_with('/')) {
        return false;
    }
    for (std::size_t begin = 1; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const auto component = path.substr(begin, end - begin);
        if (component.empty() || component == "." || component == "..") {
            return false;
        }
        begin = end + 1;
    }
    return true;
}

} // namespace

std::string absolutePath(std::string_view path) {
    if (isPlainPath(path)) {
        return std::string(path); // nearly all are
    }
    return belowCurrentDirectory(path).value_or(fs::path(path)).lexically_normal().string();
}

std::string absoluteLocation(std::string_view path) {
    std::string text = absolutePath(path.empty() ? "." : path);
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

std::string normalisedPath(const std::string& path) {
    // Absolute first: the weakly canonical form of a relative path that does not exist stays relative and
    // would differ from another spelling of the same place.
    if (const auto absolute = belowCurrentDirectory(path)) {
        std::error_code error;
        const auto canonical = fs::weakly_canonical(*absolute, error);
        if (!error) {
            return canonical.string();
        }
    }
    return fs::path(path).lexically_normal().string();
}

std::string joinPath(std::string_view dir, std::string_view name) {
    std::string joined(dir);
    if (joined.empty() || joined.back() != '/') {
        joined += '/';
    }
    name.remove_prefix(std::min(name.find_first_not_of('/'), name.size()));
    joined += name;
    return joined;
}

std::string baseName(std::string_view path) {
    const auto slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string parentPath(std::string_view path) {
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos) {
        return {};
    }
    return std::string(slash == 0 ? "/" : path.substr(0, slash));
}

std::string_view extensionOf(std::string_view name) noexcept {
    if (const auto slash = name.rfind('/'); slash != std::string_view::npos) {
        name.remove_prefix(slash + 1);
    }
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 || name == ".." ? std::string_view{} : name.substr(dot);
}

std::string stemOf(std::string_view path) {
    std::string name = baseName(path);
    name.resize(name.size() - extensionOf(name).size());
    return name;
}

bool liesBelow(std::string_view path, std::string_view tree) noexcept {
    return !tree.empty() && path.size() > tree.size() && path.starts_with(tree) &&
           (tree.back() == '/' || path[tree.size()] == '/');
}

} // namespace morquill
