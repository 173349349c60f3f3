#include "taskdsl/generate/fragment_library.h"

#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/generate/fragment_header.h"
#include "taskdsl/generate/include_line.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

bool isFragment(const SourceLine& line) noexcept {
    return line.kind() == LineKind::fragment;
}

/// Removes blank lines at both ends of a body; in a text fragment a comment is text.
void trimBody(FragmentDefinition& fragment) {
    const bool raw = fragment.kind == FragmentKind::text;
    const auto holdsText = [raw](const SourceLine& line) {
        return !(raw ? trim(line.text()) : line.clean()).empty();
    };
    auto& lines = fragment.lines;
    lines.erase(std::find_if(lines.rbegin(), lines.rend(), holdsText).base(), lines.end());
    lines.erase(lines.begin(), std::find_if(lines.begin(), lines.end(), holdsText));
}

class LibraryReader {
  public:
    LibraryReader(std::string_view text, const SharedText& path, DocumentContext& parseContext)
        : lines_(makeSourceLines(text, path)), context_(parseContext) {
        library_.path = path;
    }

    FragmentLibrary read() {
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            const SourceLine& line = lines_[i];
            if (line.clean().empty()) {
                continue;
            }
            if (isFragment(line)) {
                readFragment(i);
            } else if (line.kind() == LineKind::include) {
                readDependency(line, parseIncludeLine(line.clean()));
            } else {
                throw fault(line, "expected &FRAGMENT declaration");
            }
        }
        return std::move(library_);
    }

  private:
    [[nodiscard]] DiagnosticError fault(const SourceLine& line, std::string_view message) const {
        return lineFault(line, library_.path, message);
    }

    /// Leaves `i` on the last line of the body.
    void readFragment(std::size_t& i) {
        auto [fragment, next] = parseFragmentHeader(lines_, i, library_.path, FragmentNaming::required);
        i = next - 1;
        while (i + 1 < lines_.size() && !isFragment(lines_[i + 1])) {
            fragment.lines.push_back(std::move(lines_[++i]));
        }
        trimBody(fragment);
        std::string name = fragment.name;
        const auto [entry, isNew] = library_.fragments.try_emplace(std::move(name), std::move(fragment));
        if (!isNew) {
            throw DiagnosticError("duplicate fragment name '" + entry->first + "'");
        }
    }

    void readDependency(const SourceLine& line, const IncludeDirective& include) {
        if (include.kind != IncludeTarget::library || include.alias.empty()) {
            throw fault(line, "library dependencies must use '&INCLUDE \"file.mqlib\" as namespace'");
        }
        if (library_.dependencies.count(include.alias) != 0) {
            throw fault(line, "duplicate library namespace '" + include.alias + "'");
        }
        library_.dependencies.emplace(include.alias,
                                      loadLibrary(searchName(include), library_.path.str(), context_));
    }

    std::vector<SourceLine> lines_;
    DocumentContext& context_;
    FragmentLibrary library_;
};

/// The first line that is neither blank nor a comment; the line count when there is none.
std::size_t firstFilledLine(const std::vector<SourceLine>& lines) {
    return static_cast<std::size_t>(
        std::find_if(lines.begin(), lines.end(),
                     [](const SourceLine& line) { return !line.clean().empty(); }) -
        lines.begin());
}

} // namespace

std::shared_ptr<const FragmentLibrary> loadLibrary(const std::string& name, const std::string& baseFile,
                                                   DocumentContext& context) {
    const auto path = context.run.resolveIncludePath(name, baseFile);
    if (path.empty()) {
        throw DiagnosticError("empty fragment library path");
    }
    if (!context.run.options.isFile(path)) {
        throw DiagnosticError("fragment library not found: " + path);
    }
    const IncludeChain::Entry entry(context.run.libraryChain, path);
    context.includedFiles.add(path);
    auto& library = context.run.libraries[normalisedPath(path)];
    if (!library) {
        context.run.countInclude();
        const auto text = context.run.readFile(path);
        if (!text) {
            throw DiagnosticError("fragment library not found: " + path);
        }
        library = std::make_shared<const FragmentLibrary>(
            LibraryReader(skipByteOrderMark(*text), path, context).read());
    }
    return library;
}

std::optional<std::string> bindLibrary(const std::string& alias, const std::string& name,
                                       const std::string& baseFile, DocumentContext& context) {
    const auto library = loadLibrary(name, baseFile, context);
    const auto [bound, isNew] = context.namespaces.try_emplace(alias, library);
    if (!isNew && bound->second != library) {
        return "namespace '" + alias + "' is already bound to '" + bound->second->path.str() + "'";
    }
    return std::nullopt;
}

FragmentDefinition loadFragmentFile(const std::string& name, const std::string& baseFile,
                                    FragmentExpansionScope scope, DocumentContext& context) {
    const auto path = context.run.resolveIncludePath(name, baseFile);
    if (path.empty()) {
        throw DiagnosticError("empty fragment include path");
    }
    if (!context.run.options.isFile(path)) {
        throw DiagnosticError("included fragment file not found: " + path);
    }
    const auto text = context.run.readFile(path);
    if (!text) {
        throw DiagnosticError("cannot open included fragment file: " + path);
    }
    context.run.countInclude();
    context.includedFiles.add(path);

    const SharedText shared(path);
    auto lines = makeSourceLines(skipByteOrderMark(*text), shared);
    FragmentDefinition fragment;
    std::size_t body = 0;
    if (scope != FragmentKind::text && path.ends_with(".mqfrag")) {
        const auto first = firstFilledLine(lines);
        if (first < lines.size() && isFragment(lines[first])) {
            auto header = parseFragmentHeader(lines, first, shared, FragmentNaming::optional);
            fragment = std::move(header.value);
            body = header.next;
        }
    }
    if (body == 0) {
        fragment.kind = scope;
        fragment.path = shared;
    } else {
        for (std::size_t i = body; i < lines.size(); ++i) {
            if (isFragment(lines[i])) {
                throw lineFault(lines[i], path,
                                "standalone fragment files may contain only one &FRAGMENT; use a .mqlib for "
                                "named libraries");
            }
        }
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(body));
    }
    fragment.name = std::filesystem::path(path).filename().string();
    fragment.lines = std::move(lines);
    return fragment;
}

} // namespace morquill::taskdsl
