#include "apiMgmt/common/xmlParser/xmlParser.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using parser::XMLParser;

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string nested(std::size_t depth) {
    return repeated("<a>", depth) + repeated("</a>", depth);
}

struct Content {
    const char* text;
    const char* content;
};

class ContentTest : public testing::TestWithParam<Content> {};

TEST_P(ContentTest, OfTheDocumentElement) {
    XMLParser reader(nullptr);
    ASSERT_TRUE(reader.ParseXMLString(GetParam().text));
    EXPECT_EQ(reader.GetDocumentElement()->GetElementName(), "a");
    EXPECT_EQ(reader.GetDocumentElement()->GetElementContent(), GetParam().content);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(XmlParser, ContentTest, testing::Values(
    Content{"<a/>",                                     ""},
    Content{"<a></a>",                                  ""},
    Content{"<a> t </a>",                               " t "},
    Content{"<a>&lt;&amp;&#x0a;&#x4e2d;</a>",           "<&\n\xe4\xb8\xad"},
    Content{"<a>x<![CDATA[<y>]]><!-- n -->z</a>",       "x<y>z"},
    Content{"<a>1\r\n2</a>",                            "1\n2"},
    Content{"<?xml version=\"1.0\"?>\n<a>t</a>\n",      "t"},
    Content{"\xef\xbb\xbf<a>t</a>",                     "t"},
    // With child elements: as written, references and white space included.
    Content{"<a><b>1 &lt; 2</b><c/></a>",               "<b>1 &lt; 2</b><c/>"},
    Content{"<a >\n <b>t</b>x\n</a >",                  "\n <b>t</b>x\n"},
    Content{"\xef\xbb\xbf<a><b k='v'>t</b></a>",        "<b k='v'>t</b>"},
    // Prefixes, declared or not, and attributes do not show.
    Content{"<p:a xmlns:p='urn:x'>t</p:a>",              "t"},
    Content{"<p:a\tq='>'>t</p:a>",                    "t"}
));
// clang-format on

struct Refused {
    const char* why;
    std::string text;
};

class RefusedTest : public testing::TestWithParam<Refused> {};

TEST_P(RefusedTest, GivesFalseAndNoDocument) {
    XMLParser reader("refused");
    ASSERT_TRUE(reader.ParseXMLString("<before/>"));
    EXPECT_FALSE(reader.ParseXMLString(GetParam().text)) << GetParam().why;
    EXPECT_EQ(reader.GetDocumentElement(), nullptr);
    EXPECT_TRUE(reader.ParseXMLString("<after/>"));
}

INSTANTIATE_TEST_SUITE_P(
    XmlParser, RefusedTest,
    testing::Values(
        Refused{"nothing", ""}, Refused{"blanks", " \n"}, Refused{"no markup", "text"},
        Refused{"unfinished", "<a><b></b>"}, Refused{"crossed", "<a><b></a></b>"},
        Refused{"two documents", "<a/><b/>"}, Refused{"text after the end", "<a/>t"},
        Refused{"zero byte", std::string("<a>\0</a>", 8)}, Refused{"not UTF-8", "<a>\xff</a>"},
        Refused{"UTF-8 for a surrogate", "<a>\xed\xa0\x80</a>"},
        Refused{"bytes of a declared one-byte code",
                "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xe9</a>"},
        Refused{"forbidden reference", "<a>&#1;</a>"}, Refused{"unknown entity", "<a>&b;</a>"},
        Refused{"document type", "<!DOCTYPE a><a/>"},
        Refused{"entities that grow",
                "<!DOCTYPE a [<!ENTITY b 'bb'><!ENTITY c '&b;&b;'>]><a>&c;</a>"},
        Refused{"external entity", "<!DOCTYPE a [<!ENTITY b SYSTEM '/etc/hostname'>]><a>&b;</a>"},
        Refused{"prefix alone", "<a><p:/></a>"},
        Refused{"too deep", nested(XMLParser::maxDepth + 1)},
        Refused{"too many elements", "<a>" + repeated("<b/>", XMLParser::maxElements) + "</a>"},
        Refused{"too long", "<a>" + std::string(XMLParser::maxSize, 'x') + "</a>"}));

TEST(XmlParserTest, ReadsUpToItsLimits) {
    XMLParser reader(nullptr);
    EXPECT_TRUE(reader.ParseXMLString(nested(XMLParser::maxDepth)));
    EXPECT_TRUE(
        reader.ParseXMLString("<a>" + repeated("<b/>", XMLParser::maxElements - 1) + "</a>"));
    EXPECT_EQ(reader.GetDocumentElement()->GetChildTagVals().size(), XMLParser::maxElements - 1);
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
