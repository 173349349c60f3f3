#include "project/regenerate.h"

#include "project/cases/selection.h"
#include "project/phrases.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/process.h"

#include <utility>

namespace morquill::project {

namespace {

constexpr const char* generator = "morquill";

bool hasSelection(const std::vector<std::string>& selected, const WorkflowWords& words) {
    if (selected.empty()) {
        console::reportError("no task blocks were selected for " + std::string(words.verb));
    }
    return !selected.empty();
}

} // namespace

std::optional<WorkPlace> openCase(const std::string& caseDir, const std::string& caseFile,
                                  const std::vector<std::string>& selected, const WorkflowWords& words) {
    if (!hasSelection(selected, words)) {
        return std::nullopt;
    }
    if (!lookUpDirectory(caseDir)) {
        console::reportError("case directory does not exist: " + caseDir);
        return std::nullopt;
    }
    if (!lookUpRegularFile(caseFile)) {
        console::reportError("case .mq file does not exist: " + caseFile);
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
        console::reportError(noCases(root));
        return std::nullopt;
    }
    return WorkPlace{TargetKind::Project, root, file, std::move(caseDirs)};
}

std::optional<StatusLocks> lockWork(const WorkPlace& place) {
    return lockStatusFiles(place.kind, place.directory, place.file);
}

void printWorkHeader(const WorkPlace& place, const std::vector<std::string>& selected, console::RunMode mode,
                     const WorkflowWords& words) {
    std::string text = place.kind == TargetKind::Case ? "\n[MQ " : "\n[ProjMQ ";
    text.append(words.title).append("]\n");
    if (place.kind == TargetKind::Case) {
        text += "  case directory: " + place.directory + "\n  task file: " + place.file + "\n";
    } else {
        text += "  project directory: " + place.directory + "\n";
    }
    text += "  task blocks: " + formatSelection(selected) + "\n";
    text +=
        mode == console::RunMode::dryRun ? "  mode: dry-run (no files written)\n" : "  mode: apply changes\n";
    text.append("  morquill mode: ").append(words.mode).append("\n");
    console::printLine(text);
}

void printGeneratorCommand(const WorkPlace& place, console::RunMode mode, const WorkflowWords& words) {
    std::string command = generator + (" " + shellQuote(place.file));
    if (!words.flag.empty()) {
        command.append(" ").append(words.flag);
    }
    console::printLine();
    printExecution(command, mode);
}

std::optional<std::string> runGenerator(const WorkPlace& place, const WorkflowWords& words) {
    std::vector<std::string> arguments{place.file};
    if (!words.flag.empty()) {
        arguments.emplace_back(words.flag);
    }
    return system::runProgram(place.directory, generator, arguments);
}

} // namespace morquill::project
