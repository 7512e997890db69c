// Messages, read from and written to the bytes that clients see. Each sample is read
// and written again: what the reader does not know is lost and what the writer does differently
// shows, so one comparison holds both to the sample.
//
// How to add one, for a kind of member that the others do not have: its sample in golden/ and its
// row.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

namespace {

/// The bytes of a sample: without the line breaks and indentation that make it readable.
std::string sample(const std::string& name) {
    std::ifstream file(std::string(GOLDEN_DIR) + "/" + name + ".xml");
    std::string bytes;
    for (std::string line; std::getline(file, line);) {
        const std::size_t start = std::min(line.find_first_not_of(' '), line.size());
        // Inside a tag, an attribute to a line, a blank stands for the break.
        bytes += start > 0 && line[start] != '<' ? " " + line.substr(start) : line.substr(start);
    }
    return bytes;
}

using Rewrite = std::string (*)(soap*, const char* tag, const std::string& text);

#define MESSAGE(Name) \
    { #Name, wire::rewrite < SanApi::ns1__##Name> }

// Between them they have every kind of member.
const std::pair<std::string, Rewrite> kMessageRows[] = {
    MESSAGE(AddHccToSan),
    MESSAGE(AddServer),
    MESSAGE(RenameHccInSan),
    MESSAGE(AddHccToSanResponse),
    MESSAGE(HccAttachVolumeResponse),
    MESSAGE(NewPrimaryCfmAddressesResponse),
};

TEST(Message, IsReadAndWrittenAsItsSample) {
    for (const auto& [name, rewrite] : kMessageRows) {
        const std::string bytes = sample(name);
        ASSERT_FALSE(bytes.empty()) << name;
        const wire::Context context = wire::newContext();
        EXPECT_EQ(rewrite(context.get(), ("ns1:" + name).c_str(), bytes), bytes);
    }
}

TEST(Message, WithTheAttachmentIsRead) {
    const std::string text =
        "<ns1:GetPhoneHomeDataResponse xmlns:ns1=\"urn:san-api:service\">"
        "<return><xop:Include xmlns:xop=\"http://www.w3.org/2004/08/xop/include\" "
        "href=\"cid:dump\"/></return></ns1:GetPhoneHomeDataResponse>";
    const wire::Context context = wire::newContext();
    std::istringstream in(text);
    context->is = &in;
    SanApi::ns1__GetPhoneHomeDataResponse response;
    ASSERT_EQ(SanApi::soap_read_ns1__GetPhoneHomeDataResponse(context.get(), &response), SOAP_OK);
    ASSERT_NE(response.return_, nullptr);
}

// Values at the edges of the contract: what a reader takes and refuses, and what a writer makes of
// it.
const std::string kTypeError = "error " + std::to_string(SOAP_TYPE);
const std::string kOccursError = "error " + std::to_string(SOAP_OCCURS);
constexpr soap_mode kLax = 0;
constexpr soap_mode kStrict = SOAP_XML_STRICT;

struct Row {
    const char* what;
    Rewrite rewrite;
    soap_mode mode;
    std::string read;
    std::string written;  // empty: as it was read
};

constexpr auto kPort = wire::rewrite<SanApi::ns1__IpAddressPort>;
constexpr auto kAddress = wire::rewrite<SanApi::ns1__InetAddress>;
constexpr auto kInterface = wire::rewrite<SanApi::ns1__interfaceObject>;
constexpr auto kVersion = wire::rewrite<SanApi::ns1__HccApiXsd>;
constexpr auto kDescription = wire::rewrite<SanApi::_ns3__SanApiWsdl>;
constexpr auto kResult = wire::rewrite<SanApi::ns1__resultObject>;
constexpr auto kIdentity = wire::rewrite<SanApi::ns1__scsiInfo>;
constexpr auto kPing = wire::rewrite<SanApi::ns1__PingResponse>;
constexpr auto kEvent = wire::rewrite<SanApi::ns1__eventArg>;

std::string port(const std::string& number) {
    return R"(<e><ipAddress type="dns"></ipAddress><port>)" + number + "</port></e>";
}

// clang-format off
const Row kValueRows[] = {
    {"the greatest port",           kPort,        kLax,    port("65535"), ""},
    {"a port above it",             kPort,        kLax,    port("65536"), kTypeError},
    {"a negative port",             kPort,        kLax,    port("-1"), kTypeError},
    {"a port that is no number",    kPort,        kLax,    port("http"), kTypeError},
    {"no port, lax",                kPort,        kLax,    "<e><ipAddress type=\"dns\"/></e>",
                                                         R"(<e><ipAddress type="dns"></ipAddress><port>0</port></e>)"},
    {"no port, strict",             kPort,        kStrict, "<e><ipAddress type=\"dns\"/></e>", kOccursError},

    {"a nil address",               kPort,        kLax,    R"(<e xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><ipAddress xsi:nil="1"/><port>1</port></e>)",
                                                         R"(<e><ipAddress xsi:nil="true"/><port>1</port></e>)"},

    {"another kind than the child", kAddress,     kLax,    R"(<e type="ipv6"><ipv4Addr>10.0.0.1</ipv4Addr></e>)", ""},
    {"no child",                    kAddress,     kLax,    R"(<e type="unknown"></e>)", ""},
    {"an empty child",              kAddress,     kLax,    R"(<e type="ipv4"><ipv4Addr/></e>)", ""},
    {"the first of two children",   kAddress,     kLax,    R"(<e type="dns"><dnsAddr>a</dnsAddr><addr>b</addr></e>)",
                                                         R"(<e type="dns"><dnsAddr>a</dnsAddr></e>)"},
    {"a kind by its number",        kAddress,     kLax,    R"(<e type="2"></e>)", R"(<e type="ipv6"></e>)"},
    {"a number without a name",     kAddress,     kLax,    R"(<e type="99"></e>)", ""},
    {"the same, strict",            kAddress,     kStrict, R"(<e type="99"><addr>x</addr></e>)", kTypeError},
    {"a kind in other letters",     kAddress,     kLax,    R"(<e type="IPV4"></e>)", kTypeError},

    {"an interface's type",         kInterface,   kLax,    "<e><intfId>a</intfId><intfType>iscsi</intfType></e>", ""},
    {"a number for it",             kInterface,   kLax,    "<e><intfId>a</intfId><intfType>7</intfType></e>", ""},
    {"no interface type",           kInterface,   kLax,    "<e><intfId>a</intfId></e>", ""},
    {"an unknown interface type",   kInterface,   kLax,    "<e><intfId>a</intfId><intfType>sas</intfType></e>", kTypeError},

    {"a version",                   kVersion,     kLax,    R"(<e version="2.9"></e>)", ""},
    {"the default version",         kVersion,     kLax,    "<e></e>", R"(<e version="2.3"></e>)"},
    {"an empty version",            kVersion,     kLax,    R"(<e version=""></e>)", "<e></e>"},
    {"the description's default",   kDescription, kLax,    "<e></e>", R"(<e version="2.1"></e>)"},

    {"a result in another order",   kResult,      kLax,    "<e><resultCode>5</resultCode><msgArgs>b</msgArgs><other><x/></other>"
                                                         "<catalogNumber>4</catalogNumber><msgArgs>a</msgArgs></e>",
                                                         "<e><catalogNumber>4</catalogNumber><msgArgs>b</msgArgs><msgArgs>a</msgArgs>"
                                                         "<resultCode>5</resultCode></e>"},
    {"a text for a number",         kResult,      kLax,    "<e><catalogNumber>four</catalogNumber></e>", kTypeError},
    {"a result without members",    kResult,      kLax,    "<e/>", "<e><catalogNumber>0</catalogNumber><resultCode>0</resultCode></e>"},
    {"a missing text",              kIdentity,    kLax,    "<e/>", "<e><deviceId/></e>"},
    {"a missing text, strict",      kIdentity,    kStrict, "<e/>", kOccursError},
    {"markup and letters",          kIdentity,    kLax,    "<e><deviceId>&lt;a&gt; &amp; \xC3\xA9\xE9\x9B\x86</deviceId></e>", ""},
    {"no result",                   kPing,        kLax,    "<e/>", R"(<e><return xsi:nil="true"/></e>)"},
    {"a hyphen in a name",          kEvent,       kLax,    "<e><argType>CACHE-NET-IP</argType></e>", ""},
};
// clang-format on

TEST(Value, IsReadAndWritten) {
    for (const Row& row : kValueRows) {
        const wire::Context context = wire::newContext(row.mode);
        const std::string& wanted = row.written.empty() ? row.read : row.written;
        const std::string written = row.rewrite(context.get(), "e", wire::envelope(row.read));
        const std::string body = "<SOAP-ENV:Body>" + wanted + "</SOAP-ENV:Body>";
        EXPECT_TRUE(written == wanted || written.find(body) != std::string::npos)
            << row.what << ": " << written;
    }
}

}  // namespace
