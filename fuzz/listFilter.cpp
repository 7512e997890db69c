// Any text as a list filter and as one condition.

#include "apiMgmt/apiStub/base/filters/getListFilter.h"
#include "fuzz/fuzzTarget.h"

void drive(std::string_view bytes) {
    const std::string text(bytes);
    APIAttributeFilter::Parse(text).ToString();
    GETListFilter filter;
    const bool read = filter.Parse(text);
    require(read == (filter.GetFilterCount() > 0) &&
            filter.GenerateFilterList().size() == filter.GetFilterCount());
    // Writing drops what is no condition; from then on nothing may change any more.
    filter.Parse(filter.ToString());
    const std::string written = filter.ToString();
    filter.Parse(written);
    require(filter.ToString() == written);
}
