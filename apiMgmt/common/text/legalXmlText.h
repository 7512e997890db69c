#pragma once

#include <string>
#include <string_view>

namespace text {

/// `text` without what an XML 1.0 document may not hold, escaped or not: control characters but
/// tab, line feed and carriage return, the code points U+FFFE and U+FFFF, and bytes that are not
/// UTF-8. A client that reads strictly would refuse the whole document for one of them.
std::string legalXmlText(std::string_view text);

}  // namespace text
