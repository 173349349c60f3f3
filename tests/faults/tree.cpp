#include "faults/tree.h"

#include "support/file.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include <sys/stat.h>
#include <unistd.h>

namespace faults {

namespace fs = std::filesystem;

namespace {

Entry entryAt(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        throw std::runtime_error("cannot look at " + path);
    }
    Entry entry{.kind = info.st_mode & S_IFMT, .mode = info.st_mode & 07777, .content = {}};
    if (S_ISLNK(info.st_mode)) {
        entry.mode = 0;
        entry.content = fs::read_symlink(path).string();
    } else if (S_ISREG(info.st_mode)) {
        entry.content = morquill::readTextFile(path).value_or("(unreadable)");
    }
    return entry;
}

void makeEntry(const std::string& path, const Entry& entry) {
    if (entry.kind == S_IFLNK) {
        fs::create_symlink(entry.content, path);
        return;
    }
    if (entry.kind == S_IFDIR) {
        fs::create_directories(path);
    } else {
        fs::create_directories(fs::path(path).parent_path());
        if (!morquill::writeTextFile(path, entry.content)) {
            throw std::runtime_error("cannot write " + path);
        }
    }
    fs::permissions(path, static_cast<fs::perms>(entry.mode));
}

} // namespace

Entry file(std::string content, mode_t mode) {
    return {.kind = S_IFREG, .mode = mode, .content = std::move(content)};
}

Entry program(std::string shellText) {
    return file("#!/bin/sh\n" + std::move(shellText), 0755);
}

Entry directory() {
    return {.kind = S_IFDIR, .mode = 0755, .content = {}};
}

Entry link(std::string target) {
    return {.kind = S_IFLNK, .mode = 0, .content = std::move(target)};
}

Tree takeTree(const std::string& top) {
    Tree tree;
    for (const auto& found : fs::recursive_directory_iterator(top)) {
        tree.emplace(found.path().string().substr(top.size() + 1), entryAt(found.path().string()));
    }
    return tree;
}

void putTree(const std::string& top, const Tree& wanted) {
    const Tree standing = takeTree(top);
    for (const auto& [path, entry] : standing) {
        const auto found = wanted.find(path);
        // What stays in its kind is written over: a directory keeps what is in it.
        if (found == wanted.end() || found->second.kind != entry.kind ||
            (entry.kind == S_IFLNK && found->second != entry)) {
            fs::remove_all(top + "/" + path);
        }
    }
    for (const auto& [path, entry] : wanted) {
        std::error_code gone;
        const bool stands = fs::exists(fs::symlink_status(top + "/" + path, gone));
        if (!stands || at(standing, path) != entry) {
            makeEntry(top + "/" + path, entry);
        }
    }
}

std::optional<Entry> at(const Tree& tree, const std::string& path) {
    const auto found = tree.find(path);
    return found == tree.end() ? std::nullopt : std::optional(found->second);
}

std::string describe(const std::optional<Entry>& entry) {
    if (!entry) {
        return "nothing";
    }
    const std::string kind = entry->kind == S_IFREG   ? "a file"
                             : entry->kind == S_IFDIR ? "a directory"
                                                      : "a link";
    constexpr std::size_t shown = 60;
    std::string start = entry->content.substr(0, shown);
    std::replace(start.begin(), start.end(), '\n', '|');
    return kind + " with mode " + std::to_string(entry->mode) + " and '" + start + "' of " +
           std::to_string(entry->content.size()) + " bytes";
}

} // namespace faults
