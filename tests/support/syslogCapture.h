#pragma once

#include <string>
#include <vector>

/// Takes the place of the system log in a test program: linking this in catches every call of
/// openlog, syslog and closelog.
///
///     SyslogCapture::clear();
///     SimpleLogger::DoLog(...);
///     EXPECT_EQ(SyslogCapture::lines(), ...);
namespace SyslogCapture {

struct Line {
    int priority;        // of openlog: its option and facility
    std::string format;  // as it was given to syslog; or "openlog", "closelog"
    std::string text;    // what syslog made of it; of openlog: the identity
    bool operator==(const Line&) const = default;
};

/// Gets each entry's text in place of the list, when a test sets it.
inline void (*instead)(const std::string& text) = nullptr;

void clear();
std::vector<Line> lines();

}  // namespace SyslogCapture
