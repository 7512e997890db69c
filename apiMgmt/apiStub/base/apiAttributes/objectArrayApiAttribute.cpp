#include "apiMgmt/apiStub/base/apiAttributes/objectArrayApiAttribute.h"

#include <algorithm>

#include "apiMgmt/apiStub/base/apiAttributes/listText.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectInstance.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::string OBJECTARRAYApiAttribute::ToString(const std::vector<APIObjectInstance>& value) const {
    std::vector<std::string> items;
    items.reserve(value.size());
    for (const APIObjectInstance& instance : value) {
        escapeListItem(items.emplace_back(instance.ToString()));
    }
    return joinItems(items, kListSeparator);
}

std::vector<APIObjectInstance> OBJECTARRAYApiAttribute::ParseString(const std::string& text) const {
    std::vector<std::string> items;
    STRINGUtil::SplitString(text, kListSeparator, items, 0);
    std::vector<APIObjectInstance> instances;
    instances.reserve(items.size());
    for (std::string& item : items) {
        STRINGUtil::Trim(item);
        unescapeListItem(item);
        if (!item.empty()) {
            instances.push_back(*APIObjectInstance::ParseString(item));
        }
    }
    return instances;
}

bool OBJECTARRAYApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                          const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
