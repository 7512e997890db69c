// The peer of the benchmarks' exchanges: answers every frame with the same frame.
//
//     exchangePeer REPLY_FILE     prints the port that it listens on, ends with SIGTERM
//
// It answers one connection after the other, which is enough for a peer on the same machine that
// does nothing, and costs the measured server the same whoever asks.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

bool receiveAll(int peer, char* target, size_t size) {
    return size == 0 || ::recv(peer, target, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

void answer(int peer, const std::string& reply) {
    uint32_t length = 0;
    if (!receiveAll(peer, reinterpret_cast<char*>(&length), sizeof length)) {
        return;
    }
    constexpr uint32_t kMaxReply = 1 << 20;
    static std::vector<char> content(kMaxReply);
    if (ntohl(length) > kMaxReply || !receiveAll(peer, content.data(), ntohl(length))) {
        return;
    }
    ::send(peer, reply.data(), reply.size(), MSG_NOSIGNAL);
}

int listenLocally() {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::listen(listener, SOMAXCONN) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return -1;
    }
    std::printf("%d\n", ntohs(address.sin_port));
    std::fflush(stdout);
    return listener;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: exchangePeer REPLY_FILE\n");
        return 64;
    }
    std::ifstream file(argv[1], std::ios::binary);
    const std::string reply((std::istreambuf_iterator<char>(file)), {});
    const int listener = listenLocally();
    if (listener < 0 || reply.empty()) {
        return 1;
    }
    for (;;) {
        const int peer = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (peer < 0) {
            continue;
        }
        answer(peer, reply);
        ::close(peer);
    }
}
