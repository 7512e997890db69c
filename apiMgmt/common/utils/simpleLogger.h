#pragma once

#include <atomic>
#include <cstdint>
#include <string>

/// The state of the logger, under names that a debugger or another module can look up in the
/// plug-in: the set of levels that are written (a bit each; at start all), and whether a line
/// names the source (at start not). Relaxed order does: each request stores the same mask.
[[gnu::visibility("default")]] extern std::atomic<std::int32_t> logLevelMask;
[[gnu::visibility("default")]] extern std::atomic<bool> includeHeader;
static_assert(sizeof(logLevelMask) == 4 && std::atomic<std::int32_t>::is_always_lock_free);
static_assert(sizeof(includeHeader) == 1 && std::atomic<bool>::is_always_lock_free);

/// Writes lines to the system log. A suppressed level costs a test and a branch.
///
///     SimpleLogger::open("SANService");
///     SimpleLogger::DoLog(SimpleLogger::LOGWarning, kSource, "Ping", 777, "SANService",
///                         "Serving Ping request");
///     // level(4) category(SANService) message(Serving Ping request)
class SimpleLogger {
public:
    SimpleLogger() = delete;

    enum LOGLevel : int {
        LOGEmergency = 0x01,
        LOGAlert = 0x02,
        LOGCritical = 0x04,
        LOGError = 0x08,
        LOGWarning = 0x10,
        LOGNotice = 0x20,
        LOGInfo = 0x40,
        LOGDebug = 0x80,
    };

    /// Opens the log, or joins those that have it open; the last to close it closes it. So no
    /// thread takes the identity from the lines of another. `ident` is not copied: it lives until
    /// that last `close`.
    static void open(const char* ident);
    static void close();

    /// How many lines this process has lost because the log daemon did not read, or for want of
    /// memory. `DoLog` waits for no daemon longer than a second or two, and further lines not at
    /// all until it reads again; then a line of its own tells how many are missing.
    static std::uint64_t lostLines();

    /// Bits above the eighth are dropped.
    static void setMask(int mask);
    static void setIncludeHeader(bool on);

    /// The syslog priority, 0 to 7, of one level; LOG_INFO for anything but a single level.
    static int ConvertToSyslogPriority(LOGLevel level);

    /// Writes one line. The texts may come from a client: control characters are written as
    /// escapes (a line feed as \x0a), so that an entry stays one line. `file` and `func` are
    /// constants of the caller.
    static void DoLog(LOGLevel level, const char* file, const char* func, int line,
                      const std::string& category, const std::string& message);
};
