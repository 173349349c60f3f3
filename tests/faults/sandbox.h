#pragma once

#include "faults/commands.h"
#include "fixtures/temporary_directory.h"

#include <string>

namespace faults {

/// What became of the programs that a command started.
enum class Children { finished, ended };

/// A scenario on disk, and what an undisturbed run makes of it.
class Sandbox {
  public:
    /// Runs the command once without a fault. Throws `std::runtime_error` when that fails.
    explicit Sandbox(const Scenario& scenario);

    /// Puts everything back and runs the command with a fault.
    [[nodiscard]] RunResult run(const Fault& fault);
    /// Runs the command once more on what is there now.
    [[nodiscard]] RunResult runAgain();

    /// What is wrong with the outcome of the last run, one fault a line; empty when all promises are kept.
    [[nodiscard]] std::string complaints(const RunResult& result);

    /// The same for the files alone, after a run that may end in any way.
    [[nodiscard]] std::string complaintsOfFiles(Children children);

    /// The undisturbed run, whose report says how many calls there are.
    [[nodiscard]] const RunResult& undisturbed() const noexcept { return undisturbed_; }
    [[nodiscard]] const Scenario& scenario() const noexcept { return scenario_; }
    [[nodiscard]] const Tree& before() const noexcept { return scenario_.before; }
    [[nodiscard]] Tree now() const { return takeTree(directory_.root()); }

  private:
    [[nodiscard]] std::string filled(const std::string& text) const;
    [[nodiscard]] bool isAsAfter(const std::string& path, const std::optional<Entry>& entry) const;
    [[nodiscard]] bool isFinished(const Tree& found) const;
    [[nodiscard]] bool tells(const RunResult& result) const;
    [[nodiscard]] std::string faultsOfReport(const Tree& found, const RunResult& result) const;
    [[nodiscard]] std::string faultsOfTree(const Tree& found, Children children) const;
    [[nodiscard]] std::string faultsOfNextRun();

    morquill::TemporaryDirectory directory_;
    Scenario scenario_;
    Command command_;
    RunResult undisturbed_;
    Tree after_;
};

} // namespace faults
