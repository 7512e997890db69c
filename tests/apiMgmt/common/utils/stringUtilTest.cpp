#include "apiMgmt/common/utils/stringUtil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
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
    const std::array<wchar_t, 2> noSuchCharacter = {static_cast<wchar_t>(0x7fffffff), 0};
    EXPECT_EQ(STRINGUtil::FormatStr("a %ls b", noSuchCharacter.data()),
              "Error in format string: \"a %ls b\"");
}

TEST(StringUtilSplit, ByText) {
    const struct {
        std::string text, delimiter;
        unsigned long maxParts;
        Strings expected;
    } cases[] = {
        {"", ",", 0, {}},
        {"a", ",", 0, {"a"}},
        {"a,b,", ",", 0, {"a", "b", ""}},
        {",,a", ",", 0, {"", "", "a"}},
        {"a--b---c", "--", 0, {"a", "b", "-c"}},
        {"a:b:c:d", ":", 1, {"a:b:c:d"}},
        {"a:b:c:d", ":", 2, {"a", "b:c:d"}},
        {"a:b", ":", 2, {"a", "b"}},
        {"a:", ":", 2, {"a", ""}},
        {"a:b:", ":", 2, {"a", "b:"}},
        {"a:b", ":", 9, {"a", "b"}},
    };
    for (const auto& test : cases) {
        Strings out = {"old"};
        STRINGUtil::SplitString(test.text, test.delimiter, out, test.maxParts);
        EXPECT_EQ(out, test.expected) << test.text << " limit " << test.maxParts;
    }
}

TEST(StringUtilSplit, ByCharacterDropsTheEmptyEnd) {
    const struct {
        std::string text;
        Strings expected;
    } cases[] = {
        {"", {}},
        {"a,b,", {"a", "b"}},
        {"a,,b,,", {"a", "", "b", ""}},
        {",", {""}},
    };
    for (const auto& test : cases) {
        Strings out = {"old"};
        STRINGUtil::SplitString(test.text, ',', out);
        EXPECT_EQ(out, test.expected) << test.text;
    }
}

TEST(StringUtil, AddToList) {
    EXPECT_EQ(STRINGUtil::AddToList("", "x"), "x");
    EXPECT_EQ(STRINGUtil::AddToList("a", "b"), "a, b");
    EXPECT_EQ(STRINGUtil::AddToList("a", ""), "a, ");
}

TEST(StringUtil, StartsWith) {
    EXPECT_TRUE(STRINGUtil::StartsWith("2.1", "2."));
    EXPECT_TRUE(STRINGUtil::StartsWith("2.", "2."));
    for (const auto& [text, prefix] : std::vector<std::pair<std::string, std::string>>{
             {"2", "2."}, {"", "2."}, {"2.1", ""}, {"12.", "2."}})
        EXPECT_FALSE(STRINGUtil::StartsWith(text, prefix)) << text << " / " << prefix;
}

TEST(StringUtil, TextsThatMeanTrue) {
    for (const char* text : {"true", "TRUE", "1", "01", " 1", "1abc"})
        EXPECT_TRUE(STRINGUtil::ConvertStringToBool(text)) << text;
    for (const char* text : {"", "2", "yes", "on", "truely", "-1", "11", "4294967297"})
        EXPECT_FALSE(STRINGUtil::ConvertStringToBool(text)) << text;
}

TEST(StringUtil, NumericTexts) {
    for (const char* text : {"12", "-3.5", "+7", "1e5", " 4", "\n4", "5.", ".5", "007"})
        EXPECT_TRUE(STRINGUtil::IsNumeric(text)) << text;
    for (const char* text :
         {"", "-", "+", "1e", "1e+", " ", ".", "12 ", "1,5", "0x10", "inf", "nan", "1 2", "abc"})
        EXPECT_FALSE(STRINGUtil::IsNumeric(text)) << text;
}

TEST(StringUtil, CaseIsIgnoredInOrder) {
    EXPECT_EQ(STRINGUtil::Comparecase("AbC", "aBc"), 0);
    EXPECT_LT(STRINGUtil::Comparecase("A", "b"), 0);
    EXPECT_GT(STRINGUtil::Comparecase("b", "A"), 0);
    EXPECT_EQ(STRINGUtil::ToUpperCase("a\xc3\xa4Z1"), "A\xc3\xa4Z1");
    EXPECT_EQ(STRINGUtil::ToLowerCase("A\xc3\x84z1"), "a\xc3\x84z1");
}

TEST(StringUtil, ReplaceAllDoesNotSearchWhatItPutIn) {
    const struct {
        std::string text, from, to, expected;
    } cases[] = {
        {"a:b:c", ":", "-co-", "a-co-b-co-c"},
        {"aaa", "a", "aa", "aaaaaa"},
        {"aaa", "aa", "b", "ba"},
        {"abc", "x", "y", "abc"},
        {":", ":", "", ""},
        {"", ":", "y", ""},
    };
    for (const auto& test : cases) {
        std::string text = test.text;
        STRINGUtil::ReplaceAll(text, test.from, test.to);
        EXPECT_EQ(text, test.expected) << test.text;
    }
}

TEST(StringUtil, TrimmingTakesSixCharacters) {
    const struct {
        std::string text, left, right, both;
    } cases[] = {
        {" \f\n\r\t\vx y \f\n\r\t\v", "x y \f\n\r\t\v", " \f\n\r\t\vx y", "x y"},
        {" \t ", "", "", ""},
        {"", "", "", ""},
        {"\xc2\xa0x\b", "\xc2\xa0x\b", "\xc2\xa0x\b", "\xc2\xa0x\b"},
    };
    for (const auto& test : cases) {
        std::string left = test.text, right = test.text, both = test.text;
        STRINGUtil::TrimLeft(left);
        STRINGUtil::TrimRight(right);
        STRINGUtil::Trim(both);
        EXPECT_EQ(left, test.left);
        EXPECT_EQ(right, test.right);
        EXPECT_EQ(both, test.both);
    }
}

TEST(StringUtilEscape, Escaped) {
    const struct {
        std::string text, markup, full;
    } cases[] = {
        {"", "", ""},
        {"a<b>c", "a&lt;b&gt;c", "a&lt;b&gt;c"},
        {"&'\"", "&'\"", "&amp;&apos;&quot;"},
        {"\t", "\t", "&#x0a;"},
        {"\r\n\x1f\0"s, "\r\n\x1f\0"s, "&#x0a;&#x0a;&#x0a;&#x0a;"},
        {"\x20\x7f\x80\xff", "\x20\x7f\x80\xff", "\x20\x7f\x80\xff"},
        {"&lt;", "&lt;", "&amp;lt;"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(STRINGUtil::EscapeString(test.text, true), test.markup);
        EXPECT_EQ(STRINGUtil::EscapeString(test.text, false), test.full);
    }
}

TEST(StringUtilEscape, Unescaped) {
    const struct {
        std::string text, markup, full;
    } cases[] = {
        {"&lt;&gt;&amp;&quot;&apos;", "<>&amp;&quot;&apos;", "<>&\"'"},
        {"&amp;lt;", "&amp;lt;", "&lt;"},
        {"&#x0a;&nbsp;&LT;", "&#x0a;&nbsp;&LT;", "&#x0a;&nbsp;&LT;"},
        {"a&lt", "a&lt", "a&lt"},
        {"a&apos", "a&apos", "a&apos"},
        {"&&lt;", "&<", "&<"},
        {"&", "&", "&"},
        {"", "", ""},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(STRINGUtil::UnEscapeString(test.text, true), test.markup) << test.text;
        EXPECT_EQ(STRINGUtil::UnEscapeString(test.text, false), test.full) << test.text;
    }
}

TEST(StringUtil, FileNameIsWhatFollowsTheLastSlash) {
    EXPECT_EQ(STRINGUtil::ExtractFilenameFromPath("/a/b.cpp"), "b.cpp");
    EXPECT_EQ(STRINGUtil::ExtractFilenameFromPath("a/"), "");
    EXPECT_EQ(STRINGUtil::ExtractFilenameFromPath("plain"), "plain");
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
    for (const auto& test : cases) {
        std::string bytes(8, 'x');
        EXPECT_EQ(STRINGUtil::SafeStrncpy(bytes.data(), test.source, test.size), bytes.data());
        EXPECT_EQ(bytes, test.expected) << test.size;
    }
}

TEST(StringUtilSafeStrncpy, SizeZeroWritesNothing) {
    char untouched = 'x';
    const char* result = STRINGUtil::SafeStrncpy(&untouched, "abc", 0);
    EXPECT_STREQ(result, "");
    EXPECT_NE(result, &untouched);
    EXPECT_EQ(untouched, 'x');
}

TEST(StringUtilSafeStrncpyDeathTest, NullDestinationStopsTheProcess) {
    EXPECT_DEATH(STRINGUtil::SafeStrncpy(nullptr, "a", 0),
                 "apiMgmt/common/utils/stringUtil.*ipDestination");
}

TEST(StringUtil, IpV6Addresses) {
    const struct {
        std::string text, address;
        int prefixLength;
    } good[] = {
        {"2001:DB8:0:0::1/64", "2001:db8::1", 64},
        {"::", "::", 128},
        {"fe80::1/0", "fe80::1", 0},
        {"::ffff:10.0.0.5/128", "::ffff:10.0.0.5", 128},
    };
    for (const auto& test : good) {
        std::string address;
        int prefixLength = -1;
        EXPECT_TRUE(STRINGUtil::ParseIpV6Address(test.text, address, prefixLength)) << test.text;
        EXPECT_EQ(address, test.address);
        EXPECT_EQ(prefixLength, test.prefixLength);
    }
    for (const std::string& text :
         {""s, "10.0.0.5"s, "::1/129"s, "::1/-1"s, "::1/"s, "::1/6x"s, "::1/64/64"s, "[::1]"s,
          "fe80::1%eth0"s, ":::1"s, "::1\0junk"s, "::1/99999999999"s}) {
        std::string address = "kept";
        int prefixLength = 7;
        EXPECT_FALSE(STRINGUtil::ParseIpV6Address(text, address, prefixLength)) << text;
        EXPECT_EQ(address, "kept");
        EXPECT_EQ(prefixLength, 7);
    }
}

TEST(StringUtil, Base36Texts) {
    EXPECT_EQ(STRINGUtil::FormatBase36String("1a2", '0', 7), "00001A2");
    EXPECT_EQ(STRINGUtil::FormatBase36String("zz9", ' ', 2), "ZZ9");
    for (const char* text : {"", "a-b", "a b", "\xc3\xa4"})
        EXPECT_EQ(STRINGUtil::FormatBase36String(text, '0', 4), "") << text;
}

}  // namespace
