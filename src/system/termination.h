#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The normal-termination markers by which the tool family knows a finished log. No command of this program
/// asks: it takes a task as finished from `mq.status` alone. The table is the vocabulary shared with the run
/// tools.
namespace morquill::system {

/// Whose log is looked at.
enum class LogProgram : std::int32_t { orca = 0, gamess, amesp, other };

/// The texts of which one stands in a log that ended normally.
[[nodiscard]] std::vector<std::string_view> terminationMarkers(LogProgram program);

/// True when the log text holds one of the program's markers.
[[nodiscard]] bool hasTerminationMarker(std::string_view log, LogProgram program);

/// What a log says about the end of its program.
struct LogCheck {
    bool terminated = false; ///< the log ends normally
    std::string message;     ///< for whoever shows it; empty where there is nothing to tell
};

/// Looks for the program's markers in a log file. An empty log is as good as one that cannot be read: the
/// message names it, as it does an ORCA log with its marker.
[[nodiscard]] LogCheck checkTermination(const std::string& logPath, LogProgram program);

} // namespace morquill::system
