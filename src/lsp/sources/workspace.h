#pragma once

#include "lsp/base/text_buffer.h"
#include "lsp/index/file_index.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// The sources in the folders of the workspace: which file leads to which, and their symbols. They are found
/// piece by piece while the client is at rest.
namespace morquill::lsp {

/// A name that a file gives.
struct KnownSymbol {
    std::string name;
    NameKind kind = NameKind::task;
    Position start; ///< in the unit of UTF-16 or UTF-8 that the workspace was given
    Position end;
};

struct KnownFile {
    std::vector<std::string> links; ///< canonical paths of the files that it leads to
    std::vector<KnownSymbol> symbols;
};

class Workspace {
  public:
    /// Begins anew with these folders.
    void setFolders(const std::vector<std::string>& folders, PositionUnit unit);
    /// Does a small piece of the search: lists one folder or reads one file. False when nothing is left.
    bool step();
    [[nodiscard]] bool isDone() const noexcept { return folders_.empty() && unread_.empty(); }

    /// Looks at a file of the workspace anew, or at one that has come or gone.
    void refresh(const std::string& path);
    /// The files that lead to the file of a path, through any number of others.
    [[nodiscard]] std::vector<std::string> includersOf(const std::string& path) const;
    [[nodiscard]] const std::map<std::string, KnownFile>& files() const noexcept { return files_; }

  private:
    void listFolder(const std::string& folder);
    void forget(const std::string& path);

    PositionUnit unit_ = PositionUnit::utf16;
    std::vector<std::string> folders_; ///< still to be listed
    std::vector<std::string> unread_;  ///< files still to be read
    std::map<std::string, KnownFile> files_;
    std::map<std::string, std::set<std::string>> includers_; ///< by canonical path, direct ones
};

/// True for the name of a file that may hold sources.
[[nodiscard]] bool isSourceName(std::string_view name) noexcept;
/// True for a folder that holds none: hidden ones and those of results.
[[nodiscard]] bool isPassedOver(std::string_view folderName) noexcept;

} // namespace morquill::lsp
