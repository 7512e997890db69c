#include "apiMgmt/apiStub/base/apiAttributes/listText.h"

#include "apiMgmt/common/utils/stringUtil.h"

std::string joinItems(const std::vector<std::string>& items, const std::string& separator) {
    std::string text;
    for (const std::string& item : items) {
        if (&item != &items.front()) {
            text += separator;
        }
        text += item;
    }
    return text;
}

void escapeListItem(std::string& item) {
    STRINGUtil::ReplaceAll(item, kListSeparator, kEscapedListSeparator);
}

void unescapeListItem(std::string& item) {
    STRINGUtil::ReplaceAll(item, kEscapedListSeparator, kListSeparator);
}
