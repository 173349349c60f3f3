#include "taskdsl/generate/expand_includes.h"

#include "support/paths.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/fragment_arguments.h"
#include "taskdsl/generate/fragment_library.h"
#include "taskdsl/task/directive_reader.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// A fragment and its library, which is null for a standalone file.
struct FoundFragment {
    const FragmentDefinition* definition = nullptr;
    const FragmentLibrary* library = nullptr;
};

class IncludePass {
  public:
    IncludePass(std::vector<SourceLine> allLines, const IncludeFrame& passFrame,
                DocumentContext& parseContext)
        : lines_(std::move(allLines)), frame_(passFrame), context_(parseContext), current_(passFrame.scope) {}

    std::vector<SourceLine> run() {
        for (; index_ < lines_.size(); ++index_) {
            readLine();
        }
        return changed_ ? std::move(result_) : std::move(lines_);
    }

  private:
    [[nodiscard]] bool isDocument() const noexcept { return frame_.scope == FragmentKind::document; }
    [[nodiscard]] bool atFileScope() const noexcept { return isDocument() && !inTask_; }
    [[nodiscard]] DiagnosticError fault(const SourceLine& line, std::string_view message) const {
        return lineFault(line, frame_.baseFile, message);
    }
    [[nodiscard]] std::string fileOf(const SourceLine& line) const {
        return (line.originPath.empty() ? frame_.baseFile : line.originPath).str();
    }

    /// Reads the line at `index_`; leaves `index_` on the last line consumed.
    void readLine() {
        const SourceLine& line = lines_[index_];
        const LineKind kind = line.verbatim || line.directiveBoundary ? LineKind::text : line.kind();
        if (kind == LineKind::include) {
            readInclude();
        } else if (!isStructure(kind) || frame_.scope == FragmentKind::text) {
            keep();
        } else if (kind == LineKind::taskHeader) {
            openTask(line);
            keep();
        } else if (kind == LineKind::directive) {
            readDirective();
        } else {
            copyBlock();
        }
    }

    /// Passes the line at `index_` on. Nothing is moved as long as no include has been met.
    void keep() {
        if (changed_) {
            result_.push_back(std::move(lines_[index_]));
        }
    }

    /// Passes on the lines through `last`.
    void keepThrough(std::size_t last) {
        for (; index_ < last; ++index_) {
            keep();
        }
        keep();
    }

    /// Puts lines in the place of the include line at `index_`.
    void insert(std::vector<SourceLine> inserted) {
        drop();
        result_.insert(result_.end(), std::make_move_iterator(inserted.begin()),
                       std::make_move_iterator(inserted.end()));
    }
    void drop() {
        if (!changed_) {
            changed_ = true;
            result_.reserve(lines_.size());
            std::move(lines_.begin(), lines_.begin() + static_cast<std::ptrdiff_t>(index_),
                      std::back_inserter(result_));
        }
    }

    void openTask(const SourceLine& line) {
        if (frame_.scope == FragmentKind::task_body) {
            throw fault(line, "invalid task block in task_body fragment");
        }
        if (!isDocument()) {
            throw fault(line, "task blocks are not valid inside a " + kindName() + " fragment");
        }
        inTask_ = true;
        current_ = FragmentKind::task_body;
    }
    void closeTask() noexcept {
        inTask_ = false;
        current_ = frame_.scope;
    }
    [[nodiscard]] std::string kindName() const { return std::string(fragmentKindName(frame_.scope)); }

    void readDirective() {
        const SourceLine& line = lines_[index_];
        const auto directive = splitDirective(line.clean());
        if (atFileScope()) {
            throw misplacedDirective(line, frame_.baseFile);
        }
        if (!isDocument() && frame_.scope != FragmentKind::task_body) {
            throw fault(line, "task directive '%" + std::string(directive.keyword) +
                                  "' is not valid inside a " + kindName() + " fragment");
        }
        current_ = scopeAfter(directive);
        if (current_ == FragmentKind::text && opensHeredoc(directive.value)) {
            copyHeredoc(heredocTerminator(directive.value));
        } else {
            keep();
        }
    }

    void copyHeredoc(std::string_view terminator) {
        const BlockEnd end = findHeredocEnd(lines_, index_, terminator);
        if (!end.isClosed) {
            throw fault(lines_[index_], "heredoc is missing terminator '" + std::string(terminator) + "'");
        }
        for (std::size_t body = index_ + 1; body < end.index; ++body) {
            lines_[body].verbatim = true;
            if (lines_[body].originPath.empty()) {
                lines_[body].originPath = frame_.baseFile;
            }
        }
        keepThrough(end.index);
    }

    /// A block keyword ends the task; a `@plot` or `@derive` block is passed on through its "@end".
    void copyBlock() {
        closeTask();
        if (lines_[index_].kind() == LineKind::end) {
            keep();
            return;
        }
        const BlockEnd end = findBlockEnd(lines_, index_, lines_.size());
        keepThrough(end.isClosed ? end.index : end.index - 1);
    }

    void readInclude() {
        const SourceLine& line = lines_[index_];
        if (!context_.run.followsIncludes) {
            throw fault(line, "&INCLUDE lines are not followed here");
        }
        const auto gathered = gatherParentheses(lines_, index_);
        switch (gathered.end) {
        case GatherEnd::unterminated:
            throw fault(line, "unterminated &INCLUDE argument list");
        case GatherEnd::unmatched:
            throw fault(line, "unmatched ')' in &INCLUDE");
        case GatherEnd::balanced:
            break;
        }
        const auto include = parseIncludeLine(gathered.text);
        if (include.kind == IncludeTarget::fragmentName && include.hasArguments &&
            frame_.library == nullptr) {
            throw fault(line, "fragment references outside a library must use namespace.name syntax");
        }
        if (atFileScope()) {
            if (isIndented(line.text())) {
                throw DiagnosticError("indented &INCLUDE outside a task has no context");
            }
            includeAtFileScope(include, line);
        } else {
            includeInTask(include, line);
        }
        index_ = gathered.last;
    }

    /// True for an include line whose indentation shows that it belongs to no task's body.
    [[nodiscard]] bool isAtMargin(const SourceLine& line) const noexcept {
        return isDocument() && !isIndented(line.text());
    }

    [[nodiscard]] bool namesFragment(const IncludeDirective& include) const noexcept {
        return include.kind == IncludeTarget::reference ||
               (include.kind == IncludeTarget::fragmentName && frame_.library != nullptr);
    }

    void includeAtFileScope(const IncludeDirective& include, const SourceLine& line) {
        if (include.kind == IncludeTarget::library) {
            importLibrary(include, line);
            drop();
        } else if (namesFragment(include) || include.kind == IncludeTarget::fragmentFile) {
            instantiate(include, line);
        } else {
            keep(); // a task file: the parser reads it when it comes to this line
        }
    }

    void includeInTask(const IncludeDirective& include, const SourceLine& line) {
        if (include.kind == IncludeTarget::library) {
            throw fault(line, include.alias.empty()
                                  ? "a .mqlib must be imported at file scope with 'as <namespace>'"
                                  : "library imports are only allowed at file scope");
        }
        if (isAtMargin(line) &&
            (include.kind == IncludeTarget::taskFile || include.kind == IncludeTarget::yamlFile)) {
            closeTask();
            keep();
        } else {
            instantiate(include, line);
        }
    }

    void importLibrary(const IncludeDirective& include, const SourceLine& line) {
        if (include.alias.empty()) {
            throw DiagnosticError("a .mqlib must be imported with 'as <namespace>'");
        }
        if (frame_.library != nullptr) {
            throw fault(line, "library imports are only allowed at file scope");
        }
        if (const auto refusal = bindLibrary(include.alias, searchName(include), fileOf(line), context_)) {
            throw fault(line, *refusal);
        }
    }

    /// Puts a fragment in. At the margin, one of kind document ends the task before it.
    void instantiate(const IncludeDirective& include, const SourceLine& line) {
        FragmentDefinition standalone;
        FoundFragment found;
        if (namesFragment(include)) {
            found = findFragment(include.target, line);
        } else {
            standalone = loadFragmentFile(searchName(include), fileOf(line), current_, context_);
            found.definition = &standalone;
        }
        if (isAtMargin(line) && found.definition->kind == FragmentKind::document) {
            closeTask();
        }
        auto inserted = instantiateFragment(*found.definition, include, placedLine(line), found.library,
                                            current_, context_);
        if (found.definition->kind == FragmentKind::task_body) {
            inserted.emplace_back("", line.originPath, line.lineNumber);
            inserted.back().directiveBoundary = true;
        }
        insert(std::move(inserted));
    }

    /// The line with its file, for messages.
    [[nodiscard]] SourceLine placedLine(SourceLine line) const {
        if (line.originPath.empty()) {
            line.originPath = frame_.baseFile;
        }
        return line;
    }

    /// The fragment that `namespace.name` names, or, inside a library, a name of its own.
    [[nodiscard]] FoundFragment findFragment(std::string_view target, const SourceLine& line) const {
        const auto dot = target.find('.');
        const auto space = dot == std::string_view::npos ? std::string_view("this") : target.substr(0, dot);
        const auto name = dot == std::string_view::npos ? target : target.substr(dot + 1);
        const FragmentLibrary* library = frame_.library;
        std::string shown = "current library";
        if (library == nullptr || (space != "this" && space != "self")) {
            const auto& known = library ? library->dependencies : context_.namespaces;
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

    std::vector<SourceLine> lines_;
    std::size_t index_ = 0;
    const IncludeFrame& frame_;
    DocumentContext& context_;
    FragmentExpansionScope current_; ///< what an include may bring at this line
    bool inTask_ = false;            ///< after a task header; only in document scope
    bool changed_ = false;           ///< an include was met: lines go to `result_`
    std::vector<SourceLine> result_;
};

} // namespace

std::vector<SourceLine> expandIncludes(std::vector<SourceLine> lines, const IncludeFrame& frame,
                                       DocumentContext& context) {
    return IncludePass(std::move(lines), frame, context).run();
}

std::vector<SourceLine> instantiateFragment(const FragmentDefinition& definition,
                                            const IncludeDirective& include, const SourceLine& includeLine,
                                            const FragmentLibrary* library, FragmentExpansionScope scope,
                                            DocumentContext& context) {
    const auto& name = definition.name;
    if (!kindFits(definition.kind, scope)) {
        throw lineFault(includeLine, {},
                        "cannot include " + std::string(fragmentKindName(definition.kind)) + " fragment '" +
                            name + "' in " + std::string(fragmentKindName(scope)) + " context");
    }
    // A library is loaded once, so its path identifies it; a standalone file may be reached by several paths.
    const auto& path = definition.path.str();
    const IncludeChain::Entry entry(context.run.fragmentChain,
                                    library ? path + "::" + name : normalisedPath(path), path + "::" + name);
    const auto values = bindArguments(definition, include, includeLine);

    std::vector<SourceLine> lines;
    lines.reserve(definition.lines.size());
    context.run.growth.takeFragment();
    for (const auto& line : definition.lines) {
        lines.push_back(line);
        lines.back().substitute(values);
        context.run.growth.takeLine(lines.back().text().size());
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
