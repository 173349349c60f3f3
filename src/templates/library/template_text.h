#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A template is an ordinary task file seen as text: a head and `$name` blocks. The task language is read
/// only as far as needed to find the blocks.
namespace morquill::templates {

/// Follows the lines of a block and knows which of them belong to a heredoc.
class HeredocWalk {
  public:
    /// Takes the next line and returns whether it belongs to a heredoc, whose
    /// terminator line does. The directive line that opens one, with a value
    /// that begins with `<<`, does not.
    [[nodiscard]] bool takesLine(std::string_view line);

  private:
    std::optional<std::string> terminator_; ///< of the open heredoc
};

/// The parts of a template.
struct TemplateParts {
    std::vector<std::string> headLines;  ///< the lines before the first block
    std::vector<std::string> blockOrder; ///< block names in order of first appearance
    /// Block name to its lines, the `$name` line first. Of two blocks with one name, the later counts.
    std::map<std::string, std::vector<std::string>, std::less<>> blocks;
};

/// Splits a text into head and blocks. A text that ends in a line feed has an empty last line. Neither a line
/// inside a heredoc nor a `$` without a name opens a block.
[[nodiscard]] TemplateParts splitTemplateBlocks(std::string_view text);

/// Whether to include the names that are filled in when a task is run: those of the input and the task, and
/// the placeholders of its source. They cannot be defined.
enum class BuiltIns : std::uint8_t { keep, drop };

/// Returns the names in square brackets (pattern `\[([^\]]+)\]`), sorted, each once.
[[nodiscard]] std::vector<std::string> scanPlaceholders(std::string_view text, BuiltIns builtIns);

/// Returns the text with `autorun: true` in its head: the first unindented `autorun` key there is rewritten
/// and later ones are dropped; an empty head gets the setting. A head without the key stays as it is.
[[nodiscard]] std::string withAutorun(std::string_view text);

} // namespace morquill::templates
