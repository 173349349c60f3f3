#include "support/paths.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

#include <dirent.h>
#include <fnmatch.h>

namespace morquill {

namespace fs = std::filesystem;

std::string absolutePath(std::string_view path) {
    std::error_code error;
    const auto absolute = fs::absolute(fs::path(path), error);
    return (error ? fs::path(path) : absolute).lexically_normal().string();
}

std::string absoluteLocation(std::string_view path) {
    std::error_code error;
    std::string text = absolutePath(path.empty() ? fs::current_path(error).string() : std::string(path));
    if (text.empty()) { // no current directory any more
        return ".";
    }
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
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

bool anyDirectoryEntry(const std::string& dir, const std::function<bool(const std::string&)>& accept) {
    const auto close = [](DIR* open) { ::closedir(open); };
    const std::unique_ptr<DIR, decltype(close)> open(::opendir(dir.c_str()), close);
    if (!open) {
        return false;
    }
    while (const dirent* entry = ::readdir(open.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && accept(name)) {
            return true;
        }
    }
    return false;
}

bool liesBelow(std::string_view path, std::string_view tree) noexcept {
    return !tree.empty() && path.size() > tree.size() && path.starts_with(tree) &&
           (tree.back() == '/' || path[tree.size()] == '/');
}

std::vector<std::string> listDirectoryEntries(const std::string& dir, const std::string& pattern) {
    std::vector<std::string> names;
    static_cast<void>(anyDirectoryEntry(dir, [&](const std::string& name) {
        if (::fnmatch(pattern.c_str(), name.c_str(), FNM_PATHNAME) == 0) {
            names.push_back(name);
        }
        return false;
    }));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace morquill
