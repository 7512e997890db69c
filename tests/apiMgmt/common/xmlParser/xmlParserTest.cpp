#include "apiMgmt/common/xmlParser/xmlParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/repeated.h"

namespace {

using parser::XMLParser;

std::string nested(std::size_t depth) {
    return repeated("<a>", depth) + repeated("</a>", depth);
}

// The parser's limits, stated once more: they are documented.
constexpr std::size_t kMaxDepth = 128;
constexpr std::size_t kMaxElements = 1'000'000;
constexpr std::size_t kMaxSize = 67'108'864;

const std::string kUsualDeclaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";

// clang-format off
const std::pair<std::string, std::string> kContents[] = {
    {"<a/>",                                     ""},
    {"<a></a>",                                  ""},
    {"<a> t </a>",                               " t "},
    {"<a>&lt;&amp;&#x0a;&#x4e2d;</a>",           "<&\n\xe4\xb8\xad"},
    {"<a>x<![CDATA[<y>]]><!-- n -->z</a>",       "x<y>z"},
    {"<a>1\r\n2</a>",                            "1\n2"},
    {"<?xml version=\"1.0\"?>\n<a>t</a>\n",      "t"},
    {kUsualDeclaration + "\n<a>t</a>\n",          "t"},
    {kUsualDeclaration + "<?p?><a><b/></a>",       "<b/>"},
    {"\xef\xbb\xbf<a>t</a>",                     "t"},
    // With child elements: as written, references and white space included.
    {"<a><b>1 &lt; 2</b><c/></a>",               "<b>1 &lt; 2</b><c/>"},
    {"<a >\n <b>t</b>x\n</a >",                  "\n <b>t</b>x\n"},
    {"\xef\xbb\xbf<a><b k='v'>t</b></a>",        "<b k='v'>t</b>"},
    // What needs no Expat, up to what does.
    {" \n<a>]]&lt;x&gt;&amp;&quot;&apos;]></a>\t", "]]<x>&\"']>"},
    {"<a>&lt;<b>&gt;</b>&amp;<c/>&apos;</a>",     "&lt;<b>&gt;</b>&amp;<c/>&apos;"},
    {"<a>&#60;</a>",                             "<"},
    {"<a\n>\x7f</a\t>",                          "\x7f"},
    // Prefixes, declared or not, and attributes do not show.
    {"<p:a xmlns:p='urn:x'>t</p:a>",              "t"},
    {"<p:a\tq='>'>t</p:a>",                    "t"},
};
// clang-format on

TEST(XmlParserTest, GivesTheContentOfTheDocumentElement) {
    for (const auto& [text, content] : kContents) {
        XMLParser reader(nullptr);
        ASSERT_TRUE(reader.ParseXMLString(text)) << text;
        EXPECT_EQ(reader.GetDocumentElement()->GetElementName(), "a") << text;
        EXPECT_EQ(reader.GetDocumentElement()->GetElementContent(), content) << text;
        const std::vector<char> exact(text.begin(), text.end());  // no zero behind it
        ASSERT_TRUE(reader.ParseInPlace({exact.data(), exact.size()})) << text;
        EXPECT_EQ(reader.GetDocumentElement()->GetElementContent(), content) << text;
    }
}

TEST(XmlParserTest, RefusesAndGoesOn) {
    const std::pair<const char*, std::string> refused[] = {
        // clang-format off
        {"nothing", ""},                             {"blanks", " \n"},
        {"no markup", "text"},                       {"unfinished", "<a><b></b>"},
        {"crossed", "<a><b></a></b>"},               {"two documents", "<a/><b/>"},
        {"text after the end", "<a/>t"},             {"zero byte", std::string("<a>\0</a>", 8)},
        {"not UTF-8", "<a>\xff</a>"},                {"a surrogate", "<a>\xed\xa0\x80</a>"},
        {"forbidden reference", "<a>&#1;</a>"},      {"unknown entity", "<a>&b;</a>"},
        {"document type", "<!DOCTYPE a><a/>"},       {"prefix alone", "<a><p:/></a>"},
        {"declaration alone", kUsualDeclaration},     {"mark after it", kUsualDeclaration + "\xef\xbb\xbf<a/>"},
        {"two of them", kUsualDeclaration + "<?xml version='1.0'?><a/>"},
        {"too deep", nested(kMaxDepth + 1)},         {"too deep for Expat", "<?p?>" + nested(kMaxDepth + 1)},
        {"too many elements", "<a>" + repeated("<b/>", kMaxElements) + "</a>"},
        {"too long", "<a>" + std::string(kMaxSize - 6, 'x') + "</a>"},
        {"bytes of a declared one-byte code", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xe9</a>"},
        {"entities that grow", "<!DOCTYPE a [<!ENTITY b 'bb'><!ENTITY c '&b;&b;'>]><a>&c;</a>"},
        {"external entity", "<!DOCTYPE a [<!ENTITY b SYSTEM '/etc/hostname'>]><a>&b;</a>"},
        // clang-format on
    };
    XMLParser reader("refused");
    for (const auto& [why, text] : refused) {
        ASSERT_TRUE(reader.ParseXMLString("<good/>"));
        EXPECT_FALSE(reader.ParseXMLString(text)) << why;
        EXPECT_EQ(reader.GetDocumentElement(), nullptr) << why;
    }
}

TEST(XmlParserTest, ReadsUpToItsLimits) {
    XMLParser reader(nullptr);
    EXPECT_TRUE(reader.ParseXMLString(nested(kMaxDepth)));
    EXPECT_TRUE(reader.ParseXMLString("<?p?>" + nested(kMaxDepth)));  // by way of Expat
    EXPECT_TRUE(reader.ParseXMLString("<a>" + std::string(kMaxSize - 7, 'x') + "</a>"));
    EXPECT_TRUE(reader.ParseXMLString("<a>" + repeated("<b/>", kMaxElements - 1) + "</a>"));
    EXPECT_EQ(reader.GetDocumentElement()->GetChildTagVals().size(), kMaxElements - 1);
}

TEST(XmlParserTest, FindsChildrenByLocalName) {
    XMLParser reader(nullptr);
    ASSERT_TRUE(reader.ParseXMLString("<r>\n<a>1</a><n:b>2</n:b><a><a>inner</a></a><c/>\n</r>"));
    const parser::XMLElement& root = *reader.GetDocumentElement();

    EXPECT_EQ(root.GetChildElemContentByTag("a"), "1");
    EXPECT_EQ(root.GetChildElemContentByTag("b"), "2");
    EXPECT_EQ(root.GetChildElemContentByTag("none"), "");
    EXPECT_EQ(root.GetChildElemByTag("none"), nullptr);
    const auto found = root.GetChildElemsByTagName("a");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[1]->GetElementContent(), "<a>inner</a>");

    using TagVals = std::vector<parser::XMLElement::TagVal>;
    EXPECT_EQ(root.GetChildTagVals(),
              (TagVals{{"a", "1"}, {"b", "2"}, {"a", "<a>inner</a>"}, {"c", ""}}));
}

}  // namespace
