#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sim {

/// The attributes of an object: XML name and text, in the order in which they are written.
using Attributes = std::vector<std::pair<std::string, std::string>>;

/// The filter of a GetList request, such as "and Name = db&hy&1-VolumeCount > 0-": conditions
/// joined by "and" or "or".
class ListFilter {
public:
    /// Text that is no filter gives one without conditions, which matches every object.
    explicit ListFilter(std::string_view text);
    bool matches(const Attributes& object) const;

private:
    struct Condition {
        std::string name;
        std::string op;
        std::string value;
    };
    bool m_any = false;  // "or"
    std::vector<Condition> m_conditions;

    static bool holds(const Condition& condition, const Attributes& object);
};

}  // namespace sim
