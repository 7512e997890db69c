// Which bodies the scan refuses, whole and byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "host/include/soapBodyScan.h"
#include "tests/support/repeated.h"

namespace {

struct Body {
    std::string text;
    std::string refusal;  // a part of it; empty for a body that passes
};

const std::string kAttributes = "too many attributes";
const std::string kDifferent = "too many different attributes";
const std::string kNamespaces = "too many namespaces";
const std::string kDeep = "too deep";
const std::string kMarkup = "markup that is not XML";

const Body kBodies[] = {
    // The limits, on both sides of them.
    {"<a" + repeated(" b=''", kSoapMaxAttributesOfTag) + "/>", ""},
    {"<a" + repeated(" b=''", kSoapMaxAttributesOfTag + 1) + "/>", kAttributes},
    {repeated("<a b#='' b=\">\"/>", kSoapMaxAttributeNames - 1), ""},
    {repeated("<a b#='' b=\">\"/>", kSoapMaxAttributeNames), kDifferent},
    {"<a" + repeated(" xmlns:b#=''", kSoapMaxNamespacesInScope) + "/>", ""},
    {"<a>" + repeated("<a xmlns=''>", kSoapMaxNamespacesInScope + 1), kNamespaces},
    {repeated("<a xmlns='u'><b xmlns:b=''></b></a>", 999), ""},
    {repeated("<a xmlns:b#=''/>", 999), ""},
    {repeated("<a xmlnsb#=''/>", 999), kDifferent},
    {repeated("<a>", kSoapMaxLevels - 1) + "<a/>", ""},
    {repeated("<a>", kSoapMaxLevels) + "<a/>", kDeep},
    {repeated("<a></a><a/>", 999), ""},
    {"<a " + std::string(kSoapMaxAttributeNameBytes, 'b') + "=''/>", ""},
    {"<a " + std::string(kSoapMaxAttributeNameBytes + 1, 'b') + "=''/>", "too long a name"},
    // What looks like markup and is none, so that nothing in it counts.
    {"<!--" + repeated("<a>", 99) + "-->" + "<?x" + repeated("<a>", 99) + "?>", ""},
    {"<a><![CDATA[" + repeated("<a>", 99) + "]] ]>]]]></a>", ""},
    {"<a b='" + repeated(">", 99) + repeated("\"/", 99) + "'>" + repeated(">", 99) + "</a>", ""},
    // What follows it counts again.
    {"<!-- - --><![CDATA[]]><?x?><a b='\"'/>" + repeated("<a>", kSoapMaxLevels + 1), kDeep},
    // Blanks wherever they may stand, and letters beyond ASCII.
    {"<\xC3\xA4 \t b\r\n=\n'' c = \"\" ></\xC3\xA4 ><a/ >", kMarkup},
    {"<\xC3\xA4 \t b\r\n=\n'' c = \"\" ></\xC3\xA4 ><a />", ""},
    // What two readers could take for different things.
    {"< a>", kMarkup},
    {"<%a%>", kMarkup},
    {"<a b=c>", kMarkup},
    {"<a b>", kMarkup},
    {"<a b c=''>", kMarkup},
    {"<a 'b'>", kMarkup},
    {"<a b'=''>", kMarkup},
    {"<a b='<'>", kMarkup},
    {"<a<b>", kMarkup},
    {"<a <!-- -->>", kMarkup},
    {"<a/b=''>", kMarkup},
    {"</a <b>", kMarkup},
    {"<!-- -- -->", kMarkup},
    {"<!->", kMarkup},
    {"<?x ? ?>", kMarkup},
    {"<![cdata[ ]]>", kMarkup},
    {"<!DOCTYPE a>", "document type"},
};

std::string scanned(const std::string& text, size_t piece) {
    soapBodyScan scan;
    soapStartScan(&scan, &kSoapModuleRules);
    const char* refusal = nullptr;
    for (size_t at = 0; at < text.size(); at += piece) {
        refusal = soapScan(&scan, text.data() + at, std::min(piece, text.size() - at));
    }
    return refusal != nullptr ? refusal : "";
}

}  // namespace

TEST(BodyScan, RefusesWhatNoClientSends) {
    for (const Body& body : kBodies) {
        const std::string refusal = scanned(body.text, body.text.size());
        EXPECT_EQ(refusal.empty(), body.refusal.empty()) << body.text << "\n" << refusal;
        EXPECT_NE(refusal.find(body.refusal), std::string::npos) << body.text << "\n" << refusal;
        EXPECT_EQ(scanned(body.text, 1), refusal) << body.text;
    }
}
