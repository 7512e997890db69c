#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apiMgmt/common/text/documentText.h"
#include "apiMgmt/common/text/legalXmlText.h"
#include "apiMgmt/common/text/safeText.h"

namespace {

using namespace std::string_literals;

using Rows = std::vector<std::pair<std::string, std::string>>;

TEST(SafeText, WritesControlCharactersAsEscapes) {
    const struct {
        std::string text, oneLine, printable;
    } cases[] = {
        {"a\nb\tc", "a\\x0ab\\x09c", "a\nb\tc"},
        {"\x1f\x7f\x1b[2J\r", "\\x1f\\x7f\\x1b[2J\\x0d", "\\x1f\\x7f\\x1b[2J\\x0d"},
        {"a\0b"s, "a\\x00b", "a\\x00b"},
        {"\xc2\x80\xc2\x9b[2J\xc2\x9f", "\\xc2\\x80\\xc2\\x9b[2J\\xc2\\x9f",
         "\\xc2\\x80\\xc2\\x9b[2J\\xc2\\x9f"},
        {"~ \xc2\xa0 \xc3\x84 \xe4\xb8\x80 \xc2", "~ \xc2\xa0 \xc3\x84 \xe4\xb8\x80 \xc2",
         "~ \xc2\xa0 \xc3\x84 \xe4\xb8\x80 \xc2"},
        {"", "", ""},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(text::oneLine(test.text), test.oneLine);
        EXPECT_EQ(text::printable(test.text), test.printable);
        EXPECT_EQ(text::isOneLine(test.text), test.text == test.oneLine) << test.oneLine;
    }
}

TEST(LegalXmlText, DropsWhatADocumentMayNotHold) {
    const Rows cases = {
        // clang-format off
        {"",                                            ""},
        {"a<&\t\r\n\x7f",                               "a<&\t\r\n\x7f"},
        {std::string("\0a\x01\x08\x0b\x0c\x0e\x1f", 8), "a"},
        {"\xc3\xa9\xe4\xb8\xad\xf0\x9f\x92\xbe",        "\xc3\xa9\xe4\xb8\xad\xf0\x9f\x92\xbe"},
        {"\xc2\x80\xe0\xa0\x80\xf0\x90\x80\x80",        "\xc2\x80\xe0\xa0\x80\xf0\x90\x80\x80"},  // the lowest of each length
        {"\xef\xbf\xbd\xef\xbf\xbe\xef\xbf\xbf.",       "\xef\xbf\xbd."},  // U+FFFD stays
        {"\xf4\x8f\xbf\xbf\xf4\x90\x80\x80.",           "\xf4\x8f\xbf\xbf."},  // U+10FFFF stays
        {"\xed\x9f\xbf\xed\xa0\x80\xed\xbf\xbf.",       "\xed\x9f\xbf."},  // surrogates
        {"\xc0\x80\xc1\xbf\xe0\x80\x80\xf0\x80\x80\x80.", "."},  // longer than need be
        {"\x80\xbf\xfe\xff.",                           "."},
        {"a\xc3",                                       "a"},  // cut short
        {"\xe4\xb8" "b\xf0\x9f\x92",                    "b"},
        // clang-format on
    };
    for (const auto& [given, legal] : cases) {
        EXPECT_EQ(text::legalXmlText(given), legal) << given;
    }
}

TEST(DocumentText, MasksEverySecretElementHoweverItIsWritten) {
    constexpr std::string_view kSecrets[] = {"key", "pass"};
    const Rows rows = {
        {"<pass>abc</pass>", "<pass>***</pass>"},
        {"<x:pass a=\"1\">abc</x:pass><b>c</b>", "<x:pass a=\"1\">***</x:pass><b>c</b>"},
        {"<pass\n>abc</pass >d", "<pass\n>***</pass >d"},
        {"<key>a</key><key>b</key>", "<key>***</key><key>***</key>"},
        {"<key>a<key>b</key><key/>c</key>d", "<key>***</key>d"},
        {"<key><![CDATA[</key>]]>a<!-- </key> -->b</key>c", "<key>***</key>c"},
        {"<key a='/>'>b</key>", "<key a='/>'>***</key>"},
        {"<!-- <key>a</key> --><![CDATA[<key>b</key>]]>",
         "<!-- <key>***</key> --><![CDATA[<key>***</key>]]>"},
        {"<key>a</x:key>b", "<key>***"},
        {"<key>a</keys>b", "<key>***"},
        {"<key>", "<key>***"},
        {"<key a=\"x>b</key>", "<key***"},
        {"<key/><x:key a='b'/><b>c</b>", "<key/><x:key a='b'/><b>c</b>"},
        {"<keys>a</keys><akey>b</akey><b>key</b>", "<keys>a</keys><akey>b</akey><b>key</b>"},
        {"<a><key>b</a>", "<a><key>***"},
        {"<<key>a</key>", "<<key>***</key>"},
        {"<key", "<key"},
        {"no XML < at all", "no XML < at all"},
        {"", ""},
    };
    for (const auto& [document, masked] : rows) {
        EXPECT_EQ(text::maskSecrets(document, kSecrets), masked);
    }
}

TEST(DocumentText, IndentsByDepthAndKeepsText) {
    const Rows rows = {
        {"<?xml version=\"1.0\"?><a><b>t</b><c/></a>",
         "<?xml version=\"1.0\"?>\n<a>\n  <b>t</b>\n  <c/>\n</a>"},
        {"<a>\n\t<b x='>'> </b>\n <b></b> <!-- <c> --></a>\n",
         "<a>\n  <b x='>'> </b>\n  <b></b>\n  <!-- <c> -->\n</a>"},
        {"<a>s<b><![CDATA[<x>]]></b>t</a>", "<a>s\n  <b><![CDATA[<x>]]></b>t\n</a>"},
        {"<a></b>", "<a></b>"},
        {"<a><b></a></b>", "<a><b></a></b>"},
        {"</a><b>", "</a><b>"},
        {"<a><b></b>", "<a><b></b>"},
        {"<a>text <never ends</a", "<a>text <never ends</a"},
        {"", ""},
    };
    for (const auto& [document, indented] : rows) {
        EXPECT_EQ(text::indentXml(document), indented);
    }
}

}  // namespace
