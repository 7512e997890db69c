#pragma once

#include <span>
#include <string>
#include <string_view>

/// XML documents made fit for people to look at: in a log, on a page, on a terminal.
namespace text {

/// `document` with the content of each element that has one of `secretNames` replaced by "***",
/// whatever prefix and attributes the element carries. The document need not be well-formed: an
/// element that does not end is masked to the end of the text. An element without content
/// stays as it is.
///
///     constexpr std::string_view kSecrets[] = {"hccKey"};
///     text::maskSecrets("<a:hccKey>abc</a:hccKey>", kSecrets)    // <a:hccKey>***</a:hccKey>
std::string maskSecrets(std::string_view document, std::span<const std::string_view> secretNames);

/// `document` with each element on a line of its own and two blanks for each level; white space
/// between tags is replaced, all else stays. A text whose tags do not match each other comes
/// back as it is.
///
///     text::indentXml("<a><b>x</b><c/></a>")    // <a>\n  <b>x</b>\n  <c/>\n</a>
std::string indentXml(std::string_view document);

}  // namespace text
