#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "sim/ipcServer.h"

namespace sim {

/// The array's API manager: takes the message of a request, gives back what to send.
class Simulator {
public:
    /// `print` gets a line for each call.
    explicit Simulator(std::function<void(const std::string&)> print);
    ~Simulator();

    ReplyPlan handle(std::string_view message);

private:
    std::function<void(const std::string&)> m_print;
    std::uint64_t m_lastId = 0;
};

}  // namespace sim
