#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>

#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"
#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/common/utils/legalXmlText.h"
#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "tests/apiMgmt/apiStub/base/testClasses.h"
#include "tests/support/fakeServiceDatabase.h"
#include "tests/support/replyMessage.h"
#include "tests/support/scriptedPeer.h"

namespace {

using Values = std::map<std::string, std::string>;
using protoIPCMsg::GPBIPCMsg;

GPBIPCMsg build(const BASEApiMethod& method, const APIHccReqHeader* header,
                const std::string& sessionKey, const Values* blobs, const std::string& locale) {
    GPBIPCMsg request;
    method.BuildGPBApiRequest(request, header, sessionKey, blobs, locale);
    return request;
}

const protoIPCMsg::APICmdReqMsg& commandOf(const GPBIPCMsg& request) {
    return request.apireqmsg().cmdreqmsg();
}

const std::string emptyMethod =
    "<ApiMethod><CommandType>Method</CommandType><Object>Thing</Object><Command>Set</Command>"
    "<Async>false</Async><ObjectEncodeType>xml</ObjectEncodeType></ApiMethod>";

TEST(RequestDocumentTest, NamesSessionOnlyWithoutHeader) {
    const std::string key = "<sessionkey>k 1</sessionkey>";
    const std::pair<const char*, std::string> sessions[] = {
        // clang-format off
        {"", key}, {"en", key}, {"en_US", key + "<locale>en_US</locale>"}, {"en_US.UTF-8", key},
        // clang-format on
    };
    for (const auto& [locale, connection] : sessions) {
        const GPBIPCMsg request = build(APIThingSetMethod(), nullptr, "k 1", nullptr, locale);
        std::string document = "<compapi><ApiConnection>";
        document.append(connection).append("</ApiConnection>").append(emptyMethod);
        EXPECT_EQ(commandOf(request).requestdocument(), document.append("</compapi>"));
        EXPECT_EQ(request.apireqmsg().clientaddress(), "127.0.0.1");
        EXPECT_FALSE(commandOf(request).has_hccheader());
    }
    const APIHccReqHeader header;
    const GPBIPCMsg request = build(APIThingSetMethod(), &header, "k 1", nullptr, "en_US");
    EXPECT_EQ(commandOf(request).requestdocument(), "<compapi>" + emptyMethod + "</compapi>");
}

TEST(RequestMessageTest, CarriesHeaderAndBlobs) {
    const APIHccReqHeader header{"2.3", std::string("u\0:p", 4), "token", "", "10.1.2.3", "local"};
    const Values blobs{{"b", "data"}, {"a", std::string("\0\xff", 2)}, {"none", ""}};
    const GPBIPCMsg request = build(APIThingSetMethod(), &header, "", &blobs, "");

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
    try {
        build(APIThingSetMethod(), nullptr, "", nullptr, "en_US");
        FAIL() << "no error";
    } catch (const APIMethodError& error) {
        EXPECT_STREQ(error.what(),
                     "Unable to create GPB request. Session identifier not specified");
        EXPECT_EQ(static_cast<int>(error.GetErrorState()), 8);
        EXPECT_EQ(error.GetSourceLine(), 324);
        EXPECT_EQ(error.GetLocalizedMsgId(), 10001U);
    }
}

TEST(ExchangeTest, GoesToTheApiManager) {
    std::mutex guard;
    std::string received;
    ScriptedPeer peer([&](int fd) {
        const std::lock_guard lock(guard);
        received = ScriptedPeer::receive(fd);
        std::string frame;
        ipcFraming::encodeFrame(
            replyWith("<compapi><ApiMethodReturn><Successful>True</Successful>"
                      "<ReturnString>done</ReturnString></ApiMethodReturn></compapi>"),
            frame);
        ScriptedPeer::send(fd, frame);
    });
    fakeServiceDatabase::setPort(peer.port());
    const APIHccReqHeader header{"2.3", "u:p", "", "hcc", "10.1.2.3", ""};
    const APIThingSetMethod method;
    const auto check = [&](BASEApiMethodReturn* outcome, const GPBIPCMsg& request) {
        const std::unique_ptr<BASEApiMethodReturn> owned(outcome);
        const auto* text = dynamic_cast<const STRINGMethodReturn*>(outcome);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->GetValue(), "done");
        const std::lock_guard lock(guard);
        EXPECT_EQ(received, request.SerializeAsString());
    };
    check(method.Execute(&header, nullptr), build(method, &header, "", nullptr, ""));
    check(method.Execute("key", nullptr, "en_US"), build(method, nullptr, "key", nullptr, "en_US"));
}

/// Random bytes among pieces that are likely to hurt.
std::string hostileText(std::mt19937& random) {
    // clang-format off
    static const std::string pieces[] = {
        "<", ">", "&", "'", "\"", "]]>", "<![CDATA[", "</Name>", "&amp;", "&lt", "&#60;", "\n",
        "\t", "<!--", "?>", " ", "\xc3\xa9", "<Notes/>", "\x7f", "</Attributes></ApiMethod>"};
    // clang-format on
    std::string text;
    const bool anyByte = random() % 4 == 0;
    for (auto count = random() % 12; count > 0; --count) {
        text += pieces[random() % std::size(pieces)];
        text += static_cast<char>(anyByte ? random() % 0x100 : random() % 0x7F);
    }
    return text;
}

/// `text` with `substitute` for each control character.
std::string withControls(const std::string& text, const std::string& substitute) {
    std::string changed;
    for (const char each : text)
        changed += static_cast<unsigned char>(each) < 0x20 ? substitute : std::string(1, each);
    return changed;
}

// Whatever a caller sets through typed setters, the document holds the elements that were set,
// with their texts, and no other. A control character arrives as a line feed. Bytes that are no
// text make a document that no reader takes.
TEST(RequestPropertyTest, NoTextBreaksOutOfItsElement) {
    std::mt19937 random(20251121);  // NOLINT(cert-msc51-cpp): to be repeatable
    int refused = 0;
    for (int run = 0; run < 4000; ++run) {
        std::string given[3], expected[3], all;
        for (int i = 0; i < 3; ++i) {
            given[i] = hostileText(random);
            expected[i] = withControls(given[i], "\n");
            all += expected[i];
        }
        APIRecord record;
        record.SetLabel(given[2]);
        APIThingSetMethod method;
        method.SetName(given[0]);
        method.SetNotes(given[1]);
        method.SetRecord(record);
        EXPECT_EQ(method.GetName(), withControls(given[0], "&#x0a;"));

        parser::XMLParser reader(nullptr);
        if (!reader.ParseXMLString(method.GetXMLString(false, true))) {
            EXPECT_NE(legalXmlText(all), all);
            ++refused;
            continue;
        }
        EXPECT_EQ(reader.GetDocumentElement()->GetChildTagVals().size(), 6U);
        const auto* attributes = reader.GetDocumentElement()->GetChildElemByTag("Attributes");
        ASSERT_NE(attributes, nullptr);
        ASSERT_EQ(attributes->GetChildTagVals().size(), 3U);
        EXPECT_EQ(attributes->GetChildElemContentByTag("Name"), expected[0]);
        EXPECT_EQ(attributes->GetChildElemContentByTag("Notes"), expected[1]);
        const auto* read = attributes->GetChildElemByTag("Record")->GetChildElemByTag("Record");
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->GetChildTagVals().size(), 1U);
        EXPECT_EQ(read->GetChildElemContentByTag("Label"), expected[2]);
        EXPECT_EQ(method.GetRecord()->GetLabel(), expected[2]);
    }
    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, 2000);
}

}  // namespace
