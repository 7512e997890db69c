#include "sim/protocol/listFilter.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <optional>

namespace sim {

namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Cuts the text off at the next separator, which is dropped.
std::string_view takeUntil(std::string_view& text, char separator) {
    const std::string_view head = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(head.size() + 1, text.size()));
    return head;
}

std::string withHyphens(std::string_view text) {
    constexpr std::string_view kEscape = "&hy&";
    std::string out(text);
    for (auto at = out.find(kEscape); at != std::string::npos; at = out.find(kEscape, at + 1)) {
        out.replace(at, kEscape.size(), "-");
    }
    return out;
}

std::optional<long long> number(const std::string& text) {
    long long value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

/// Numbers by value when both are numbers, else texts ignoring case.
int compare(const std::string& left, const std::string& right) {
    const auto a = number(left);
    const auto b = number(right);
    return a && b ? (*a > *b) - (*a < *b) : ::strcasecmp(left.c_str(), right.c_str());
}

bool contains(const std::string& text, const std::string& part) {
    return ::strcasestr(text.c_str(), part.c_str()) != nullptr;
}

bool beginsWith(const std::string& text, const std::string& part) {
    return ::strncasecmp(text.c_str(), part.c_str(), part.size()) == 0;
}

using Matches = bool (*)(const std::string& value, const std::string& wanted);

struct Operator {
    std::string_view sign;
    std::string_view word;
    Matches matches;
};

// clang-format off
constexpr std::array kOperators = {
    Operator{"=",    "eq",   [](const std::string& a, const std::string& b) { return compare(a, b) == 0; }},
    Operator{">",    "gt",   [](const std::string& a, const std::string& b) { return compare(a, b) > 0; }},
    Operator{">=",   "gteq", [](const std::string& a, const std::string& b) { return compare(a, b) >= 0; }},
    Operator{"<",    "lt",   [](const std::string& a, const std::string& b) { return compare(a, b) < 0; }},
    Operator{"<=",   "lteq", [](const std::string& a, const std::string& b) { return compare(a, b) <= 0; }},
    Operator{"iqin", "iqin", contains},
    Operator{"iqs",  "iqs",  beginsWith},
};
// clang-format on

}  // namespace

ListFilter::ListFilter(std::string_view text) {
    text = trimmed(text);
    m_any = ::strcasecmp(std::string(takeUntil(text, ' ')).c_str(), "or") == 0;
    while (!text.empty()) {
        std::string_view piece = trimmed(takeUntil(text, '-'));
        const std::string_view name = takeUntil(piece, ' ');
        const std::string_view op = takeUntil(piece, ' ');
        if (!piece.empty()) {
            m_conditions.push_back({std::string(name), std::string(op), withHyphens(piece)});
        }
    }
}

bool ListFilter::holds(const Condition& condition, const Attributes& object) {
    const auto attribute = std::find_if(object.begin(), object.end(), [&](const auto& entry) {
        return entry.first == condition.name;
    });
    const auto op = std::find_if(kOperators.begin(), kOperators.end(), [&](const Operator& row) {
        return row.sign == condition.op || row.word == condition.op;
    });
    // An empty value matches nothing, whatever is asked.
    return attribute != object.end() && !attribute->second.empty() && op != kOperators.end() &&
           op->matches(attribute->second, condition.value);
}

bool ListFilter::matches(const Attributes& object) const {
    const auto test = [&](const Condition& condition) { return holds(condition, object); };
    return m_conditions.empty() ||
           (m_any ? std::any_of(m_conditions.begin(), m_conditions.end(), test)
                  : std::all_of(m_conditions.begin(), m_conditions.end(), test));
}

}  // namespace sim
