#include "client/top/metrics.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace client {

namespace {

// Removes the text up to and with `end` and gives it, without `end`; all of it when there is no
// `end`.
std::string_view takeUntil(std::string_view& text, char end) {
    const std::size_t at = text.find(end);
    const std::string_view taken = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
    return taken;
}

// Reads a label's value, from behind its first quote; the last quote is removed too.
std::string takeQuoted(std::string_view& text) {
    std::string value;
    while (!text.empty() && text.front() != '"') {
        if (text.front() == '\\' && text.size() > 1) {
            text.remove_prefix(1);
            value += text.front() == 'n' ? '\n' : text.front();
        } else {
            value += text.front();
        }
        text.remove_prefix(1);
    }
    text.remove_prefix(text.empty() ? 0 : 1);
    return value;
}

std::map<std::string, std::string> takeLabels(std::string_view& text) {
    std::map<std::string, std::string> labels;
    while (!text.empty() && text.front() != '}') {
        const std::string name(takeUntil(text, '='));
        takeUntil(text, '"');
        labels[name] = takeQuoted(text);
        text.remove_prefix(text.starts_with(',') ? 1 : 0);
    }
    text.remove_prefix(text.empty() ? 0 : 1);
    return labels;
}

}  // namespace

std::string Sample::label(const std::string& wanted) const {
    const auto found = labels.find(wanted);
    return found == labels.end() ? "" : found->second;
}

double parseNumber(std::string_view text) {
    if (text == "+Inf") {
        return std::numeric_limits<double>::infinity();
    }
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::vector<Sample> parseMetrics(std::string_view text) {
    std::vector<Sample> samples;
    while (!text.empty()) {
        std::string_view line = takeUntil(text, '\n');
        const std::size_t nameEnd = line.find_first_of("{ ");
        if (line.starts_with('#') || nameEnd == std::string_view::npos) {
            continue;
        }
        Sample sample{std::string(line.substr(0, nameEnd)), {}, 0};
        line.remove_prefix(nameEnd);
        if (line.starts_with('{')) {
            line.remove_prefix(1);
            sample.labels = takeLabels(line);
        }
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        sample.value = parseNumber(takeUntil(line, ' '));
        samples.push_back(std::move(sample));
    }
    return samples;
}

}  // namespace client
