#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace client {

/// One line of what a server tells a monitor in the text format of Prometheus:
/// name{label="value",...} 42
struct Sample {
    std::string name;
    std::map<std::string, std::string> labels;
    double value = 0;

    /// Empty when there is no such label.
    std::string label(const std::string& wanted) const;
};

/// All samples in their order; comments, and lines that are none, are left out.
std::vector<Sample> parseMetrics(std::string_view text);

/// Reads "12.5" or "+Inf"; 0 for what is no number.
double parseNumber(std::string_view text);

}  // namespace client
