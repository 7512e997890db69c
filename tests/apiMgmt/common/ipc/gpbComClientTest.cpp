#include "apiMgmt/common/ipc/gpbComClient.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/common/ipc/ipcFraming.h"
#include "testbed/scriptedPeer.h"
#include "tests/support/interruptedCalls.h"
#include "tests/support/replyMessage.h"

namespace {

using protoIPCMsg::GPBIPCMsg;

GPBIPCMsg makeRequest(const std::string& document = "<compapi></compapi>") {
    GPBIPCMsg request;
    request.set_msgtype(protoIPCMsg::IPC_API_REQUEST);
    request.mutable_apireqmsg()->mutable_cmdreqmsg()->set_requestdocument(document);
    return request;
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
    const GPBIPCMsg longRequest = makeRequest(std::string(32'000'000, 'x'));
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
    interruptedCalls::each = true;
    EXPECT_EQ(exchange(peer.port()), "at last");
    interruptedCalls::each = false;
    EXPECT_GT(interruptedCalls::count, 4);
}

// One byte more than the largest is refused by who sends it and by who is told of it.
TEST(IpcFramingTest, TakesFramesUpToTheLargest) {
    constexpr std::size_t kMaxBodySize = 67'108'864;
    const std::size_t around = makeRequest(std::string(kMaxBodySize, 'x')).ByteSizeLong();
    for (const bool fits : {true, false}) {
        const std::size_t body = kMaxBodySize + (fits ? 0 : 1);
        const GPBIPCMsg message = makeRequest(std::string(2 * kMaxBodySize - around + !fits, 'x'));
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
