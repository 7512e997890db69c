#include "apiMgmt/apiStub/base/apiAttributes/getListFilterApiAttribute.h"

#include "apiMgmt/apiStub/base/filters/getListFilter.h"

std::string GETLISTFILTERApiAttribute::ToString(const GETListFilter& value) const {
    return value.ToString();
}

GETListFilter GETLISTFILTERApiAttribute::ParseString(const std::string& text) const {
    GETListFilter filter;
    filter.Parse(text);
    return filter;
}

bool GETLISTFILTERApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                            const std::string& value) const {
    return BASEApiAttribute::ApplyFilter(filter, value);
}
