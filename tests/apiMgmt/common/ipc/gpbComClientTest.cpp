#include "apiMgmt/common/ipc/gpbComClient.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/common/ipc/ipcFraming.h"
#include "testbed/scriptedPeer.h"
#include "tests/support/replyMessage.h"

/// While `interruptsEach` is set, connect, poll, send and recv are interrupted once before they do
/// their work, a connect after it has begun, and what is sent or received goes byte by byte.
namespace {

std::atomic<bool> interruptsEach{false};
/// Gives each socket the port that it is to call; the system does so by chance, about once in ten
/// thousand calls.
std::atomic<bool> callsItself{false};
std::atomic<int> interruptions{0};

/// True for every other call while calls are interrupted.
bool interruptsNow() {
    thread_local bool interrupted = false;
    interrupted = interruptsEach && !interrupted;
    if (interrupted) {
        ++interruptions;
        errno = EINTR;
    }
    return interrupted;
}

size_t part(size_t size) {
    return interruptsEach && size > 1 ? 1 : size;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int connect(int fd, const sockaddr* peer, socklen_t size) {
    if (callsItself) {
        EXPECT_EQ(::bind(fd, peer, size), 0);
    }
    const auto result = static_cast<int>(syscall(SYS_connect, fd, peer, size));
    return result == 0 && interruptsNow() ? -1 : result;
}

__attribute__((visibility("default"))) int poll(pollfd* list, nfds_t count, int timeout) {
    return interruptsNow() ? -1 : static_cast<int>(syscall(SYS_poll, list, count, timeout));
}

__attribute__((visibility("default"))) ssize_t send(int fd, const void* bytes, size_t size,
                                                    int flags) {
    return interruptsNow() ? -1 : syscall(SYS_sendto, fd, bytes, part(size), flags, nullptr, 0);
}

__attribute__((visibility("default"))) ssize_t recv(int fd, void* bytes, size_t size, int flags) {
    return interruptsNow() ? -1
                           : syscall(SYS_recvfrom, fd, bytes, part(size), flags, nullptr, nullptr);
}
}

namespace {

using protoIPCMsg::GPBIPCMsg;

GPBIPCMsg makeRequest(const std::string& document = "<compapi></compapi>") {
    GPBIPCMsg request;
    request.set_msgtype(protoIPCMsg::IPC_API_REQUEST);
    request.mutable_apireqmsg()->mutable_cmdreqmsg()->set_requestdocument(document);
    return request;
}

// clang-tidy takes a constructor with so large a size for a mistake.
std::string documentOfSize(std::size_t size) {
    std::string document;
    document.resize(size, 'x');
    return document;
}

/// The reply's document.
std::string exchange(int port, const GPBIPCMsg& request = makeRequest()) {
    GPBIPCMsg reply;
    GPBComClient(GPBComEndpoint("127.0.0.1", port)).SendReceiveMessage(request, reply);
    return reply.apirespmsg().cmdrespmsg().responsedocument();
}

/// The failure's text; empty when the exchange succeeds.
std::string failureOf(int port, const GPBIPCMsg& request = makeRequest()) {
    try {
        exchange(port, request);
        return "";
    } catch (const APISocketError& failure) {
        return failure.GetLogMessage();
    }
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST(GpbComClientTest, ExchangesMessagesOfAnySize) {
    ScriptedPeer peer([](int fd) {
        GPBIPCMsg request;
        ipcFraming::parseMessage(ScriptedPeer::receive(fd), request);
        const auto& document = request.apireqmsg().cmdreqmsg().requestdocument();
        ScriptedPeer::send(fd, replyFrame(document));
    });
    // Around the sizes of the reader's first buffer and of the socket's.
    for (const std::size_t size : {1U, 4079U, 4080U, 4081U, 4096U, 8192U, 3'000'000U}) {
        const std::string document = std::string(size, 'x');
        EXPECT_TRUE(exchange(peer.port(), makeRequest(document)) == document) << size;
    }
}

TEST(GpbComClientTest, FailsWhenPeerClosesBeforeAWholeReply) {
    const std::string frame = replyFrame("cut");
    std::atomic<std::size_t> offset = 0;
    ScriptedPeer peer([&](int fd) {
        ScriptedPeer::receive(fd);
        ScriptedPeer::send(fd, std::string_view(frame).substr(0, offset));
    });
    const std::ptrdiff_t before = openDescriptors();
    for (; offset < frame.size(); ++offset) {
        EXPECT_NE(failureOf(peer.port()).find("closed before a whole reply"), std::string::npos)
            << "after " << offset << " bytes";
    }
    // The peer's end of the last connection may not be closed yet.
    EXPECT_LE(openDescriptors(), before + 1);
}

TEST(GpbComClientTest, RaisesBadReplies) {
    const struct {
        std::string bytes, failure;
    } cases[] = {
        // clang-format off
        {std::string("\0\0\0\0", 4),                "Reply of a bad length"},
        {std::string("\x04\0\0\x01", 4),            "Reply of a bad length"},
        {"\xff\xff\xff\xff",                        "Reply of a bad length"},
        {"HTTP/1.1 400 Bad Request\r\n\r\n",        "Reply of a bad length"},
        {std::string("\x04\0\0\0", 4),              "Connection closed before a whole reply"},
        {std::string("\0\0\0\x05\xff\xff\xff\xff\xff", 9), "Reply is not a message"},
        {std::string("\0\0\0\x02\x1a\x7f", 6),      "Reply is not a message"},
        // clang-format on
    };
    for (const auto& test : cases) {
        ScriptedPeer peer([&](int fd) {
            ScriptedPeer::receive(fd);
            ScriptedPeer::send(fd, test.bytes);
        });
        EXPECT_EQ(failureOf(peer.port()),
                  "127.0.0.1:" + std::to_string(peer.port()) + ": " + test.failure);
    }
}

TEST(GpbComClientTest, SurvivesPeerThatIsGone) {
    constexpr int kNobody = 1;
    EXPECT_NE(failureOf(kNobody).find("Unable to connect"), std::string::npos);

    // A reset while a long request is on its way would raise SIGPIPE, which ends the process.
    ScriptedPeer peer([](int fd) { ScriptedPeer::resetOnClose(fd); });
    const GPBIPCMsg longRequest = makeRequest(documentOfSize(32'000'000));
    EXPECT_NE(failureOf(peer.port(), longRequest), "");
}

TEST(GpbComClientTest, SendsNoRequestThatIsNoFrame) {
    std::atomic<int> connections = 0;
    ScriptedPeer peer([&](int) { ++connections; });
    EXPECT_NE(failureOf(peer.port(), GPBIPCMsg()).find("empty or too long"), std::string::npos);
    EXPECT_EQ(failureOf(0), "127.0.0.1:0: Not an address and port");
    EXPECT_EQ(failureOf(65536), "127.0.0.1:65536: Not an address and port");
    EXPECT_EQ(connections, 0);
}

TEST(GpbComClientTest, GoesOnAfterInterruptedCalls) {
    ScriptedPeer peer([](int fd) {
        ScriptedPeer::receive(fd);
        ScriptedPeer::send(fd, replyFrame("at last"));
    });
    interruptsEach = true;
    EXPECT_EQ(exchange(peer.port()), "at last");
    interruptsEach = false;
    EXPECT_GT(interruptions, 4);
}

/// A port of loopback that was free to bind: `port`, or for 0 any; -1 when it is taken.
int bindAndFree(int port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    const bool bound = ::bind(fd, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
                       ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    ::close(fd);
    return bound ? ntohs(address.sin_port) : -1;
}

TEST(GpbComClientTest, ItselfIsNobodyAndThePortStaysFree) {
    // The larger one is more than the system keeps for a socket that nobody reads.
    for (const std::size_t size : {std::size_t{0}, std::size_t{16} << 20U}) {
        const int port = bindAndFree(0);
        callsItself = true;
        EXPECT_EQ(failureOf(port, makeRequest(std::string(size, 'x'))),
                  "127.0.0.1:" + std::to_string(port) + ": Unable to connect: Connection refused");
        callsItself = false;
        EXPECT_EQ(bindAndFree(port), port) << "the peer cannot start for a minute";
    }
}

// One byte more than the largest is refused by who sends it and by who is told of it.
TEST(IpcFramingTest, TakesFramesUpToTheLargest) {
    constexpr std::size_t kMaxBodySize = 67'108'864;
    const std::size_t around = makeRequest(documentOfSize(kMaxBodySize)).ByteSizeLong();
    for (const bool fits : {true, false}) {
        const std::size_t body = kMaxBodySize + (fits ? 0 : 1);
        const GPBIPCMsg message = makeRequest(documentOfSize(2 * kMaxBodySize - around + !fits));
        ASSERT_EQ(message.ByteSizeLong(), body);
        std::string frame;
        EXPECT_EQ(ipcFraming::encodeFrame(message, frame), fits);
        EXPECT_EQ(frame.size(), fits ? body + 4 : 0);

        ipcFraming::FrameReader reader;
        ipcFraming::encodeLength(static_cast<std::uint32_t>(body), reader.room().first<4>());
        EXPECT_EQ(reader.added(4), fits ? ipcFraming::FrameReader::State::wantsMore
                                        : ipcFraming::FrameReader::State::badLength);
    }
}

}  // namespace
