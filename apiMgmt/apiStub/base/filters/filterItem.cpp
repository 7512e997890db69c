#include "apiMgmt/apiStub/base/filters/filterItem.h"

#include <utility>

namespace {

// clang-format off
constexpr ENUMIdStr<TARNFilterType> kTypes[] = {
    {TARNFilterType::Unknown,            "Unknown",            "Unknown"},
    {TARNFilterType::Equals,             "Equals",             "Equals"},
    {TARNFilterType::GreaterThan,        "GreaterThan",        "Greater Than"},
    {TARNFilterType::GreaterThanOrEqual, "GreaterThanOrEqual", "Greater Than Or Equal"},
    {TARNFilterType::LessThan,           "LessThan",           "Less Than"},
    {TARNFilterType::LessThanOrEqual,    "LessThanOrEqual",    "Less Than Or Equal"},
    {TARNFilterType::Contains,           "Contains",           "Contains"},
    {TARNFilterType::StartsWith,         "StartsWith",         "Starts With"},
};

constexpr struct {
    FILTERType from;
    TARNFilterType to;
} kMapping[] = {
    {FILTERType::Equal,          TARNFilterType::Equals},
    {FILTERType::Greater,        TARNFilterType::GreaterThan},
    {FILTERType::GreaterOrEqual, TARNFilterType::GreaterThanOrEqual},
    {FILTERType::Less,           TARNFilterType::LessThan},
    {FILTERType::LessOrEqual,    TARNFilterType::LessThanOrEqual},
    {FILTERType::Contains,       TARNFilterType::Contains},
    {FILTERType::StartsWith,     TARNFilterType::StartsWith},
};
// clang-format on

}  // namespace

constinit const ENUMIdStrList<TARNFilterType> FILTERItem::gTARNFilterTypeEnumIdStrList{
    kTypes, TARNFilterType::Unknown};

FILTERItem::FILTERItem(std::string name, std::string value, TARNFilterType type)
    : m_name(std::move(name)), m_value(std::move(value)), m_type(type) {}

TARNFilterType FILTERItem::GetFilterTypeFromString(const std::string& text) {
    return gTARNFilterTypeEnumIdStrList.GetId(text);
}

std::string FILTERItem::GetFilterTypeAsString(TARNFilterType type) {
    return gTARNFilterTypeEnumIdStrList.GetXmlName(type);
}

TARNFilterType FILTERItem::GetTarnFilterType(FILTERType type) {
    for (const auto& row : kMapping) {
        if (row.from == type) {
            return row.to;
        }
    }
    return TARNFilterType::Unknown;
}

std::string FILTERItem::GetTypeString() const {
    return gTARNFilterTypeEnumIdStrList.GetDisplayText(m_type);
}
