#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The normal-termination markers by which the tool family recognises the log
/// of a finished program. No command of this program uses them, as
/// `mq.status` alone decides what is finished; the run tools share the table.
namespace morquill::system {

/// The program that wrote a log.
enum class LogProgram : std::int32_t { orca = 0, gamess, amesp, other };

/// The texts of which a log that ended normally contains one.
[[nodiscard]] std::vector<std::string_view> terminationMarkers(LogProgram program);

/// True when the log text contains one of the program's markers.
[[nodiscard]] bool hasTerminationMarker(std::string_view log, LogProgram program);

/// How the program of a log ended.
struct LogCheck {
    bool terminated = false; ///< the program ended normally
    std::string message;     ///< for the user; empty when there is nothing to report
};

/// Looks for the program's markers in a log file. An empty log counts as one that cannot be read. The message
/// names such a log, and also an ORCA log that has the marker.
[[nodiscard]] LogCheck checkTermination(const std::string& logPath, LogProgram program);

} // namespace morquill::system
