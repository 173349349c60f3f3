#pragma once

#include "support/name_list.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/growth.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/fragment.h"
#include "taskdsl/generate/include_chain.h"
#include "taskdsl/generate/parser_options.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// Files, told apart by their canonical paths. Those are worked out when somebody asks: few runs do.
class EnteredFiles {
  public:
    void add(const std::string& path) { fresh_.push_back(path); }
    [[nodiscard]] bool contains(const std::string& path);

  private:
    std::vector<std::string> fresh_;
    std::set<std::string> canonical_;
};

/// The state of one run of the parser, from the first line of the main file to the last one,
/// through all included files.
struct ParseContext {
    /// A missing warning sink becomes one that does nothing, so that stages can call it without a check;
    /// `options.isFile` answers for the files of the overlay, too.
    explicit ParseContext(ParserOptions parserOptions);

    const ParserOptions options;
    IncludeChain taskChain{"task include"};
    IncludeChain yamlChain{"YAML include"};
    IncludeChain libraryChain{"fragment library include"};
    IncludeChain fragmentChain{"fragment include"};
    /// Loaded libraries by canonical path.
    std::map<std::string, std::shared_ptr<const FragmentLibrary>, std::less<>> libraries;
    /// The task files entered so far: an "extra.mq" among them is not read again.
    EnteredFiles taskFiles;
    GrowthBudget growth;
    bool followsIncludes = true; ///< false: an include line is a fault, no other file is read
    std::size_t includeCount = 0;
    std::uint64_t nextDocumentOrder = 0; ///< counts tasks and derives in the order they are met

    /// Counts an include line that is followed. Throws `DiagnosticError` beyond `limits::includes`.
    void countInclude();

    /// The text of a file, from the overlay or the disk; nothing when it cannot be read.
    [[nodiscard]] std::optional<std::string> readFile(const std::string& path) const;

    /// The file that an include target names, see `taskdsl::resolveIncludePath`.
    [[nodiscard]] std::string resolveIncludePath(std::string_view name, const std::string& baseFile) const;
};

/// The state of one document while it is being read; every included task file has its own.
struct DocumentContext {
    explicit DocumentContext(ParseContext& parseRun) : run(parseRun) {}

    ParseContext& run;
    /// The libraries that the file itself imports, by namespace alias.
    std::map<std::string, std::shared_ptr<const FragmentLibrary>, std::less<>> namespaces;
    NameList includedFiles; ///< files read for this document
    /// Keys of the settings that came from an included task file: their values were checked with it.
    KeySet inheritedSettings;
};

/// Namespace alias to library path.
[[nodiscard]] ValueMap libraryBindings(const DocumentContext& document);

} // namespace morquill::taskdsl
