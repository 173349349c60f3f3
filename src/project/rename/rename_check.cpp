#include "project/rename/rename_check.h"

#include "project/cases/task_catalog.h"
#include "support/file.h"
#include "support/name_list.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/include_path.h"
#include "taskdsl/generate/written_headers.h"
#include "taskdsl/parser/task_parser.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/when_expr.h"

#include <algorithm>
#include <climits>
#include <set>
#include <string_view>
#include <variant>

namespace morquill::project {

namespace {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;
using taskdsl::TaskWhenExpr;
using taskdsl::WrittenHeader;

/// Bytes that no name may hold, and how they are called.
struct ForbiddenBytes {
    std::string_view bytes;
    const char* what;
};
constexpr ForbiddenBytes forbiddenBytes[] = {
    {"/", "'/'"},
    {"#", "'#'"},
    {"\"'", "a quote"},
    {",", "','"},
};

bool isControl(char c) noexcept {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

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
                names.insert(writtenName(task));
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
std::optional<std::string> compareHeaders(const std::vector<WrittenHeader>& before,
                                          const std::vector<WrittenHeader>& after,
                                          const RenamedBlock& block) {
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

/// True when two conditions are built alike; nesting is bounded, see `maxWhenNesting`.
bool isBuiltAlike(const TaskWhenExpr& before, const TaskWhenExpr& after) {
    if (before.node.index() != after.node.index()) {
        return false;
    }
    if (const auto* completed = std::get_if<taskdsl::WhenCompleted>(&before.node)) {
        return completed->operand.empty() == std::get<taskdsl::WhenCompleted>(after.node).operand.empty();
    }
    const auto* group = std::get_if<taskdsl::WhenGroup>(&before.node);
    if (group == nullptr) {
        return true;
    }
    const auto& other = std::get<taskdsl::WhenGroup>(after.node);
    return group->op == other.op &&
           std::equal(group->children.begin(), group->children.end(), other.children.begin(),
                      other.children.end(),
                      [](const auto& left, const auto& right) { return isBuiltAlike(*left, *right); });
}

/// True when both conditions wait alike; one that waits for all others names no task.
bool waitsAlike(const std::string& before, const std::string& after) {
    try {
        const auto left = taskdsl::parseWhenExpr(before);
        const auto right = taskdsl::parseWhenExpr(after);
        return isBuiltAlike(left, right) && hasAllOthers(left) == hasAllOthers(right);
    } catch (const taskdsl::DiagnosticError&) {
        return true; // nested too deep to be read at all; a name changes nothing about that
    }
}

/// True when a task depends on as much before as after. A new name like `origin` or `and` is read as
/// something other than a name where it stands for the old one.
bool dependsAlike(const TaskInfo& before, const TaskInfo& after) {
    return before.sourceTasks.size() == after.sourceTasks.size() &&
           before.sourceBindings.size() == after.sourceBindings.size() &&
           std::equal(before.whenConditions.begin(), before.whenConditions.end(),
                      after.whenConditions.begin(), after.whenConditions.end(), waitsAlike);
}

bool saysTheSame(const TaskDocument& before, const TaskDocument& after) {
    return before.includedFiles == after.includedFiles && before.plots.size() == after.plots.size() &&
           before.derives.size() == after.derives.size() &&
           std::equal(before.tasks.begin(), before.tasks.end(), after.tasks.begin(), after.tasks.end(),
                      dependsAlike);
}

/// Reads the rewritten text as the file it will be.
std::optional<std::string> compareDocuments(const TaskDocument& before, const std::string& text,
                                            const std::string& file, const RenamedBlock& block) {
    const std::string change = "with $" + block.newName + " for $" + block.oldName + " the task file would ";
    try {
        const auto after = taskdsl::TaskParser(false, [](const std::string&) {}).parseText(text, file);
        if (saysTheSame(before, after)) {
            return std::nullopt;
        }
    } catch (const taskdsl::DiagnosticError& fault) {
        return change + "no longer be read: " + fault.what();
    }
    return change + "no longer say the same";
}

} // namespace

std::optional<std::string> blockNameFault(const std::string& name) {
    if (name.empty()) {
        return "a block name cannot be empty";
    }
    if (std::any_of(name.begin(), name.end(), isControl)) {
        // without the name, which would not stand in one line
        return "a block name cannot hold a line break or another control character";
    }
    const std::string shown = ": $" + name;
    for (const auto& row : forbiddenBytes) {
        if (name.find_first_of(row.bytes) != std::string::npos) {
            return "a block name cannot hold " + std::string(row.what) + shown;
        }
    }
    if (name.front() == ' ' || name.back() == ' ') {
        return "a block name cannot begin or end with a blank" + shown;
    }
    if (name == "." || name == "..") {
        return "a block name cannot be '.' or '..'";
    }
    if (name.size() > NAME_MAX) {
        return "a block name cannot be longer than " + std::to_string(NAME_MAX) + " bytes" + shown;
    }
    return std::nullopt;
}

std::optional<std::string> stubTemplate(const std::string& text, const std::string& path) {
    std::optional<std::string> found;
    for (const auto line : splitLines(text)) {
        const auto clean = taskdsl::cleanLine(line);
        if (clean.empty()) {
            continue;
        }
        if (found || !taskdsl::isIncludeLine(clean)) {
            return std::nullopt;
        }
        try {
            const auto include = taskdsl::parseIncludeLine(clean);
            found = taskdsl::resolveIncludePath(searchName(include), path);
        } catch (const taskdsl::DiagnosticError&) {
            return std::nullopt;
        }
        if (!found->ends_with(".projmq") || !isRegularFile(*found)) {
            return std::nullopt;
        }
    }
    return found ? std::optional(normalisedPath(*found)) : std::nullopt;
}

std::optional<std::string> findObstacle(const std::string& file, const RenamedBlock& block,
                                        const std::string& caseName) {
    const auto text = readTextFile(file);
    if (!text) {
        throw taskdsl::DiagnosticError("could not open file: " + file);
    }
    const auto document = taskdsl::TaskParser().parseText(*text, file);
    const auto headers = taskdsl::listWrittenHeaders(*text);
    if (linesOf(headers, block.oldName).empty()) {
        return "block not found in task file: $" + block.oldName +
               "\n[mqkit] available blocks: " + listNames(headers);
    }
    if (takenNames(document, headers, file, block.oldName).contains(block.newName)) {
        return "target block already exists: $" + block.newName;
    }
    if (text->find('\0') != std::string::npos) {
        return "a task file with NUL bytes is not rewritten: " + file;
    }
    const auto renamed = renamedText(*text, block, caseName).value_or(*text);
    if (auto fault = compareHeaders(headers, taskdsl::listWrittenHeaders(renamed), block)) {
        return fault;
    }
    return compareDocuments(document, renamed, file, block);
}

} // namespace morquill::project
