#include "project/regenerate.h"

#include "project/cases/selection.h"
#include "project/phrases.h"
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

void printGeneratorCommand(const WorkPlace& place, bool dryRun, const WorkflowWords& words) {
    std::string line = "\n";
    line.append(executePrefix(dryRun)).append(generator).append(" ").append(shellQuote(place.file));
    if (words.comdOnly) {
        line.append(" ").append(comdOnlyFlag);
    }
    system::printLine(line);
}

std::optional<std::string> runGenerator(const WorkPlace& place, const WorkflowWords& words) {
    std::vector<std::string> arguments{place.file};
    if (words.comdOnly) {
        arguments.emplace_back(comdOnlyFlag);
    }
    return system::runProgram(place.directory, generator, arguments);
}

} // namespace morquill::project
