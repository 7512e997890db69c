#include "apiMgmt/apiStub/base/apiAttributes/stringArrayApiAttribute.h"

#include "apiMgmt/apiStub/base/apiAttributes/listText.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::string STRINGARRAYApiAttribute::ToString(const std::vector<std::string>& value) const {
    std::vector<std::string> items = value;
    for (std::string& item : items) {
        escapeListItem(item);
    }
    return joinItems(items, kListSeparator);
}

std::vector<std::string> STRINGARRAYApiAttribute::ParseString(const std::string& text) const {
    std::vector<std::string> items;
    STRINGUtil::SplitString(text, kListSeparator, items, 0);
    for (std::string& item : items) {
        unescapeListItem(item);
    }
    return items;
}

bool STRINGARRAYApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                          const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
