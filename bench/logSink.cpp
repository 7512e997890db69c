// The log daemon of the benchmarks, as light as one can be: takes each message and forgets it.
//
//     logSink SOCKET     prints "ready" when it listens, ends with SIGTERM
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cstdio>
#include <string_view>
#include <vector>

int main(int argc, char** argv) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string_view path = argc == 2 ? argv[1] : "";
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        std::fprintf(stderr, "usage: logSink SOCKET\n");
        return 64;
    }
    path.copy(address.sun_path, path.size());
    const int log = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    // The web server's children log without privileges.
    if (log < 0 || ::bind(log, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::chmod(address.sun_path, 0666) != 0) {
        std::perror(address.sun_path);
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    std::vector<char> message(65536);
    for (;;) {
        (void)::recv(log, message.data(), message.size(), 0);
    }
}
