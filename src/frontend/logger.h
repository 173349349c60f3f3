#pragma once

#include "frontend/console.h"

#include <fstream>
#include <mutex>
#include <string>
#include <string_view>

namespace morquill::frontend {

enum class LogLevel { Debug = 0, Skip, Info, Warning, Error };

/// The level's name in log lines; "UNKNOWN" for a value outside the enumeration.
[[nodiscard]] std::string_view logLevelName(LogLevel level) noexcept;

/// The process-wide log: lines for the user on the console and, for the family's long-running tools, a file.
/// Never fails its caller; stream errors are ignored.
class Logger {
  public:
    /// The one logger of the process, built on first use.
    static Logger& instance();

    /// Closes an open session; then console colour on, both thresholds `Info`, tool name "morquill", path and
    /// session id empty.
    void reset();
    void setToolName(std::string_view name);
    void setConsoleColor(bool on);
    /// Starts a session. An empty path is a session on the console only; otherwise the file is opened for
    /// append and gets a banner.
    void openSession(const std::string& path, LogLevel fileThreshold, LogLevel consoleThreshold, bool color);

    void info(std::string_view text);
    /// Not written to the console when the console threshold is above `Warning`.
    void warning(std::string_view text);
    void error(std::string_view text);
    /// A question to the user: "[INFO] " and the text, without a line end.
    void prompt(std::string_view text);
    /// One empty line on standard output.
    void separator();

  private:
    Logger() = default;
    struct ConsoleStyle;
    void consoleWrite(LogLevel level, std::string_view text, const ConsoleStyle& style);
    void fileWrite(LogLevel level, std::string_view text);
    void closeFile();

    std::string toolName = "morquill";
    LogLevel fileThreshold = LogLevel::Info;
    LogLevel consoleThreshold = LogLevel::Info;
    bool consoleColor = true;
    std::ofstream logFile;
    bool logOpen = false;
    std::string logPath;
    std::string sessionId;
    std::mutex guard;
};

void logInfo(std::string_view text);
void logWarning(std::string_view text);
void logError(std::string_view text);
void logPrompt(std::string_view text);
void logSeparator();

/// The scope guard of `main`: takes the colour decision and opens a console session; its destructor resets
/// the logger.
class LogSession {
  public:
    LogSession(std::string_view toolName, int argc, const char* const* argv, LogLevel consoleThreshold,
               LogLevel fileThreshold);
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;
    ~LogSession();
};

} // namespace morquill::frontend
