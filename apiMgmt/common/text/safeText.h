#pragma once

#include <string>
#include <string_view>

/// Texts from outside, made safe for people to look at. A control character is written as the
/// escapes of its bytes, \x1b for the escape character. Control characters are those of ASCII and
/// U+0080 to U+009F, which terminals obey too. Nothing else is changed, so a text that holds
/// no control character comes back as it is.
///
///     text::oneLine("a\nb\x1b[2J");    // a\x0ab\x1b[2J
///     text::printable("a\nb\x1b[2J");  // a, a line feed, b\x1b[2J
namespace text {

/// Whether `oneLine` would change nothing.
bool isOneLine(std::string_view text);

/// For a line of a log or of a list: no character is left that would end it.
std::string oneLine(std::string_view text);

/// For a text of several lines on a terminal: line feed and tab stay.
std::string printable(std::string_view text);

/// `text` cut behind its 256th character, with "...[cut]" in place of the rest; a shorter text
/// comes back as it is. For what a client sent and reads again in a fault or an operator in a log
/// line.
std::string shortened(std::string_view text);

}  // namespace text
