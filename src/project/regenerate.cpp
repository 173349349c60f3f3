#include "project/regenerate.h"

#include "project/cases/selection.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/process.h"
#include "system/prompt.h"

namespace morquill::project {

namespace {

constexpr const char* generator = "morquill";
constexpr const char* comdOnlyFlag = "--comd-only";

bool hasSelection(const std::vector<std::string>& selected, const WorkflowWords& words) {
    if (selected.empty()) {
        system::printErrorLine("[mqkit][ERROR] no task blocks were selected for " + std::string(words.verb));
    }
    return !selected.empty();
}

} // namespace

bool chooseWork(const std::string& path, const std::vector<std::string>& names, std::string_view title,
                ProjectTarget& target, std::vector<std::string>& selected) {
    if (std::string error; !resolveTarget(path, target, error)) {
        system::printErrorLine(error);
        return false;
    }
    const bool chosen =
        target.kind == TargetKind::Case
            ? selectFromFile(target.caseFile, "task file", names, title, selected)
            : selectFromProject(target.projectRoot, target.projectFile, names, title, selected);
    if (chosen && selected.empty()) {
        system::printLine("[mqkit] no task blocks were selected; exiting.");
    }
    return chosen;
}

std::optional<WorkPlace> openCase(const std::string& caseDir, const std::string& caseFile,
                                  const std::vector<std::string>& selected, const WorkflowWords& words) {
    if (!hasSelection(selected, words)) {
        return std::nullopt;
    }
    if (!isDirectory(caseDir)) {
        system::printErrorLine("[mqkit][ERROR] case directory does not exist: " + caseDir);
        return std::nullopt;
    }
    if (!isRegularFile(caseFile)) {
        system::printErrorLine("[mqkit][ERROR] case .mq file does not exist: " + caseFile);
        return std::nullopt;
    }
    return WorkPlace{TargetKind::Case, caseDir, caseFile, {caseDir}};
}

std::optional<WorkPlace> openProject(const std::string& root, const std::string& file,
                                     const std::vector<std::string>& selected, const WorkflowWords& words) {
    if (!hasSelection(selected, words)) {
        return std::nullopt;
    }
    auto caseDirs = listCaseDirectories(root);
    if (caseDirs.empty()) {
        system::printErrorLine("[mqkit][ERROR] no case subdirectories were found in project: " + root);
        return std::nullopt;
    }
    return WorkPlace{TargetKind::Project, root, file, std::move(caseDirs)};
}

void printWorkHeader(const WorkPlace& place, const std::vector<std::string>& selected, bool dryRun,
                     const WorkflowWords& words) {
    std::string text = place.kind == TargetKind::Case ? "\n[MQ " : "\n[ProjMQ ";
    text.append(words.title).append("]\n");
    if (place.kind == TargetKind::Case) {
        text += "  case directory: " + place.directory + "\n  task file: " + place.file + "\n";
    } else {
        text += "  project directory: " + place.directory + "\n";
    }
    text += "  task blocks: " + formatSelection(selected) + "\n";
    text += dryRun ? "  mode: dry-run (no files written)\n" : "  mode: apply changes\n";
    text.append("  morquill mode: ").append(words.mode).append("\n");
    system::printLine(text);
}

std::string_view executePrefix(bool dryRun) noexcept {
    return dryRun ? "[mqkit][DRY-RUN] " : "[mqkit] execute ";
}

void printGeneratorCommand(const WorkPlace& place, bool dryRun, const WorkflowWords& words) {
    std::string line = "\n";
    line.append(executePrefix(dryRun)).append(generator).append(" ").append(shellQuote(place.file));
    if (words.comdOnly) {
        line.append(" ").append(comdOnlyFlag);
    }
    system::printLine(line);
}

bool runGenerator(const WorkPlace& place, const WorkflowWords& words, std::string& failure) {
    std::vector<std::string> arguments{place.file};
    if (words.comdOnly) {
        arguments.emplace_back(comdOnlyFlag);
    }
    return system::runProgram(place.directory, generator, arguments, &failure);
}

std::string inParentheses(const std::string& reason) {
    return reason.empty() ? "" : " (" + reason + ")";
}

} // namespace morquill::project
