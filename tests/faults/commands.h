#pragma once

#include "faults/fault_run.h"
#include "faults/tree.h"

#include <optional>
#include <string>
#include <vector>

/// The commands that are run under faults.
namespace faults {

/// What is promised when something went wrong on the way.
enum class Promise {
    wholeOrAsBefore, ///< each file is as before or as after; the next run finishes the work
    partlyRenamed,   ///< nothing is lost; what has not got its new name yet keeps the old one
};

/// A command in a sandbox; `{}` in its texts stands for the sandbox's path.
struct Scenario {
    std::string name{};
    Tree before{};
    std::string directory = "p"; ///< below the sandbox
    std::vector<std::string> arguments{};
    std::string input{};
    std::vector<std::string> environment{};
    Promise promise = Promise::wholeOrAsBefore;
    bool statusTells = true; ///< false where a failure shows in the messages alone
    bool goesOn = false;     ///< true where something may be left out with a warning and a status of 0
    std::vector<std::string> childFiles{}; ///< what a child program writes and may leave half done
    std::vector<std::string> lists{};      ///< what names only what was not left out with a warning
    std::vector<std::string>
        looseModes{};    ///< where paths begin whose permissions are set if that can be done
    Tree alternatives{}; ///< what may stand in the place of what an undisturbed run leaves
};

/// All of them.
[[nodiscard]] const std::vector<Scenario>& scenarios();
/// One of them. Throws `std::out_of_range`.
[[nodiscard]] const Scenario& scenario(const std::string& name);

} // namespace faults
