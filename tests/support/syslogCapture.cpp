#include "tests/support/syslogCapture.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace {

std::mutex gMutex;
std::vector<SyslogCapture::Line> gLines;

void add(int priority, const char* format, const char* text) {
    const std::lock_guard lock(gMutex);
    gLines.push_back({priority, format, text});
}

void record(int priority, const char* format, va_list args) {
    char* text = nullptr;
    if (vasprintf(&text, format, args) >= 0) {
        SyslogCapture::instead != nullptr ? SyslogCapture::instead(text)
                                          : add(priority, format, text);
    }
    std::free(text);
}

}  // namespace

void SyslogCapture::clear() {
    const std::lock_guard lock(gMutex);
    gLines.clear();
}

std::vector<SyslogCapture::Line> SyslogCapture::lines() {
    const std::lock_guard lock(gMutex);
    return gLines;
}

// The C library's names, which the program's own definitions stand before.
extern "C" {

void openlog(const char* ident, int option, int facility) {
    add(option | facility, "openlog", ident);
}

void closelog() {
    add(0, "closelog", "");
}

void syslog(int priority, const char* format, ...) {
    va_list args;
    va_start(args, format);
    record(priority, format, args);
    va_end(args);
}

// What a build with hardened library calls makes of syslog.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
void __syslog_chk(int priority, int, const char* format, ...) {
    va_list args;
    va_start(args, format);
    record(priority, format, args);
    va_end(args);
}

}  // extern "C"
