// The bare service in the engine's own stand-alone server, without any web server: a thread for
// each connection, as the engine's examples have it.
//
//     standAloneServer     prints the port that it listens on, ends with SIGTERM
#include <csignal>
#include <cstdio>
#include <memory>
#include <thread>

#include "bench/bareService.h"

int main() {
    std::signal(SIGPIPE, SIG_IGN);
    soap* const listener = soap_new1(SOAP_IO_KEEPALIVE);
    listener->bind_flags = SO_REUSEADDR;
    listener->namespaces = namespaces;
    listener->max_keep_alive = 0;  // no limit
    if (!soap_valid_socket(soap_bind(listener, "127.0.0.1", 0, SOMAXCONN))) {
        soap_print_fault(listener, stderr);
        return 1;
    }
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(listener->master, reinterpret_cast<sockaddr*>(&address), &size);
    std::printf("%d\n", ntohs(address.sin_port));
    std::fflush(stdout);
    for (;;) {
        if (!soap_valid_socket(soap_accept(listener))) {
            continue;
        }
        std::thread([service = std::make_unique<bare::BareService>(*listener)] {
            soap_set_mode(service.get(), SOAP_IO_KEEPALIVE);
            service->serve();
            service->destroy();
        }).detach();
    }
}
