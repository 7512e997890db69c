#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

#include <strings.h>

#include <charconv>
#include <limits>
#include <system_error>

namespace enumList {

bool parseNumber(std::string_view text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) {
        return false;
    }
    if (error == std::errc::result_out_of_range) {
        number =
            text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return true;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace enumList
