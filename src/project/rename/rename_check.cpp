#include "project/rename/rename_check.h"

#include "console/library_file.h"
#include "console/logger.h"
#include "console/messages.h"
#include "project/cases/target.h"
#include "project/cases/task_catalog.h"
#include "project/rename/document_shape.h"
#include "project/rename/task_references.h"
#include "project/rename/template_stub.h"
#include "project/rename/word_replace.h"
#include "support/file.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/written_headers.h"
#include "taskdsl/parser/task_parser.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace morquill::project {

namespace {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;
using taskdsl::WrittenHeader;

/// The lines on which the block is written.
std::set<std::int32_t> linesOf(const std::vector<WrittenHeader>& headers, const std::string& name) {
    std::set<std::int32_t> lines;
    for (const auto& header : headers) {
        if (header.name == name) {
            lines.insert(static_cast<std::int32_t>(header.line));
        }
    }
    return lines;
}

/// The names that are taken by other blocks than the renamed one: as written and as they exist in the end.
std::set<std::string> takenNames(const TaskDocument& document, const std::vector<WrittenHeader>& headers,
                                 const std::string& file, const std::string& oldName) {
    const auto ownLines = linesOf(headers, oldName);
    std::set<std::string> names;
    for (const auto& header : headers) {
        names.emplace(header.name);
    }
    names.erase(oldName);
    for (const auto* tasks : {&document.templateTasks, &document.tasks}) {
        for (const auto& task : *tasks) {
            if (task.headerSpan.path.str() != file || !ownLines.contains(task.headerSpan.line)) {
                names.insert(task.name);
                names.emplace(writtenName(task));
            }
        }
    }
    return names;
}

std::string listNames(const std::vector<WrittenHeader>& headers) {
    NameList names;
    for (const auto& header : headers) {
        names.add(std::string(header.name));
    }
    return join(names.names(), ", ");
}

/// What renaming makes of the headers of a file beyond what was asked for.
std::optional<std::string> headerFault(const std::vector<WrittenHeader>& before,
                                       const std::vector<WrittenHeader>& after, const RenamedBlock& block) {
    const auto shared = std::min(before.size(), after.size());
    for (std::size_t i = 0; i < shared; ++i) {
        const bool asked = before[i].name == block.oldName;
        if (after[i].name != (asked ? std::string_view(block.newName) : before[i].name)) {
            const std::string changed =
                "$" + std::string(before[i].name) + " into $" + std::string(after[i].name);
            return asked ? "the header would turn from " + changed + ", not $" + block.newName
                         : "renaming $" + block.oldName + " would also turn " + changed;
        }
    }
    if (before.size() != after.size()) {
        return "renaming $" + block.oldName + " would change which blocks the file holds";
    }
    return std::nullopt;
}

/// Names of blocks before and after.
using NameMap = std::map<std::string, std::string, std::less<>>;

/// A rename and what is known of it so far.
struct Renaming {
    const RenameScope& scope;
    const RenamedBlock& block;
    std::set<std::string> caseNames; ///< of all cases
    std::vector<std::string> trees;  ///< the directories of the cases, links resolved
    NameMap names;                   ///< of the blocks that the named file makes under the old name

    [[nodiscard]] std::string change() const { return "with $" + block.newName + " for $" + block.oldName; }
};

/// A task file before it is rewritten.
struct TaskFile {
    std::string path;
    std::string text;
    std::string caseName; ///< the one with which it is rewritten
    std::vector<WrittenHeader> headers;
};

TaskFile makeTaskFile(const std::string& path, std::string text, const std::string& caseName) {
    TaskFile file{path, std::move(text), caseName, {}};
    file.headers = taskdsl::listWrittenHeaders(file.text);
    return file;
}

/// A name of another block that would change where the generator writes it, in `mq.status` and the like.
std::optional<std::string> findChangedName(const std::set<std::string>& names, const Renaming& renaming) {
    for (const auto& name : names) {
        if (!containsText(name, renaming.block.oldName)) {
            continue;
        }
        for (const auto& caseName : renaming.caseNames) {
            if (const auto renamed = renamedText(name, renaming.block, caseName)) {
                return "renaming $" + renaming.block.oldName + " would also turn $" + name + " into $" +
                       *renamed + (caseName.empty() ? "" : " in case " + caseName);
            }
        }
    }
    return std::nullopt;
}

/// The first key in brackets of the new name that the old one has not and that is gone from a name.
std::optional<std::string> findKnownKey(const std::string& name, const RenamedBlock& block) {
    const auto oldKeys = taskdsl::bracketKeys(block.oldName);
    for (const auto& key : taskdsl::bracketKeys(block.newName)) {
        if (std::find(oldKeys.begin(), oldKeys.end(), key) == oldKeys.end() &&
            !containsText(name, "[" + key + "]")) {
            return key;
        }
    }
    return std::nullopt;
}

using TaskList = decltype(TaskDocument::tasks);

/// The blocks under the renamed headers of a file, before and after.
struct RenamedTask {
    const TaskInfo* before = nullptr;
    const TaskInfo* after = nullptr;
};

/// Those of one list of tasks. Both documents have as many tasks.
std::vector<RenamedTask> renamedTasks(const TaskFile& file, const TaskList& before, const TaskList& after,
                                      const RenamedBlock& block) {
    const auto ownLines = linesOf(file.headers, block.oldName);
    std::vector<RenamedTask> tasks;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto& span = before[i].headerSpan;
        if (span.path.str() == file.path && ownLines.contains(span.line)) {
            tasks.push_back({&before[i], &after[i]});
        }
    }
    return tasks;
}

/// A name that is that of another block, is made out of several, or is not what the header says.
std::optional<std::string> nameFault(const std::vector<RenamedTask>& tasks,
                                     const std::set<std::string>& taken, const Renaming& renaming) {
    NameMap origins; // new name to old name
    for (const auto& [before, after] : tasks) {
        if (const auto key = findKnownKey(after->name, renaming.block)) {
            return "a block name cannot hold [" + *key + "], which is replaced with its value: $" +
                   renaming.block.newName;
        }
        if (taken.contains(after->name)) {
            return "target block already exists: $" + after->name;
        }
        if (origins.emplace(after->name, before->name).first->second != before->name) {
            return renaming.change() + " several blocks would be named $" + after->name;
        }
    }
    return std::nullopt;
}

/// The same for both lists of tasks; the names that pass are added to `names`.
std::optional<std::string> takeNames(const TaskFile& file, const TaskDocument& before,
                                     const TaskDocument& after, const std::set<std::string>& taken,
                                     const Renaming& renaming, NameMap& names) {
    for (const auto list : {&TaskDocument::templateTasks, &TaskDocument::tasks}) {
        const auto tasks = renamedTasks(file, before.*list, after.*list, renaming.block);
        if (auto fault = nameFault(tasks, taken, renaming)) {
            return fault;
        }
        for (const auto& task : tasks) {
            names.insert_or_assign(task.before->name, task.after->name);
        }
    }
    return std::nullopt;
}

/// What a reference has to be afterwards; nothing for one that names no block.
std::optional<TaskReference> renamedReference(const TaskReference& reference, const NameMap& names) {
    if (reference.form == ReferenceForm::task) {
        const auto found = names.find(reference.text);
        return found == names.end() ? std::nullopt
                                    : std::optional(TaskReference{reference.form, found->second});
    }
    // A name may hold dots itself: the longest one counts.
    for (auto dot = reference.text.rfind('.'); dot != std::string::npos && dot > 0;
         dot = reference.text.rfind('.', dot - 1)) {
        if (const auto found = names.find(reference.text.substr(0, dot)); found != names.end()) {
            return TaskReference{reference.form, found->second + reference.text.substr(dot)};
        }
    }
    return std::nullopt;
}

/// True for a file whose text the rename changes; what only a link in a case leads to is not known here.
bool isRewritten(const std::string& file, const Renaming& renaming) {
    const auto path = normalisedPath(file);
    return path == normalisedPath(renaming.scope.file) ||
           std::any_of(renaming.trees.begin(), renaming.trees.end(),
                       [&](const std::string& tree) { return liesBelow(path, tree); });
}

/// The file of a reference that a rewritten text still has. The lines of a fragment have the place of their
/// include line, so those of the file itself may come from any included one. Nothing when that is rewritten,
/// too: it is read here as it was before.
std::optional<std::string> findUnrenamed(const ReferencePlace& place, const TaskFile& file,
                                         const TaskDocument& document, const Renaming& renaming) {
    if (place.file != file.path) {
        return isRewritten(place.file, renaming) ? std::nullopt : std::optional(place.file);
    }
    bool mayBeRewritten = false;
    for (const auto& included : document.includedFiles) {
        const auto text = readTextFile(included);
        if (!text || !renamedText(*text, renaming.block, file.caseName)) {
            continue;
        }
        if (!isRewritten(included, renaming)) {
            return included;
        }
        mayBeRewritten = true;
    }
    return mayBeRewritten ? std::nullopt : std::optional(file.path);
}

/// A reference to a renamed block that would no longer name it.
std::optional<std::string> referenceFault(const TaskFile& file, const TaskDocument& before,
                                          const TaskDocument& after, const NameMap& names,
                                          const Renaming& renaming) {
    const auto left = collectTaskReferences(before);
    const auto right = collectTaskReferences(after);
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        for (const auto& reference : left[i].references) {
            const auto expected = renamedReference(reference, names);
            if (!expected || right[i].references.contains(*expected)) {
                continue;
            }
            if (const auto place = findUnrenamed(left[i], file, before, renaming)) {
                return renaming.change() + " the reference to '" + reference.text + "' in " + *place +
                       " would be left behind";
            }
        }
    }
    return std::nullopt;
}

/// What is wrong with the rewritten text of a file, read as the file that it will be. The names of its
/// renamed blocks are added to `names`.
std::optional<std::string> documentFault(const TaskFile& file, const TaskDocument& before,
                                         const std::set<std::string>& taken, const Renaming& renaming,
                                         NameMap& names) {
    const auto renamed = renamedText(file.text, renaming.block, file.caseName).value_or(file.text);
    const std::string change = renaming.change() + " the task file would ";
    try {
        const auto after =
            taskdsl::TaskParser({.findLibraryFile = console::findLibraryFile}).parseText(renamed, file.path);
        const bool pairs = before.tasks.size() == after.tasks.size() &&
                           before.templateTasks.size() == after.templateTasks.size();
        if (auto fault = pairs ? takeNames(file, before, after, taken, renaming, names) : std::nullopt) {
            return fault;
        }
        if (!pairs || !hasSameShape(before, after)) {
            return change + "no longer say the same";
        }
        return referenceFault(file, before, after, names, renaming);
    } catch (const taskdsl::DiagnosticError& fault) {
        return change + "no longer be read: " + wholeText(fault);
    }
}

/// What the rewritten text of a file would say otherwise. `names` has the renamed blocks of the named file
/// and takes those of this one.
std::optional<std::string> textFault(const TaskFile& file, const TaskDocument& before,
                                     const Renaming& renaming, NameMap& names) {
    auto taken = takenNames(before, file.headers, file.path, renaming.block.oldName);
    // Another file may include the renamed block.
    std::erase_if(taken, [&](const std::string& name) {
        return name == renaming.block.oldName || renaming.names.contains(name);
    });
    if (taken.contains(renaming.block.newName)) {
        return "target block already exists: $" + renaming.block.newName;
    }
    const auto renamed = renamedText(file.text, renaming.block, file.caseName);
    if (renamed && file.text.find('\0') != std::string::npos) {
        return "a task file with NUL bytes is not rewritten: " + file.path;
    }
    if (auto fault = headerFault(file.headers, taskdsl::listWrittenHeaders(renamed.value_or(file.text)),
                                 renaming.block)) {
        return fault;
    }
    if (auto fault = findChangedName(taken, renaming)) {
        return fault;
    }
    return documentFault(file, before, taken, renaming, names);
}

/// The same for another task file of a case; one that cannot be read says only which headers it has.
std::optional<std::string> checkNeighbour(const TaskFile& file, const Renaming& renaming) {
    TaskDocument before;
    try {
        before = taskdsl::TaskParser({.findLibraryFile = console::findLibraryFile})
                     .parseText(file.text, file.path);
    } catch (const taskdsl::DiagnosticError&) {
        const auto renamed = renamedText(file.text, renaming.block, file.caseName).value_or(file.text);
        const bool taken = !linesOf(file.headers, renaming.block.newName).empty();
        return taken ? "target block already exists: $" + renaming.block.newName
                     : headerFault(file.headers, taskdsl::listWrittenHeaders(renamed), renaming.block);
    }
    auto names = renaming.names;
    return textFault(file, before, renaming, names);
}

/// The obstacle in one of the other task files of the cases, with the name of that file.
std::optional<std::string> checkNeighbours(const Renaming& renaming) {
    std::set<std::string> visited{normalisedPath(renaming.scope.file)};
    for (const auto& [dir, names] : renaming.scope.cases) {
        const auto tree = normalisedPath(dir);
        for (const auto& name : listTaskFiles(dir)) {
            const auto path = joinPath(dir, name);
            const auto target = normalisedPath(path);
            const bool rewritten = liesBelow(target, tree) || liesBelow(target, renaming.scope.linkRoot);
            if (!rewritten || !visited.insert(target).second) {
                continue;
            }
            auto text = readTextFile(path);
            if (!text || stubTemplate(*text, path)) {
                continue;
            }
            if (auto fault = checkNeighbour(makeTaskFile(path, *std::move(text), names.front()), renaming)) {
                return *fault + " (in " + path + ")";
            }
        }
    }
    return std::nullopt;
}

/// A file whose name would become longer than a directory takes.
std::optional<std::string> findLongName(const RenameScope& scope, const RenamedBlock& block) {
    for (const auto& [dir, names] : scope.cases) {
        for (const auto& name : names) {
            if (const auto path = findOverlongName(dir, name, block)) {
                return "renaming $" + block.oldName + " would make a file name longer than " +
                       std::to_string(NAME_MAX) + " bytes: " + *path;
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> findObstacle(const RenameScope& scope, const RenamedBlock& block) {
    auto text = readTextFile(scope.file);
    if (!text) {
        throw taskdsl::DiagnosticError("could not open file: " + scope.file);
    }
    const auto file = makeTaskFile(scope.file, *std::move(text), scope.caseName);
    const taskdsl::TaskParser parser(
        {.findLibraryFile = console::findLibraryFile, .warnings = console::logWarning});
    const auto document = parser.parseText(file.text, file.path);
    if (linesOf(file.headers, block.oldName).empty()) {
        return "block not found in task file: $" + block.oldName + "\n" +
               console::tagged(console::MessageKind::note, "available blocks: " + listNames(file.headers));
    }
    Renaming renaming{scope, block, {""}, {}, {}};
    for (const auto& [dir, names] : scope.cases) {
        renaming.caseNames.insert(names.begin(), names.end());
        renaming.trees.push_back(normalisedPath(dir));
    }
    if (auto fault = textFault(file, document, renaming, renaming.names)) {
        return fault;
    }
    if (auto fault = checkNeighbours(renaming)) {
        return fault;
    }
    return findLongName(scope, block);
}

} // namespace morquill::project
