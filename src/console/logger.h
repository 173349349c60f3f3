#pragma once

#include "console/console.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace morquill::console {

enum class LogLevel { Debug = 0, Skip, Info, Warning, Error };

/// The level's name in log lines; "UNKNOWN" for a value outside the enumeration.
[[nodiscard]] std::string_view logLevelName(LogLevel level) noexcept;

/// The level's colour on a terminal; white for a value outside the enumeration.
[[nodiscard]] ConsoleColor logLevelColor(LogLevel level) noexcept;

/// How one console line departs from its level's usual form.
struct ConsoleStyle {
    int color = 0;           ///< code of a `ConsoleColor`; 0 takes the level's own
    bool forceError = false; ///< standard error whatever the level
    bool noPrefix = false;   ///< no "[<LEVEL>] " in front
    bool newline = true;     ///< end the line; it is brought out either way
};

/// The process-wide log: lines for the user on the console and, for the family's long-running tools, a file.
/// Never fails its caller; stream errors are ignored.
class Logger {
  public:
    /// The one logger of the process, built on first use and never destroyed.
    static Logger& instance();

    /// Closes an open session; then console colour on, both thresholds `Info`, tool name "morquill", path and
    /// session id empty.
    void reset();
    void setToolName(std::string_view name);
    void setConsoleColor(bool on);
    /// Starts a session. An empty path is a session on the console only; otherwise the file is opened for
    /// append and gets a banner. A file that cannot be opened is reported as a warning, and the session goes
    /// on without it.
    void openSession(const std::string& path, LogLevel fileLevel, LogLevel consoleLevel, bool color);

    /// A line for the user, without prefix; always written.
    void info(std::string_view text);
    /// Not written to the console when the console threshold is above `Warning`.
    void warning(std::string_view text);
    void error(std::string_view text);
    /// A question to the user: "[INFO] " and the text, without a line end.
    void prompt(std::string_view text);
    /// One empty line on standard output.
    void separator();

    /// One line on the console whatever the thresholds: standard error for `Warning` and `Error`, standard
    /// output otherwise; coloured when the session's switch is on, `NO_COLOR` is not set and the stream is a
    /// terminal (`TERM` plays no part here).
    void consoleWrite(LogLevel level, std::string_view text, const ConsoleStyle& style);

  private:
    struct CloseStream {
        void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
    };

    Logger() = default;
    // These expect `guard_` to be held.
    void consoleLine(LogLevel level, std::string_view text, const ConsoleStyle& style) const;
    void fileWrite(LogLevel level, std::string_view text);
    void fileBanner(std::string_view word);
    void closeFile();

    std::string toolName_ = "morquill";
    LogLevel fileThreshold_ = LogLevel::Info;
    LogLevel consoleThreshold_ = LogLevel::Info;
    bool consoleColor_ = true;
    std::unique_ptr<std::FILE, CloseStream> logFile_; // open exactly while a session has a file
    std::string logPath_;
    std::string sessionId_;
    unsigned sessionCount_ = 0; // over the life of the process; makes session ids unique
    std::mutex guard_;
};

void logInfo(std::string_view text);    ///< `Logger::info` of the process's logger
void logWarning(std::string_view text); ///< `Logger::warning` of the process's logger
void logError(std::string_view text);   ///< `Logger::error` of the process's logger
void logPrompt(std::string_view text);  ///< `Logger::prompt` of the process's logger
void logSeparator();                    ///< `Logger::separator` of the process's logger

/// The scope guard of a run: takes the colour decision and opens a session on the console; its destructor
/// resets the logger and brings out what standard output has kept back.
class LogSession {
  public:
    LogSession(std::string_view toolName, int argc, const char* const* argv, LogLevel consoleThreshold,
               LogLevel fileThreshold);
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;
    ~LogSession();
};

} // namespace morquill::console
