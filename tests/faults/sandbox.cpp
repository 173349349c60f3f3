#include "faults/sandbox.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace faults {

namespace {

std::set<std::string> pathsOf(const Tree& a, const Tree& b, const Tree& c) {
    std::set<std::string> paths;
    for (const Tree* tree : {&a, &b, &c}) {
        for (const auto& row : *tree) {
            paths.insert(row.first);
        }
    }
    return paths;
}

bool tellsOfError(const std::string& errors) {
    return errors.find("ERROR]") != std::string::npos;
}

std::string renamed(std::string text) {
    for (auto place = text.find("opt"); place != std::string::npos; place = text.find("opt", place)) {
        text.replace(place, 3, "geo");
    }
    return text;
}

/// The tree with every old name, of files and in them, made a new one.
Tree renamed(const Tree& tree) {
    Tree all;
    for (auto [path, entry] : tree) {
        entry.content = renamed(entry.content);
        all.emplace(renamed(path), entry);
    }
    return all;
}

/// Where an interrupted copy lies that the next run takes away.
bool isUnfinishedCopy(const std::string& path) {
    return path.find("/.mqkit-") != std::string::npos;
}

} // namespace

Sandbox::Sandbox(const Scenario& scenario) : scenario_(scenario) {
    command_.directory = directory_.root() + "/" + scenario.directory;
    command_.arguments = scenario.arguments;
    command_.input = scenario.input;
    for (const auto& variable : scenario.environment) {
        command_.environment.push_back(filled(variable));
    }
    command_.environment.push_back("PATH=" + directory_.root() + "/bin:/usr/bin:/bin");
    command_.environment.push_back("HOME=" + directory_.root() + "/home");
    command_.environment.emplace_back("NO_COLOR=1");
    command_.environment.emplace_back("LC_ALL=C");
    undisturbed_ = run({});
    after_ = now();
    if (undisturbed_.status != 0 || tellsOfError(undisturbed_.errors) || after_ == scenario_.before) {
        throw std::runtime_error("the undisturbed command does nothing: " + undisturbed_.errors);
    }
}

std::string Sandbox::filled(const std::string& text) const {
    const auto hole = text.find("{}");
    return hole == std::string::npos ? text
                                     : text.substr(0, hole) + directory_.root() + text.substr(hole + 2);
}

RunResult Sandbox::run(const Fault& fault) {
    putTree(directory_.root(), scenario_.before);
    return runWith(fault, command_);
}

RunResult Sandbox::runAgain() {
    return runWith({}, command_);
}

bool Sandbox::isAsAfter(const std::string& path, const std::optional<Entry>& entry) const {
    auto wanted = at(after_, path);
    const bool isLoose = std::any_of(scenario_.looseModes.begin(), scenario_.looseModes.end(),
                                     [&](const std::string& start) { return path.starts_with(start); });
    if (wanted && entry && isLoose) {
        wanted->mode = entry->mode;
    }
    return entry == wanted || (entry && entry == at(scenario_.alternatives, path));
}

bool Sandbox::isFinished(const Tree& found) const {
    const auto paths = pathsOf(after_, found, {});
    return std::all_of(paths.begin(), paths.end(),
                       [&](const std::string& path) { return isAsAfter(path, at(found, path)); });
}

/// True when there is a message that an undisturbed run does not print.
bool Sandbox::tells(const RunResult& result) const {
    const bool skips = result.output.find("[SKIP]") != std::string::npos ||
                       result.output.find("[WARN]") != std::string::npos;
    return (!result.errors.empty() && result.errors != undisturbed_.errors) ||
           (skips && result.output != undisturbed_.output);
}

std::string Sandbox::faultsOfReport(const Tree& found, const RunResult& result) const {
    if (result.status > 2) {
        return "status " + std::to_string(result.status) + "\n";
    }
    if (result.status != 0) {
        return tells(result) ? "" : "a failure without a message\n";
    }
    if (scenario_.statusTells && tellsOfError(result.errors)) {
        return "an error with a status of success\n";
    }
    const bool isTold = tells(result) && (scenario_.goesOn || !scenario_.statusTells);
    return isTold || isFinished(found) ? "" : "success, and not all is done\n";
}

std::string Sandbox::faultsOfTree(const Tree& found, Children children) const {
    if (scenario_.promise == Promise::partlyRenamed) {
        return renamed(found) == renamed(after_) ? "" : "something is lost\n";
    }
    std::string text;
    for (const auto& path : pathsOf(scenario_.before, after_, found)) {
        const auto entry = at(found, path);
        const auto& others = scenario_.childFiles;
        const bool isOthers =
            children == Children::ended && std::find(others.begin(), others.end(), path) != others.end();
        if (!isOthers && !isAsAfter(path, entry) && entry != at(scenario_.before, path) &&
            !isUnfinishedCopy(path)) {
            text += path + " is " + describe(entry) + "\n";
        }
    }
    return text;
}

std::string Sandbox::faultsOfNextRun() {
    const RunResult again = runAgain();
    if (again.status != 0 || tellsOfError(again.errors)) {
        return "the next run ends with " + std::to_string(again.status) + ": " + again.errors;
    }
    std::string text;
    const Tree finished = now();
    for (const auto& path : pathsOf(after_, finished, {})) {
        if (!isAsAfter(path, at(finished, path))) {
            text += path + " is " + describe(at(finished, path)) + " after the next run\n";
        }
    }
    return text;
}

std::string Sandbox::complaints(const RunResult& result) {
    Tree found = now();
    std::string text = faultsOfReport(found, result);
    if (result.status != 0) {
        return text + complaintsOfFiles(Children::finished);
    }
    // What a success leaves out was looked at with its report.
    for (const auto& path : scenario_.lists) {
        if (const auto list = at(after_, path); list && found.contains(path)) {
            found[path] = *list;
        }
    }
    return text + faultsOfTree(found, Children::ended);
}

std::string Sandbox::complaintsOfFiles(Children children) {
    const Tree found = now();
    std::string text = faultsOfTree(found, children);
    const bool isHalfDone = found != scenario_.before && !isFinished(found);
    if (text.empty() && isHalfDone && scenario_.promise == Promise::wholeOrAsBefore) {
        text = faultsOfNextRun();
    }
    return text;
}

} // namespace faults
