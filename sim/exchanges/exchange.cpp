#include "sim/exchanges/exchange.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "apiMgmt/common/text/safeText.h"

namespace sim {

std::string utcTime(std::chrono::system_clock::time_point time) {
    const auto sinceEpoch =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const std::time_t seconds = static_cast<std::time_t>(sinceEpoch / 1000);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 32> day{};
    std::strftime(day.data(), day.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::array<char, 48> out{};
    std::snprintf(out.data(), out.size(), "%s.%03dZ", day.data(),
                  static_cast<int>(sinceEpoch % 1000));
    return out.data();
}

const std::string& clusterOf(const Exchange& exchange) {
    const auto named = exchange.members.find("HccId");
    return named != exchange.members.end() ? named->second : exchange.hccId;
}

std::string summaryLine(const Exchange& exchange) {
    std::string line = utcTime(exchange.time) + " #" + std::to_string(exchange.id) + " " +
                       exchange.label + " from " + exchange.clientAddress + ": " + exchange.outcome;
    if (!exchange.fault.empty()) {
        line += " [fault: " + exchange.fault + "]";
    }
    std::array<char, 32> took{};
    std::snprintf(took.data(), took.size(), " (%.1f ms)",
                  static_cast<double>(exchange.took.count()) / 1000);
    return text::oneLine(line + took.data());
}

}  // namespace sim
