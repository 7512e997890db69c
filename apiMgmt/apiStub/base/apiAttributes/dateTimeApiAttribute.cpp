#include "apiMgmt/apiStub/base/apiAttributes/dateTimeApiAttribute.h"

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/apiStub/base/filters/dateTimeObject.h"

std::string DATETIMEApiAttribute::ToString(const DATETimeObject& value) const {
    return value.ToString();
}

DATETimeObject DATETIMEApiAttribute::ParseString(const std::string& text) const {
    return DATETimeObject(text);
}

bool DATETIMEApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                       const std::string& value) const {
    if (value.empty()) {
        return false;
    }
    const int order = ParseString(value).Compare(ParseString(filterText(filter)));
    return matchesOrder(filter.GetType(), order <=> 0);
}
