#include "client/call/session.h"

#include <strings.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "apiMgmt/common/text/documentText.h"
#include "apiMgmt/common/text/safeText.h"
#include "client/call/addressText.h"
#include "client/call/clock.h"
#include "client/call/opening.h"

namespace client {

namespace {

constexpr ULONG64 kMaxReply = 16UL * 1024 * 1024;
constexpr unsigned int kMaxReplyDepth = 100;
// A connection for each call: a busy server closes kept ones at the very moment when the next
// request is on its way, and nobody can tell whether that request may be repeated.
constexpr soap_mode kInputMode = SOAP_C_UTFSTRING | SOAP_XML_TREE;
constexpr soap_mode kOutputMode = SOAP_C_UTFSTRING;
// How to add one: the local name of the element.
constexpr std::array<std::string_view, 4> kSecretElements = {"userPass", "authToken", "hccKey",
                                                             "userToken"};

// The engine counts whole seconds, or microseconds below zero, which last for half an hour.
int engineTime(double seconds) {
    constexpr double kMaxMicroseconds = 2000;
    constexpr double kMicroseconds = 1e6;
    return seconds > kMaxMicroseconds ? static_cast<int>(std::ceil(seconds))
                                      : -static_cast<int>(std::ceil(seconds * kMicroseconds));
}

const char* orNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

void showMessage(const char* title, const std::string& captured) {
    const std::string message = text::maskSecrets(captured, kSecretElements);
    const std::size_t head = message.find("\r\n\r\n");
    const std::size_t body = head == std::string::npos ? message.size() : head + 4;
    std::string shown =
        message.substr(0, head) + "\n\n" + text::indentXml(message.substr(body)) + "\n";
    std::erase(shown, '\r');
    std::cerr << "--- " << title << " ---\n" << text::printable(shown);
}

}  // namespace

Session::Session(ServiceOptions options)
    : m_options(std::move(options)), m_proxy(m_options.url.c_str(), SOAP_C_UTFSTRING) {
    soap_set_imode(&m_proxy, kInputMode);
    soap_set_omode(&m_proxy, kOutputMode);
    setLimits();
    fillHeader();
    if (m_options.url.starts_with("https:")) {
        startTls();
    }
    standBetween();
}

Session::~Session() = default;

void Session::setLimits() {
    m_proxy.connect_timeout = std::min(m_options.connectSeconds, m_options.timeoutSeconds);
    m_proxy.recv_maxlength = kMaxReply;
    m_proxy.maxlevel = kMaxReplyDepth;
    m_proxy.socket_flags = MSG_NOSIGNAL;
}

// The service decodes the credentials once more than the SOAP layer does, so the element's
// octets are base64 text themselves.
void Session::fillHeader() {
    const Credentials& credentials = m_options.credentials;
    if (!credentials.user.empty()) {
        const std::string plain = credentials.user + ":" + credentials.password;
        const char* encoded =
            soap_s2base64(&m_proxy, reinterpret_cast<const unsigned char*>(plain.data()), nullptr,
                          static_cast<int>(plain.size()));
        m_encodedUserPass = encoded == nullptr ? "" : encoded;
        m_userPass.__ptr = reinterpret_cast<unsigned char*>(m_encodedUserPass.data());
        m_userPass.__size = static_cast<int>(m_encodedUserPass.size());
        m_apiHeader.userPass = &m_userPass;
    }
    if (!credentials.token.empty()) {
        m_apiHeader.authToken = &m_options.credentials.token;
    }
    m_apiHeader.xsdVersion = &m_version;
    m_header.ns1__HccApiHeader_ = &m_apiHeader;
}

void Session::startTls() {
    const TlsOptions& tls = m_options.tls;
    unsigned short trust = SOAP_SSL_REQUIRE_SERVER_AUTHENTICATION;
    if (tls.insecure) {
        trust = SOAP_SSL_NO_AUTHENTICATION | SOAP_SSL_SKIP_HOST_CHECK;
    } else if (!tls.caFile.empty()) {
        trust |= SOAP_SSL_NO_DEFAULT_CA_PATH;
    }
    if (soap_ssl_client_context(&m_proxy, trust, orNull(tls.certFile), orNull(tls.certPassword),
                                orNull(tls.caFile), nullptr, nullptr) != SOAP_OK) {
        throw std::invalid_argument("TLS cannot be set up: " + engineText(m_proxy));
    }
}

void Session::standBetween() {
    m_proxy.user = this;
    m_open = std::exchange(m_proxy.fopen, &Session::open);
    m_send = std::exchange(m_proxy.fsend, &Session::send);
    m_receive = std::exchange(m_proxy.frecv, &Session::receive);
    m_writeHeader = std::exchange(m_proxy.fposthdr, &Session::writeHeader);
    m_readHeader = std::exchange(m_proxy.fparsehdr, &Session::readHeader);
}

// The engine's limits are for each silence or each message; this one is for the whole call.
bool Session::grantTime() {
    const double left = m_began + m_options.timeoutSeconds - now();
    if (left > 0) {
        m_proxy.send_timeout = engineTime(left);
        m_proxy.recv_timeout = m_proxy.send_timeout;
    }
    return left > 0;
}

SOAP_SOCKET Session::open(soap* context, const char* endpoint, const char* host, int port) {
    Session& self = of(context);
    // The engine's limit is enough for one address and no greeting, and a thread costs as much as
    // the rest of such a call.
    if (context->ctx == nullptr && isNumericAddress(host)) {
        return self.m_open(context, endpoint, host, port);
    }
    return openWithin(*context, self.m_open, endpoint, host, port, self.m_proxy.connect_timeout);
}

int Session::send(soap* context, const char* octets, std::size_t count) {
    Session& self = of(context);
    if (!self.grantTime()) {
        return SOAP_EOF;
    }
    self.m_facts.wasSent = true;
    if (self.m_options.dump) {
        self.m_sent.append(octets, count);
    }
    return self.m_send(context, octets, count);
}

std::size_t Session::receive(soap* context, char* octets, std::size_t size) {
    Session& self = of(context);
    const std::size_t count = self.grantTime() ? self.m_receive(context, octets, size) : 0;
    if (self.m_options.dump) {
        self.m_received.append(octets, count);
    }
    return count;
}

int Session::writeHeader(soap* context, const char* name, const char* value) {
    Session& self = of(context);
    const bool isAgent = name != nullptr && strcasecmp(name, "User-Agent") == 0;
    return self.m_writeHeader(context, name, isAgent ? self.m_options.userAgent.c_str() : value);
}

int Session::readHeader(soap* context, const char* name, const char* value) {
    Session& self = of(context);
    if (strcasecmp(name, "Location") == 0) {
        self.m_facts.location = value;
    } else if (strcasecmp(name, "Via") == 0) {
        self.m_facts.via = value;
    }
    return self.m_readHeader(context, name, value);
}

void Session::begin() {
    m_proxy.destroy();  // What the last reply holds.
    m_proxy.header = &m_header;
    m_facts = {};
    m_sent.clear();
    m_received.clear();
    m_began = now();
    grantTime();
}

Outcome Session::fetch(std::string& body) {
    begin();
    std::size_t size = 0;
    const char* octets = nullptr;
    if (soap_GET(&m_proxy, m_options.url.c_str(), nullptr) == SOAP_OK &&
        soap_begin_recv(&m_proxy) == SOAP_OK) {
        octets = soap_http_get_body(&m_proxy, &size);
    }
    const bool isWhole = octets != nullptr && soap_end_recv(&m_proxy) == SOAP_OK;
    body = isWhole ? std::string(octets, size) : "";
    soap_closesock(&m_proxy);
    return finish();
}

Outcome Session::finish() {
    m_facts.seconds = now() - m_began;
    if (m_options.dump) {
        showMessages();
    }
    return outcomeOf(m_proxy, m_facts, m_options);
}

void Session::showMessages() const {
    showMessage("request", m_sent);
    showMessage("reply", m_received);
}

}  // namespace client
