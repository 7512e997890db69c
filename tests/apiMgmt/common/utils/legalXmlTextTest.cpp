#include "apiMgmt/common/utils/legalXmlText.h"

#include <gtest/gtest.h>

namespace {

struct Text {
    std::string given;
    std::string legal;
};

class LegalXmlTextTest : public testing::TestWithParam<Text> {};

TEST_P(LegalXmlTextTest, DropsWhatADocumentMayNotHold) {
    EXPECT_EQ(legalXmlText(GetParam().given), GetParam().legal);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Texts, LegalXmlTextTest, testing::Values(
    Text{"",                                            ""},
    Text{"a<&\t\r\n\x7f",                               "a<&\t\r\n\x7f"},
    Text{std::string("\0a\x01\x08\x0b\x0c\x0e\x1f", 8), "a"},
    Text{"\xc3\xa9\xe4\xb8\xad\xf0\x9f\x92\xbe",        "\xc3\xa9\xe4\xb8\xad\xf0\x9f\x92\xbe"},
    Text{"\xef\xbf\xbd\xef\xbf\xbe\xef\xbf\xbf.",       "\xef\xbf\xbd."},  // U+FFFD stays
    Text{"\xf4\x8f\xbf\xbf\xf4\x90\x80\x80.",           "\xf4\x8f\xbf\xbf."},  // U+10FFFF stays
    Text{"\xed\x9f\xbf\xed\xa0\x80\xed\xbf\xbf.",       "\xed\x9f\xbf."},  // surrogates
    Text{"\xc0\x80\xc1\xbf\xe0\x80\x80\xf0\x80\x80\x80.", "."},  // longer than need be
    Text{"\x80\xbf\xfe\xff.",                           "."},
    Text{"a\xc3",                                       "a"},  // cut short
    Text{"\xe4\xb8" "b\xf0\x9f\x92",                    "b"}
));
// clang-format on

}  // namespace
