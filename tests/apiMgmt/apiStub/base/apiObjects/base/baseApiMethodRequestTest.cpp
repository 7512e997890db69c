#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>

#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"
#include "apiMgmt/common/text/legalXmlText.h"
#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "testbed/fakeServiceDatabase.h"
#include "testbed/sampleClasses.h"
#include "testbed/scriptedPeer.h"
#include "tests/apiMgmt/apiStub/base/errorOf.h"
#include "tests/support/replyMessage.h"

namespace {

using Add = APISample::APISampleAddMethod;
using Values = std::map<std::string, std::string>;
using protoIPCMsg::GPBIPCMsg;

GPBIPCMsg build(const APIHccReqHeader* header, const std::string& sessionKey, const Values* blobs,
                const std::string& locale) {
    GPBIPCMsg request;
    Add().BuildGPBApiRequest(request, header, sessionKey, blobs, locale);
    return request;
}

const protoIPCMsg::APICmdReqMsg& commandOf(const GPBIPCMsg& request) {
    return request.apireqmsg().cmdreqmsg();
}

TEST(RequestDocumentTest, NamesSessionOnlyWithoutHeader) {
    const std::string key = "<sessionkey>k&lt;1</sessionkey>";
    const std::string element = Add().GetXMLString(false, true);
    const std::pair<const char*, std::string> sessions[] = {
        // clang-format off
        {"", key}, {"en", key}, {"en_US", key + "<locale>en_US</locale>"}, {"en_US.UTF-8", key},
        {"e<>US", key + "<locale>e&lt;&gt;US</locale>"},
        // clang-format on
    };
    for (const auto& [locale, connection] : sessions) {
        const GPBIPCMsg request = build(nullptr, "k<1", nullptr, locale);
        std::string document = "<compapi><ApiConnection>" + connection;
        EXPECT_EQ(commandOf(request).requestdocument(),
                  document.append("</ApiConnection>").append(element).append("</compapi>"));
        EXPECT_EQ(request.apireqmsg().clientaddress(), "127.0.0.1");
        EXPECT_FALSE(commandOf(request).has_hccheader());
    }
    const APIHccReqHeader header;
    const GPBIPCMsg request = build(&header, "k<1", nullptr, "en_US");
    EXPECT_EQ(commandOf(request).requestdocument(), "<compapi>" + element + "</compapi>");
}

TEST(RequestMessageTest, CarriesHeaderAndBlobs) {
    const APIHccReqHeader header{"2.3", std::string("u\0:p", 4), "token", "", "10.1.2.3", "local"};
    const Values blobs{{"b", "data"}, {"a", std::string("\0\xff", 2)}, {"none", ""}};
    const GPBIPCMsg request = build(&header, "", &blobs, "");

    EXPECT_EQ(request.msgtype(), protoIPCMsg::IPC_API_REQUEST);
    EXPECT_FALSE(request.has_apirespmsg());
    EXPECT_TRUE(request.apireqmsg().has_cmdtype());
    EXPECT_EQ(request.apireqmsg().clientaddress(), "10.1.2.3");
    const protoIPCMsg::HccHeader& sent = commandOf(request).hccheader();
    EXPECT_EQ(sent.schemaversion(), "2.3");
    EXPECT_EQ(sent.credentials(), std::string("u\0:p", 4));
    EXPECT_EQ(sent.authtoken(), "token");
    EXPECT_TRUE(sent.has_hccid());  // an empty text is sent too
    ASSERT_EQ(commandOf(request).blobs_size(), 2);
    EXPECT_EQ(commandOf(request).blobs(0).name(), "a");
    EXPECT_EQ(commandOf(request).blobs(0).data(), std::string("\0\xff", 2));
    EXPECT_EQ(commandOf(request).blobs(0).length(), 2);
    EXPECT_EQ(commandOf(request).blobs(1).name(), "b");
}

TEST(RequestMessageTest, NeedsAnIdentity) {
    const APIMethodError error = errorOf([] { build(nullptr, "", nullptr, "en_US"); });
    EXPECT_STREQ(error.what(), "Unable to create GPB request. Session identifier not specified");
    EXPECT_EQ(error.GetErrorState(), ErrorStateEnum::InvalidRequest);
    EXPECT_EQ(error.GetSourceLine(), 324);
    EXPECT_EQ(error.GetLocalizedMsgId(), 10001U);
}

TEST(ExchangeTest, GoesToTheApiManager) {
    std::mutex guard;
    std::string received;
    ScriptedPeer peer([&](int fd) {
        const std::lock_guard lock(guard);
        received = ScriptedPeer::receive(fd);
        ScriptedPeer::send(
            fd, replyFrame("<compapi><ApiMethodReturn><Successful>True</Successful>"
                           "<ReturnString>done</ReturnString></ApiMethodReturn></compapi>"));
    });
    fakeServiceDatabase::setPort(peer.port());
    const auto check = [&](BASEApiMethodReturn* outcome, const GPBIPCMsg& request) {
        const std::unique_ptr<BASEApiMethodReturn> owned(outcome);
        const auto* text = dynamic_cast<const STRINGMethodReturn*>(outcome);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->GetValue(), "done");
        const std::lock_guard lock(guard);
        EXPECT_EQ(received, request.SerializeAsString());
    };
    const APIHccReqHeader header{"2.3", "u:p", "", "hcc", "10.1.2.3", ""};
    check(Add().Execute(&header, nullptr), build(&header, "", nullptr, ""));
    check(Add().Execute("key", nullptr, "en_US"), build(nullptr, "key", nullptr, "en_US"));
}

/// Random bytes among pieces that are likely to hurt.
std::string hostileText(std::mt19937& random) {
    // clang-format off
    static const std::string pieces[] = {
        "<", ">", "&", "'", "\"", "]]>", "<![CDATA[", "</Name>", "&amp;", "&lt", "&#60;", "\n",
        "\t", "<!--", "?>", " ", "\xc3\xa9", "<Key/>", "\x7f", "</Attributes></ApiMethod>"};
    // clang-format on
    std::string text;
    const bool anyByte = random() % 4 == 0;
    for (auto count = random() % 12; count > 0; --count) {
        text += pieces[random() % std::size(pieces)];
        text += static_cast<char>(anyByte ? random() % 0x100 : random() % 0x7F);
    }
    return text;
}

// Whatever a caller sets through typed setters, the document holds the elements that were set,
// with their texts, and no other. A control character arrives as a line feed. Bytes that are no
// text make a document that no reader takes.
TEST(RequestPropertyTest, NoTextBreaksOutOfItsElement) {
    using TagVals = std::vector<parser::XMLElement::TagVal>;
    std::mt19937 random(20251121);  // NOLINT(cert-msc51-cpp): to be repeatable
    int refused = 0;
    for (int run = 0; run < 4000; ++run) {
        Add method;
        APISampleRecord record;
        std::string texts[] = {hostileText(random), hostileText(random), hostileText(random)};
        method.SetName(texts[0]);
        method.SetKey(texts[1]);
        record.SetComment(texts[2]);
        method.SetRecords({&record});
        for (std::string& text : texts) {
            for (char& each : text) {
                each = static_cast<unsigned char>(each) < 0x20 ? '\n' : each;
            }
        }

        parser::XMLParser reader(nullptr);
        if (!reader.ParseXMLString(method.GetXMLString(false, true))) {
            const std::string all = texts[0] + texts[1] + texts[2];
            EXPECT_NE(text::legalXmlText(all), all);
            ++refused;
            continue;
        }
        EXPECT_EQ(reader.GetDocumentElement()->GetChildTagVals().size(), 6U);
        const auto* attributes = reader.GetDocumentElement()->GetChildElemByTag("Attributes");
        ASSERT_NE(attributes, nullptr);
        EXPECT_EQ(attributes->GetChildTagVals(), (TagVals{{"Key", texts[1]},
                                                          {"Name", texts[0]},
                                                          {"Records", record.ToXMLString(true)}}));
        const auto read = method.GetRecords();
        ASSERT_EQ(read.size(), 1U);
        EXPECT_EQ(read[0]->AllValues(), (Values{{"Comment", texts[2]}}));
    }
    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, 2000);
}

}  // namespace
