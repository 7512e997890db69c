#include "apiMgmt/common/utils/stringUtil.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;
using namespace std::string_literals;

[[gnu::format(printf, 1, 2)]] std::string FormatList(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string first = STRINGUtil::FormatStr(format, args);
    const std::string second = STRINGUtil::FormatStr(format, args);
    va_end(args);
    EXPECT_EQ(first, second) << "the list was used up";
    return first;
}

TEST(StringUtilFormat, AnyLengthAroundTheFirstBuffer) {
    for (const std::size_t length : {0, 1, 98, 99, 100, 101, 250, 100000}) {
        const std::string text(length, 'x');
        EXPECT_EQ(STRINGUtil::FormatStr("%s", text.c_str()), text) << length;
        EXPECT_EQ(FormatList("%s:%d", text.c_str(), 7), text + ":7") << length;
    }
    EXPECT_EQ(STRINGUtil::FormatStr("%d", 0), "0");
}

TEST(StringUtilFormat, ConversionThatFailsIsNamed) {
    const std::wstring noSuchCharacter(1, static_cast<wchar_t>(0x7fffffff));
    EXPECT_EQ(STRINGUtil::FormatStr("a %ls b", noSuchCharacter.c_str()),
              "Error in format string: \"a %ls b\"");
}

TEST(StringUtilSplit, ByTextAndByCharacter) {
    constexpr int kByCharacter = -1;  // which drops the empty end
    const struct {
        std::string text, delimiter;
        int maxParts;
        Strings expected;
    } cases[] = {
        // clang-format off
        {"",         ",",  0, {}},                {"a",       ",", 0, {"a"}},
        {"a,b,",     ",",  0, {"a", "b", ""}},    {",,a",     ",", 0, {"", "", "a"}},
        {"a--b---c", "--", 0, {"a", "b", "-c"}},  {"a:b:c:d", ":", 1, {"a:b:c:d"}},
        {"a:b:c:d",  ":",  2, {"a", "b:c:d"}},    {"a:b",     ":", 2, {"a", "b"}},
        {"a:",       ":",  2, {"a", ""}},         {"a:b:",    ":", 2, {"a", "b:"}},
        {"a:b",      ":",  9, {"a", "b"}},
        {"",         ",",  kByCharacter, {}},     {"a,b,",    ",", kByCharacter, {"a", "b"}},
        {",",        ",",  kByCharacter, {""}},   {"a,,b,,",  ",", kByCharacter, {"a", "", "b", ""}},
        // clang-format on
    };
    for (const auto& test : cases) {
        Strings out = {"old"};
        if (test.maxParts == kByCharacter) {
            STRINGUtil::SplitString(test.text, ',', out);
        } else {
            STRINGUtil::SplitString(test.text, test.delimiter, out,
                                    static_cast<unsigned long>(test.maxParts));
        }
        EXPECT_EQ(out, test.expected) << test.text << " limit " << test.maxParts;
    }
}

TEST(StringUtil, TextsThatMeanTrueOrANumber) {
    const struct {
        bool (*judge)(const std::string&);
        Strings accepted, refused;
    } rows[] = {
        // clang-format off
        {STRINGUtil::ConvertStringToBool, {"true", "TRUE", "1", "01", " 1", "1abc"},
         {"", "2", "yes", "on", "truely", "-1", "11", "4294967297", "18446744073709551617"}},
        {STRINGUtil::IsNumeric, {"12", "-3.5", "+7", "1e5", " 4", "\n4", "5.", ".5", "007", "1e308"},
         {"", "-", "+", "1e", "1e+", " ", ".", "12 ", "1,5", "0x10", "inf", "nan", "1 2", "abc", "1e309", "-1e309"}},
        {[](const std::string& text) { return STRINGUtil::StartsWith(text, "2."); }, {"2.1", "2."},
         {"2", "", "12."}},
        // clang-format on
    };
    for (const auto& row : rows) {
        for (const std::string& text : row.accepted) {
            EXPECT_TRUE(row.judge(text)) << text;
        }
        for (const std::string& text : row.refused) {
            EXPECT_FALSE(row.judge(text)) << text;
        }
    }
    EXPECT_FALSE(STRINGUtil::StartsWith("2.1", ""));
    EXPECT_EQ(STRINGUtil::Comparecase("AbC", "aBc"), 0);
    EXPECT_LT(STRINGUtil::Comparecase("A", "b"), 0);
    EXPECT_GT(STRINGUtil::Comparecase("b", "A"), 0);
}

std::string changed(void (*inPlace)(std::string&), std::string text) {
    inPlace(text);
    return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    STRINGUtil::ReplaceAll(text, from, to);
    return text;
}

TEST(StringUtil, TextsAreChanged) {
    using Util = STRINGUtil;
    const auto left = [](const char* text) { return changed(Util::TrimLeft, text); };
    const auto right = [](const char* text) { return changed(Util::TrimRight, text); };
    const auto both = [](const char* text) { return changed(Util::Trim, text); };
    const auto base36 = [](const char* text) { return Util::FormatBase36String(text, '0', 7); };
    constexpr bool kMarkup = true, kFull = false;
    const std::pair<std::string, std::string> cases[] = {
        // clang-format off
        {Util::AddToList("", "x"), "x"},
        {Util::AddToList("a", "b"), "a, b"},
        {Util::AddToList("a", ""), "a, "},
        {Util::ToUpperCase("a\xc3\xa4Z1"), "A\xc3\xa4Z1"},
        {Util::ToLowerCase("A\xc3\x84z1"), "a\xc3\x84z1"},
        {Util::ExtractFilenameFromPath("/a/b.cpp"), "b.cpp"},
        {Util::ExtractFilenameFromPath("a/"), ""},
        {Util::ExtractFilenameFromPath("plain"), "plain"},
        {replaced("a:b:c", ":", "-co-"), "a-co-b-co-c"},
        {replaced("", ":", "-co-"), ""},
        {replaced("aaaaa", "aa", "aaa"), "aaaaaaa"},
        {left(" \f\n\r\t\vx y "), "x y "},      {left(" \t "), ""},  {left("\xc2\xa0x"), "\xc2\xa0x"},
        {right(" x y \f\n\r\t\v"), " x y"},     {right(" \t "), ""}, {right("x\b"), "x\b"},
        {both(" \f\n\r\t\vx y \f\n\r\t\v"), "x y"}, {both(" \t "), ""}, {both(""), ""},
        {Util::EscapeString("a<b>&'\"\t\r\n\x1f\0"s, kMarkup), "a&lt;b&gt;&'\"\t\r\n\x1f\0"s},
        {Util::EscapeString("a<b>&'\"&lt;", kFull), "a&lt;b&gt;&amp;&apos;&quot;&amp;lt;"},
        {Util::EscapeString("\t\r\n\x1f\0"s, kFull), "&#x0a;&#x0a;&#x0a;&#x0a;&#x0a;"},
        {Util::EscapeString("\x20\x7f\x80\xff", kFull), "\x20\x7f\x80\xff"},
        {Util::UnEscapeString("&lt;&gt;&amp;&quot;&apos;", kMarkup), "<>&amp;&quot;&apos;"},
        {Util::UnEscapeString("&lt;&gt;&amp;&quot;&apos;", kFull), "<>&\"'"},
        {Util::UnEscapeString("&amp;lt;&&lt;a&lt", kMarkup), "&amp;lt;&<a&lt"},
        {Util::UnEscapeString("&amp;lt;&&lt;a&apos", kFull), "&lt;&<a&apos"},
        {Util::UnEscapeString("&#x0a;&nbsp;&LT;&", kFull), "&#x0a;&nbsp;&LT;&"},
        {base36("1a2"), "00001A2"}, {base36("zz345678"), "ZZ345678"}, {base36(""), ""},
        {base36("a-b"), ""},        {base36("a b"), ""},              {base36("\xc3\xa4"), ""},
        // clang-format on
    };
    for (const auto& [changed, expected] : cases) {
        EXPECT_EQ(changed, expected);
    }
}

TEST(StringUtilSafeStrncpy, EndsTheTextWithinTheSize) {
    const struct {
        const char* source;
        unsigned long size;
        std::string expected;  // all eight bytes, which were 'x'
    } cases[] = {
        {"abc", 1, "\0xxxxxxx"s}, {nullptr, 5, "\0xxxxxxx"s}, {"abc", 3, "ab\0xxxxx"s},
        {"abc", 4, "abc\0xxxx"s}, {"abc", 6, "abc\0\0\0xx"s}, {"abcdefgh", 8, "abcdefg\0"s},
    };
    std::string bytes(8, 'x');
    const char* untouched = STRINGUtil::SafeStrncpy(bytes.data(), "abc", 0);
    EXPECT_NE(untouched, bytes.data());
    EXPECT_STREQ(untouched, "");
    EXPECT_EQ(bytes, "xxxxxxxx");
    for (const auto& test : cases) {
        bytes.assign(8, 'x');
        EXPECT_EQ(STRINGUtil::SafeStrncpy(bytes.data(), test.source, test.size), bytes.data());
        EXPECT_EQ(bytes, test.expected) << test.size;
    }
}

TEST(StringUtilSafeStrncpyDeathTest, NullDestinationStopsTheProcess) {
    EXPECT_DEATH(STRINGUtil::SafeStrncpy(nullptr, "a", 0),
                 "apiMgmt/common/utils/stringUtil.*ipDestination");
}

TEST(StringUtil, IpV6Addresses) {
    const struct {
        std::string text, address;
        int prefixLength;
    } cases[] = {
        // clang-format off
        {"2001:DB8:0:0::1/64", "2001:db8::1", 64}, {"::", "::", 128}, {"fe80::1/0", "fe80::1", 0},
        {"::ffff:10.0.0.5/128", "::ffff:10.0.0.5", 128},
        {"", "", 0},       {"10.0.0.5", "", 0}, {"::1/129", "", 0},   {"::1/-1", "", 0},
        {"::1/", "", 0},   {"::1/6x", "", 0},   {"::1/64/64", "", 0}, {"[::1]", "", 0},
        {":::1", "", 0},   {"fe80::1%eth0", "", 0}, {"::1\0junk"s, "", 0}, {"::1/99999999999", "", 0},
        // clang-format on
    };
    for (const auto& test : cases) {
        const bool good = !test.address.empty();
        std::string address = "kept";
        int prefixLength = -7;
        EXPECT_EQ(STRINGUtil::ParseIpV6Address(test.text, address, prefixLength), good)
            << test.text;
        EXPECT_EQ(address, good ? test.address : "kept");
        EXPECT_EQ(prefixLength, good ? test.prefixLength : -7);
    }
}

}  // namespace
