#include "client/call/session.h"

#include <sys/socket.h>

#include <array>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "apiMgmt/common/text/documentText.h"
#include "apiMgmt/common/text/safeText.h"

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

double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
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
    if (m_options.dump) {
        captureMessages();
    }
}

Session::~Session() = default;

void Session::setLimits() {
    m_proxy.connect_timeout = m_options.timeoutSeconds;
    m_proxy.send_timeout = m_options.timeoutSeconds;
    m_proxy.recv_timeout = m_options.timeoutSeconds;
    m_proxy.transfer_timeout = m_options.timeoutSeconds;
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

void Session::captureMessages() {
    m_proxy.user = this;
    m_send = std::exchange(m_proxy.fsend, &Session::captureSend);
    m_receive = std::exchange(m_proxy.frecv, &Session::captureReceive);
}

int Session::captureSend(soap* context, const char* octets, std::size_t count) {
    auto& self = *static_cast<Session*>(context->user);
    self.m_sent.append(octets, count);
    return self.m_send(context, octets, count);
}

std::size_t Session::captureReceive(soap* context, char* octets, std::size_t size) {
    auto& self = *static_cast<Session*>(context->user);
    const std::size_t count = self.m_receive(context, octets, size);
    self.m_received.append(octets, count);
    return count;
}

void Session::begin() {
    m_proxy.destroy();  // What the last reply holds.
    m_proxy.header = &m_header;
    m_sent.clear();
    m_received.clear();
    m_began = now();
}

Outcome Session::finish() {
    const double seconds = now() - m_began;
    if (m_options.dump) {
        showMessages();
    }
    return outcomeOf(m_proxy, seconds, m_options.timeoutSeconds);
}

void Session::showMessages() const {
    showMessage("request", m_sent);
    showMessage("reply", m_received);
}

}  // namespace client
