#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

/// String operations that every subsystem uses. They keep no state, take no lock and throw
/// nothing of their own. Texts are bytes; letters are told apart as in the C locale.
///
///     STRINGUtil::FormatStr("Serving %s request", "Ping");      // Serving Ping request
///     STRINGUtil::EscapeString("a<b", false);                   // a&lt;b
class STRINGUtil {
public:
    STRINGUtil() = delete;

    /// printf into a string, however long it gets. Text that came from outside is an argument
    /// of "%s" and never the format. A conversion that fails gives
    /// `Error in format string: "<format>"`.
    [[gnu::format(printf, 1, 2)]] static std::string FormatStr(const char* format, ...);

    /// The same over an argument list, which stays as it was. A template, so that a literal 0
    /// as the only argument of the form above is not taken for an argument list.
    template <class ArgList>
    requires(!std::is_null_pointer_v<ArgList>) && requires(ArgList args) {
        std::vsnprintf(nullptr, 0, "", args);
    }
    [[gnu::format(printf, 1, 0)]] static std::string FormatStr(const char* format, ArgList args) {
        return FormatList(format, args);
    }

    /// Splits at each `delimiter`, which must not be empty. Neighbouring delimiters give empty
    /// elements, and so does one at the end; an empty text gives none. With `maxParts` other
    /// than 0 there are at most that many elements, the last holding the rest of the text.
    /// `text` must not be an element of `out`.
    static void SplitString(const std::string& text, const std::string& delimiter,
                            std::vector<std::string>& out, unsigned long maxParts = 0);
    /// Splits at each `delimiter`; one at the end gives no further element.
    static void SplitString(const std::string& text, char delimiter, std::vector<std::string>& out);
    /// `list` with ", " and `item` after it, or `item` alone when the list is empty.
    static std::string AddToList(const std::string& list, const std::string& item);

    /// False when either text is empty.
    static bool StartsWith(const std::string& text, const std::string& prefix);
    /// True for "true" in any case and for what begins with the number 1.
    static bool ConvertStringToBool(const std::string& text);
    /// True when the text is one decimal number, with nothing but white space before it and
    /// nothing after it. A number beyond the range of a double does not count.
    static bool IsNumeric(const std::string& text);
    /// Ignores case: negative, zero or positive as `a` stands before, at or after `b`.
    static int Comparecase(const std::string& a, const std::string& b);

    /// Replaces every `from` (not empty) by `to`; what was put in is not searched again.
    static void ReplaceAll(std::string& text, const std::string& from, const std::string& to);
    /// White space is blank, form feed, line feed, carriage return, tab and vertical tab.
    static void TrimLeft(std::string& text);
    static void TrimRight(std::string& text);
    static void Trim(std::string& text);
    static std::string ToUpperCase(const std::string& text);
    static std::string ToLowerCase(const std::string& text);

    /// Makes a text safe inside an XML element. With `markupOnly` only "<" and ">" are written
    /// as references; otherwise also "&" and both quotes, and every control character becomes
    /// "&#x0a;", whichever it was: values keep their line structure and nothing else.
    static std::string EscapeString(const std::string& text, bool markupOnly);
    /// Undoes the named references of EscapeString; numeric and unknown ones stay.
    static std::string UnEscapeString(const std::string& text, bool markupOnly);

    /// What stands after the last "/"; the whole text when there is none.
    static std::string ExtractFilenameFromPath(const std::string& path);

    /// Copies at most `size` - 1 characters, fills up with zeros and returns `destination`,
    /// which the caller owns and which must not be null: that ends the process. A null source
    /// counts as empty. A size of 0 writes nothing and returns a static empty string.
    static char* SafeStrncpy(char* destination, const char* source, unsigned long size);

    /// Reads "address" or "address/prefix", such as "2001:db8:0::1/64". On true, `address` is
    /// the shortest standard spelling ("2001:db8::1") and `prefixLength` 0 to 128, 128 when the
    /// text names none. On false (brackets and zone names included) both stay as they were.
    static bool ParseIpV6Address(const std::string& text, std::string& address, int& prefixLength);
    /// A base-36 number, such as a service tag, the way it is printed: upper case, filled up
    /// on the left with `fill` to at least `width` characters. Empty when the text is empty or
    /// holds anything but digits and letters.
    static std::string FormatBase36String(const std::string& text, char fill, unsigned int width);

private:
    [[gnu::format(printf, 1, 0)]] static std::string FormatList(const char* format, va_list args);
};
