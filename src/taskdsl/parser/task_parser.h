#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/file_overlay.h"
#include "taskdsl/task/task_document.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

struct ParseContext;

/// Reads task files. One parser may read any number of files, one after the other; nothing is carried from
/// one to the next. A fault of the input is thrown as `DiagnosticError`, a doubtful form is told to the sink.
class TaskParser {
  public:
    /// `legacyMultiSource` tolerates `%source a,b`. Without a sink, warnings go to the log. The overlay has
    /// the texts of files that count instead of what is on the disk.
    explicit TaskParser(bool legacyMultiSource = false, WarningSink warnings = {}, FileOverlay overlay = {});

    /// Reads the file whole and parses it. Throws "could not open file: <path>" when it is no readable
    /// regular file.
    [[nodiscard]] TaskDocument parseFile(const std::string& path, const ValueMap& defines = {});
    /// The same for a path that the user named on the command line: a pipe or a terminal is read to its end,
    /// too. Includes are looked for beside that path.
    [[nodiscard]] TaskDocument parseInput(const std::string& path);
    /// Parses a text as if it were the file `path` (empty: no file, nothing is looked for beside it).
    [[nodiscard]] TaskDocument parseText(std::string_view text, const std::string& path,
                                         const ValueMap& defines = {});

    /// The tasks of a text as they are declared: without prelude, substitution and matrix, and without
    /// reading any other file (an include line is a fault). Throws `DiagnosticError`.
    [[nodiscard]] TaskDocument parseDeclaredTasks(std::string_view text);

  private:
    TaskDocument parseContent(const std::optional<std::string>& text, const std::string& path,
                              const ValueMap& defines);
    TaskDocument readDocument(std::string_view text, const std::string& path, const ValueMap& defines,
                              ParseContext& context);

    bool legacyMultiSource;
    WarningSink warnings;
    FileOverlay overlay;
    std::uint64_t nextDocumentOrder = 0;
};

} // namespace morquill::taskdsl
