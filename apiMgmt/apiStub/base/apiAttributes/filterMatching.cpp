#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"

#include <algorithm>

#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/common/utils/stringUtil.h"

bool MatchesOrder(FILTERType type, std::weak_ordering order) {
    switch (type) {
        case FILTERType::Equal:
            return order == 0;
        case FILTERType::Greater:
            return order > 0;
        case FILTERType::GreaterOrEqual:
            return order >= 0;
        case FILTERType::Less:
            return order < 0;
        case FILTERType::LessOrEqual:
            return order <= 0;
        default:
            return false;
    }
}

bool MatchesText(const APIAttributeFilter& filter, const std::string& value) {
    if (value.empty())
        return false;
    const std::string text = FilterText(filter);
    const FILTERType type = filter.GetType();
    if (type == FILTERType::Contains || type == FILTERType::StartsWith) {
        const auto at = STRINGUtil::ToLowerCase(value).find(STRINGUtil::ToLowerCase(text));
        return type == FILTERType::StartsWith ? at == 0 : at != std::string::npos;
    }
    return MatchesOrder(type, STRINGUtil::Comparecase(value, text) <=> 0);
}

bool MatchesAnyText(const APIAttributeFilter& filter, const std::vector<std::string>& items) {
    return std::any_of(items.begin(), items.end(),
                       [&](const std::string& item) { return MatchesText(filter, item); });
}

std::string FilterText(const APIAttributeFilter& filter) {
    std::string text = filter.GetValue();
    STRINGUtil::ReplaceAll(text, kEscapedHyphen, "-");
    return text;
}
