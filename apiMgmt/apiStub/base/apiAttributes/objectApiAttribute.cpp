#include "apiMgmt/apiStub/base/apiAttributes/objectApiAttribute.h"

#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectInstance.h"

std::string OBJECTApiAttribute::ToString(const APIObjectInstance& value) const {
    return value.ToString();
}

std::unique_ptr<APIObjectInstance> OBJECTApiAttribute::ParseString(const std::string& text) const {
    return text.empty() ? nullptr : APIObjectInstance::ParseString(text);
}

bool OBJECTApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                     const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
