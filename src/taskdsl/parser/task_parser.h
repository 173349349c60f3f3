#pragma once

#include "taskdsl/generate/parser_options.h"
#include "taskdsl/task/task_document.h"

#include <optional>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// Reads task files. It holds the options of its caller and no more: every call is a run of its own
/// with its own context. A fault of the input is thrown as `DiagnosticError`, a doubtful form goes to
/// the warning sink.
class TaskParser {
  public:
    explicit TaskParser(ParserOptions options = {});

    /// Reads the file whole and parses it. Throws "could not open file: <path>" when it is no
    /// readable regular file.
    [[nodiscard]] TaskDocument parseFile(const std::string& path, const ValueMap& defines = {}) const;
    /// The same for a path that the user named on the command line: a pipe or a terminal is read to its end,
    /// too. Includes are looked for beside that path.
    [[nodiscard]] TaskDocument parseInput(const std::string& path) const;
    /// Parses a text as if it were the file `path` (empty: no file, nothing is looked for beside it).
    [[nodiscard]] TaskDocument parseText(std::string_view text, const std::string& path,
                                         const ValueMap& defines = {}) const;

    /// The tasks of a text as they are declared: without prelude, substitution and matrix, and without
    /// reading any other file (an include line is a fault). Throws `DiagnosticError`.
    [[nodiscard]] TaskDocument parseDeclaredTasks(std::string_view text) const;

  private:
    [[nodiscard]] TaskDocument parseContent(std::optional<std::string> text, const std::string& path,
                                            const ValueMap& defines) const;
    [[nodiscard]] TaskDocument parse(const TextSlice& text, const std::string& path,
                                     const ValueMap& defines) const;

    ParserOptions options_;
};

} // namespace morquill::taskdsl
