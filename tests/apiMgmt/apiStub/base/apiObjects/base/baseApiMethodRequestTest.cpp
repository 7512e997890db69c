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
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "tests/apiMgmt/apiStub/base/testClasses.h"
#include "tests/support/fakeServiceDatabase.h"
#include "tests/support/scriptedPeer.h"

namespace {

using Values = std::map<std::string, std::string>;
using protoIPCMsg::GPBIPCMsg;

class AssociationMethod : public BASEApiMethod {
public:
    AssociationMethod() : BASEApiMethod(true) {}
    API_METHOD_NAMES(Thing, PartList);
};

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

TEST(RequestDocumentTest, OfAMethodElement) {
    APIThingSetMethod method;
    EXPECT_EQ(method.GetXMLString(false, true), emptyMethod);

    method.PutStringDirect("b", "<as>it is</as>");
    method.PutStringDirect("B", "");
    method.PutStringDirect("", "never written");
    method.SetLiteObjectRequest();
    method.SetName("a<b");
    EXPECT_EQ(method.GetXMLString(true, false),
              "<ApiMethod><CommandType>Method</CommandType><Object>Thing</Object>"
              "<Command>Set</Command><Async>true</Async><ObjectEncodeType>csv</ObjectEncodeType>"
              "<Attributes><B></B><LiteObj>1</LiteObj><Name>a&lt;b</Name><b><as>it is</as></b>"
              "</Attributes></ApiMethod>");
    EXPECT_EQ(AssociationMethod().GetXMLString(false, true),
              "<ApiMethod><CommandType>Association</CommandType><Object>Thing</Object>"
              "<Command>PartList</Command><Async>false</Async>"
              "<ObjectEncodeType>xml</ObjectEncodeType></ApiMethod>");
}

struct Session {
    const char* locale;
    const char* connection;
};

TEST(RequestDocumentTest, NamesSessionOnlyWithoutHeader) {
    const Session sessions[] = {
        {"", "<sessionkey>k 1</sessionkey>"},
        {"en", "<sessionkey>k 1</sessionkey>"},
        {"en_US", "<sessionkey>k 1</sessionkey><locale>en_US</locale>"},
        {"en_US.UTF-8", "<sessionkey>k 1</sessionkey>"},
    };
    for (const Session& session : sessions) {
        const GPBIPCMsg request =
            build(APIThingSetMethod(), nullptr, "k 1", nullptr, session.locale);
        EXPECT_EQ(commandOf(request).requestdocument(),
                  std::string("<compapi><ApiConnection>") + session.connection +
                      "</ApiConnection>" + emptyMethod + "</compapi>");
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
        GPBIPCMsg reply;
        reply.set_msgtype(protoIPCMsg::IPC_API_RESPONSE);
        reply.mutable_apirespmsg()->set_cmdtype(protoIPCMsg::API_COMMAND);
        reply.mutable_apirespmsg()->mutable_cmdrespmsg()->set_responsedocument(
            "<compapi><ApiMethodReturn><Successful>True</Successful>"
            "<ReturnString>done</ReturnString></ApiMethodReturn></compapi>");
        std::string frame;
        ipcFraming::encodeFrame(reply, frame);
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
    static const std::string pieces[] = {"<",
                                         ">",
                                         "&",
                                         "'",
                                         "\"",
                                         "]]>",
                                         "<![CDATA[",
                                         "</Name>",
                                         "&amp;",
                                         "&lt",
                                         "&#60;",
                                         "%n",
                                         "-co-",
                                         ":",
                                         "\n",
                                         "\t",
                                         "<!--",
                                         "?>",
                                         " ",
                                         "\xc3\xa9",
                                         "<Notes/>",
                                         "\x7f",
                                         "</Attributes></ApiMethod>"};
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
    for (const char character : text) {
        if (static_cast<unsigned char>(character) < 0x20) {
            changed += substitute;
        } else {
            changed += character;
        }
    }
    return changed;
}

// Whatever a caller sets through typed setters, the document holds the elements that were set,
// with their texts, and no other. A control character arrives as a line feed. Bytes that are no
// text make a document that no reader takes.
TEST(RequestPropertyTest, NoTextBreaksOutOfItsElement) {
    std::mt19937 random(20251121);  // NOLINT(cert-msc51-cpp): to be repeatable
    int refused = 0;
    for (int run = 0; run < 4000; ++run) {
        const std::string name = hostileText(random);
        const std::string notes = hostileText(random);
        const std::string label = hostileText(random);
        APIRecord record;
        record.SetLabel(label);
        APIThingSetMethod method;
        method.SetName(name);
        method.SetNotes(notes);
        method.SetRecord(record);
        EXPECT_EQ(method.GetName(), withControls(name, "&#x0a;"));

        std::string all = withControls(name, "\n");
        all += withControls(notes, "\n") + withControls(label, "\n");
        parser::XMLParser reader(nullptr);
        if (!reader.ParseXMLString(method.GetXMLString(false, true))) {
            EXPECT_NE(legalXmlText(all), all);
            ++refused;
            continue;
        }
        const parser::XMLElement* attributes =
            reader.GetDocumentElement()->GetChildElemByTag("Attributes");
        ASSERT_NE(attributes, nullptr);
        EXPECT_EQ(reader.GetDocumentElement()->GetChildTagVals().size(), 6U);
        const auto found = attributes->GetChildTagVals();
        ASSERT_EQ(found.size(), 3U);
        const std::string expected[] = {withControls(name, "\n"), withControls(notes, "\n")};
        EXPECT_EQ(found[0], parser::XMLElement::TagVal("Name", expected[0]));
        EXPECT_EQ(found[1], parser::XMLElement::TagVal("Notes", expected[1]));
        const parser::XMLElement* read =
            attributes->GetChildElemByTag("Record")->GetChildElemByTag("Record");
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->GetChildTagVals().size(), 1U);
        EXPECT_EQ(read->GetChildElemContentByTag("Label"), withControls(label, "\n"));
        EXPECT_EQ(method.GetRecord()->GetLabel(), withControls(label, "\n"));
    }
    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, 2000);
}

}  // namespace
