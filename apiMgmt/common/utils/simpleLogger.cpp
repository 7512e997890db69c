#include "apiMgmt/common/utils/simpleLogger.h"

#include <syslog.h>

#include <string_view>

#include "apiMgmt/common/utils/stringUtil.h"

std::atomic<std::int32_t> logLevelMask{0xFF};
std::atomic<bool> includeHeader{false};

namespace {

constexpr int kAllLevels = 0xFF;

/// How many bytes the control character takes that the text begins with; 0 when it begins with
/// something else. Beside those of ASCII there are U+0080 to U+009F: terminals obey them too.
std::size_t controlLength(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x20 || byte(0) == 0x7F) {
        return 1;
    }
    const bool high = byte(0) == 0xC2 && text.size() > 1 && byte(1) >= 0x80 && byte(1) <= 0x9F;
    return high ? 2 : 0;
}

std::size_t findControl(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (controlLength(text.substr(i)) != 0) {
            return i;
        }
    }
    return std::string_view::npos;
}

/// A text as one line. Nearly every text already is one: then it is used as it stands.
class OneLine {
public:
    explicit OneLine(const std::string& text) : m_text(text) {
        if (findControl(text) != std::string_view::npos) {
            Escape();
        }
    }
    const char* c_str() const { return m_escaped.empty() ? m_text.c_str() : m_escaped.c_str(); }

private:
    void Escape() {
        constexpr const char* kHex = "0123456789abcdef";
        for (std::string_view rest = m_text; !rest.empty();) {
            const std::size_t length = controlLength(rest);
            if (length == 0) {
                m_escaped.push_back(rest.front());
            }
            for (std::size_t i = 0; i < length; ++i) {
                const auto byte = static_cast<unsigned char>(rest[i]);
                m_escaped.append("\\x").append({kHex[byte >> 4], kHex[byte & 0xF]});
            }
            rest.remove_prefix(length == 0 ? 1 : length);
        }
    }

    const std::string& m_text;
    std::string m_escaped;
};

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
    const OneLine categoryLine(category);
    const OneLine messageLine(message);
    const std::string text =
        includeHeader.load(std::memory_order_relaxed)
            ? STRINGUtil::FormatStr(
                  "level(%d) category(%s) file(%s) func(%s) line(%d) message(%s)\n", priority,
                  categoryLine.c_str(), file, func, line, messageLine.c_str())
            : STRINGUtil::FormatStr("level(%d) category(%s) message(%s)\n", priority,
                                    categoryLine.c_str(), messageLine.c_str());
    syslog(priority, "%s", text.c_str());
}
