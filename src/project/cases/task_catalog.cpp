#include "project/cases/task_catalog.h"

#include "console/library_file.h"
#include "project/cases/target.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/extra_files.h"
#include "taskdsl/parser/task_parser.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <unordered_map>

#include <unistd.h>

namespace morquill::project {

namespace {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;

constexpr std::string_view scanFailure = "failed to parse task file: ";

/// Gathers the blocks of any number of documents in linear time.
class CatalogBuilder {
  public:
    void add(const TaskDocument& document);
    [[nodiscard]] TaskCatalog finish() const;

  private:
    void bind(std::string_view logicalName, const std::string& expansion) {
        expansions_[std::string(logicalName)].add(expansion);
    }

    NameList available_;
    NameList expanded_;
    NameList logical_;
    std::map<std::string, NameList, std::less<>> expansions_;
};

/// The place where a block is written, the same for all its expansions.
std::string headerKey(const TaskInfo& task) {
    const taskdsl::SourceSpan& span = task.headerSpan;
    return span.path.str() + '|' + std::to_string(span.line) + ':' + std::to_string(span.column) + '-' +
           std::to_string(span.endLine) + ':' + std::to_string(span.endColumn);
}

void CatalogBuilder::add(const TaskDocument& document) {
    std::unordered_map<std::string, std::vector<const TaskInfo*>> templatesByHeader;
    for (const TaskInfo& task : document.templateTasks) {
        available_.add(writtenName(task));
        logical_.add(writtenName(task));
        templatesByHeader[headerKey(task)].push_back(&task);
    }
    // A block in a loop has one header for several template tasks. The matrix goes through all of them once
    // per combination, so the blocks that share a header belong to these templates in turn.
    std::unordered_map<std::string, std::size_t> seenByHeader;
    for (const TaskInfo& task : document.tasks) {
        if (task.name.empty()) {
            continue;
        }
        expanded_.add(task.name);
        const std::string key = headerKey(task);
        if (const auto templates = templatesByHeader.find(key); templates != templatesByHeader.end()) {
            const std::size_t turn = seenByHeader[key]++ % templates->second.size();
            bind(writtenName(*templates->second[turn]), task.name);
        }
        logical_.add(writtenName(task));
        bind(writtenName(task), task.name);
        bind(task.name, task.name);
    }
}

TaskCatalog CatalogBuilder::finish() const {
    TaskCatalog catalog{available_.names(), expanded_.names(), logical_.names(), {}};
    for (const auto& [name, expansions] : expansions_) {
        catalog.expansionsByName.emplace(name, expansions.names());
    }
    if (catalog.logicalNames.empty()) {
        catalog.logicalNames = catalog.availableTasks;
        for (const std::string& name : catalog.logicalNames) {
            catalog.expansionsByName.emplace(name, std::vector<std::string>{name});
        }
    }
    return catalog;
}

/// A sink that passes warnings on and remembers that there were any.
struct WarningWatch {
    const taskdsl::WarningSink& sink;
    bool warned = false;

    taskdsl::WarningSink listener() {
        return [this](const std::string& text) {
            warned = true;
            sink(text);
        };
    }
};

taskdsl::TaskParser parserWith(taskdsl::WarningSink sink) {
    return taskdsl::TaskParser({.findLibraryFile = console::findLibraryFile, .warnings = std::move(sink)});
}

/// A file that cannot be parsed is passed over; one that only lacked memory says nothing about its blocks.
void stopWithoutMemory(const std::exception& failure, const std::string& file) {
    if (isOutOfMemory(failure)) {
        throw std::runtime_error(faultText(failure, file));
    }
}

/// Reads the case files of one project. Most of them are links to the one template; a text that was parsed
/// for one case is not parsed again for another when nothing but the text can have had a say.
class CaseReader {
  public:
    CaseReader(CatalogBuilder& builder, const std::string& templateFile, const taskdsl::WarningSink& warnings)
        : builder_(builder), templateFile_(templateFile), warnings_(warnings) {}

    /// True when the case's blocks are in the catalog.
    bool read(const std::string& caseDir, const std::string& file) {
        const std::optional<std::string> text = readTextFile(file);
        if (!text) {
            return false;
        }
        if (dependsOnDirectory(*text, caseDir) ? parse(*text, file) : parseOnce(asCase_, *text, file)) {
            return true;
        }
        // A template that includes its neighbours finds them only from its own place.
        return parseOnce(asTemplate_, *text, templateFile_);
    }

  private:
    using Outcomes = std::unordered_map<std::string, bool>; // by text: whether it parsed

    static bool dependsOnDirectory(std::string_view text, const std::string& caseDir) {
        const auto beside = [&](std::string_view name) {
            return ::access(joinPath(caseDir, name).c_str(), F_OK) == 0;
        };
        return toLower(text).find("include") != std::string::npos || beside(taskdsl::extraValuesName) ||
               beside(taskdsl::extraTasksName);
    }

    bool parse(const std::string& text, const std::string& path) {
        WarningWatch watch{warnings_};
        try {
            builder_.add(parserWith(watch.listener()).parseText(text, path));
        } catch (const std::exception& failure) {
            stopWithoutMemory(failure, path);
            warned_ = watch.warned;
            return false;
        }
        warned_ = watch.warned;
        return true;
    }

    // The names are in the catalog after the first time. A text with warnings is parsed anew,
    // since every case has to be warned about.
    bool parseOnce(Outcomes& outcomes, const std::string& text, const std::string& path) {
        if (const auto known = outcomes.find(text); known != outcomes.end()) {
            return known->second;
        }
        const bool parsed = parse(text, path);
        if (!warned_ && text.size() <= room_) {
            room_ -= text.size();
            outcomes.emplace(text, parsed);
        }
        return parsed;
    }

    CatalogBuilder& builder_;
    const std::string& templateFile_;
    const taskdsl::WarningSink& warnings_;
    Outcomes asCase_;
    Outcomes asTemplate_;
    std::size_t room_ = std::size_t{32} << 20U; // bytes of text that may still be remembered
    bool warned_ = false;
};

/// Adds the blocks of a file; the failure when it cannot be read or parsed.
std::optional<Failure> scanInto(CatalogBuilder& builder, const std::string& file,
                                const taskdsl::WarningSink& warnings) {
    try {
        builder.add(parserWith(warnings).parseFile(file));
        return std::nullopt;
    } catch (const std::exception& failure) {
        stopWithoutMemory(failure, file);
        return Failure{std::string(scanFailure) + wholeText(failure)};
    }
}

} // namespace

std::string_view writtenName(const TaskInfo& task) noexcept {
    return task.templateTaskName.empty() ? std::string_view(task.name) : task.templateTaskName.view();
}

Outcome<TaskCatalog> scanTaskFile(const std::string& file, const taskdsl::WarningSink& warnings) {
    CatalogBuilder builder;
    if (auto failure = scanInto(builder, file, warnings)) {
        return *std::move(failure);
    }
    return builder.finish();
}

Outcome<TaskCatalog> loadCatalog(const std::string& root, const std::string& file,
                                 const taskdsl::WarningSink& warnings) {
    CatalogBuilder builder;
    auto firstFailure = scanInto(builder, file, warnings);
    bool anyParsed = !firstFailure;
    std::size_t caseFailures = 0;
    CaseReader reader(builder, file, warnings);
    for (const auto& [caseDir, taskFile] : listCaseFiles(root)) {
        if (reader.read(caseDir, joinPath(caseDir, taskFile))) {
            anyParsed = true;
        } else {
            ++caseFailures;
        }
    }
    if (anyParsed) {
        return builder.finish();
    }
    if (caseFailures > 0) {
        firstFailure->text += " (" + std::to_string(caseFailures) + " additional case parse error(s))";
    }
    return *std::move(firstFailure);
}

} // namespace morquill::project
