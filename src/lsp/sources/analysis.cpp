#include "lsp/sources/analysis.h"

#include "console/library_file.h"
#include "lint/file_check.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/extra_files.h"
#include "taskdsl/generate/expand_includes.h"
#include "taskdsl/generate/fragment_library.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/prelude.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>

namespace morquill::lsp {

using taskdsl::DocumentContext;

namespace {

/// True for a body that says by a placeholder what it includes: that is known where the fragment is used.
bool includesPlaceholder(const taskdsl::FragmentDefinition& fragment) {
    return std::any_of(fragment.lines.begin(), fragment.lines.end(), [](const taskdsl::SourceLine& line) {
        const auto text = trim(line.text());
        return text.starts_with("&INCLUDE") &&
               text.substr(0, text.find('(')).find('[') != std::string_view::npos;
    });
}

/// Expands the includes of a fragment as if it stood where its kind belongs.
void checkFragment(const taskdsl::FragmentDefinition& fragment, const taskdsl::FragmentLibrary* library,
                   DocumentContext& context) {
    if (!includesPlaceholder(fragment)) {
        (void)taskdsl::expandIncludes(fragment.lines, {fragment.path, library, fragment.kind}, context);
    }
}

void checkLibrary(const std::string& path, DocumentContext& context) {
    const auto library = taskdsl::loadLibrary(path, path, context);
    for (const auto& [name, fragment] : library->fragments) {
        checkFragment(fragment, library.get(), context);
    }
}

void checkFragmentFile(const std::string& path, DocumentContext& context) {
    const auto fragment = taskdsl::loadFragmentFile(path, path, taskdsl::FragmentKind::unknown, context);
    if (fragment.kind != taskdsl::FragmentKind::unknown) {
        checkFragment(fragment, nullptr, context);
    }
}

void checkValues(const std::string& path, DocumentContext& context) {
    (void)taskdsl::parseYamlInclude(path, path, context);
}

using FileCheck = void (*)(const std::string& path, DocumentContext& context);

/// The check of a file that is no task file, by its kind.
FileCheck checkOf(FileKind kind) noexcept {
    switch (kind) {
    case FileKind::library:
        return checkLibrary;
    case FileKind::fragment:
        return checkFragmentFile;
    case FileKind::values:
        return checkValues;
    case FileKind::tasks:
        break;
    }
    return nullptr;
}

void checkPart(FileCheck check, const std::string& path, const taskdsl::FileOverlay& overlay,
               Analysis& analysis) {
    const taskdsl::WarningSink warnings = [&](const std::string& line) { analysis.warnings.push_back(line); };
    taskdsl::ParseContext run(
        {.findLibraryFile = console::findLibraryFile, .warnings = warnings, .overlay = overlay});
    DocumentContext context(run);
    analysis.report.path = path;
    try {
        check(path, context);
        analysis.report.parsed = true;
        analysis.files = context.includedFiles.names();
    } catch (const std::exception& fault) {
        lint::addParseFault(fault, analysis.report);
    }
}

/// The name of a text that belongs to no file: a place in a message needs one.
const std::string memoryName = "<memory>";

/// The files that were looked for and are not there: the parser warns of them.
void addMissingFiles(Analysis& analysis) {
    for (const auto& warning : analysis.warnings) {
        const auto path = warning.rfind(": ");
        if (warning.starts_with("Warning: Included") && path != std::string::npos) {
            analysis.files->push_back(warning.substr(path + 2));
        }
    }
}

void checkTasks(const OpenText& text, const taskdsl::FileOverlay& overlay, Analysis& analysis) {
    const taskdsl::WarningSink warnings = [&](const std::string& line) { analysis.warnings.push_back(line); };
    auto linted =
        lint::lintAndKeep(text.buffer.text(), text.path.empty() ? memoryName : text.path, warnings, overlay);
    analysis.report = std::move(linted.report);
    if (!linted.document) {
        return;
    }
    auto& document = *linted.document;
    analysis.files = document.includedFiles;
    for (const auto name : taskdsl::extraFileNames) {
        analysis.files->push_back(joinPath(document.directory, name));
    }
    addMissingFiles(analysis);
    if (!document.matrixAxes.empty()) {
        document.tasks.reset(); // what a matrix makes is large, and nobody asks for it
    }
    analysis.document = std::move(linted.document);
}

} // namespace

FileKind fileKind(std::string_view path) noexcept {
    using taskdsl::IncludeTarget;
    switch (taskdsl::kindOfPath(path).value_or(IncludeTarget::taskFile)) {
    case IncludeTarget::library:
        return FileKind::library;
    case IncludeTarget::fragmentFile:
        return FileKind::fragment;
    case IncludeTarget::yamlFile:
        return FileKind::values;
    case IncludeTarget::fragmentName:
    case IncludeTarget::reference:
    case IncludeTarget::taskFile:
    case IncludeTarget::otherFile:
        break;
    }
    return FileKind::tasks;
}

const Analysis& Analyses::of(const OpenText& text) {
    Analysis& analysis = analyses_[text.uri];
    if (analysis.stamp != 0 && isCurrent(text, analysis)) {
        return analysis;
    }
    analysis = {};
    ++count_;
    const taskdsl::FileOverlay overlay = [this](const std::string& path) -> std::optional<std::string> {
        const OpenText* open = texts_.findPath(path);
        return open == nullptr ? std::nullopt : std::optional(open->buffer.text());
    };
    const FileCheck check = text.path.empty() ? nullptr : checkOf(fileKind(text.path));
    if (check != nullptr) {
        checkPart(check, text.path, overlay, analysis);
    } else {
        checkTasks(text, overlay, analysis);
    }
    analysis.stamp = texts_.stamp();
    return analysis;
}

bool Analyses::isCurrent(const OpenText& text, const Analysis& analysis) const {
    if (analysis.stamp == texts_.stamp()) {
        return true;
    }
    if (text.stamp > analysis.stamp) {
        return false;
    }
    if (!analysis.files) {
        return false;
    }
    return std::none_of(analysis.files->begin(), analysis.files->end(),
                        [&](const std::string& path) { return texts_.changedSince(path, analysis.stamp); });
}

bool Analyses::dependsOn(const OpenText& text, const std::string& path) const {
    const auto found = analyses_.find(text.uri);
    if (found == analyses_.end() || !found->second.files) {
        return true;
    }
    const auto canonical = normalisedPath(path);
    const auto& files = *found->second.files;
    return std::any_of(files.begin(), files.end(),
                       [&](const std::string& file) { return normalisedPath(file) == canonical; });
}

} // namespace morquill::lsp
