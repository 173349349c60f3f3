#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A template is an ordinary task file seen as text: a head and `$name` blocks. Nothing here parses the task
/// language beyond what is needed to find the blocks.
namespace morquill::templates {

/// A walk over the lines of a block that knows which of them are text of a heredoc.
class HeredocWalk {
  public:
    /// Moves behind the next line. True when it is text of a heredoc (its terminator line included); a
    /// directive line whose value begins with `<<` opens one and is itself no such text. An empty terminator
    /// is "EOF".
    [[nodiscard]] bool takesLine(std::string_view line);

  private:
    std::optional<std::string> terminator_; ///< of the heredoc that is open
};

/// A template taken apart.
struct TemplateParts {
    std::vector<std::string> headLines;  ///< the lines before the first block
    std::vector<std::string> blockOrder; ///< block names in order of first appearance
    /// Block name to its lines, the `$name` line first. Of two blocks with one name the later counts.
    std::map<std::string, std::vector<std::string>, std::less<>> blocks;
};

/// Splits a text into head and blocks. A text that ends in a line feed has an empty last line. No line inside
/// a heredoc opens a block, and neither does a `$` without a name.
[[nodiscard]] TemplateParts splitTemplateBlocks(std::string_view text);

/// What happens to the names that are filled in when a task is run: those of the input and the task, and the
/// placeholders of its source, which may not be defined.
enum class BuiltIns : std::uint8_t { keep, drop };

/// The names in square brackets (pattern `\[([^\]]+)\]`), sorted, each once.
[[nodiscard]] std::vector<std::string> scanPlaceholders(std::string_view text, BuiltIns builtIns);

/// The text with one setting `autorun: true` in its head: the first unindented `autorun` key is rewritten and
/// later ones are dropped; a text without any head line gets one.
[[nodiscard]] std::string withAutorun(std::string_view text);

} // namespace morquill::templates
