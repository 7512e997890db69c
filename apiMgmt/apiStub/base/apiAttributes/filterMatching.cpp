#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"

#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/common/utils/stringUtil.h"

bool matchesOrder(FILTERType type, std::weak_ordering order) {
    switch (type) {
        case FILTERType::Equal:
            return std::is_eq(order);
        case FILTERType::Greater:
            return std::is_gt(order);
        case FILTERType::GreaterOrEqual:
            return std::is_gteq(order);
        case FILTERType::Less:
            return std::is_lt(order);
        case FILTERType::LessOrEqual:
            return std::is_lteq(order);
        default:
            return false;
    }
}

bool matchesText(const APIAttributeFilter& filter, const std::string& value) {
    if (value.empty()) {
        return false;
    }
    const std::string text = filterText(filter);
    const FILTERType type = filter.GetType();
    if (type == FILTERType::Contains || type == FILTERType::StartsWith) {
        const auto at = STRINGUtil::ToLowerCase(value).find(STRINGUtil::ToLowerCase(text));
        return type == FILTERType::StartsWith ? at == 0 : at != std::string::npos;
    }
    return matchesOrder(type, STRINGUtil::Comparecase(value, text) <=> 0);
}

std::string filterText(const APIAttributeFilter& filter) {
    std::string text = filter.GetValue();
    STRINGUtil::ReplaceAll(text, kEscapedHyphen, "-");
    return text;
}
