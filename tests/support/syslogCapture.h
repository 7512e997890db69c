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
    int priority;
    std::string format;  // as it was given to syslog
    std::string text;    // what syslog made of it
    bool operator==(const Line&) const = default;
};

void Clear();
std::vector<Line> Lines();
/// "openlog(ident, option, facility)" and "closelog()", in the order of the calls.
std::vector<std::string> Calls();

}  // namespace SyslogCapture
