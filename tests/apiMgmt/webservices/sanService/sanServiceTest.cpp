// The service object and its header checks, driven in process: a request goes in as text, the
// reply comes out as text. Whatever needs a web server or an API manager is in tests/service.

#include "apiMgmt/webservices/sanService/sanService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httpd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "apiMgmt/webservices/sanService/pluginEntry.h"
#include "testbed/fakeServiceDatabase.h"
#include "testbed/scriptedPeer.h"
#include "tests/apiMgmt/webservices/sanService/contract/wire.h"
#include "tests/support/replyMessage.h"
#include "tests/support/syslogCapture.h"

using testing::HasSubstr;
using testing::Not;
using wire::envelope;

namespace {

// What the web server's module gives the plug-in, without a web server.
class FakeModule {
public:
    FakeModule() : m_context(soap_new()) {}

    soap& Context() { return *m_context; }

    void RegisterConnection(const char* clientIp, const char* localIp) {
        m_connection.client_ip = const_cast<char*>(clientIp);
        m_connection.local_ip = const_cast<char*>(localIp);
        m_request.connection = &m_connection;
        m_configuration.r = &m_request;
        ASSERT_EQ(SOAP_OK, soap_register_plugin_arg(&Context(), &Attach, &m_configuration));
    }

    // The reply to a request.
    std::string Serve(const std::string& request) {
        apache_soap_interface table{};
        apache_init_soap_interface(&table);
        return wire::answer(Context(), request, [&] { table.serve(&Context()); });
    }

private:
    static int Attach(soap*, soap_plugin* plugin, void* configuration) {
        plugin->id = SOAP_REQUEST_CONF_ID;
        plugin->data = configuration;
        plugin->fdelete = [](soap*, soap_plugin*) {};
        return SOAP_OK;
    }

    wire::Context m_context;
    conn_rec m_connection{};
    request_rec m_request{};
    soapRequestConf m_configuration{};
};

std::string headerOf(const std::string& children) {
    return "<e:Header><s:HccApiHeader>" + children + "</s:HccApiHeader></e:Header>";
}

std::string versionOf(const std::string& version) {
    return "<xsdVersion version='" + version + "'/>";
}

constexpr char kRename[] =
    "<s:RenameHccInSan><hccId>c</hccId><sanId>s</sanId><name>n</name></s:RenameHccInSan>";
constexpr char kPassed[] = "RenameHccInSan is not supported by SanApi interface.";
constexpr char kNoCredentials[] = "SanService user credentials not specified";

TEST(SanServiceHeader, RefusalsNameTheirReason) {
    const std::string mismatch =
        "SanService soap header version mismatch, expecting[2.3] specified[";
    const struct {
        std::string header, fault;
    } cases[] = {
        {"", "Soap header not specified"},
        {"<e:Header/>", "SanService soap header not specified"},
        {headerOf(""), mismatch + "]"},
        {headerOf(versionOf("3.0")), mismatch + "3.0]"},
        {headerOf(versionOf("2")), mismatch + "2]"},
        {headerOf(versionOf("20.1")), mismatch + "20.1]"},
        {headerOf(versionOf("%n&lt;%s")), mismatch + "%n&lt;%s]"},
        {headerOf(versionOf("3" + std::string(1000, 'x'))),
         mismatch + "3" + std::string(255, 'x') + "...[cut]]"},
        {headerOf(versionOf("2.3")), kNoCredentials},
        {headerOf(versionOf("2.3") + "<userPass></userPass><authToken></authToken>"),
         kNoCredentials},
        {headerOf(versionOf("2.3") + "<userPass>ISEhIQ==</userPass>"), kNoCredentials},
        {headerOf(versionOf("2.9.1") + "<authToken>t</authToken>"), kPassed},
        {headerOf(versionOf("2.0") + "<userPass></userPass><authToken>t</authToken>"), kPassed},
        {headerOf(versionOf("2.3") + "<userPass>ZFhObGNqcHdZWE56</userPass>"), kPassed},
    };
    for (const auto& [header, fault] : cases) {
        SCOPED_TRACE(header);
        const std::string reply = FakeModule().Serve(envelope(kRename, header));
        EXPECT_THAT(reply, HasSubstr("<faultcode>SOAP-ENV:Client</faultcode>"));
        EXPECT_THAT(reply, HasSubstr("<faultstring>" + fault + "</faultstring>"));
        EXPECT_THAT(reply, Not(HasSubstr("userPass")));
        EXPECT_THAT(reply, Not(HasSubstr("authToken")));
        if (header.find("xsdVersion") != std::string::npos) {
            EXPECT_THAT(reply, HasSubstr("<xsdVersion version=\"2.3\""));
        }
    }
}

// What the web server's module lets nobody send, so that tests/service/replies has none of it: SOAP
// goes back all the same.
TEST(SanServiceRequest, WhatTheModuleWouldRefuseGetsASoapFault) {
    const std::string request = envelope(kRename, headerOf(versionOf("2.3")));
    const std::pair<std::string, std::string> cases[] = {
        {"hello", "SOAP-ENV:Client"},
        {"", "SOAP-ENV:Client"},
        {std::string(request).insert(100, std::string(140000, ' ')), "longer than 131072 bytes"},
    };
    for (const auto& [sent, text] : cases) {
        const std::string reply = FakeModule().Serve(sent);
        EXPECT_THAT(reply,
                    HasSubstr("xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\""));
        EXPECT_THAT(reply, HasSubstr(text));
    }
}

// Opens what only the service itself may do.
class OpenService : public SANService {
public:
    explicit OpenService(const soap& context) : SANService(context, "127.0.0.1", 1) {}
    using SANService::ParseRequestHeaders;
};

TEST(SanServiceObject, TakesTheConnectionsAddressesFromTheModule) {
    FakeModule known;
    known.RegisterConnection("192.0.2.7", "192.0.2.1");
    const OpenService service(known.Context());
    EXPECT_EQ("192.0.2.7", service.GetRequestHeader().clientAddress);
    EXPECT_EQ("192.0.2.1", service.GetRequestHeader().localAddress);

    FakeModule halfKnown;
    halfKnown.RegisterConnection("192.0.2.7", nullptr);
    FakeModule unknown;
    for (FakeModule* module : {&halfKnown, &unknown}) {
        SyslogCapture::clear();
        const OpenService nameless(module->Context());
        EXPECT_EQ("", nameless.GetRequestHeader().clientAddress);
        EXPECT_EQ("", nameless.GetRequestHeader().localAddress);
        ASSERT_EQ(1U, SyslogCapture::lines().size());
        EXPECT_EQ(
            "level(3) category(SANService) message(Unable to determine connection IPs from "
            "Apache's pRqConf->r->connection struct)\n",
            SyslogCapture::lines()[0].text);
    }
}

// A module relies on each slot; this one's own uses few of them.
TEST(SanServiceTable, HasTheFunctionOfEachSlot) {
    apache_soap_interface table{};
    apache_init_soap_interface(&table);
    EXPECT_EQ(std::tie(table.length, table.revision, table.reserved, table.namespaces),
              std::make_tuple(APACHE_SOAP_LENGTH, APACHE_SOAP_REVISION, nullptr, &namespaces[0]));
    EXPECT_EQ(std::tie(table.init, table.destroy, table.end, table.done),
              std::make_tuple(apache_default_soap_init, apache_soap_soap_destroy,
                              apache_default_soap_end, apache_default_soap_done));
    EXPECT_EQ(std::tie(table.serializeHeader, table.putHeader, table.getHeader, table.fault),
              std::make_tuple(soap_serializeheader, soap_putheader, soap_getheader, soap_fault));
    EXPECT_EQ(std::tie(table.serializeFault, table.putFault, table.getFault, table.faultCode),
              std::make_tuple(soap_serializefault, soap_putfault, soap_getfault, soap_faultcode));
    EXPECT_EQ(std::tie(table.faultString, table.faultDetail),
              std::make_tuple(soap_faultstring, soap_faultdetail));
    EXPECT_EQ(std::tie(table.markElement, table.putElement, table.getElement),
              std::make_tuple(SanApi::soap_markelement, SanApi::soap_putelement,
                              SanApi::soap_getelement));
}

// The API manager: keeps what it gets and is content with everything. There is one for the whole
// program, since the port is looked up once.
class ApiManager {
public:
    ApiManager() { fakeServiceDatabase::setPort(m_peer.port()); }

    std::atomic<bool> hangsUp{false};

    std::vector<std::string> TakeDocuments() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_documents, {});
    }

private:
    void Answer(int fd) {
        protoIPCMsg::GPBIPCMsg request;
        request.ParseFromString(ScriptedPeer::receive(fd));
        {
            const std::lock_guard lock(m_mutex);
            m_documents.push_back(request.apireqmsg().cmdreqmsg().requestdocument());
        }
        if (hangsUp) {
            return;
        }
        ScriptedPeer::send(fd, replyFrame("<compapi><ApiMethodReturn><Successful>True</Successful>"
                                          "<ReturnInt>0</ReturnInt></ApiMethodReturn></compapi>"));
    }

    std::mutex m_mutex;
    std::vector<std::string> m_documents;
    ScriptedPeer m_peer{[this](int fd) { Answer(fd); }};
};

ApiManager gApiManager;

// Nothing but documents that a strict reader takes reaches the API manager, whatever the client's
// text is made of.
TEST(SanServiceObject, SendsEachCharacterOfUnicodeInADocument) {
    const std::string header = headerOf(versionOf("2.3") + "<authToken>t</authToken>");
    constexpr std::uint32_t kBlock = 8192;
    gApiManager.TakeDocuments();
    for (std::uint32_t first = 1; first <= 0x10FFFF; first += kBlock) {
        std::string references;
        for (std::uint32_t point = first; point < first + kBlock && point <= 0x10FFFF; ++point) {
            const bool legal = (point < 0xD800 || point > 0xDFFF) && (point | 1U) != 0xFFFF;
            references += legal ? "&#" + std::to_string(point) + ";" : "";
        }
        FakeModule().Serve(envelope("<s:RemoveHccFromSan><sanId>s</sanId><hccId>" + references +
                                        "</hccId></s:RemoveHccFromSan>",
                                    header));
    }
    const std::vector<std::string> documents = gApiManager.TakeDocuments();
    EXPECT_EQ(136U, documents.size());
    parser::XMLParser reader(nullptr);
    for (const std::string& document : documents) {
        EXPECT_TRUE(reader.ParseXMLString(document));
    }
}

TEST(SanServiceObject, ServesANilPingOfAClientOnly) {
    FakeModule module;
    OpenService service(module.Context());
    SanApi::ns1__PingResponse response;
    EXPECT_EQ(SOAP_FAULT, service.Ping(nullptr, &response));
    EXPECT_THAT(
        FakeModule().Serve(envelope("<s:Ping xsi:nil='true'/>", headerOf(versionOf("2.3")))),
        HasSubstr("PingResponse>"));
    EXPECT_EQ(1U, gApiManager.TakeDocuments().size());
}

TEST(SanServiceObject, DecodesCredentialsTwice) {
    FakeModule module;
    OpenService service(module.Context());
    SanApi::ns1__HccApiXsd xsd;
    xsd.version = "2.1";
    // The base64 text of user:pass, a zero and more, as the engine leaves it: with no zero behind.
    std::string octets = "dXNlcjpwYXNzAG1vcmUhGARBAGE";
    SanApi::xsd__base64Binary userPass;
    userPass.__ptr = reinterpret_cast<unsigned char*>(octets.data());
    userPass.__size = 20;
    SanApi::ns1__HccApiHeader apiHeader;
    apiHeader.xsdVersion = &xsd;
    apiHeader.userPass = &userPass;
    SOAP_ENV__Header header{};
    header.ns1__HccApiHeader_ = &apiHeader;
    service.header = &header;
    EXPECT_EQ("", service.ParseRequestHeaders(true));
    EXPECT_EQ("user:pass", service.GetRequestHeader().credentials);
    EXPECT_EQ("2.1", service.GetRequestHeader().schemaVersion);

    const std::unique_ptr<SanApi::SanApiPortBindingService> copy(service.copy());
    const auto* fresh = dynamic_cast<const SANService*>(copy.get());
    ASSERT_NE(nullptr, fresh);
    EXPECT_EQ("", fresh->GetRequestHeader().credentials);
    EXPECT_EQ("", fresh->GetRequestHeader().schemaVersion);
}

/// Level, function and line number of each line that operators are told of, and its message as the
/// page has it: in backticks, with "…" where it varies.
std::map<std::string, std::string> linesOfThePage() {
    std::map<std::string, std::string> lines;
    std::ifstream page(LOGGING_PAGE);
    for (std::string row; std::getline(page, row);) {
        std::vector<std::string> cells;
        STRINGUtil::SplitString(row, " | ", cells);
        if (cells.size() == 4 && (cells[0] == "| error" || cells[0] == "| warning")) {
            lines[(cells[0] == "| error" ? "3 " : "4 ") + cells[1] + " " + cells[2]] = cells[3];
        }
    }
    return lines;
}

/// Whether the page's message is what was written.
bool describes(const std::string& message, const std::string& written) {
    const std::size_t varies = message.find("…");
    if (!message.starts_with("`")) {
        return true;  // in words
    }
    return varies == std::string::npos ? message == "`" + written + "` |"
                                       : ("`" + written).starts_with(message.substr(0, varies));
}

TEST(SanServiceLog, WritesTheLinesOfItsPage) {
    const std::string header = headerOf(versionOf("2.3") + "<authToken>t</authToken>");
    SyslogCapture::clear();
    SimpleLogger::setIncludeHeader(true);
    for (const char* operation :
         {"Ping", "AddHccToSan><cfmIpAddresses xsi:nil='1'/", "RemoveHccFromSan",
          "AddServer><hcnInfo><mgmtIpAddresses xsi:nil='1'/></hcnInfo", "RemoveServer",
          "HccAttachVolume", "HccDetachVolume", "MakeDataAvailable", "MakeDataUnavailable",
          "FlushComplete", "NewPrimaryCfmAddresses><mgmtIpAddresses xsi:nil='1'/",
          "SnapshotPrepareComplete", "RenameHccInSan"}) {
        const std::string name = std::string(operation).substr(0, std::string(operation).find('>'));
        gApiManager.hangsUp = name == "Ping";
        FakeModule().Serve(envelope(std::string("<s:") + operation + "></s:" + name + ">", header));
    }
    FakeModule().Serve(envelope("<s:Ping/>"));
    SimpleLogger::setIncludeHeader(false);

    const std::map<std::string, std::string> lines = linesOfThePage();
    std::map<std::string, std::string> unseen = lines;
    for (const SyslogCapture::Line& line : SyslogCapture::lines()) {
        int level = 0;
        int number = 0;
        char function[32] = "";
        char message[256] = "";
        const int read = std::sscanf(line.text.c_str(),
                                     "level(%d) category(SANService) "
                                     "file(apiMgmt/webservices/sanService/sanService) "
                                     "func(%31[^)]) line(%d) message(%255[^\n]",
                                     &level, function, &number, message);
        if (line.format != "%s") {
            continue;
        }
        ASSERT_EQ(read, 4) << line.text;
        const std::string key = STRINGUtil::FormatStr("%d `%s` %d", level, function, number);
        ASSERT_TRUE(lines.contains(key)) << line.text << "is not in docs/logging.md";
        const std::string written = message;
        EXPECT_PRED2(describes, lines.at(key), written.substr(0, written.size() - 1));
        unseen.erase(key);
    }
    // Failures of the service itself, which nothing from outside brings about.
    EXPECT_THAT(unseen, testing::UnorderedElementsAre(testing::Key("3 `dispatch` 181"),
                                                      testing::Key("4 `ExecuteMethod` 863"),
                                                      testing::Key("4 `ExecuteMethod` 871")));
}

}  // namespace
