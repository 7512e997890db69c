#pragma once

#include <string>
#include <vector>

/// Takes the place of the system log in a test program: linking this in catches every call of
/// openlog, syslog and closelog.
///
///     SyslogCapture::Clear();
///     SimpleLogger::DoLog(...);
///     EXPECT_EQ(SyslogCapture::Lines(), ...);
namespace SyslogCapture {

struct Line {
    int priority;        // of openlog: its option and facility
    std::string format;  // as it was given to syslog; or "openlog", "closelog"
    std::string text;    // what syslog made of it; of openlog: the identity
    bool operator==(const Line&) const = default;
};

void Clear();
std::vector<Line> Lines();

}  // namespace SyslogCapture
