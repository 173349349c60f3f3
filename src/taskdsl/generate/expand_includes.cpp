#include "taskdsl/generate/expand_includes.h"

#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/fragment_arguments.h"
#include "taskdsl/generate/fragment_library.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// Which scope a directive opens for the lines behind it, and on which values.
enum class ScopeRule { always, emptyValue, emptyValueOrHeredoc };
struct DirectiveScopeRow {
    std::string_view keyword;
    FragmentExpansionScope scope;
    ScopeRule rule;
};
constexpr std::array<DirectiveScopeRow, 13> directiveScopes{{
    {"process", FragmentKind::process, ScopeRule::always},
    {"preprocess", FragmentKind::preprocess, ScopeRule::always},
    {"control", FragmentKind::control, ScopeRule::always},
    {"when", FragmentKind::when, ScopeRule::always},
    {"meta", FragmentKind::meta, ScopeRule::always},
    {"param", FragmentKind::param, ScopeRule::always},
    {"args", FragmentKind::args, ScopeRule::always},
    {"batch", FragmentKind::batch, ScopeRule::always},
    {"mod", FragmentKind::mod, ScopeRule::emptyValue},
    {"body", FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"extrainput", FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"extrainputs", FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
    {"keywords", FragmentKind::text, ScopeRule::emptyValueOrHeredoc},
}};

bool opensHeredoc(std::string_view value) noexcept {
    return value.starts_with("<<");
}

FragmentExpansionScope scopeOfDirective(std::string_view keyword, std::string_view value) noexcept {
    for (const auto& row : directiveScopes) {
        if (row.keyword == keyword && (row.rule == ScopeRule::always || value.empty() ||
                                       (row.rule == ScopeRule::emptyValueOrHeredoc && opensHeredoc(value)))) {
            return row.scope;
        }
    }
    return FragmentKind::task_body;
}

/// A fragment and the library it lies in; the library is null for a standalone file.
struct FoundFragment {
    const FragmentDefinition* definition = nullptr;
    const FragmentLibrary* library = nullptr;
};

class IncludePass {
  public:
    IncludePass(std::vector<SourceLine> allLines, const IncludeFrame& passFrame, ParseContext& parseContext)
        : lines(std::move(allLines)), frame(passFrame), context(parseContext), current(passFrame.scope) {}

    std::vector<SourceLine> run() {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            readLine(i);
        }
        return changed ? std::move(result) : std::move(lines);
    }

  private:
    [[nodiscard]] bool isDocument() const noexcept { return frame.scope == FragmentKind::document; }
    [[nodiscard]] bool atFileScope() const noexcept { return isDocument() && !inTask; }
    [[nodiscard]] DiagnosticError fault(const SourceLine& line, std::string_view message) const {
        return lineFault(line, frame.baseFile, message);
    }
    [[nodiscard]] std::string fileOf(const SourceLine& line) const {
        return line.originPath.empty() ? frame.baseFile : line.originPath;
    }

    /// Reads the line at `i`; leaves `i` on the last line consumed.
    void readLine(std::size_t& i) {
        const SourceLine& line = lines[i];
        const auto begin = trimLeft(line.text);
        constexpr std::string_view marks = "&%$@";
        if (begin.empty() || marks.find(begin.front()) == std::string_view::npos || line.verbatim ||
            line.directiveBoundary) {
            keep(i);
            return;
        }
        const auto text = cleanLine(line.text);
        if (beginsBlock(text, "&INCLUDE")) {
            readInclude(i);
        } else if (frame.scope == FragmentKind::text) {
            keep(i);
        } else if (!taskHeaderName(text).empty()) {
            openTask(line);
            keep(i);
        } else if (!directiveName(text).empty()) {
            readDirective(i, directiveName(text));
        } else if (isBlockKeyword(text)) {
            copyBlock(i, text);
        } else {
            keep(i);
        }
    }

    /// Passes a line on. Nothing is moved as long as no include has been met.
    void keep(std::size_t i) {
        if (changed) {
            result.push_back(std::move(lines[i]));
        }
    }

    /// Puts lines in the place of the include line (the lines from `first` on).
    void insert(std::vector<SourceLine> inserted, std::size_t first) {
        drop(first);
        result.insert(result.end(), std::make_move_iterator(inserted.begin()),
                      std::make_move_iterator(inserted.end()));
    }
    void drop(std::size_t first) {
        if (!changed) {
            changed = true;
            result.reserve(lines.size());
            std::move(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(first),
                      std::back_inserter(result));
        }
    }

    void openTask(const SourceLine& line) {
        if (frame.scope == FragmentKind::task_body) {
            throw fault(line, "invalid task block in task_body fragment");
        }
        if (!isDocument()) {
            throw fault(line, "task blocks are not valid inside a " + kindName() + " fragment");
        }
        inTask = true;
        current = FragmentKind::task_body;
    }
    void closeTask() noexcept {
        inTask = false;
        current = frame.scope;
    }
    [[nodiscard]] std::string kindName() const { return std::string(fragmentKindName(frame.scope)); }

    void readDirective(std::size_t& i, std::string_view directive) {
        const SourceLine& line = lines[i];
        const auto keyword = directive.substr(0, directive.find(' '));
        const auto value = trim(directive.substr(keyword.size()));
        if (atFileScope()) {
            throw misplacedDirective(fileOf(line), line.lineNumber);
        }
        if (!isDocument() && frame.scope != FragmentKind::task_body) {
            throw fault(line, "task directive '%" + std::string(keyword) + "' is not valid inside a " +
                                  kindName() + " fragment");
        }
        current = scopeOfDirective(keyword, value);
        if (current == FragmentKind::text && opensHeredoc(value)) {
            copyHeredoc(i, value);
        } else {
            keep(i);
        }
    }

    void copyHeredoc(std::size_t& i, std::string_view value) {
        const auto word = trim(value.substr(2));
        const std::string terminator(word.empty() ? "EOF" : word);
        std::size_t end = i + 1;
        while (end < lines.size() && trim(lines[end].text) != terminator) {
            lines[end].verbatim = true;
            if (lines[end].originPath.empty()) {
                lines[end].originPath = frame.baseFile;
            }
            ++end;
        }
        if (end == lines.size()) {
            throw fault(lines[i], "heredoc is missing terminator '" + terminator + "'");
        }
        for (; i < end; ++i) {
            keep(i);
        }
        keep(end);
    }

    /// A block keyword ends the task; a `@plot` or `@derive` block is passed on through its "@end".
    void copyBlock(std::size_t& i, std::string_view text) {
        closeTask();
        bool ended = text == "@end";
        keep(i);
        while (!ended && i + 1 < lines.size()) {
            ended = cleanLine(lines[++i].text) == "@end";
            keep(i);
        }
    }

    void readInclude(std::size_t& i) {
        const std::size_t first = i;
        const SourceLine& line = lines[first];
        if (!context.followsIncludes) {
            throw fault(line, "&INCLUDE lines are not followed here");
        }
        std::string text;
        switch (gatherParentheses(lines, i, text)) {
        case GatherEnd::unterminated:
            throw fault(line, "unterminated &INCLUDE argument list");
        case GatherEnd::unmatched:
            throw fault(line, "unmatched ')' in &INCLUDE");
        case GatherEnd::balanced:
            break;
        }
        const auto include = parseIncludeLine(text);
        const bool indented = line.text.front() == ' ' || line.text.front() == '\t';
        if (include.kind == IncludeTarget::fragmentName && include.hasArguments && frame.library == nullptr) {
            throw fault(line, "fragment references outside a library must use namespace.name syntax");
        }
        if (atFileScope()) {
            if (indented) {
                throw DiagnosticError("indented &INCLUDE outside a task has no context");
            }
            includeAtFileScope(include, line, first);
        } else {
            includeInTask(include, line, first, indented);
        }
    }

    [[nodiscard]] bool namesFragment(const IncludeDirective& include) const noexcept {
        return include.kind == IncludeTarget::reference ||
               (include.kind == IncludeTarget::fragmentName && frame.library != nullptr);
    }

    void includeAtFileScope(const IncludeDirective& include, const SourceLine& line, std::size_t first) {
        if (include.kind == IncludeTarget::library) {
            importLibrary(include, line);
            drop(first);
        } else if (namesFragment(include) || include.kind == IncludeTarget::fragmentFile) {
            instantiate(include, line, first, false);
        } else {
            keep(first); // a task file: the parser reads it when it comes to this line
        }
    }

    void includeInTask(const IncludeDirective& include, const SourceLine& line, std::size_t first,
                       bool indented) {
        if (include.kind == IncludeTarget::library) {
            throw fault(line, include.alias.empty()
                                  ? "a .mqlib must be imported at file scope with 'as <namespace>'"
                                  : "library imports are only allowed at file scope");
        }
        const bool atMargin = isDocument() && !indented;
        if (atMargin &&
            (include.kind == IncludeTarget::taskFile || include.kind == IncludeTarget::yamlFile)) {
            closeTask();
            keep(first);
        } else {
            instantiate(include, line, first, atMargin);
        }
    }

    void importLibrary(const IncludeDirective& include, const SourceLine& line) {
        if (include.alias.empty()) {
            throw DiagnosticError("a .mqlib must be imported with 'as <namespace>'");
        }
        if (frame.library != nullptr) {
            throw fault(line, "library imports are only allowed at file scope");
        }
        const std::string file = fileOf(line);
        bindLibrary(include.alias, searchName(include), file,
                    shownPath(file) + ":" + std::to_string(line.lineNumber) + ": ", context);
    }

    /// Puts a fragment in. With `endsTask` a fragment of kind document ends the task that it stands behind.
    void instantiate(const IncludeDirective& include, const SourceLine& line, std::size_t first,
                     bool endsTask) {
        FragmentDefinition standalone;
        FoundFragment found;
        if (namesFragment(include)) {
            found = findFragment(include.target, line);
        } else {
            standalone = loadFragmentFile(searchName(include), fileOf(line), current, context);
            found.definition = &standalone;
        }
        if (endsTask && found.definition->kind == FragmentKind::document) {
            closeTask();
        }
        auto inserted = instantiateFragment(*found.definition, include, placedLine(line), found.library,
                                            current, context);
        if (found.definition->kind == FragmentKind::task_body) {
            inserted.push_back({"", line.originPath, line.lineNumber, true, false});
        }
        insert(std::move(inserted), first);
    }

    /// What messages need of an include line: its number and its file.
    [[nodiscard]] SourceLine placedLine(const SourceLine& line) const {
        return {"", line.originPath.empty() ? frame.baseFile : line.originPath, line.lineNumber};
    }

    /// The fragment that `namespace.name` names, or, inside a library, a name of its own.
    [[nodiscard]] FoundFragment findFragment(std::string_view target, const SourceLine& line) const {
        const auto dot = target.find('.');
        const auto space = dot == std::string_view::npos ? std::string_view("this") : target.substr(0, dot);
        const auto name = dot == std::string_view::npos ? target : target.substr(dot + 1);
        const FragmentLibrary* library = frame.library;
        std::string shown = "current library";
        if (library == nullptr || (space != "this" && space != "self")) {
            const auto& known = library ? library->dependencies : context.document.namespaces;
            const auto bound = known.find(space);
            if (bound == known.end()) {
                throw fault(line, "unknown fragment library namespace '" + std::string(space) + "'");
            }
            library = bound->second.get();
            shown = "library namespace '" + std::string(space) + "'";
        }
        const auto fragment = library->fragments.find(name);
        if (fragment == library->fragments.end()) {
            throw fault(line, shown + " has no fragment named '" + std::string(name) + "'");
        }
        return {&fragment->second, library};
    }

    std::vector<SourceLine> lines;
    const IncludeFrame& frame;
    ParseContext& context;
    FragmentExpansionScope current; ///< what an include may bring at this line
    bool inTask = false;            ///< behind a task header; only in document scope
    bool changed = false;           ///< an include was met: lines go to `result`
    std::vector<SourceLine> result;
};

} // namespace

std::vector<SourceLine> expandIncludes(std::vector<SourceLine> lines, const IncludeFrame& frame,
                                       ParseContext& context) {
    return IncludePass(std::move(lines), frame, context).run();
}

std::vector<SourceLine> instantiateFragment(const FragmentDefinition& definition,
                                            const IncludeDirective& include, const SourceLine& includeLine,
                                            const FragmentLibrary* library, FragmentExpansionScope scope,
                                            ParseContext& context) {
    const auto& name = definition.name;
    if (!kindFits(definition.kind, scope)) {
        throw lineFault(includeLine, {},
                        "cannot include " + std::string(fragmentKindName(definition.kind)) + " fragment '" +
                            name + "' in " + std::string(fragmentKindName(scope)) + " context");
    }
    // A library is loaded once, so its path tells it apart; a standalone file may come by several paths.
    const auto& path = definition.path.str();
    const IncludeChain::Entry entry(context.fragmentChain,
                                    library ? path + "::" + name : normalisedPath(path), path + "::" + name);
    const auto values = bindArguments(definition, include, includeLine);

    std::vector<SourceLine> lines;
    lines.reserve(definition.lines.size());
    context.growth.takeFragment();
    for (const auto& line : definition.lines) {
        lines.push_back(line);
        if (!values.empty() && line.text.find('[') != std::string::npos) {
            lines.back().text = substituteBrackets(line.text, values);
        }
        context.growth.takeLine(lines.back().text.size());
    }
    const auto kind = definition.kind == FragmentKind::unknown ? scope : definition.kind;
    lines = expandIncludes(std::move(lines), {definition.path, library, kind}, context);
    if (kind == FragmentKind::text) {
        for (auto& line : lines) {
            line.verbatim = true;
        }
    }
    return lines;
}

} // namespace morquill::taskdsl
