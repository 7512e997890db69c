// Any text as a list filter and as one condition.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "apiMgmt/apiStub/base/filters/getListFilter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    APIAttributeFilter::Parse(text).ToString();
    GETListFilter filter;
    const bool read = filter.Parse(text);
    if (read != (filter.GetFilterCount() > 0) ||
        filter.GenerateFilterList().size() != filter.GetFilterCount())
        std::abort();
    // Writing drops what is no condition; from then on nothing may change any more.
    filter.Parse(filter.ToString());
    const std::string written = filter.ToString();
    filter.Parse(written);
    if (filter.ToString() != written)
        std::abort();
    return 0;
}
