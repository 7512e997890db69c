#include "apiMgmt/apiStub/base/filters/dateTimeObject.h"

#include <exception>
#include <iostream>
#include <limits>
#include <optional>
#include <stdexcept>

namespace {

constexpr const char* kWrittenFormat = "%m/%d/%Y %I:%M:%S %p";
constexpr const char* kCompactFormat = "%m/%d/%Y-%H:%M:%S";
constexpr std::size_t kFirstBuffer = 64;
constexpr std::size_t kMaxBuffer = std::size_t{64} * 1024;

std::optional<std::int64_t> readText(const std::string& text, const char* format) {
    std::tm fields{};
    fields.tm_mday = 1;
    fields.tm_isdst = -1;  // mktime finds out what held then
    if (!strptime(text.c_str(), format, &fields)) {
        return std::nullopt;
    }
    fields.tm_wday = -1;  // mktime sets it, so that -1 seconds can be told from a failure
    const std::time_t seconds = std::mktime(&fields);
    if (seconds == -1 && fields.tm_wday == -1) {
        return std::nullopt;
    }
    return seconds;
}

// The format is the caller's, so the compiler cannot look into it; whatever it holds, strftime
// writes no more than it is given room for.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string formatFields(const std::tm& fields, const std::string& format) {
    // strftime tells an empty result and one that does not fit apart by nothing but this blank.
    // It ends at a zero byte, and so must what the blank is put behind.
    const std::string padded = format.substr(0, format.find('\0')) + " ";
    std::string text;
    for (std::size_t size = kFirstBuffer + format.size(); size <= kMaxBuffer; size *= 2) {
        text.resize(size);
        const std::size_t written = std::strftime(text.data(), size, padded.c_str(), &fields);
        if (written != 0) {
            text.resize(written - 1);
            return text;
        }
    }
    throw std::length_error("text too long");
}
#pragma GCC diagnostic pop

}  // namespace

DATETimeObject::DATETimeObject(std::int64_t seconds) : m_seconds(seconds) {}

DATETimeObject::DATETimeObject(const std::string& text) {
    Parse(text);
}

DATETimeObject::DATETimeObject(const std::string& text, const std::string& format)
    : m_seconds(readText(text, format.c_str()).value_or(0)) {}

void DATETimeObject::AddTimeInSeconds(std::int64_t seconds) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (__builtin_add_overflow(m_seconds, seconds, &m_seconds)) {
        m_seconds = seconds < 0 ? Limits::min() : Limits::max();
    }
}

int DATETimeObject::Compare(const DATETimeObject& other) const {
    return (m_seconds > other.m_seconds) - (m_seconds < other.m_seconds);
}

std::tm DATETimeObject::GetAsTMStruct() const {
    const std::time_t seconds = m_seconds;
    std::tm fields{};
    if (!localtime_r(&seconds, &fields)) {
        throw std::out_of_range("instant beyond the calendar");
    }
    return fields;
}

int DATETimeObject::GetYear() const {
    return GetAsTMStruct().tm_year + 1900;
}

int DATETimeObject::GetMonth() const {
    return GetAsTMStruct().tm_mon + 1;
}

int DATETimeObject::GetDay() const {
    return GetAsTMStruct().tm_mday;
}

int DATETimeObject::GetHour() const {
    return GetAsTMStruct().tm_hour;
}

int DATETimeObject::GetMinute() const {
    return GetAsTMStruct().tm_min;
}

int DATETimeObject::GetSecond() const {
    return GetAsTMStruct().tm_sec;
}

int DATETimeObject::GetMinutesElapsedOfTheDay() const {
    const std::tm fields = GetAsTMStruct();
    return fields.tm_hour * 60 + fields.tm_min;
}

std::string DATETimeObject::FormatAs(const std::string& format) const {
    try {
        return formatFields(GetAsTMStruct(), format);
    } catch (const std::exception& failure) {
        std::cout << "Exception formatting datetime: " << failure.what();
        return {};
    }
}

std::string DATETimeObject::ToString() const {
    return FormatAs(kWrittenFormat);
}

void DATETimeObject::Parse(const std::string& text) {
    auto seconds = readText(text, kWrittenFormat);
    if (!seconds) {
        seconds = readText(text, kCompactFormat);
    }
    m_seconds = seconds.value_or(0);
}
