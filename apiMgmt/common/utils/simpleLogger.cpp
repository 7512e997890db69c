#include "apiMgmt/common/utils/simpleLogger.h"

#include <syslog.h>

#include <new>
#include <thread>

#include "apiMgmt/common/text/safeText.h"
#include "apiMgmt/common/utils/logWatch.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::atomic<std::int32_t> logLevelMask{0xFF};
std::atomic<bool> includeHeader{false};

namespace {

constexpr int kAllLevels = 0xFF;

// The identity belongs to the process, so who opens the log first and who closes it last matter.
constexpr int kClosing = -1;  // for the moment that closelog takes
std::atomic<int> openUsers{0};
std::atomic<const char*> openIdentity{nullptr};  // null: closed

/// `text` as one line; `escaped` is filled only when the text is not one already, which is rare.
const char* oneLine(const std::string& text, std::string& escaped) {
    if (text::isOneLine(text)) {
        return text.c_str();
    }
    escaped = text::oneLine(text);
    return escaped.c_str();
}

std::string lostNote(std::uint64_t lines) {
    return STRINGUtil::FormatStr("%llu log lines were lost while the log daemon did not read",
                                 static_cast<unsigned long long>(lines));
}

}  // namespace

void SimpleLogger::open(const char* ident) {
    int users = openUsers.load(std::memory_order_relaxed);
    do {
        while (users == kClosing) {
            std::this_thread::yield();  // closelog would take the identity from what follows
            users = openUsers.load(std::memory_order_relaxed);
        }
    } while (!openUsers.compare_exchange_weak(users, users + 1, std::memory_order_acquire));
    // Each that finds it closed opens it: the first one may not have come to it yet.
    if (openIdentity.load(std::memory_order_acquire) != ident) {
        openlog(ident, LOG_CONS, LOG_USER);
        openIdentity.store(ident, std::memory_order_release);
    }
}

void SimpleLogger::close() {
    int users = openUsers.load(std::memory_order_relaxed);
    while (users > 0 && !openUsers.compare_exchange_weak(users, users == 1 ? kClosing : users - 1,
                                                         std::memory_order_acq_rel)) {
    }
    if (users > 1) {
        return;
    }
    openIdentity.store(nullptr, std::memory_order_relaxed);
    closelog();
    if (users == 1) {
        openUsers.store(0, std::memory_order_release);
    }
}

std::uint64_t SimpleLogger::lostLines() {
    return LogWatch::lostLines();
}

void SimpleLogger::setMask(int mask) {
    logLevelMask.store(mask & kAllLevels, std::memory_order_relaxed);
}

void SimpleLogger::setIncludeHeader(bool on) {
    includeHeader.store(on, std::memory_order_relaxed);
}

int SimpleLogger::ConvertToSyslogPriority(LOGLevel level) {
    // clang-format off
    switch (level) {
        case LOGEmergency: return LOG_EMERG;
        case LOGAlert:     return LOG_ALERT;
        case LOGCritical:  return LOG_CRIT;
        case LOGError:     return LOG_ERR;
        case LOGWarning:   return LOG_WARNING;
        case LOGNotice:    return LOG_NOTICE;
        case LOGInfo:      return LOG_INFO;
        case LOGDebug:     return LOG_DEBUG;
    }
    // clang-format on
    return LOG_INFO;
}

void SimpleLogger::DoLog(LOGLevel level, const char* file, const char* func, int line,
                         const std::string& category, const std::string& message) {
    if ((level & logLevelMask.load(std::memory_order_relaxed)) == 0) {
        return;
    }
    try {
        if (const std::uint64_t lost = LogWatch::takeUnreported(); lost != 0) {
            DoLog(LOGWarning, file, func, line, category, lostNote(lost));
        }
        const int priority = ConvertToSyslogPriority(level);
        std::string escapedCategory;
        std::string escapedMessage;
        const char* const categoryLine = oneLine(category, escapedCategory);
        const char* const messageLine = oneLine(message, escapedMessage);
        // Put together by hand: two lines go with every request, and a formatter takes more time
        // than all else here.
        std::string text = "level(";
        text.append(1, static_cast<char>('0' + priority))
            .append(") category(")
            .append(categoryLine);
        if (includeHeader.load(std::memory_order_relaxed)) {
            text += STRINGUtil::FormatStr(") file(%s) func(%s) line(%d", file, func, line);
        }
        text.append(") message(").append(messageLine).append(")\n");
        if (const LogWatch::Line entry; entry.mayBeWritten()) {
            syslog(priority, "%s", text.c_str());
        }
    } catch (const std::bad_alloc&) {
        LogWatch::countLost();
    }
}
