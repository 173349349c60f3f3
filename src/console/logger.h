#pragma once

#include "console/console.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace morquill::console {

/// How important a line of the log is; a threshold lets its own level and those above it pass.
enum class LogLevel { Debug = 0, Skip, Info, Warning, Error };

/// The level's name in log lines; "UNKNOWN" for a value outside the enumeration.
[[nodiscard]] std::string_view logLevelName(LogLevel level) noexcept;

/// The level's colour on a terminal; white for a value outside the enumeration.
[[nodiscard]] ConsoleColor logLevelColor(LogLevel level) noexcept;

/// How one console line differs from its level's usual form.
struct ConsoleStyle {
    int color = 0;           ///< code of a `ConsoleColor`; 0 means the level's own
    bool forceError = false; ///< write to standard error whatever the level
    bool noPrefix = false;   ///< leave out "[<LEVEL>] "
    bool newline = true;     ///< end the line; it is flushed either way
};

/// The log of the process: lines for the user on the console and, for the family's long-running tools, in a
/// file. Never fails its caller; stream errors are ignored.
class Logger {
  public:
    /// The one logger of the process, built on first use and never destroyed.
    static Logger& instance();

    /// Closes an open session and restores the defaults: console colour on, both thresholds `Info`, tool name
    /// "morquill", session id empty.
    void reset();
    void setToolName(std::string_view name);
    void setConsoleColor(bool on);
    /// Starts a session, on the console only when the path is empty. Otherwise
    /// the file is opened for appending and gets a banner; one that cannot be
    /// opened is reported as a warning, and the session goes on without it.
    void openSession(const std::string& path, LogLevel fileLevel, LogLevel consoleLevel, bool color);

    /// Writes a line for the user, without a prefix, whatever the threshold.
    void info(std::string_view text);
    /// Writes a warning, to the console only when its threshold is not above `Warning`.
    void warning(std::string_view text);
    /// Writes an error, whatever the thresholds.
    void error(std::string_view text);
    /// Writes a question to the user: "[INFO] " and the text, without a line end.
    void prompt(std::string_view text);
    /// Writes an empty line to standard output.
    void separator();

    /// Writes a line to the console whatever the thresholds: to standard error for `Warning` and `Error`, to
    /// standard output otherwise; coloured when the session allows it, `NO_COLOR` is not set and the stream
    /// is a terminal (`TERM` is ignored here).
    void consoleWrite(LogLevel level, std::string_view text, const ConsoleStyle& style);

  private:
    struct CloseStream {
        void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
    };

    Logger() = default;
    // The caller of these holds `guard_`.
    void consoleLine(LogLevel level, std::string_view text, const ConsoleStyle& style) const;
    void fileWrite(LogLevel level, std::string_view text);
    void fileBanner(std::string_view word);
    void closeFile();

    std::string toolName_ = "morquill";
    LogLevel fileThreshold_ = LogLevel::Info;
    LogLevel consoleThreshold_ = LogLevel::Info;
    bool consoleColor_ = true;
    std::unique_ptr<std::FILE, CloseStream> logFile_; // open only while a session has a file
    std::string sessionId_;
    unsigned sessionCount_ = 0; // since the process began; makes session ids unique
    std::mutex guard_;
};

void logInfo(std::string_view text);    ///< `Logger::info` of the process's logger
void logWarning(std::string_view text); ///< `Logger::warning` of the process's logger
void logError(std::string_view text);   ///< `Logger::error` of the process's logger
void logPrompt(std::string_view text);  ///< `Logger::prompt` of the process's logger
void logSeparator();                    ///< `Logger::separator` of the process's logger

/// The scope guard of a run: makes the colour decision and opens a session on the console; its destructor
/// resets the logger and flushes standard output.
class LogSession {
  public:
    LogSession(std::string_view toolName, int argc, const char* const* argv, LogLevel consoleThreshold,
               LogLevel fileThreshold);
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;
    ~LogSession();
};

} // namespace morquill::console
