#include "tests/support/interruptedCalls.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace {

/// True for every other call while calls are interrupted.
bool interruptsNow() {
    thread_local bool interrupted = false;
    interrupted = interruptedCalls::each && !interrupted;
    if (interrupted) {
        ++interruptedCalls::count;
        errno = EINTR;
    }
    return interrupted;
}

size_t part(size_t size) {
    return interruptedCalls::each && size > 1 ? 1 : size;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int connect(int fd, const sockaddr* peer, socklen_t size) {
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
