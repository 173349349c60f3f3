#include "taskdsl/generate/fragment_library.h"

#include "support/file.h"
#include "support/text.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/fragment_header.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/include_path.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

namespace morquill::taskdsl {

namespace {

std::vector<SourceLine> linesOf(std::string_view text, const SharedText& path) {
    std::vector<SourceLine> lines;
    std::uint32_t number = 0;
    for (const auto line : splitLines(text)) {
        lines.push_back({std::string(line), path, ++number});
    }
    return lines;
}

/// Removes blank lines at both ends of a body. To a text fragment a comment is text.
void trimBody(FragmentDefinition& fragment) {
    const bool raw = fragment.kind == FragmentKind::text;
    const auto holdsText = [raw](const SourceLine& line) {
        return !(raw ? trim(line.text) : cleanLine(line.text)).empty();
    };
    auto& lines = fragment.lines;
    lines.erase(std::find_if(lines.rbegin(), lines.rend(), holdsText).base(), lines.end());
    lines.erase(lines.begin(), std::find_if(lines.begin(), lines.end(), holdsText));
}

class LibraryReader {
  public:
    LibraryReader(std::string_view text, const SharedText& path, ParseContext& parseContext)
        : lines(linesOf(text, path)), context(parseContext) {
        library.path = path;
    }

    FragmentLibrary read() {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const auto text = cleanLine(lines[i].text);
            if (text.empty()) {
                continue;
            }
            if (isFragmentLine(text)) {
                readFragment(i);
            } else if (const auto include = parseIncludeLine(text); include.isInclude) {
                readDependency(lines[i], include);
            } else {
                throw fault(lines[i], "expected &FRAGMENT declaration");
            }
        }
        return std::move(library);
    }

  private:
    [[nodiscard]] DiagnosticError fault(const SourceLine& line, std::string_view message) const {
        return lineFault(line, library.path, message);
    }

    /// Leaves `i` on the last line of the body.
    void readFragment(std::size_t& i) {
        auto fragment = parseFragmentHeader(lines, i, library.path, true);
        while (i + 1 < lines.size() && !isFragmentLine(cleanLine(lines[i + 1].text))) {
            fragment.lines.push_back(std::move(lines[++i]));
        }
        trimBody(fragment);
        std::string name = fragment.name;
        const auto [entry, isNew] = library.fragments.try_emplace(std::move(name), std::move(fragment));
        if (!isNew) {
            throw DiagnosticError("duplicate fragment name '" + entry->first + "'");
        }
    }

    void readDependency(const SourceLine& line, const IncludeDirective& include) {
        if (include.kind != IncludeTarget::library || include.alias.empty()) {
            throw fault(line, "library dependencies must use '&INCLUDE \"file.mqlib\" as namespace'");
        }
        if (library.dependencies.count(include.alias) != 0) {
            throw fault(line, "duplicate library namespace '" + include.alias + "'");
        }
        library.dependencies.emplace(include.alias, loadLibrary(searchName(include), library.path, context));
    }

    std::vector<SourceLine> lines;
    ParseContext& context;
    FragmentLibrary library;
};

/// The first line that is neither blank nor a comment; the line count when there is none.
std::size_t firstFilledLine(const std::vector<SourceLine>& lines) {
    return static_cast<std::size_t>(
        std::find_if(lines.begin(), lines.end(),
                     [](const SourceLine& line) { return !cleanLine(line.text).empty(); }) -
        lines.begin());
}

} // namespace

std::shared_ptr<const FragmentLibrary> loadLibrary(const std::string& name, const std::string& baseFile,
                                                   ParseContext& context) {
    const auto path = resolveIncludePath(name, baseFile);
    if (path.empty()) {
        throw DiagnosticError("empty fragment library path");
    }
    if (!context.hasFile(path)) {
        throw DiagnosticError("fragment library not found: " + path);
    }
    const auto entry = enterFile(context.libraryChain, path);
    context.document.includedFiles.add(path);
    auto& library = context.libraries[normalisedPath(path)];
    if (!library) {
        context.countInclude();
        const auto text = context.readFile(path);
        if (!text) {
            throw DiagnosticError("fragment library not found: " + path);
        }
        library = std::make_shared<const FragmentLibrary>(
            LibraryReader(skipByteOrderMark(*text), path, context).read());
    }
    return library;
}

void bindLibrary(const std::string& alias, const std::string& name, const std::string& baseFile,
                 const std::string& place, ParseContext& context) {
    const auto library = loadLibrary(name, baseFile, context);
    const auto [bound, isNew] = context.document.namespaces.try_emplace(alias, library);
    if (!isNew && bound->second != library) {
        throw DiagnosticError(place + "namespace '" + alias + "' is already bound to '" +
                              bound->second->path.str() + "'");
    }
}

FragmentDefinition loadFragmentFile(const std::string& name, const std::string& baseFile,
                                    FragmentExpansionScope scope, ParseContext& context) {
    const auto path = resolveIncludePath(name, baseFile);
    if (path.empty()) {
        throw DiagnosticError("empty fragment include path");
    }
    if (!context.hasFile(path)) {
        throw DiagnosticError("included fragment file not found: " + path);
    }
    const auto text = context.readFile(path);
    if (!text) {
        throw DiagnosticError("cannot open included fragment file: " + path);
    }
    context.countInclude();
    context.document.includedFiles.add(path);

    const SharedText shared(path);
    auto lines = linesOf(skipByteOrderMark(*text), shared);
    FragmentDefinition fragment;
    std::size_t body = 0;
    if (scope != FragmentKind::text && path.ends_with(".mqfrag")) {
        const auto first = firstFilledLine(lines);
        if (first < lines.size() && isFragmentLine(cleanLine(lines[first].text))) {
            body = first;
            fragment = parseFragmentHeader(lines, body, shared, false);
            ++body;
        }
    }
    if (body == 0) {
        fragment.kind = scope;
        fragment.path = shared;
    } else {
        for (std::size_t i = body; i < lines.size(); ++i) {
            if (isFragmentLine(cleanLine(lines[i].text))) {
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
