#include "apiMgmt/apiStub/base/apiAttributes/instanceIdApiAttribute.h"

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"

bool INSTANCEIDApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                         const std::string& value) const {
    return matchesText(filter, value);
}
