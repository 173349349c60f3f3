#include "system/termination.h"

#include "support/file.h"

#include <algorithm>

namespace morquill::system {

namespace {

struct MarkerRow {
    LogProgram program;
    std::string_view marker;
};

constexpr MarkerRow markerTable[] = {
    {LogProgram::orca, "****ORCA TERMINATED NORMALLY****"},
    {LogProgram::gamess, "EXECUTION OF GAMESS TERMINATED NORMALLY"},
    {LogProgram::gamess, "ddikick.x: exited gracefully."},
    {LogProgram::amesp, "Normal termination of Amesp!"},
    {LogProgram::other, "Normal termination"},
    {LogProgram::other, "Program ended:"},
};

} // namespace

std::vector<std::string_view> terminationMarkers(LogProgram program) {
    std::vector<std::string_view> markers;
    for (const MarkerRow& row : markerTable) {
        if (row.program == program) {
            markers.push_back(row.marker);
        }
    }
    return markers;
}

bool hasTerminationMarker(std::string_view log, LogProgram program) {
    return std::any_of(std::begin(markerTable), std::end(markerTable), [&](const MarkerRow& row) {
        return row.program == program && log.find(row.marker) != std::string_view::npos;
    });
}

LogCheck checkTermination(const std::string& logPath, LogProgram program) {
    const auto log = readTextFile(logPath);
    if (!log || log->empty()) {
        return {.message = "Log file is empty or unreadable: " + logPath};
    }
    if (!hasTerminationMarker(*log, program)) {
        return {};
    }
    return {.terminated = true,
            .message = program == LogProgram::orca ? "Found ORCA termination flag in log: " + logPath : ""};
}

} // namespace morquill::system
