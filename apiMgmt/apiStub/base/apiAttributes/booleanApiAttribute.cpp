#include "apiMgmt/apiStub/base/apiAttributes/booleanApiAttribute.h"

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::string BOOLEANApiAttribute::ToString(bool value) const {
    return value ? "True" : "False";
}

bool BOOLEANApiAttribute::ParseString(const std::string& text) const {
    return text == "1" || STRINGUtil::Comparecase(text, "true") == 0;
}

bool BOOLEANApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                      const std::string& value) const {
    return !value.empty() &&
           matchesOrder(filter.GetType(), ParseString(value) <=> ParseString(filter.GetValue()));
}
