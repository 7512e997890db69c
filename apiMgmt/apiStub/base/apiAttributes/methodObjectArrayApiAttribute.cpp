#include "apiMgmt/apiStub/base/apiAttributes/methodObjectArrayApiAttribute.h"

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

std::string METHODOBJECTARRAYApiAttribute::ToString(
    const std::vector<const BASEApiMethodObject*>& value) const {
    std::string text;
    for (const BASEApiMethodObject* item : value) {
        if (item) {
            item->AppendXMLString(text, true);
        }
    }
    return text;
}

bool METHODOBJECTARRAYApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                                const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
