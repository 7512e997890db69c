#include "apiMgmt/apiStub/base/apiAttributes/enumMaskApiAttribute.h"

#include "apiMgmt/apiStub/base/apiAttributes/listText.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::string ENUMMASKApiAttribute::ToString(const std::vector<std::string>& value) const {
    return joinItems(value, " ");
}

std::vector<std::string> ENUMMASKApiAttribute::ParseString(const std::string& text) const {
    std::vector<std::string> items;
    STRINGUtil::SplitString(text, " ", items, 0);
    std::erase(items, std::string());
    return items;
}

bool ENUMMASKApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                       const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
