#include "client/call/messageText.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;

TEST(MessageText, masksEverySecretElementHoweverItIsWritten) {
    const Rows rows = {
        {"<userPass>abc</userPass>", "<userPass>***</userPass>"},
        {"<x:authToken a=\"1\">abc</x:authToken><b>c</b>",
         "<x:authToken a=\"1\">***</x:authToken><b>c</b>"},
        {"<hccKey><![CDATA[a<b>]]></hccKey>", "<hccKey>***</hccKey>"},
        {"<userToken\n>abc</userToken>", "<userToken\n>***</userToken>"},
        {"<hccKey>a</hccKey><hccKey>b</hccKey>", "<hccKey>***</hccKey><hccKey>***</hccKey>"},
        {"<userPass>never ends", "<userPass>***"},
        {"<userPass/><b>shown</b>", "<userPass/><b>shown</b>"},
        {"<hccKeys>shown</hccKeys>", "<hccKeys>shown</hccKeys>"},
        {"<userPass", "<userPass"},
        {"no XML < at all", "no XML < at all"},
        {"", ""},
    };
    for (const auto& [message, expected] : rows) {
        EXPECT_EQ(client::maskSecrets(message), expected);
    }
}

TEST(MessageText, indentsByDepthAndKeepsText) {
    const Rows rows = {
        {"<?xml version=\"1.0\"?><a><b>t</b><c/></a>",
         "<?xml version=\"1.0\"?>\n<a>\n  <b>t</b>\n  <c/>\n</a>"},
        {"</a></a><b>", "</a>\n</a>\n<b>"},
        {"text <never ends", "text <never ends"},
    };
    for (const auto& [message, expected] : rows) {
        EXPECT_EQ(client::indentXml(message), expected);
    }
}

TEST(MessageText, showsNoControlCharacterToATerminal) {
    EXPECT_EQ(client::printable("a\x1b[2J\tb\nc\x7f"), "a\\x1B[2J\tb\nc\\x7F");
    EXPECT_EQ(client::printable("\xC2\x9B"
                                "2J\xC2"),
              "\\xC2\\x9B"
              "2J\xC2");
    EXPECT_EQ(client::printable("größe 卷"), "größe 卷");
}

}  // namespace
