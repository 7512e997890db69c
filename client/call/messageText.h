#pragma once

#include <string>
#include <string_view>

namespace client {

/// A message with the content of every secret element (credentials, tokens, cluster keys)
/// replaced by "***", whatever prefix and attributes the element carries. Text that is no XML is
/// left as it is; an element that does not end is masked up to the end of the text.
std::string maskSecrets(std::string_view message);

/// The body of a message with one element a line, indented by its depth. For reading only: blanks
/// are added between elements.
std::string indentXml(std::string_view message);

/// Text from the network made safe for a terminal: control characters but line feed and tab
/// become \xNN.
std::string printable(std::string_view text);

}  // namespace client
