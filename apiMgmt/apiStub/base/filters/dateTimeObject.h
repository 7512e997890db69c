#pragma once

#include <cstdint>
#include <ctime>
#include <string>

/// One instant: whole seconds since 1970-01-01 00:00:00 UTC, of any sign.
///
///     DATETimeObject time("11/14/2026 03:04:05 PM");
///     time.AddTimeInSeconds(60);
///     time.ToString();   // "11/14/2026 03:05:05 PM"
///
/// Texts and fields are in local time, with daylight saving as it was at that instant. Safe in
/// any number of threads at once, as long as none changes the time zone.
class DATETimeObject {
public:
    explicit DATETimeObject(std::int64_t seconds = 0);
    /// As Parse.
    explicit DATETimeObject(const std::string& text);
    /// `format` is one of strptime; a text that does not fit it gives 0.
    DATETimeObject(const std::string& text, const std::string& format);

    std::int64_t GetSeconds() const { return m_seconds; }
    /// Stops at the first or last instant that can be held.
    void AddTimeInSeconds(std::int64_t seconds);
    /// Negative when this instant is the earlier one, zero when they are the same.
    int Compare(const DATETimeObject& other) const;
    bool operator==(const DATETimeObject&) const = default;

    /// Throws std::out_of_range for an instant whose year does not fit an int.
    std::tm GetAsTMStruct() const;
    // Each as GetAsTMStruct gives it.
    int GetYear() const;   // such as 2026
    int GetMonth() const;  // 1 to 12
    int GetDay() const;    // 1 to 31
    int GetHour() const;   // 0 to 23
    int GetMinute() const;
    int GetSecond() const;
    int GetMinutesElapsedOfTheDay() const;

    /// `format` is one of strftime. What keeps it from being used (an instant too far away, an
    /// endless result) is told on standard output and gives the empty text.
    std::string FormatAs(const std::string& format) const;
    /// "11/14/2026 03:04:05 PM"
    std::string ToString() const;
    /// Reads "11/14/2026 03:04:05 PM" or "11/14/2026-15:04:05"; any other text gives 0.
    void Parse(const std::string& text);

private:
    std::int64_t m_seconds = 0;
};
