#include "taskdsl/generate/prelude.h"

#include "support/text.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/define_block.h"
#include "taskdsl/generate/fragment_library.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/include_path.h"
#include "taskdsl/generate/matrix.h"
#include "taskdsl/generate/removed_include.h"
#include "taskdsl/generate/yaml_section.h"
#include "taskdsl/task/directive_reader.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view defineKeyword = "define:";
constexpr std::string_view matrixKeyword = "matrix:";

/// A task header, a block or a loop: the body of the file begins here.
bool beginsBody(std::string_view text) {
    return !taskHeaderName(text).empty() || isBlockKeyword(text) || parseForeachHeader(text).valid;
}

bool isIndented(std::string_view line) noexcept {
    return line.starts_with(' ') || line.starts_with('\t');
}

/// `key: value`. A directive is none, also when its value holds a colon.
bool isKeyLine(std::string_view text) noexcept {
    const auto colon = text.find(':');
    return colon != std::string_view::npos && !trim(text.substr(0, colon)).empty() && !text.starts_with('%');
}

class PreludeReader {
  public:
    PreludeReader(const std::vector<std::string_view>& allLines, std::size_t start, const std::string& file,
                  ParseContext& parseContext)
        : lines(allLines), index(start), path(file), context(parseContext) {}

    /// Reads on to the first line that is no part of the prelude and gives its index.
    std::size_t read() {
        while (index < lines.size() && readLine()) {
        }
        return index;
    }
    PreludeResult take() { return std::move(result); }

  private:
    /// Moves behind the line or section at `index`; false, and no move, where the prelude ends.
    bool readLine() {
        warnIfRemovedInclude();
        const auto text = cleanLine(lines[index]);
        if (text.empty()) {
            ++index;
            return true;
        }
        if (beginsBody(text)) {
            return false;
        }
        if (beginsBlock(text, "&INCLUDE")) {
            return readInclude(text);
        }
        if (text.starts_with(defineKeyword)) {
            const std::size_t first = index + 1;
            for (auto& [key, value] : parseDefineBlock(lines, first, index)) {
                result.defines.insert_or_assign(key, std::move(value));
            }
            requireNoDirective(first);
            return true;
        }
        if (text.starts_with(matrixKeyword)) {
            const std::size_t first = index + 1;
            mergeMatrixAxes({result.matrixAxes, result.matrixValues}, parseMatrixBlock(lines, first, index),
                            NameClash::takeNew);
            requireNoDirective(first);
            return true;
        }
        if (isIndented(lines[index]) || !isKeyLine(text)) {
            return false;
        }
        readSection();
        return true;
    }

    /// Directives under a missing task header are no entries of the section above, lines from `first` on.
    void requireNoDirective(std::size_t first) const {
        for (std::size_t i = first; i < index; ++i) {
            if (isKnownDirective(lines[i])) {
                throw misplacedDirective(path, i + 1);
            }
        }
    }

    void warnIfRemovedInclude() const {
        if (const auto raw = trim(lines[index]); isHashInclude(raw)) {
            warnHashInclude(raw, path, context.warnings);
        }
    }

    bool readInclude(std::string_view text) {
        if (!context.followsIncludes) {
            return false;
        }
        ParenthesisCount parentheses;
        if (!parentheses.read(text) || !parentheses.balanced()) {
            return false; // its arguments go on behind this line: the include pass gathers them
        }
        const auto include = parseIncludeLine(text);
        if (include.kind == IncludeTarget::yamlFile) {
            mergeMissing(parseYamlInclude(searchName(include), path, context));
        } else if (include.kind == IncludeTarget::library && !include.alias.empty()) {
            bindLibrary(include.alias, searchName(include), path, "", context);
        } else {
            return false;
        }
        ++index;
        return true;
    }

    void mergeMissing(PreludeResult included) {
        result.settings.merge(included.settings);
        result.defines.merge(included.defines);
        result.collections.merge(included.collections);
        mergeMatrixAxes({result.matrixAxes, result.matrixValues}, included.matrixAxes, NameClash::keepOld);
    }

    /// Takes the lines of a YAML section. A nested key may be called "define" or "matrix": those begin a
    /// section of their own only at the margin. A `%` at the margin is a directive whose task header is
    /// missing: to the YAML library the document ends there, and what follows is not read.
    void readSection() {
        const std::size_t first = index;
        std::string text;
        for (; index < lines.size() && (index == first || !endsSection(lines[index])); ++index) {
            if (lines[index].starts_with('%')) {
                throw misplacedDirective(path, index + 1);
            }
            if (index != first) {
                warnIfRemovedInclude();
            }
            text += lines[index];
            text += '\n';
        }
        readYamlSection(text, path, first + 1, result.settings, result.collections);
    }

    static bool endsSection(std::string_view line) {
        const auto text = cleanLine(line);
        return beginsBody(text) || beginsBlock(text, "&INCLUDE") || line.starts_with(defineKeyword) ||
               line.starts_with(matrixKeyword);
    }

    const std::vector<std::string_view>& lines;
    std::size_t index;
    const std::string& path;
    ParseContext& context;
    PreludeResult result;
};

/// `---` or `...` at the margin, alone or with more behind a blank.
bool isDocumentMarker(std::string_view line) noexcept {
    return matchWord(line, "---") || matchWord(line, "...");
}

/// A YAML file has no body: what stands behind its prelude is not read. `number` counts from 1.
void reportUnreadLine(std::string_view line, std::size_t number, const std::string& path,
                      const ParseContext& context) {
    const auto text = cleanLine(line);
    if (text.starts_with('%')) {
        throw misplacedDirective(path, number);
    }
    context.warnings("Warning: Included YAML file is read up to line " + std::to_string(number) +
                     " only, where '" + std::string(text) + "' ends its prelude: " + path);
}

} // namespace

PreludeResult parsePrelude(const std::vector<std::string_view>& lines, std::size_t start, std::size_t& next,
                           const std::string& path, ParseContext& context) {
    PreludeReader reader(lines, start, path, context);
    next = reader.read();
    return reader.take();
}

void requireWholePrelude(const std::vector<std::string_view>& lines, std::size_t next,
                         std::string_view path) {
    if (next == lines.size() || !isDocumentMarker(lines[next])) {
        return;
    }
    for (std::size_t i = next + 1; i < lines.size(); ++i) {
        const auto text = cleanLine(lines[i]);
        if (beginsBody(text) || beginsBlock(text, "&INCLUDE")) {
            return;
        }
        if (!text.empty() && !isDocumentMarker(lines[i])) {
            throw DiagnosticError(
                shownPath(path) + ":" + std::to_string(next + 1) +
                ": a YAML document marker ends the prelude; the lines behind it are not read");
        }
    }
}

PreludeResult parseYamlInclude(const std::string& target, const std::string& base, ParseContext& context) {
    const auto path = resolveIncludePath(target, base);
    if (path.empty()) {
        context.warnings("Warning: Empty path in &INCLUDE directive.");
        return {};
    }
    const auto entry = enterFile(context.yamlChain, path);
    if (!context.hasFile(path)) {
        context.warnings("Warning: Included YAML file not found: " + path);
        return {};
    }
    const auto text = context.readFile(path);
    if (!text) {
        context.warnings("Warning: Cannot open included YAML file: " + path);
        return {};
    }
    context.countInclude();
    context.document.includedFiles.add(path);
    const auto lines = splitLines(skipByteOrderMark(*text));
    std::size_t next = 0;
    auto prelude = parsePrelude(lines, 0, next, path, context);
    if (next < lines.size()) {
        reportUnreadLine(lines[next], next + 1, path, context);
    }
    return prelude;
}

void mergePrelude(TaskDocument& document, const PreludeResult& prelude, NameClash clash) {
    for (const auto& [key, value] : prelude.settings) {
        if (clash == NameClash::takeNew) {
            document.settings.insert_or_assign(key, value);
        } else {
            document.settings.try_emplace(key, value);
        }
    }
    mergeDefines(document, prelude.defines, clash);
    mergeMatrixAxes(document, prelude.matrixAxes, clash);
}

} // namespace morquill::taskdsl
