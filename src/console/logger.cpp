#include "console/logger.h"

#include "support/word_table.h"

#include <array>
#include <cstdlib>
#include <ctime>

#include <unistd.h>

namespace morquill::console {

namespace {

constexpr auto levelWords = wordTable<LogLevel>({
    {"DEBUG", LogLevel::Debug},
    {"SKIP", LogLevel::Skip},
    {"INFO", LogLevel::Info},
    {"WARNING", LogLevel::Warning},
    {"ERROR", LogLevel::Error},
});

/// Local time as "2026-01-31 23:59:59.042".
std::string timeStamp() {
    timespec now{};
    (void)std::timespec_get(&now, TIME_UTC);
    std::tm local{};
    (void)::localtime_r(&now.tv_sec, &local);
    std::array<char, 64> seconds{};
    std::array<char, 80> text{};
    (void)std::strftime(seconds.data(), seconds.size(), "%Y-%m-%d %H:%M:%S", &local);
    (void)std::snprintf(text.data(), text.size(), "%s.%03ld", seconds.data(), now.tv_nsec / 1'000'000);
    return text.data();
}

void put(std::FILE* stream, std::string_view text) noexcept {
    (void)std::fwrite(text.data(), 1, text.size(), stream);
}

} // namespace

std::string_view logLevelName(LogLevel level) noexcept {
    return levelWords.wordOf(level).value_or("UNKNOWN");
}

ConsoleColor logLevelColor(LogLevel level) noexcept {
    switch (level) {
    case LogLevel::Debug:
        return ConsoleColor::cyan;
    case LogLevel::Warning:
        return ConsoleColor::yellow;
    case LogLevel::Error:
        return ConsoleColor::red;
    case LogLevel::Skip:
    case LogLevel::Info:
        break;
    }
    return ConsoleColor::white;
}

Logger& Logger::instance() {
    static auto* const logger = new Logger; // never destroyed: destructors may log to the very end
    return *logger;
}

void Logger::reset() {
    const std::lock_guard lock(guard_);
    closeFile();
    consoleColor_ = true;
    fileThreshold_ = LogLevel::Info;
    consoleThreshold_ = LogLevel::Info;
    toolName_ = "morquill";
}

void Logger::setToolName(std::string_view name) {
    const std::lock_guard lock(guard_);
    toolName_ = name;
}

void Logger::setConsoleColor(bool on) {
    const std::lock_guard lock(guard_);
    consoleColor_ = on;
}

void Logger::openSession(const std::string& path, LogLevel fileLevel, LogLevel consoleLevel, bool color) {
    const std::lock_guard lock(guard_);
    closeFile();
    fileThreshold_ = fileLevel;
    consoleThreshold_ = consoleLevel;
    consoleColor_ = color;
    if (path.empty()) {
        return;
    }
    logFile_.reset(std::fopen(path.c_str(), "ae"));
    if (!logFile_) {
        if (consoleThreshold_ < LogLevel::Error) {
            consoleLine(LogLevel::Warning,
                        "log file unavailable; continuing with console-only output: " + path, {});
        }
        return;
    }
    sessionId_ =
        timeStamp() + " pid=" + std::to_string(::getpid()) + " seq=" + std::to_string(++sessionCount_);
    if (std::fseek(logFile_.get(), 0, SEEK_END) == 0 && std::ftell(logFile_.get()) > 0) {
        put(logFile_.get(), "\n");
    }
    fileBanner("START");
    fileWrite(LogLevel::Info, "logging to " + path);
    consoleLine(LogLevel::Info, "[" + toolName_ + "][INFO] logging to " + path, {.noPrefix = true});
}

void Logger::info(std::string_view text) {
    const std::lock_guard lock(guard_);
    consoleLine(LogLevel::Info, text, {.noPrefix = true});
    if (fileThreshold_ <= LogLevel::Info) {
        fileWrite(LogLevel::Info, text);
    }
}

void Logger::warning(std::string_view text) {
    const std::lock_guard lock(guard_);
    if (consoleThreshold_ <= LogLevel::Warning) {
        consoleLine(LogLevel::Warning, text, {});
    }
    if (fileThreshold_ <= LogLevel::Warning) {
        fileWrite(LogLevel::Warning, text);
    }
}

void Logger::error(std::string_view text) {
    const std::lock_guard lock(guard_);
    consoleLine(LogLevel::Error, text, {});
    fileWrite(LogLevel::Error, text);
}

void Logger::prompt(std::string_view text) {
    const std::lock_guard lock(guard_);
    consoleLine(LogLevel::Info, text, {.newline = false});
    if (fileThreshold_ <= LogLevel::Info) {
        fileWrite(LogLevel::Info, text);
    }
}

void Logger::separator() {
    const std::lock_guard lock(guard_);
    writeOut("\n");
    flushOut();
}

void Logger::consoleWrite(LogLevel level, std::string_view text, const ConsoleStyle& style) {
    const std::lock_guard lock(guard_);
    consoleLine(level, text, style);
}

void Logger::consoleLine(LogLevel level, std::string_view text, const ConsoleStyle& style) const {
    const bool toError = style.forceError || level == LogLevel::Warning || level == LogLevel::Error;
    const auto color = style.color == 0 ? logLevelColor(level) : static_cast<ConsoleColor>(style.color);
    // Not `colorEnabled`: the log has a switch of its own and ignores TERM.
    const bool colored = consoleColor_ && std::getenv("NO_COLOR") == nullptr &&
                         ::isatty(toError ? STDERR_FILENO : STDOUT_FILENO) == 1;
    std::string line;
    if (colored) {
        line += colorSequence(color);
    }
    if (!style.noPrefix) {
        line += '[';
        line += logLevelName(level);
        line += "] ";
    }
    line += text;
    if (colored) {
        line += resetSequence;
    }
    if (style.newline) {
        line += '\n';
    }
    if (toError) {
        writeErr(line);
    } else {
        writeOut(line);
        flushOut();
    }
}

void Logger::fileWrite(LogLevel level, std::string_view text) {
    if (!logFile_) {
        return;
    }
    std::string line = timeStamp() + " [" + toolName_ + "][";
    line += logLevelName(level);
    line += "] ";
    line += text;
    line += '\n';
    put(logFile_.get(), line);
    (void)std::fflush(logFile_.get());
}

void Logger::fileBanner(std::string_view word) {
    const std::string rule = std::string(100, '=') + '\n';
    put(logFile_.get(), rule);
    fileWrite(LogLevel::Info, ">>>>>>>>>>>>>>>>>>>> RUN " + std::string(word) + " | session=" + sessionId_ +
                                  " <<<<<<<<<<<<<<<<<<<<");
    put(logFile_.get(), rule);
    (void)std::fflush(logFile_.get());
}

void Logger::closeFile() {
    if (!logFile_) {
        return;
    }
    fileWrite(LogLevel::Info, "logger closed");
    fileBanner("END");
    logFile_.reset();
    sessionId_.clear();
}

void logInfo(std::string_view text) {
    Logger::instance().info(text);
}

void logWarning(std::string_view text) {
    Logger::instance().warning(text);
}

void logError(std::string_view text) {
    Logger::instance().error(text);
}

void logPrompt(std::string_view text) {
    Logger::instance().prompt(text);
}

void logSeparator() {
    Logger::instance().separator();
}

LogSession::LogSession(std::string_view toolName, int argc, const char* const* argv,
                       LogLevel consoleThreshold, LogLevel fileThreshold) {
    Logger& logger = Logger::instance();
    logger.reset();
    logger.setToolName(toolName);
    const bool color = decideColor(argc, argv);
    logger.setConsoleColor(color);
    logger.openSession({}, fileThreshold, consoleThreshold, color);
}

LogSession::~LogSession() {
    Logger::instance().reset();
    flushOut();
}

} // namespace morquill::console
