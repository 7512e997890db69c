#pragma once

#include <string>
#include <string_view>

/// Writing XML text, for the reply documents and for showing documents to people. The reply
/// side has a writer of its own, apart from the one that the service renders requests with.
namespace sim {

/// `text` as element content: markup is escaped, characters that XML 1.0 forbids are dropped.
std::string escapeXml(std::string_view text);

/// "<name>text</name>" with the text escaped.
std::string xmlElement(std::string_view name, std::string_view text);

/// "<name>markup</name>" with the markup as it is.
std::string xmlWrap(std::string_view name, std::string_view markup);

/// A line for each element, two blanks for each level. A text that is not a well-formed
/// document comes back as it is.
std::string indentXml(std::string_view document);

/// The document with the content of every element that holds a secret replaced by "***": the
/// cluster key and the session key. Works on the text, so that malformed documents are masked
/// too; an element that never ends is masked to the end.
std::string maskSecrets(std::string_view document);

}  // namespace sim
