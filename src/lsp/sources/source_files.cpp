#include "lsp/sources/source_files.h"

#include "console/library_file.h"
#include "lsp/base/uri.h"
#include "support/file.h"
#include "support/paths.h"
#include "taskdsl/base/extra_files.h"
#include "taskdsl/generate/include_path.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace morquill::lsp {

FileForm fileForm(FileKind kind) noexcept {
    switch (kind) {
    case FileKind::library:
        return FileForm::library;
    case FileKind::fragment:
        return FileForm::fragment;
    case FileKind::values:
        return FileForm::values;
    case FileKind::tasks:
        break;
    }
    return FileForm::tasks;
}

namespace {

/// Makes everything but the text.
void makeIndex(SourceFile& file) {
    file.kind = fileKind(file.path);
    file.index = indexFile(file.text(), fileForm(file.kind));
    file.definitions.clear();
    for (std::uint32_t i = 0; i < file.index.occurrences.size(); ++i) {
        if (file.index.occurrences[i].role == NameRole::definition) {
            file.definitions.emplace(file.name(file.index.occurrences[i]), i);
        }
    }
    file.linked.clear();
    for (const auto& link : file.index.links) {
        file.linked.push_back(taskdsl::resolveIncludePath(link.target, file.path, console::findLibraryFile));
    }
}

std::int64_t writtenAt(const std::string& path) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(path, error);
    return error ? -1 : static_cast<std::int64_t>(time.time_since_epoch().count());
}

} // namespace

const SourceFile& SourceFiles::of(const OpenText& text) {
    SourceFile& file = open_[text.uri];
    if (file.stamp == text.stamp && file.buffer == &text.buffer) {
        return file;
    }
    file.uri = text.uri;
    file.path = text.path;
    file.buffer = &text.buffer;
    file.stamp = text.stamp;
    makeIndex(file);
    return file;
}

const SourceFile* SourceFiles::ofPath(const std::string& path) {
    if (path.empty()) {
        return nullptr;
    }
    const OpenText* open = texts_.findPath(path);
    return open == nullptr ? readDisk(path) : &of(*open);
}

const SourceFile* SourceFiles::readDisk(const std::string& path) {
    const auto time = writtenAt(path);
    const auto known = disk_.find(path);
    if (known != disk_.end() && known->second.diskTime == time) {
        return &known->second;
    }
    auto text = time == -1 ? std::nullopt : readTextFile(path);
    if (!text) {
        disk_.erase(path);
        return nullptr;
    }
    SourceFile& file = disk_[path];
    file.uri = uriOfPath(path);
    file.path = path;
    file.ownBuffer = std::make_unique<TextBuffer>(std::move(*text));
    file.buffer = file.ownBuffer.get();
    file.diskTime = time;
    makeIndex(file);
    return &file;
}

std::vector<const SourceFile*> SourceFiles::closure(const SourceFile& root) {
    std::vector<const SourceFile*> files{&root};
    std::set<const SourceFile*> seen{&root};
    const auto add = [&](const std::string& path) {
        const SourceFile* file = ofPath(path);
        if (file != nullptr && seen.insert(file).second) {
            files.push_back(file);
        }
    };
    for (std::size_t i = 0; i < files.size(); ++i) {
        const SourceFile& file = *files[i];
        if (file.kind == FileKind::tasks && !file.path.empty()) {
            for (const auto name : taskdsl::extraFileNames) {
                add(joinPath(parentPath(file.path), name));
            }
        }
        for (std::size_t link = 0; link < file.linked.size(); ++link) {
            const auto kind = file.index.links[link].kind;
            if (kind != FileLink::Kind::geometry && kind != FileLink::Kind::otherFile) {
                add(file.linked[link]);
            }
        }
    }
    return files;
}

std::vector<const SourceFile*> SourceFiles::documentFiles(const SourceFile& file) {
    auto files = closure(file);
    std::set<const SourceFile*> seen(files.begin(), files.end());
    const auto addRoot = [&](const SourceFile* root) {
        if (root == nullptr || root == &file) {
            return;
        }
        const auto reached = closure(*root);
        if (std::find(reached.begin(), reached.end(), &file) == reached.end()) {
            return;
        }
        for (const SourceFile* one : reached) {
            if (seen.insert(one).second) {
                files.push_back(one);
            }
        }
    };
    for (const auto& [uri, text] : texts_.texts()) {
        addRoot(&of(text));
    }
    if (!file.path.empty()) {
        for (const auto& path : workspace_.includersOf(file.path)) {
            addRoot(ofPath(path));
        }
    }
    return files;
}

} // namespace morquill::lsp
