// Any text as a date-time, and as a format, up to the first line feed.
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>

#include "apiMgmt/apiStub/base/filters/dateTimeObject.h"

namespace {

// Without daylight saving every local time is one instant.
const bool zoneIsSet = [] {
    setenv("TZ", "UTC0", 1);  // NOLINT(concurrency-mt-unsafe): before any thread
    tzset();
    return true;
}();

constexpr int lastYear = 9999;  // the last whose text is read whole

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto end = text.find('\n');
    DATETimeObject time(text.substr(0, end));
    if (end != std::string::npos) {
        const std::string format = text.substr(end + 1);
        time.FormatAs(format);
        const DATETimeObject free(text.substr(0, end), format);
    }
    if (time.GetYear() <= lastYear && DATETimeObject(time.ToString()) != time)
        std::abort();
    time.GetMinutesElapsedOfTheDay();
    return 0;
}
