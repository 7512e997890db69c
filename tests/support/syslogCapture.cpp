#include "tests/support/syslogCapture.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace {

std::mutex gMutex;
std::vector<SyslogCapture::Line> gLines;
std::vector<std::string> gCalls;

void Record(int priority, const char* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    const std::lock_guard lock(gMutex);
    gLines.push_back({priority, format, text});
}

}  // namespace

void SyslogCapture::Clear() {
    const std::lock_guard lock(gMutex);
    gLines.clear();
    gCalls.clear();
}

std::vector<SyslogCapture::Line> SyslogCapture::Lines() {
    const std::lock_guard lock(gMutex);
    return gLines;
}

std::vector<std::string> SyslogCapture::Calls() {
    const std::lock_guard lock(gMutex);
    return gCalls;
}

// The C library's names, which the program's own definitions stand before.
extern "C" {

void openlog(const char* ident, int option, int facility) {
    const std::lock_guard lock(gMutex);
    gCalls.push_back(std::string("openlog(") + ident + ", " + std::to_string(option) + ", " +
                     std::to_string(facility) + ")");
}

void closelog() {
    const std::lock_guard lock(gMutex);
    gCalls.emplace_back("closelog()");
}

void syslog(int priority, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Record(priority, format, args);
    va_end(args);
}

// What a build with hardened library calls makes of syslog.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
void __syslog_chk(int priority, int, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Record(priority, format, args);
    va_end(args);
}

}  // extern "C"
