#include "project/runner.h"

#include "console/runtime_config.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/process.h"

namespace morquill::project {

std::string resolveRunner(const std::string& root) {
    const auto place = normalisedPath(root); // as the system names it to a program that runs there
    const auto runner = console::findRunnerProgram(console::loadConfig("morquill.conf", place), place);
    // The runner is also shown: a path becomes absolute and normal, a bare name is looked up along PATH.
    return runner.find('/') == std::string::npos ? runner : absoluteLocation(runner);
}

std::string noRunner(const std::string& runner) {
    return "configured project runner not found: " + runner;
}

std::string runnerCommand(const std::string& runner, const std::string& root) {
    return shellQuote(runner) + " kick --path " + shellQuote(root);
}

std::optional<std::string> runRunner(const std::string& runner, const std::string& root) {
    return system::runProgram(root, runner, {"kick", "--path", root});
}

} // namespace morquill::project
