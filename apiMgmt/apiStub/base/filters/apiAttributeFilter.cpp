#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"

#include <string_view>
#include <utility>
#include <vector>

#include "apiMgmt/common/utils/stringUtil.h"

namespace {

struct OperatorText {
    FILTERType type;
    std::string_view text;
};

// In the order in which a text is looked up; an operator's first row is how it is written.
// clang-format off
constexpr OperatorText kOperators[] = {
    {FILTERType::Equal,          "="},    {FILTERType::Equal,          "eq"},
    {FILTERType::Greater,        ">"},    {FILTERType::Greater,        "gt"},
    {FILTERType::GreaterOrEqual, ">="},   {FILTERType::GreaterOrEqual, "gteq"},
    {FILTERType::Less,           "<"},    {FILTERType::Less,           "lt"},
    {FILTERType::LessOrEqual,    "<="},   {FILTERType::LessOrEqual,    "lteq"},
    {FILTERType::Contains,       "iqin"},
    {FILTERType::StartsWith,     "iqs"},
};
// clang-format on

}  // namespace

APIAttributeFilter::APIAttributeFilter(std::string name, FILTERType type, std::string value)
    : m_name(std::move(name)), m_type(type), m_value(std::move(value)) {}

APIAttributeFilter APIAttributeFilter::Parse(const std::string& text) {
    std::vector<std::string> pieces;
    STRINGUtil::SplitString(text, " ", pieces, 3);
    if (pieces.size() != 3) {
        return {};
    }
    STRINGUtil::ReplaceAll(pieces[2], kEscapedHyphen, "-");
    return {pieces[0], GetFilterTypeFromString(pieces[1]), pieces[2]};
}

std::string APIAttributeFilter::ToString() const {
    std::string value = m_value;
    STRINGUtil::ReplaceAll(value, "-", kEscapedHyphen);
    return m_name + " " + GetFilterTypeAsString(m_type) + " " + value;
}

FILTERType APIAttributeFilter::GetFilterTypeFromString(const std::string& text) {
    for (const OperatorText& row : kOperators) {
        if (row.text == text) {
            return row.type;
        }
    }
    return FILTERType::None;
}

std::string APIAttributeFilter::GetFilterTypeAsString(FILTERType type) {
    for (const OperatorText& row : kOperators) {
        if (row.type == type) {
            return std::string(row.text);
        }
    }
    return {};
}
