// A client whose own port is the one that it calls.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/common/ipc/gpbComClient.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

/// Stands before the C library's, and gives each socket the port that it is to call; the system
/// does so by chance, about once in ten thousand calls.
extern "C" int connect(int fd, const sockaddr* address, socklen_t size) {
    EXPECT_EQ(::bind(fd, address, size), 0);
    return static_cast<int>(::syscall(SYS_connect, fd, address, size));
}

namespace {

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

TEST(SelfConnectTest, IsNobodyAndLeavesThePortFree) {
    // The larger one is more than the system keeps for a socket that nobody reads.
    for (const std::size_t size : {std::size_t{0}, std::size_t{16} << 20U}) {
        const int port = bindAndFree(0);
        protoIPCMsg::GPBIPCMsg request, reply;
        request.set_msgtype(protoIPCMsg::IPC_API_REQUEST);
        request.mutable_apireqmsg()->set_clientaddress(std::string(size, 'x'));
        try {
            GPBComClient(GPBComEndpoint("127.0.0.1", port)).SendReceiveMessage(request, reply);
            FAIL() << "it took its own request for a reply";
        } catch (const APISocketError& failure) {
            EXPECT_EQ(failure.GetLogMessage(), "127.0.0.1:" + std::to_string(port) +
                                                   ": Unable to connect: Connection refused");
        }
        EXPECT_EQ(bindAndFree(port), port) << "the peer cannot start for a minute";
    }
}

}  // namespace
