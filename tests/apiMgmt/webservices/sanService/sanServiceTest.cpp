// The service object and its header checks, driven in process: a request goes in as text, the
// reply comes out as text. Whatever needs a web server or an API manager is in tests/service.

#include "apiMgmt/webservices/sanService/sanService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httpd.h>

#include <memory>
#include <string>
#include <vector>

#include "apiMgmt/webservices/sanService/pluginEntry.h"
#include "tests/apiMgmt/webservices/sanService/contract/wire.h"
#include "tests/support/syslogCapture.h"

using testing::EndsWith;
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

std::string Header(const std::string& children) {
    return "<e:Header><s:HccApiHeader>" + children + "</s:HccApiHeader></e:Header>";
}

std::string Version(const std::string& version) {
    return "<xsdVersion version='" + version + "'/>";
}

constexpr char kRename[] =
    "<s:RenameHccInSan><hccId>c</hccId><sanId>s</sanId><name>n</name></s:RenameHccInSan>";
constexpr char kSoap12[] = "http://www.w3.org/2003/05/soap-envelope";
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
        {Header(""), mismatch + "]"},
        {Header(Version("3.0")), mismatch + "3.0]"},
        {Header(Version("2")), mismatch + "2]"},
        {Header(Version("20.1")), mismatch + "20.1]"},
        {Header(Version("%n&lt;%s")), mismatch + "%n&lt;%s]"},
        {Header(Version("2.3")), kNoCredentials},
        {Header(Version("2.3") + "<userPass></userPass><authToken></authToken>"), kNoCredentials},
        {Header(Version("2.3") + "<userPass>ISEhIQ==</userPass>"), kNoCredentials},
        {Header(Version("2.9.1") + "<authToken>t</authToken>"), kPassed},
        {Header(Version("2.0") + "<userPass></userPass><authToken>t</authToken>"), kPassed},
        {Header(Version("2.3") + "<userPass>ZFhObGNqcHdZWE56</userPass>"), kPassed},
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

TEST(SanServiceRequest, OddOnesAreAnswered) {
    const std::string header = Header(Version("2.3") + "<authToken>t</authToken>");
    const std::string unknown = "Method 's:GetHcns' not implemented";
    const std::string client = "<faultcode>SOAP-ENV:Client</faultcode>";
    const struct {
        const char* what;
        std::string request, inReply;
    } cases[] = {
        // clang-format off
        {"no operation, no header", envelope("<s:GetHcns/>"),                       "Soap header not specified"},
        {"an operation not served", envelope("<s:GetHcns/>", header),               unknown},
        {"bytes that are no text",  envelope("<s:Get\xFF" "Hcns/>", header),         unknown},
        {"another namespace",       envelope("<Ping xmlns='urn:other'/>", header),  "not implemented"},
        {"a child of no meaning",   envelope("<s:RenameHccInSan><a><b>c</b></a></s:RenameHccInSan>", header), kPassed},
        {"SOAP 1.2",                envelope(kRename, header, kSoap12),             kSoap12},
        {"a type error",            envelope("<s:NewPrimaryCfmAddresses><mgmtIpAddresses><port>x</port></mgmtIpAddresses>"
                                             "</s:NewPrimaryCfmAddresses>", header), client},
        {"no envelope",             "<a/>",                                         client},
        {"an envelope cut short",   envelope(kRename, header).substr(0, 150),       client},
        // clang-format on
    };
    for (const auto& row : cases) {
        const std::string reply = FakeModule().Serve(row.request);
        EXPECT_THAT(reply, HasSubstr(row.inReply)) << row.what;
        EXPECT_EQ(reply.find("<xsdVersion version=\"2.3\"") != std::string::npos,
                  row.request.find("</e:Header>") != std::string::npos)
            << row.what;
    }
    const std::string nil = envelope("<s:RenameHccInSan xsi:nil='true'/>", header);
    EXPECT_THAT(wire::joined(FakeModule().Serve(nil)), EndsWith(wire::sample("Fault")));
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
        SyslogCapture::Clear();
        const OpenService nameless(module->Context());
        EXPECT_EQ("", nameless.GetRequestHeader().clientAddress);
        EXPECT_EQ("", nameless.GetRequestHeader().localAddress);
        ASSERT_EQ(1U, SyslogCapture::Lines().size());
        EXPECT_EQ(
            "level(3) category(SANService) message(Unable to determine connection IPs from "
            "Apache's pRqConf->r->connection struct)\n",
            SyslogCapture::Lines()[0].text);
    }
}

TEST(SanServiceObject, DecodesCredentialsTwice) {
    FakeModule module;
    OpenService service(module.Context());
    SanApi::ns1__HccApiXsd xsd;
    xsd.version = "2.1";
    // "dXNlcjpwYXNz", the base64 text of user:pass, as the engine leaves it: with no zero behind.
    std::string octets = "dXNlcjpwYXNzGARBAGE";
    SanApi::xsd__base64Binary userPass;
    userPass.__ptr = reinterpret_cast<unsigned char*>(octets.data());
    userPass.__size = 12;
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

}  // namespace
