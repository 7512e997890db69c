#include "apiMgmt/apiStub/base/apiAttributes/methodObjectApiAttribute.h"

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

std::string METHODOBJECTApiAttribute::ToString(const BASEApiMethodObject& value) const {
    return value.ToXMLString(true);
}

bool METHODOBJECTApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                           const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
