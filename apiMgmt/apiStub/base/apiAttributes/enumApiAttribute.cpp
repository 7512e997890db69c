#include "apiMgmt/apiStub/base/apiAttributes/enumApiAttribute.h"

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/common/utils/stringUtil.h"

std::string ENUMApiAttribute::ParseString(const std::string& text) const {
    std::string name = text;
    STRINGUtil::Trim(name);
    return name;
}

bool ENUMApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                   const std::string& value) const {
    return matchesText(filter, ParseString(value));
}
