#include "taskdsl/generate/prelude.h"

#include "support/text.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/define_block.h"
#include "taskdsl/generate/fragment_library.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/matrix.h"
#include "taskdsl/generate/removed_include.h"
#include "taskdsl/generate/yaml_section.h"
#include "taskdsl/task/directive_reader.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view defineKeyword = "define:";
constexpr std::string_view matrixKeyword = "matrix:";

/// `key: value`. A directive is not one, even when its value holds a colon.
bool isKeyLine(std::string_view text) noexcept {
    const auto colon = text.find(':');
    return colon != std::string_view::npos && !trim(text.substr(0, colon)).empty() && !text.starts_with('%');
}

class PreludeReader {
  public:
    PreludeReader(const std::vector<SourceLine>& allLines, const std::string& file,
                  DocumentContext& parseContext)
        : lines_(allLines), path_(file), context_(parseContext) {}

    /// Reads on to the first line that is not part of the prelude.
    TakenLines<PreludeResult> read() {
        while (index_ < lines_.size() && readLine()) {
        }
        return {std::move(result_), index_};
    }

  private:
    /// Moves past the line or section at `index_`; false, and no move, where the prelude ends.
    bool readLine() {
        warnIfRemovedInclude();
        const auto text = lines_[index_].clean();
        if (text.empty()) {
            ++index_;
            return true;
        }
        if (beginsBody(lines_[index_].kind())) {
            return false;
        }
        if (lines_[index_].kind() == LineKind::include) {
            return readInclude(text);
        }
        if (text.starts_with(defineKeyword)) {
            auto block = parseDefineBlock(lines_, index_ + 1);
            for (auto& [key, value] : block.value) {
                result_.defines.insert_or_assign(key, std::move(value));
            }
            passSection(block.next);
            return true;
        }
        if (text.starts_with(matrixKeyword)) {
            const auto block = parseMatrixBlock(lines_, index_ + 1);
            mergeMatrixAxes({result_.matrixAxes, result_.matrixValues}, block.value, NameClash::takeNew);
            passSection(block.next);
            return true;
        }
        if (isIndented(lines_[index_].text()) || !isKeyLine(text)) {
            return false;
        }
        readSection();
        return true;
    }

    /// Moves past the section whose keyword is at `index_`. Directives under a missing task header are not
    /// entries of the section above them.
    void passSection(std::size_t next) {
        while (++index_ < next) {
            if (isKnownDirective(lines_[index_].clean())) {
                throw misplacedDirective(lines_[index_], path_);
            }
        }
    }

    void warnIfRemovedInclude() const {
        if (lines_[index_].kind() == LineKind::removedInclude) {
            warnHashInclude(trim(lines_[index_].text()), path_, context_.run.options.warnings);
        }
    }

    bool readInclude(std::string_view text) {
        if (!context_.run.followsIncludes) {
            return false;
        }
        const auto include = parsePreludeInclude(text);
        if (!include) {
            return false;
        }
        if (include->kind == IncludeTarget::yamlFile) {
            mergeMissing(parseYamlInclude(searchName(*include), path_, context_));
        } else if (const auto refusal = bindLibrary(include->alias, searchName(*include), path_, context_)) {
            throw DiagnosticError(*refusal);
        }
        ++index_;
        return true;
    }

    void mergeMissing(PreludeResult included) {
        result_.settings.merge(included.settings);
        result_.defines.merge(included.defines);
        result_.collections.merge(included.collections);
        mergeMatrixAxes({result_.matrixAxes, result_.matrixValues}, included.matrixAxes, NameClash::keepOld);
    }

    /// Takes the lines of a YAML section. A nested key may be called "define" or "matrix": those begin a
    /// section of their own only at the margin. A `%` at the margin is a directive whose task header is
    /// missing: to the YAML library the document ends there, and what follows is not read.
    void readSection() {
        const std::size_t first = index_;
        std::string text;
        for (; index_ < lines_.size() && (index_ == first || !endsSection(lines_[index_])); ++index_) {
            if (lines_[index_].text().starts_with('%')) {
                throw misplacedDirective(lines_[index_], path_);
            }
            if (index_ != first) {
                warnIfRemovedInclude();
            }
            text += lines_[index_].text();
            text += '\n';
        }
        auto section = readYamlSection(text, path_, first + 1);
        overwrite(result_.settings, std::move(section.settings));
        overwrite(result_.collections, std::move(section.collections));
    }

    /// Adds entries to those of earlier sections; of two with one key, the later counts.
    template <class Map>
    static void overwrite(Map& entries, Map&& later) {
        for (auto& [key, value] : later) {
            entries.insert_or_assign(key, std::move(value));
        }
    }

    static bool endsSection(const SourceLine& line) noexcept {
        return beginsBody(line.kind()) || line.kind() == LineKind::include ||
               line.text().starts_with(defineKeyword) || line.text().starts_with(matrixKeyword);
    }

    const std::vector<SourceLine>& lines_;
    std::size_t index_ = 0;
    const std::string& path_;
    DocumentContext& context_;
    PreludeResult result_;
};

/// `---` or `...` at the margin, alone or with more after a blank.
bool isDocumentMarker(std::string_view line) noexcept {
    return matchWord(line, "---") || matchWord(line, "...");
}

/// A YAML file has no body: what follows its prelude is not read.
void reportUnreadLine(const SourceLine& line, const std::string& path, const DocumentContext& context) {
    if (line.clean().starts_with('%')) {
        throw misplacedDirective(line, path);
    }
    context.run.options.warnings("Warning: Included YAML file is read up to line " +
                                 std::to_string(line.lineNumber) + " only, where '" +
                                 std::string(line.clean()) + "' ends its prelude: " + path);
}

} // namespace

TakenLines<PreludeResult> parsePrelude(const std::vector<SourceLine>& lines, const std::string& path,
                                       DocumentContext& context) {
    return PreludeReader(lines, path, context).read();
}

void requireWholePrelude(const std::vector<SourceLine>& lines, std::size_t next, std::string_view path) {
    if (next == lines.size() || !isDocumentMarker(lines[next].text())) {
        return;
    }
    for (std::size_t i = next + 1; i < lines.size(); ++i) {
        const SourceLine& line = lines[i];
        if (beginsBody(line.kind()) || line.kind() == LineKind::include) {
            return;
        }
        if (!line.clean().empty() && !isDocumentMarker(line.text())) {
            throw lineFault(lines[next], path,
                            "a YAML document marker ends the prelude; the lines behind it are not read");
        }
    }
}

PreludeResult parseYamlInclude(const std::string& target, const std::string& base, DocumentContext& context) {
    const auto path = context.run.resolveIncludePath(target, base);
    if (path.empty()) {
        context.run.options.warnings("Warning: Empty path in &INCLUDE directive.");
        return {};
    }
    const IncludeChain::Entry entry(context.run.yamlChain, path);
    if (!context.run.options.isFile(path)) {
        context.run.options.warnings("Warning: Included YAML file not found: " + path);
        return {};
    }
    const auto text = context.run.readFile(path);
    if (!text) {
        context.run.options.warnings("Warning: Cannot open included YAML file: " + path);
        return {};
    }
    context.run.countInclude();
    context.includedFiles.add(path);
    const auto lines = makeSourceLines(skipByteOrderMark(*text), SharedText(path));
    auto prelude = parsePrelude(lines, path, context);
    if (prelude.next < lines.size()) {
        reportUnreadLine(lines[prelude.next], path, context);
    }
    return std::move(prelude.value);
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
