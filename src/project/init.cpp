#include "console/logger.h"
#include "console/runtime_config.h"
#include "project/case_files.h"
#include "project/cases/target.h"
#include "project/runner.h"
#include "project/workflows.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/new_file.h"
#include "system/prompt.h"
#include "system/signal_guard.h"

#include <filesystem>
#include <system_error>

namespace morquill::project {

namespace fs = std::filesystem;

namespace {

/// The directory that projects are made in; empty when it is not configured. The file goes before
/// the environment: a directory of projects is set once, in the file, and the built-in default "."
/// does not count.
std::string configuredTaskPath(const console::RuntimeConfig& config) {
    const auto found = config.find("MORQUILL_TASK_PATH");
    std::string path = found == config.end() ? std::string() : found->second;
    if (path.empty()) {
        path = console::getEnvOrDefault("MORQUILL_TASK_PATH", "");
    }
    return path.empty() ? path : absoluteLocation(path);
}

/// The name that the user types, or that of the current directory; empty after a message.
std::string askProjectName(const std::string& current) {
    console::logPrompt("project name: ");
    std::string name(trim(system::readInputLine().value_or("")));
    if (!name.empty()) {
        return name;
    }
    name = baseName(current);
    if (name.empty()) {
        console::logError("project name cannot be inferred from current directory");
        return {};
    }
    console::logInfo("using current directory name as project name: " + name);
    return name;
}

bool failProject(const std::error_code& error) {
    console::logError("failed to create project: " + error.message());
    return false;
}

bool makeProjectDirectory(const std::string& dir) {
    if (lookUpDirectory(dir)) {
        console::logWarning("project directory already exists: " + dir);
        return true;
    }
    std::error_code error;
    fs::create_directories(dir, error);
    if (error) {
        return failProject(error);
    }
    console::logInfo("created project directory: " + dir);
    return true;
}

bool makeTemplate(const std::string& source, const std::string& file) {
    if (lookUpRegularFile(file)) {
        console::logInfo("project template already exists: " + file);
        return true;
    }
    const system::SignalGuard whole; // the next run takes whatever it finds for a good template
    if (const std::error_code error = system::copyToNewFile(source, file)) {
        return failProject(error);
    }
    console::logInfo("wrote project template: " + file);
    return true;
}

void startRunner(const console::RuntimeConfig& config, const std::string& projectDir) {
    std::string runner = console::findRunnerProgram(config);
    if (runner.find('/') != std::string::npos) {
        runner = absoluteLocation(runner); // the child runs in another directory
    }
    console::logInfo("running: cd " + shellQuote(projectDir) + " && " + runnerCommand(runner, projectDir));
    if (const auto failure = runRunner(runner, projectDir)) {
        console::logError("project runner failed: " + *failure);
    }
}

} // namespace

bool runProjectInit() {
    const console::RuntimeConfig config = console::loadConfig("morquill.conf");
    const std::string taskPath = configuredTaskPath(config);
    if (taskPath.empty()) {
        console::logError("MORQUILL_TASK_PATH is not set");
        return false;
    }
    const std::string current = absoluteLocation({});
    const std::string name = askProjectName(current);
    if (name.empty()) {
        return false;
    }
    const std::string source = selectSourceTaskFile(current);
    if (source.empty()) {
        return false;
    }
    console::logInfo("source .mq file: " + source);
    const std::vector<std::string> geometries = listGeometryFiles(current);
    if (geometries.empty()) {
        return false;
    }
    console::logInfo("geometry files found: " + std::to_string(geometries.size()));

    const std::string projectDir = absoluteLocation(joinPath(taskPath, name));
    const std::string templateFile = joinPath(projectDir, name + std::string(templateExtension));
    if (!makeProjectDirectory(projectDir) || !makeTemplate(source, templateFile)) {
        return false;
    }
    for (const std::string& geometry : geometries) {
        // A case that cannot be made has been reported; the others go on.
        (void)createCase(geometry, projectDir, templateFile);
    }
    console::logSeparator();
    console::logInfo("project created");
    console::logInfo("project path: " + projectDir);
    console::logInfo("project template: " + templateFile);
    console::logPrompt("start the generated project now? (y/n): ");
    if (const std::string answer = system::readInputLine().value_or(""); answer == "y" || answer == "Y") {
        startRunner(config, projectDir);
    }
    return true;
}

} // namespace morquill::project
