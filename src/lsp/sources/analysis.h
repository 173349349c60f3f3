#pragma once

#include "lint/report.h"
#include "lsp/sources/text_store.h"
#include "taskdsl/task/task_document.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the program knows of an open text: lint's report, the parser's warnings and the document. A text is
/// read once for each of its versions.
namespace morquill::lsp {

/// What a file is, told from its name.
enum class FileKind : std::uint8_t {
    tasks,    ///< a task file or a project template; also a text without a known name
    library,  ///< `.mqlib`
    fragment, ///< `.mqfrag`
    values,   ///< `.yaml` and `.yml`
};

[[nodiscard]] FileKind fileKind(std::string_view path) noexcept;

struct Analysis {
    std::uint64_t stamp = 0; ///< of the store when this was made
    lint::LintFileReport report;
    std::vector<std::string> warnings; ///< of the parser, in their order
    std::optional<taskdsl::TaskDocument>
        document; ///< nothing for a text that has a fault, or is no task file
    /// Other files that were read or looked for; nothing when that is not known, because reading ended early.
    std::optional<std::vector<std::string>> files;
};

/// The analyses of the open texts, made when they are asked for.
class Analyses {
  public:
    explicit Analyses(const TextStore& texts) : texts_(texts) {}

    /// The analysis of the text as it is now, with the other open texts as they are now.
    [[nodiscard]] const Analysis& of(const OpenText& text);
    /// True when a change of the file of `path` may change what is known of the text.
    [[nodiscard]] bool dependsOn(const OpenText& text, const std::string& path) const;
    void forget(const std::string& uri) { analyses_.erase(uri); }
    /// How many texts have been read since the start.
    [[nodiscard]] std::size_t count() const noexcept { return count_; }

  private:
    [[nodiscard]] bool isCurrent(const OpenText& text, const Analysis& analysis) const;

    const TextStore& texts_;
    std::map<std::string, Analysis, std::less<>> analyses_; ///< by URI
    std::size_t count_ = 0;
};

} // namespace morquill::lsp
