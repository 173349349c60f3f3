#include "lsp/sources/workspace.h"

#include "console/library_file.h"
#include "lsp/sources/source_files.h"
#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"
#include "taskdsl/base/extra_files.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/include_path.h"

#include <algorithm>
#include <utility>

namespace morquill::lsp {

namespace {

/// Kinds of names that are found by search.
bool isSymbol(NameKind kind) noexcept {
    return kind == NameKind::task || kind == NameKind::define || kind == NameKind::axis ||
           kind == NameKind::fragment || kind == NameKind::plot || kind == NameKind::derive;
}

/// What a text gives and where it leads.
KnownFile summarise(const std::string& path, std::string text, PositionUnit unit) {
    KnownFile known;
    const TextBuffer buffer(std::move(text));
    const auto index = indexFile(buffer.text(), fileForm(fileKind(path)));
    for (const auto& link : index.links) {
        if (link.kind != FileLink::Kind::geometry && link.kind != FileLink::Kind::otherFile) {
            known.links.push_back(
                normalisedPath(taskdsl::resolveIncludePath(link.target, path, console::findLibraryFile)));
        }
    }
    if (fileKind(path) == FileKind::tasks) {
        for (const auto name : taskdsl::extraFileNames) {
            known.links.push_back(normalisedPath(joinPath(parentPath(path), name)));
        }
    }
    PositionWalk walk(buffer, unit);
    for (const auto& o : index.occurrences) {
        if (o.role == NameRole::definition && isSymbol(o.kind)) {
            known.symbols.push_back(
                {std::string(nameOf(buffer.text(), o)), o.kind, walk.at(o.begin), walk.at(o.end())});
        }
    }
    return known;
}

} // namespace

bool isSourceName(std::string_view name) noexcept {
    using taskdsl::IncludeTarget;
    const auto kind = taskdsl::kindOfPath(name);
    return name == taskdsl::extraValuesName || kind == IncludeTarget::taskFile ||
           kind == IncludeTarget::library || kind == IncludeTarget::fragmentFile;
}

bool isPassedOver(std::string_view name) noexcept {
    return name.starts_with('.') || name == "Results" || name == "results";
}

void Workspace::setFolders(const std::vector<std::string>& folders, PositionUnit unit) {
    unit_ = unit;
    folders_ = folders;
    unread_.clear();
    files_.clear();
    includers_.clear();
}

bool Workspace::step() {
    if (!folders_.empty()) {
        const std::string folder = std::move(folders_.back());
        folders_.pop_back();
        listFolder(folder);
    } else if (!unread_.empty()) {
        const std::string path = std::move(unread_.back());
        unread_.pop_back();
        refresh(path);
    }
    return !isDone();
}

/// Below a case of a project lie the directories of its blocks, which hold no sources but many files.
void Workspace::listFolder(const std::string& folder) {
    const auto entries = readDirectory(folder);
    if (!entries) {
        return;
    }
    std::vector<std::string> inner;
    bool isCase = false;
    for (const auto& [name, kind] : *entries) {
        if (isSourceName(name)) {
            isCase = isCase || name == baseName(folder) + ".mq";
            if (kind == EntryKind::file) {
                unread_.push_back(joinPath(folder, name));
            }
        } else if (kind == EntryKind::directory && !isPassedOver(name)) {
            inner.push_back(joinPath(folder, name));
        }
    }
    const auto siblings = isCase ? readDirectory(parentPath(folder)) : std::nullopt;
    isCase = siblings && std::any_of(siblings->begin(), siblings->end(), [](const DirectoryEntry& entry) {
                 return entry.name.ends_with(".projmq");
             });
    if (!isCase) {
        folders_.insert(folders_.end(), inner.begin(), inner.end());
    }
}

void Workspace::forget(const std::string& path) {
    const auto known = files_.find(path);
    if (known == files_.end()) {
        return;
    }
    for (const auto& link : known->second.links) {
        includers_[link].erase(path);
    }
    files_.erase(known);
}

void Workspace::refresh(const std::string& path) {
    forget(path);
    auto text = readTextFile(path);
    if (!text) {
        return;
    }
    auto known = summarise(path, std::move(*text), unit_);
    for (const auto& link : known.links) {
        includers_[link].insert(path);
    }
    files_[path] = std::move(known);
}

std::vector<std::string> Workspace::includersOf(const std::string& path) const {
    std::vector<std::string> found;
    std::set<std::string> seen{normalisedPath(path)};
    std::vector<std::string> open(seen.begin(), seen.end());
    while (!open.empty()) {
        const auto direct = includers_.find(open.back());
        open.pop_back();
        if (direct == includers_.end()) {
            continue;
        }
        for (const auto& includer : direct->second) {
            const auto canonical = normalisedPath(includer);
            if (seen.insert(canonical).second) {
                found.push_back(includer);
                open.push_back(canonical);
            }
        }
    }
    return found;
}

} // namespace morquill::lsp
