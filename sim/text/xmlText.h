#pragma once

#include <string>
#include <string_view>

/// Writing XML text for the reply documents: a writer of its own, apart from the one that the
/// service renders requests with.
namespace sim {

/// `text` as element content: markup is escaped, characters that XML 1.0 forbids are dropped.
std::string escapeXml(std::string_view text);

/// "<name>text</name>" with the text escaped.
std::string xmlElement(std::string_view name, std::string_view text);

/// "<name>markup</name>" with the markup as it is.
std::string xmlWrap(std::string_view name, std::string_view markup);

}  // namespace sim
