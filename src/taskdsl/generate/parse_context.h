#pragma once

#include "support/name_list.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/growth.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/file_overlay.h"
#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/include_chain.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace morquill::taskdsl {

/// What one document brings along while it is being read.
struct DocumentContext {
    /// The libraries that the file itself imports, by namespace alias.
    std::map<std::string, std::shared_ptr<const FragmentLibrary>, std::less<>> namespaces;
    NameList includedFiles; ///< files read for this document
    /// Keys of the settings that an included task file brought along: their values were looked at with it.
    KeySet inheritedSettings;
};

/// No file has another text than the disk.
inline const FileOverlay noOverlay;

/// Namespace alias to library path.
[[nodiscard]] ValueMap libraryBindings(const DocumentContext& document);

/// The state of one run of the parser: it lives from the first line of the main file to the last one, through
/// all files that are included.
struct ParseContext {
    explicit ParseContext(const WarningSink& sink, const FileOverlay& files = noOverlay)
        : warnings(sink), overlay(files) {}

    const WarningSink& warnings;
    const FileOverlay& overlay;
    IncludeChain taskChain{"task include"};
    IncludeChain yamlChain{"YAML include"};
    IncludeChain libraryChain{"fragment library include"};
    IncludeChain fragmentChain{"fragment include"};
    /// Loaded libraries by canonical path.
    std::map<std::string, std::shared_ptr<const FragmentLibrary>, std::less<>> libraries;
    /// Canonical paths of the task files entered so far: an "extra.mq" among them is not looked into again.
    std::set<std::string> taskFiles;
    GrowthBudget growth;
    bool followsIncludes = true; ///< false: an include line is a fault, no other file is read
    std::size_t includeCount = 0;
    DocumentContext document; ///< of the file being read; an included task file puts its own in its place

    /// Counts an include line that is followed. Throws `DiagnosticError` beyond `limits::includes`.
    void countInclude();

    /// True for a regular file, on the disk or in the overlay.
    [[nodiscard]] bool hasFile(const std::string& path) const;
    /// The text of a file, from the overlay or the disk; nothing when it cannot be read.
    [[nodiscard]] std::optional<std::string> readFile(const std::string& path) const;
};

} // namespace morquill::taskdsl
