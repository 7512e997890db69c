#include "apiMgmt/common/utils/legalXmlText.h"

#include <gtest/gtest.h>

namespace {

TEST(LegalXmlText, DropsWhatADocumentMayNotHold) {
    const std::pair<std::string, std::string> cases[] = {
        // clang-format off
        {"",                                            ""},
        {"a<&\t\r\n\x7f",                               "a<&\t\r\n\x7f"},
        {std::string("\0a\x01\x08\x0b\x0c\x0e\x1f", 8), "a"},
        {"\xc3\xa9\xe4\xb8\xad\xf0\x9f\x92\xbe",        "\xc3\xa9\xe4\xb8\xad\xf0\x9f\x92\xbe"},
        {"\xef\xbf\xbd\xef\xbf\xbe\xef\xbf\xbf.",       "\xef\xbf\xbd."},  // U+FFFD stays
        {"\xf4\x8f\xbf\xbf\xf4\x90\x80\x80.",           "\xf4\x8f\xbf\xbf."},  // U+10FFFF stays
        {"\xed\x9f\xbf\xed\xa0\x80\xed\xbf\xbf.",       "\xed\x9f\xbf."},  // surrogates
        {"\xc0\x80\xc1\xbf\xe0\x80\x80\xf0\x80\x80\x80.", "."},  // longer than need be
        {"\x80\xbf\xfe\xff.",                           "."},
        {"a\xc3",                                       "a"},  // cut short
        {"\xe4\xb8" "b\xf0\x9f\x92",                    "b"},
        // clang-format on
    };
    for (const auto& [given, legal] : cases)
        EXPECT_EQ(legalXmlText(given), legal) << given;
}

}  // namespace
