#include "apiMgmt/common/utils/simpleLogger.h"

#include <syslog.h>

#include "apiMgmt/common/text/safeText.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::atomic<std::int32_t> logLevelMask{0xFF};
std::atomic<bool> includeHeader{false};

namespace {

constexpr int kAllLevels = 0xFF;

/// `text` as one line; `escaped` is filled only when the text is not one already, which is rare.
const char* oneLine(const std::string& text, std::string& escaped) {
    if (text::isOneLine(text)) {
        return text.c_str();
    }
    escaped = text::oneLine(text);
    return escaped.c_str();
}

}  // namespace

void SimpleLogger::open(const char* ident) {
    openlog(ident, LOG_CONS, LOG_USER);
}

void SimpleLogger::close() {
    closelog();
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
    const int priority = ConvertToSyslogPriority(level);
    std::string escapedCategory;
    std::string escapedMessage;
    const char* const categoryLine = oneLine(category, escapedCategory);
    const char* const messageLine = oneLine(message, escapedMessage);
    const std::string text =
        includeHeader.load(std::memory_order_relaxed)
            ? STRINGUtil::FormatStr(
                  "level(%d) category(%s) file(%s) func(%s) line(%d) message(%s)\n", priority,
                  categoryLine, file, func, line, messageLine)
            : STRINGUtil::FormatStr("level(%d) category(%s) message(%s)\n", priority, categoryLine,
                                    messageLine);
    syslog(priority, "%s", text.c_str());
}
